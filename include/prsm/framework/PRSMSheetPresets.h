#pragma once
// Presets: ready-made input sets of a sheet, held by a companion sheet registered under the sheet's name
// followed by "Preset" (TalvexPss -> TalvexPssPreset). The companion's string input PRESET selects one
// set; each of its outputs that carries the name of an input of the sheet holds that input's value, and
// an output DESCRIPTION, when present, says what the preset models. Nothing here names a sheet; the
// `prsm` host and design files both apply presets through these functions.

#include <prsm/framework/PRSMSheetRegistry.h>

#include <string>
#include <utility>
#include <vector>

namespace prsm {

// The companion preset sheet of `sheet`, or nullptr when it has none.
Sheet const* findPresetSheet(Sheet const& sheet);

// The presets of a preset sheet, in the order of its valid values. These and the functions below load
// the preset sheet's data, and throw as a sheet instance does when that fails.
std::vector<std::string> presetNames(Sheet const& presets);

// What a preset models (its DESCRIPTION); empty when the preset sheet has no description.
std::string presetDescription(Sheet const& presets, std::string const& preset);

// The inputs of `sheet` that one of the presets (presetNames) sets: input name -> value as the cell's
// text, in the sheet's input order.
std::vector<std::pair<std::string, std::string>> presetInputs(Sheet const& sheet, Sheet const& presets,
                                                              std::string const& preset);

}  // namespace prsm
