#pragma once
// The module board's regulator view: each output the board's table declares, named after its part and
// the rail it makes, loaded with what it feeds downstream, and with its dissipation and margin. The
// board sheet's own cells give the figures a regulator has on its own; the topology ("fed_from") turns
// them into the view.

#include <prsm/design/Estimate.h>
#include <prsm/framework/PRSMSheetDesign.h>

#include <vector>

namespace prsm::design {

// What the board sheet gave for one declared regulator; NaN where it declares no cell.
struct RegulatorReadings {
    double load;
    double efficiency;
    double loss;
    double overLimit;
    double inputVoltage;  // the input cell it is fed from; NaN when it is fed from another regulator
};

// One row per declared regulator, in the table's order (`read` in the same order):
// - load: its own load, plus what each regulator it feeds draws (an LDO its load, a switching one its
//   input power over the feeding voltage), unless its load cell already holds those;
// - loss: an LDO's (V_in - V_out) * load; a buck's loss cell, else V_out * load * (1/efficiency - 1);
// - margin: rating - load; NaN without a rating.
std::vector<RegulatorResult> regulatorView(std::vector<BoardRegulator> const& declared,
                                           std::vector<RegulatorReadings> const& read);

// "DA9062 LDO2 (VCC_PS_1V80)": the name with blanks for underscores, then the rail it makes.
std::string regulatorLabel(BoardRegulator const& declared);

}  // namespace prsm::design
