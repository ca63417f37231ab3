// Formulas of the test-only design block. MODE "BROKEN" makes the calculation throw, as a sheet does
// when its data has no row for the block.
#include <prsm/framework/PRSMException.h>
#include <prsm/tests/design/PRSMTestLoadModel.h>
#include <prsm/tests/design/PRSMTestLoadCells.h>

using Model = PRSMTestLoadModel;

bool Model::isValidMode(Params& params, Data const& data) const {
    std::string const mode = getMode(params, data);
    return mode == "ON" || mode == "OFF" || mode == "BROKEN";
}

// CAPACITANCE in pF, CLOCK_FREQ in MHz: C * V^2 * f in W.
float Model::computeCorePower(Params& params, Data const& data) const {
    std::string const mode = getMode(params, data);
    if (mode == "BROKEN") throw PRSMException("no characterisation for mode BROKEN", "computeCorePower");
    if (mode == "OFF") return 0.0f;
    float const v = getVccint(params, data);
    return getCapacitance(params, data) * 1e-12f * v * v * getClockFreq(params, data) * 1e6f;
}

float Model::computeAuxCurrent(Params& params, Data const& data) const {
    return getAuxMilliamps(params, data) / 1000.0f;
}
