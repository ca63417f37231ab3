#pragma once
// Checks of a design's device against the device catalogue and the static sheet's data, made once when
// the design is set up: a block whose sheet is meant for parts with another feature (the
// first-generation AI-engine sheet on a second-generation part), and a voltage grade that does not
// match the rail voltages. A part or a feature the catalogue does not know gives no warning.

#include <prsm/design/Design.h>
#include <prsm/design/Estimate.h>
#include <prsm/framework/PRSMSheetRegistry.h>

#include <string>
#include <utility>
#include <vector>

namespace prsm::design {

using CellTexts = std::vector<std::pair<std::string, std::string>>;  // cell name -> value as text

// FEATURE.<part>.<feature> of the device catalogue, the part's alias resolved; "" when the catalogue
// does not know the part or the feature, or cannot be read.
std::string catalogueFeature(std::string const& part, std::string const& feature);

// Why the design is refused for mixing architectures, one line per block or static sheet whose sheet
// models another architecture than the design's part ("d.json: /blocks/2/model: block "ps": TalvexPss is
// a TALVEX sheet; the design's part ZDM5100 is a DRAVIK device"); "" when none does, or when the
// catalogue does not know the part.
std::string architectureMismatches(Design const& design);

// Why the sheet does not apply to the part ("needs a part whose AIE is AIE; ZQVC2606 has AIE2"), or ""
// when it does or the catalogue does not say.
std::string featureMismatch(SheetDesign const& declared, std::string const& part);

// For a sheet with a voltage_grade device input (the static sheet): a message for each rail voltage input
// whose expected range the sheet reads from its cells ([warnings.outside]) and whose value lies outside
// the range of the grade the parameter set holds but within another grade's ("voltage grade LP does not
// match VCCINT = 0.8 V: its range is 0.665 .. 0.735 V; the voltage fits grade MP (0.76 .. 0.84 V)").
// `inputs` set up the parameter set; each grade (the grade input's valid values) is tried on a fresh one.
std::vector<std::string> voltageGradeMismatches(Sheet const& sheet, CellTexts const& inputs);

// The warnings about the design's device: each block whose sheet needs a feature the part lacks, and
// each rail whose voltage (`rails`, `voltage`: the engine's rails and their settled voltages) lies
// outside the range of the design's voltage grade but within another grade's (voltageGradeMismatches
// of the static sheet).
std::vector<Warning> checkDevice(Design const& design, std::vector<std::string> const& rails,
                                 std::vector<double> const& voltage);

}  // namespace prsm::design
