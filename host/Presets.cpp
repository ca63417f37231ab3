#include <prsm/framework/PRSMSheetPresets.h>
#include <prsm/host/Failures.h>
#include <prsm/host/HostError.h>
#include <prsm/host/Presets.h>
#include <prsm/host/Suggest.h>
#include <prsm/host/TextTable.h>

#include <algorithm>

namespace prsm::host {

namespace {

Sheet const& requirePresetSheet(Sheet const& sheet) {
    Sheet const* presets = findPresetSheet(sheet);
    if (presets == nullptr) throw HostError(kExitBadInput, "model " + sheet.name() + " has no presets");
    return *presets;
}

// Runs `read`; a failure inside becomes HostError(kExitDataFailure) that says what was being read.
template <typename Read>
auto readingPresets(std::string const& what, Read read) {
    try {
        return read();
    } catch (...) {
        throw HostError(kExitDataFailure, "reading " + what + " failed: " + describeCurrentException());
    }
}

}  // namespace

std::vector<PresetInfo> listPresets(Sheet const& sheet) {
    Sheet const& presets = requirePresetSheet(sheet);
    std::vector<PresetInfo> result;
    for (std::string const& name :
         readingPresets("the presets of " + presets.name(), [&] { return presetNames(presets); })) {
        std::string description;
        try {
            description = presetDescription(presets, name);
        } catch (...) {
            description.clear();  // listed without its line; `calc --preset` reports the failure
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
    std::vector<std::string> const names =
        readingPresets("the presets of " + presets.name(), [&] { return presetNames(presets); });
    if (std::find(names.begin(), names.end(), preset) == names.end())
        throw HostError(kExitBadInput, "model " + sheet.name() + " has no preset " + preset +
                                           didYouMean(suggestNames(preset, names)) + "; `prsm presets " +
                                           sheet.name() + "` lists them all");

    std::vector<Assignment> assignments;
    for (auto const& [cell, text] : readingPresets("preset " + preset + " of " + presets.name(),
                                                   [&] { return presetInputs(sheet, presets, preset); }))
        assignments.push_back({cell, text, ValueKind::Text, "preset " + preset});
    return assignments;
}

}  // namespace prsm::host
