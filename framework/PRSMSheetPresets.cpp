#include <prsm/framework/PRSMSheetPresets.h>

#include <algorithm>
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
    std::string const list = presets.create()->validValues(kSelector);
    std::vector<std::string> names;
    for (std::size_t start = 0; start <= list.size();) {
        std::size_t const end = std::min(list.find(',', start), list.size());
        if (end > start) names.push_back(list.substr(start, end - start));
        start = end + 1;
    }
    return names;
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
