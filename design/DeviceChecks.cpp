#include <prsm/design/Catalogue.h>
#include <prsm/design/DeviceChecks.h>
#include <prsm/framework/PRSMCommonParamControlData.h>
#include <prsm/framework/PRSMNumberText.h>
#include <prsm/framework/PRSMReservedValues.h>
#include <prsm/framework/PRSMValueList.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <optional>
#include <utility>

namespace prsm::design {

namespace {

struct VoltageRange {
    double low;
    double high;
    bool holds(double v) const { return v >= low && v <= high; }
};

// The number a cell evaluates to; none for a reserved value or text that is not a number.
std::optional<double> evaluated(SheetInstance& instance, std::string const& cell) {
    std::string const text = instance.evaluate(cell);
    char* end = nullptr;
    float const value = std::strtof(text.c_str(), &end);
    if (end == text.c_str() || *end != '\0' || value == kFloatNotSet || value == kFloatAbsent)
        return std::nullopt;
    return value;
}

bool namesCell(std::string const& bound) {
    DecimalText number;
    return !bound.empty() && !parseDecimalText(bound, number);
}

std::string volts(double v) {
    return shortestFloatText(static_cast<float>(v)) + " V";
}

// A voltage as text that reads back as the same double.
std::string exactText(double v) {
    char buffer[32];
    std::snprintf(buffer, sizeof buffer, "%.17g", v);
    return buffer;
}

std::string text(VoltageRange const& range) {
    return shortestFloatText(static_cast<float>(range.low)) + " .. " + volts(range.high);
}

// A parameter set of the sheet with `inputs` written in, and the grade input set to `grade` unless empty.
std::unique_ptr<SheetInstance> instanceWith(Sheet const& sheet, CellTexts const& inputs,
                                            std::string const& gradeInput, std::string const& grade) {
    std::unique_ptr<SheetInstance> instance = sheet.create();
    for (auto const& [cell, value] : inputs) instance->set(cell, value);
    if (!grade.empty()) instance->set(gradeInput, grade);
    return instance;
}

}  // namespace

std::string catalogueFeature(std::string const& part, std::string const& feature) {
    try {
        PRSMCommonParamControlData const& catalogue = PRSMCommonParamControlData::getGlobal();
        std::string name = catalogue.getDeviceAliasOrError(part);
        if (name == kStringNotSet) name = part;
        std::string value = catalogue.getFeatureOrError(name, feature);
        return value == kStringNotSet ? std::string() : value;
    } catch (...) {  // no catalogue: nothing to say
        return {};
    }
}

// Each sheet of the design (its blocks, its static sheet) that models another architecture than the part's.
std::string architectureMismatches(Design const& design) {
    std::string const* part = design.device.find("part");
    std::string const architecture = part ? catalogue::architectureOf(*part) : std::string();
    if (architecture.empty()) return {};
    std::string refused;
    auto check = [&](Block const& block, std::string const& pointer) {
        Sheet const* sheet = SheetRegistry::instance().find(block.model);
        std::string const& models = sheet ? sheet->design().architecture : architecture;
        if (models.empty() || models == architecture) return;
        refused += (refused.empty() ? "" : "\n") + design.source + ": " + pointer + ": block \"" +
                   block.name + "\": " + block.model + " is a " + models + " sheet; the design's part " +
                   *part + " is a " + architecture + " device";
    };
    for (Block const& block : design.blocks) check(block, block.pointer + "/model");
    if (design.staticSheet) check(*design.staticSheet, design.staticSheet->pointer + "/model");
    if (design.supplies) check(*design.supplies, design.supplies->pointer + "/model");
    if (design.decoupling) check(design.decoupling->sheet, design.decoupling->sheet.pointer + "/model");
    return refused;
}

std::string featureMismatch(SheetDesign const& declared, std::string const& part) {
    for (PartFeature const& required : declared.requiredFeatures) {
        std::string const has = catalogueFeature(part, required.feature);
        if (has.empty() ||
            std::find(required.values.begin(), required.values.end(), has) != required.values.end())
            continue;
        std::string wanted;
        for (std::string const& value : required.values) wanted += (wanted.empty() ? "" : " or ") + value;
        return "needs a part whose " + required.feature + " is " + wanted + "; " + part + " has " + has;
    }
    return {};
}

std::vector<std::string> voltageGradeMismatches(Sheet const& sheet, CellTexts const& inputs) {
    auto const grading = std::find_if(sheet.design().deviceInputs.begin(), sheet.design().deviceInputs.end(),
                                      [](auto const& entry) { return entry.second == "voltage_grade"; });
    if (grading == sheet.design().deviceInputs.end()) return {};
    std::string const& gradeInput = grading->first;
    std::unique_ptr<SheetInstance> const chosen = instanceWith(sheet, inputs, gradeInput, "");

    // The rails whose expected range the sheet reads from its own cells, with their voltages.
    std::vector<std::pair<CellInfo const*, double>> graded;
    for (auto const& entry : sheet.design().voltageInputs) {
        CellInfo const* info = sheet.findCell(entry.first);
        if (!info || !(namesCell(info->outside.low) || namesCell(info->outside.high))) continue;
        if (std::optional<double> const v = evaluated(*chosen, info->name)) graded.emplace_back(info, *v);
    }
    if (graded.empty()) return {};

    std::string const grade = chosen->evaluate(gradeInput);
    // Each grade's range per graded rail; none where its cells give no range.
    std::vector<std::pair<std::string, std::vector<std::optional<VoltageRange>>>> ranges;
    for (std::string const& candidate : validValueEntries(chosen->validValues(gradeInput))) {
        std::unique_ptr<SheetInstance> const instance = instanceWith(sheet, inputs, gradeInput, candidate);
        std::vector<std::optional<VoltageRange>> perRail;
        for (auto const& [info, v] : graded) {
            std::optional<double> const low = evaluated(*instance, info->outside.low);
            std::optional<double> const high = evaluated(*instance, info->outside.high);
            bool const ranged = low && high && *low < *high;  // no row in the data: 0 .. 0, no range
            perRail.push_back(ranged ? std::optional<VoltageRange>(VoltageRange{*low, *high}) : std::nullopt);
        }
        ranges.emplace_back(candidate, std::move(perRail));
    }
    auto const own =
        std::find_if(ranges.begin(), ranges.end(), [&](auto const& entry) { return entry.first == grade; });
    if (own == ranges.end()) return {};  // a grade the sheet does not list: its validity check says so

    std::vector<std::string> mismatches;
    for (std::size_t i = 0; i < graded.size(); ++i) {
        std::optional<VoltageRange> const& mine = own->second[i];
        double const v = graded[i].second;
        if (!mine || mine->holds(v)) continue;
        std::string fitting;
        for (auto const& [other, perRail] : ranges)
            if (other != grade && perRail[i] && perRail[i]->holds(v))
                fitting += (fitting.empty() ? "" : ", ") + other + " (" + text(*perRail[i]) + ")";
        if (fitting.empty()) continue;  // outside every grade: the sheet's range warning says so
        mismatches.push_back("voltage grade " + grade + " does not match " + graded[i].first->name + " = " +
                             volts(v) + ": its range is " + text(*mine) + "; the voltage fits grade " +
                             fitting);
    }
    return mismatches;
}

std::vector<Warning> checkDevice(Design const& design, std::vector<std::string> const& rails,
                                 std::vector<double> const& voltage) {
    std::vector<Warning> warnings;
    if (std::string const* part = design.device.find("part")) {
        for (Block const& block : design.blocks) {
            Sheet const* sheet = SheetRegistry::instance().find(block.model);
            std::string const why = sheet ? featureMismatch(sheet->design(), *part) : std::string();
            if (!why.empty())
                warnings.push_back({block.name, "/device/part", "sheet " + block.model + " " + why});
        }
    }
    Sheet const* statics =
        design.staticSheet ? SheetRegistry::instance().find(design.staticSheet->model) : nullptr;
    if (statics == nullptr) return warnings;
    CellTexts inputs;  // the static sheet as the design sets it up: device, its own inputs, the rail voltages
    for (auto const& [cell, field] : statics->design().deviceInputs)
        if (std::string const* value = design.device.find(field)) inputs.emplace_back(cell, *value);
    for (Input const& input : design.staticSheet->inputs) inputs.emplace_back(input.cell, input.text);
    for (auto const& [cell, rail] : statics->design().voltageInputs) {
        auto const r = std::find(rails.begin(), rails.end(), rail);
        if (r != rails.end())
            inputs.emplace_back(cell, exactText(voltage[static_cast<std::size_t>(r - rails.begin())]));
    }
    try {
        for (std::string& message : voltageGradeMismatches(*statics, inputs))
            warnings.push_back({"", "/device/voltage_grade", std::move(message)});
    } catch (...) {  // the static sheet's data cannot be read or refuses an input: its own checks say so
    }
    return warnings;
}

}  // namespace prsm::design
