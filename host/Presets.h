#pragma once
// Presets: ready-made input sets of a sheet, held by a companion sheet registered under the sheet's name
// followed by "Preset" (TalvexPss -> TalvexPssPreset). The companion's string input PRESET selects one
// set; each of its outputs that carries the name of an input of the sheet holds that input's value, and
// an output DESCRIPTION, when present, says what the preset models. Nothing here names a sheet.

#include <prsm/framework/PRSMSheetRegistry.h>
#include <prsm/host/Inputs.h>

#include <string>
#include <vector>

namespace prsm::host {

struct PresetInfo {
    std::string name;
    std::string description;  // empty when the preset sheet has none
};

// The companion preset sheet of `sheet`, or nullptr.
Sheet const* findPresetSheet(Sheet const& sheet);

// Every preset of the sheet, in the order of the preset sheet's valid values. Throws
// HostError(kExitBadInput) when the sheet has no presets, HostError(kExitDataFailure) when the preset
// table cannot be read.
std::vector<PresetInfo> listPresets(Sheet const& sheet);

// The presets as a table of name and description, for `prsm presets`.
std::string renderPresets(std::vector<PresetInfo> const& presets);

// The inputs one preset sets on the sheet, as assignments from "preset NAME" in the sheet's input order.
// Throws HostError(kExitBadInput) for a sheet without presets or an unknown preset (naming the close
// ones), HostError(kExitDataFailure) when the preset cannot be read.
std::vector<Assignment> presetAssignments(Sheet const& sheet, std::string const& preset);

}  // namespace prsm::host
