#include <prsm/host/Numbers.h>
#include <prsm/host/Render.h>
#include <prsm/host/TextTable.h>
#include <prsm/host/Values.h>

namespace prsm::host {

namespace {

// Control characters would break the table's lines; they are shown escaped (\x0A).
std::string shown(CellType type, std::string const& text) {
    if (type == CellType::String && text.empty()) return "\"\"";
    return printable(displayValue(type, text));
}

std::string validWhen(InputCheck const& check) {
    return check.choices.empty() ? check.rule : describeChoices(check.choices);
}

// An input outside its list while the block draws nothing: most likely the reason, say so.
bool explainsZeroPower(CalcResult const& result, InputCheck const& check) {
    return result.drawsNothing && !check.choices.empty();
}

constexpr char kContributesNothing[] = "the block gives 0 W and contributes nothing";

}  // namespace

std::string renderModels(std::vector<Sheet const*> const& sheets) {
    std::vector<TextRow> rows;
    for (Sheet const* sheet : sheets) rows.push_back({sheet->name(), sheet->description()});
    return formatTable({"model", "description"}, rows);
}

std::string renderCells(std::vector<CellRow> const& rows) {
    std::vector<TextRow> table;
    for (CellRow const& row : rows)
        table.push_back(
            {row.name, row.type, row.category, row.unit, row.defaultValue, row.validValues, row.description});
    return formatTable({"cell", "type", "category", "unit", "default", "valid values", "description"}, table);
}

nlohmann::ordered_json cellsJson(std::string const& model, std::vector<CellRow> const& rows) {
    nlohmann::ordered_json cells = nlohmann::ordered_json::array();
    for (CellRow const& row : rows)
        cells.push_back({{"name", row.name},
                         {"type", row.type},
                         {"category", row.category},
                         {"unit", row.unit},
                         {"default", row.defaultValue},
                         {"valid_values", row.validValues},
                         {"description", row.description}});
    return {{"model", model}, {"cells", cells}};
}

std::string renderCalcTable(CalcResult const& result) {
    std::vector<TextRow> outputs;
    for (CellValue const& output : result.outputs)
        outputs.push_back({output.name, shown(output.type, output.text), output.unit});
    std::string text = formatTable({"output", "value", "unit"}, outputs);

    std::vector<TextRow> invalid;
    for (InputCheck const& check : result.checks)
        if (!check.valid)
            invalid.push_back({check.name, shown(check.type, check.value), check.unit, validWhen(check)});
    if (!invalid.empty()) {
        text += "\nINVALID inputs (calculated anyway)\n";
        text += formatTable({"input", "value", "unit", "valid when"}, invalid);
    }
    for (InputCheck const& check : result.checks)
        if (!check.valid && explainsZeroPower(result, check)) {
            text += "With " + check.name + " outside its list " + kContributesNothing + ".\n";
            break;
        }
    return text;
}

nlohmann::ordered_json calcJson(CalcResult const& result) {
    nlohmann::ordered_json document = nlohmann::ordered_json::object();
    document["model"] = result.model;
    document["inputs"] = nlohmann::ordered_json::object();
    for (CellValue const& input : result.inputs)
        document["inputs"][input.name] = jsonValue(input.type, input.text);
    document["outputs"] = nlohmann::ordered_json::object();
    for (CellValue const& output : result.outputs)
        document["outputs"][output.name] = jsonValue(output.type, output.text);
    document["valid"] = nlohmann::ordered_json::object();
    for (InputCheck const& check : result.checks) document["valid"][check.name] = check.valid;
    document["unit"] = nlohmann::ordered_json::object();
    for (auto const* cells : {&result.inputs, &result.outputs})
        for (CellValue const& cell : *cells) document["unit"][cell.name] = cell.unit;
    document["description"] = nlohmann::ordered_json::object();
    for (auto const* cells : {&result.inputs, &result.outputs})
        for (CellValue const& cell : *cells) document["description"][cell.name] = cell.description;
    return document;
}

std::vector<std::string> invalidInputWarnings(CalcResult const& result) {
    std::vector<std::string> lines;
    for (InputCheck const& check : result.checks)
        if (!check.valid)
            lines.push_back(
                check.name + " = " + shown(check.type, check.value) +
                (check.unit.empty() ? "" : " " + check.unit) + " is invalid (valid when " + validWhen(check) +
                "); calculated anyway" +
                (explainsZeroPower(result, check) ? std::string(": ") + kContributesNothing : ""));
    return lines;
}

}  // namespace prsm::host
