#include <prsm/framework/PRSMSheetPresets.h>
#include <prsm/framework/PRSMValueList.h>

#include <memory>

namespace prsm {

namespace {

constexpr char kPresetSuffix[] = "Preset";
constexpr char kSelector[] = "PRESET";
constexpr char kDescription[] = "DESCRIPTION";

// An instance of the preset sheet with `preset` selected and calculated.
std::unique_ptr<SheetInstance> selectPreset(Sheet const& presets, std::string const& preset) {
    std::unique_ptr<SheetInstance> instance = presets.create();
    instance->set(kSelector, preset);
    instance->calculate();
    return instance;
}

}  // namespace

Sheet const* findPresetSheet(Sheet const& sheet) {
    Sheet const* presets = SheetRegistry::instance().find(sheet.name() + kPresetSuffix);
    if (presets == nullptr || presets->findCell(kSelector) == nullptr) return nullptr;
    return presets;
}

std::vector<std::string> presetNames(Sheet const& presets) {
    return validValueEntries(presets.create()->validValues(kSelector));
}

std::string presetDescription(Sheet const& presets, std::string const& preset) {
    if (presets.findCell(kDescription) == nullptr) return std::string();
    return selectPreset(presets, preset)->evaluate(kDescription);
}

std::vector<std::pair<std::string, std::string>> presetInputs(Sheet const& sheet, Sheet const& presets,
                                                              std::string const& preset) {
    std::unique_ptr<SheetInstance> const instance = selectPreset(presets, preset);
    std::vector<std::pair<std::string, std::string>> inputs;
    for (CellInfo const& cell : sheet.cells()) {
        if (cell.category != CellCategory::UserInput) continue;
        CellInfo const* value = presets.findCell(cell.name);
        if (value == nullptr || value->category != CellCategory::ModelOutput) continue;
        inputs.emplace_back(cell.name, instance->get(cell.name));
    }
    return inputs;
}

}  // namespace prsm
