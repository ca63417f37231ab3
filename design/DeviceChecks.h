#pragma once
// Checks of a design's device against the device catalogue and the static sheet's data, made once when
// the design is set up: a block whose sheet is meant for parts with another feature (the
// first-generation AI-engine sheet on a second-generation part), and a voltage grade that does not
// match the rail voltages. A part or a feature the catalogue does not know gives no warning.

#include <prsm/design/Design.h>
#include <prsm/design/Estimate.h>
#include <prsm/framework/PRSMSheetRegistry.h>

#include <string>
#include <vector>

namespace prsm::design {

// FEATURE.<part>.<feature> of the device catalogue, the part's alias resolved; "" when the catalogue
// does not know the part or the feature, or cannot be read.
std::string catalogueFeature(std::string const& part, std::string const& feature);

// Why the sheet does not apply to the part ("needs a part whose AIE is AIE; ZQVC2606 has AIE2"), or ""
// when it does or the catalogue does not say.
std::string featureMismatch(SheetDesign const& declared, std::string const& part);

// The warnings about the design's device: each block whose sheet needs a feature the part lacks, and
// each rail whose voltage (`rails`, `voltage`: the engine's rails and their settled voltages) lies
// outside the range of the design's voltage grade but within another grade's. The grades' ranges are
// the static sheet's: the bounds of its rail inputs' expected ranges ([warnings.outside]) that name
// cells, evaluated under each value of its voltage_grade input.
std::vector<Warning> checkDevice(Design const& design, std::vector<std::string> const& rails,
                                 std::vector<double> const& voltage);

}  // namespace prsm::design
