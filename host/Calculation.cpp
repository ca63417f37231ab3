#include <prsm/design/DeclaredWarnings.h>
#include <prsm/design/DeviceChecks.h>
#include <prsm/host/Calculation.h>
#include <prsm/host/Failures.h>
#include <prsm/host/HostError.h>
#include <prsm/host/Suggest.h>
#include <prsm/host/Values.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <memory>

namespace prsm::host {

namespace {

std::string joinedNames(std::vector<std::string> const& names) {
    std::string text;
    for (std::size_t i = 0; i < names.size(); ++i)
        text += (i == 0 ? "" : i + 1 == names.size() ? " and " : ", ") + names[i];
    return text;
}

// Whether every output that the sheet declares as a power or current on a rail is 0.
bool drawsNothing(SheetDesign const& declared, SheetInstance& instance) {
    if (declared.powerOutputs.empty() && declared.currentOutputs.empty()) return false;
    for (auto const* outputs : {&declared.powerOutputs, &declared.currentOutputs})
        for (auto const& [cell, rail] : *outputs)
            if (std::strtod(instance.evaluate(cell).c_str(), nullptr) != 0) return false;
    return true;
}

}  // namespace

std::string missingRowWarning(std::string const& input, std::string const& value,
                              std::vector<MissingRow> const& missing) {
    if (missing.empty()) return std::string();
    std::vector<std::string> tables;
    std::vector<std::string> known;
    for (MissingRow const& row : missing) {
        tables.push_back(row.table);
        for (std::string const& name : row.values)
            if (std::find(known.begin(), known.end(), name) == known.end()) known.push_back(name);
    }
    return input + " = " + (value.empty() ? "\"\"" : value) + " has no row of its own in " +
           joinedNames(tables) + didYouMean(suggestNames(value, known)) +
           "; the sheet falls back to a default row or value";
}

CalcResult readCalculation(Sheet const& sheet, SheetInstance& instance,
                           std::vector<ResolvedInput> const& inputs) {
    CalcResult result;
    result.model = sheet.name();
    for (CellInfo const& cell : sheet.cells()) {
        bool const checked = design::hasDeclaredWarnings(cell);
        if (cell.category == CellCategory::IntermediateCalculation && !checked) continue;
        std::string value = instance.evaluate(cell.name);
        for (std::string& line : design::declaredWarnings(cell, value, instance))
            result.warnings.push_back(std::move(line));
        if (cell.category == CellCategory::ModelOutput)
            result.outputs.push_back({cell.name, cell.type, value, cell.unit, cell.description});
        if (cell.category != CellCategory::UserInput) continue;
        if (!cell.validityKey.empty()) {
            bool const valid = instance.isValid(cell.name) != 0;
            std::string const choices = !valid && cell.hasValidValues ? instance.validValues(cell.name) : "";
            result.checks.push_back({cell.name, cell.type, value, cell.rule, choices, valid, cell.unit});
        }
        if (cell.type == CellType::String) {
            std::string const warning =
                missingRowWarning(cell.name, value, instance.tablesWithoutRow(cell.name));
            if (!warning.empty()) result.warnings.push_back(warning);
        }
        result.inputs.push_back({cell.name, cell.type, std::move(value), cell.unit, cell.description});
    }
    result.drawsNothing = drawsNothing(sheet.design(), instance);
    design::CellTexts given;  // the grades that fit the rail voltages better are tried on these
    for (ResolvedInput const& input : inputs) given.emplace_back(input.cell->name, input.text);
    for (std::string& line : design::voltageGradeMismatches(sheet, given))
        result.warnings.push_back(std::move(line));
    return result;
}

CalcResult runCalculation(Sheet const& sheet, std::vector<ResolvedInput> const& inputs) {
    std::unique_ptr<SheetInstance> const instance = sheet.create();
    try {
        for (ResolvedInput const& input : inputs) instance->set(input.cell->name, input.text);
    } catch (std::invalid_argument const& e) {
        throw HostError(kExitBadInput, e.what());  // resolveInputs checks first; kept for safety
    }

    try {
        instance->calculate();
        CalcResult result = readCalculation(sheet, *instance, inputs);
        result.dump = instance->reflect();
        return result;
    } catch (...) {
        throw HostError(kExitDataFailure,
                        "calculating " + sheet.name() + " failed: " + describeCurrentException());
    }
}

}  // namespace prsm::host
