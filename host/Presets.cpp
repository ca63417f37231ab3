#include <prsm/host/Failures.h>
#include <prsm/host/HostError.h>
#include <prsm/host/Presets.h>
#include <prsm/host/Suggest.h>
#include <prsm/host/TextTable.h>

#include <memory>
#include <sstream>

namespace prsm::host {

namespace {

constexpr char kPresetSuffix[] = "Preset";
constexpr char kSelector[] = "PRESET";
constexpr char kDescription[] = "DESCRIPTION";

Sheet const& requirePresetSheet(Sheet const& sheet) {
    Sheet const* presets = findPresetSheet(sheet);
    if (presets == nullptr) throw HostError(kExitBadInput, "model " + sheet.name() + " has no presets");
    return *presets;
}

std::vector<std::string> splitChoices(std::string const& text) {
    std::vector<std::string> names;
    std::istringstream stream(text);
    for (std::string name; std::getline(stream, name, ',');)
        if (!name.empty()) names.push_back(name);
    return names;
}

std::vector<std::string> presetNames(Sheet const& presets) {
    try {
        return splitChoices(presets.create()->validValues(kSelector));
    } catch (...) {
        throw HostError(kExitDataFailure, "reading the presets of " + presets.name() +
                                              " failed: " + describeCurrentException());
    }
}

// An instance of the preset sheet with `preset` selected and calculated.
std::unique_ptr<SheetInstance> selectPreset(Sheet const& presets, std::string const& preset) {
    std::unique_ptr<SheetInstance> instance = presets.create();
    try {
        instance->set(kSelector, preset);
        instance->calculate();
    } catch (...) {
        throw HostError(kExitDataFailure, "reading preset " + preset + " of " + presets.name() +
                                              " failed: " + describeCurrentException());
    }
    return instance;
}

}  // namespace

Sheet const* findPresetSheet(Sheet const& sheet) {
    Sheet const* presets = SheetRegistry::instance().find(sheet.name() + kPresetSuffix);
    if (presets == nullptr || presets->findCell(kSelector) == nullptr) return nullptr;
    return presets;
}

std::vector<PresetInfo> listPresets(Sheet const& sheet) {
    Sheet const& presets = requirePresetSheet(sheet);
    bool const described = presets.findCell(kDescription) != nullptr;
    std::vector<PresetInfo> result;
    for (std::string const& name : presetNames(presets)) {
        std::string description;
        if (described) {
            try {
                description = selectPreset(presets, name)->evaluate(kDescription);
            } catch (HostError const&) {
                description.clear();  // listed without its line; `calc --preset` reports the failure
            }
        }
        result.push_back({name, description});
    }
    return result;
}

std::string renderPresets(std::vector<PresetInfo> const& presets) {
    std::vector<TextRow> rows;
    for (PresetInfo const& preset : presets) rows.push_back({preset.name, preset.description});
    return formatTable({"preset", "description"}, rows);
}

std::vector<Assignment> presetAssignments(Sheet const& sheet, std::string const& preset) {
    Sheet const& presets = requirePresetSheet(sheet);
    std::vector<std::string> const names = presetNames(presets);
    bool known = false;
    for (std::string const& name : names) known = known || name == preset;
    if (!known)
        throw HostError(kExitBadInput, "model " + sheet.name() + " has no preset " + preset +
                                           didYouMean(suggestNames(preset, names)) + "; `prsm presets " +
                                           sheet.name() + "` lists them all");

    std::unique_ptr<SheetInstance> const instance = selectPreset(presets, preset);
    std::vector<Assignment> assignments;
    try {
        for (CellInfo const& cell : sheet.cells()) {
            if (cell.category != CellCategory::UserInput) continue;
            CellInfo const* value = presets.findCell(cell.name);
            if (value == nullptr || value->category != CellCategory::ModelOutput) continue;
            assignments.push_back({cell.name, instance->get(cell.name), ValueKind::Text, "preset " + preset});
        }
    } catch (...) {
        throw HostError(kExitDataFailure, "reading preset " + preset + " of " + presets.name() +
                                              " failed: " + describeCurrentException());
    }
    return assignments;
}

}  // namespace prsm::host
