// Formulas of the processing-system PLL. Coefficients are "COMMON_DATA" entries in amperes, or in
// amperes per MHz for the "_pMHz" keys; each rail's current is summed per function and calibrated by the
// rail's factor. No voltages: the outputs are currents in amperes.
#include <prsm/models/talvex/PRSMTalvexPspllModel.h>
#include <prsm/models/talvex/PRSMTalvexPspllCells.h>

#include <climits>
#include <cmath>

#include "ClockManagerFormulas.h"

using Model = PRSMTalvexPspllModel;

namespace clocking = prsm::clocking;

// The output is the VCO divided by 2^CLKOUT_DIVIDE_EXP. An exponent outside 0..3 is reported invalid and
// still evaluated as a power of two (a negative one multiplies).
float Model::computeClockout(Params& params, Data const& data) const {
    int const exponent = getClkoutDivideExp(params, data);
    return std::ldexp(calculateFvco(params, data), exponent == INT_MIN ? INT_MAX : -exponent);
}

std::vector<std::string> Model::validListClkoutDivideExp(Params&, Data const&) const {
    return {"0", "1", "2", "3"};
}

// VCC_AUX: regulator and charge pump, and the VCO.
float Model::computeVccAuxBaseCurrent(Params&, Data const& data) const {
    return data.getCommonData(Data::CommonDataKey::IVCCAUX_REGULATOR) +
           data.getCommonData(Data::CommonDataKey::IVCCAUX_CHARGE_PUMP);
}

float Model::computeVccAuxCurrent(Params& params, Data const& data) const {
    return data.getCommonData(Data::CommonDataKey::FUDGE_FACTOR_AUX) *
           (calculateVccAuxBaseCurrent(params, data) + calculateVccAuxVcoCurrent(params, data));
}

// VCCINT: control logic, the VCO's digital share and feedback divider (both at the VCO rate), the phase
// detector and reference divider, and the output divider and driver.
float Model::computeVccintBaseCurrent(Params&, Data const& data) const {
    return data.getCommonData(Data::CommonDataKey::IVCCINT_CTRL_LOGIC);
}

// The divider's first stage toggles at the VCO rate whatever the exponent; the driver at the output rate.
float Model::computeVccintClockoutCurrent(Params& params, Data const& data) const {
    return data.getCommonData(Data::CommonDataKey::IVCCINT_OUTPUT_COUNTERS_pMHz) *
               calculateFvco(params, data) +
           data.getCommonData(Data::CommonDataKey::IVCCINT_OUTPUT_DRIVER_pMHz) *
               calculateClockout(params, data);
}

float Model::computeVccintCurrent(Params& params, Data const& data) const {
    return data.getCommonData(Data::CommonDataKey::FUDGE_FACTOR_INT) *
           (calculateVccintBaseCurrent(params, data) + calculateVccintVcoCurrent(params, data) +
            calculateVccintPfdClockCurrent(params, data) + calculateVccintClockoutCurrent(params, data));
}
