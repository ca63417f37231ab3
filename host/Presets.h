#pragma once
// The presets of a sheet for `prsm presets` and `prsm calc --preset` (framework/PRSMSheetPresets.h),
// their failures turned into the host's errors.

#include <prsm/framework/PRSMSheetRegistry.h>
#include <prsm/host/Inputs.h>

#include <string>
#include <vector>

namespace prsm::host {

struct PresetInfo {
    std::string name;
    std::string description;  // empty when the preset sheet has none
};

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
