// Formulas of the wide-bank I/O PLL. Coefficients are "COMMON_DATA" entries in amperes, or in amperes per MHz
// for the "_pMHz" keys; each rail's current is summed per function, calibrated by the rail's factor and
// multiplied by the rail voltage, giving watts.
#include <prsm/models/talvex/PRSMTalvexX5PllModel.h>

#include "ClockManagerFormulas.h"

using Model = PRSMTalvexX5PllModel;

namespace clocking = prsm::clocking;

namespace {

constexpr Model::Output kOutputs[] = {Model::Output::N0, Model::Output::N1, Model::Output::N2, Model::Output::N3};

}  // namespace

// VCCAUX: regulator and charge pump, the VCO, and the buffer that drives the PHY clock.
float Model::computeVccAuxBaseCurrent(Params&, Data const& data) const {
    return data.getCommonData("IVCCAUX_REGULATOR") + data.getCommonData("IVCCAUX_CHARGE_PUMP");
}

float Model::computeVccauxIntCurrent(Params& params, Data const& data) const {
    return data.getCommonData("FUDGE_FACTOR_AUX") *
           (calculateVccAuxBaseCurrent(params, data) + calculateVccAuxVcoCurrent(params, data) +
            calculateVccAuxXiphyClockCurrent(params, data));
}

// VCCINTIO: control logic, the VCO's digital share, phase detector and input divider, the output and
// feedback counters and drivers, the PHY clock path, and the wide-bank PHY's quadrature clock path and
// clock network, both at the PHY clock rate.
float Model::computeVccintioBaseCurrent(Params&, Data const& data) const {
    return data.getCommonData("IVCCINTIO_CTRL_LOGIC");
}

float Model::computeVccintioIntCurrent(Params& params, Data const& data) const {
    float const parts = calculateVccintioBaseCurrent(params, data) +
                        calculateVccintioVcoCurrent(params, data) +
                        calculateVccintioPfdClockCurrent(params, data) +
                        calculateVccintioClockfboutCurrent(params, data) +
                        calculateVccintioXiphyClkCurrent(params, data) +
                        calculateVccintioClk0Clk90PathCurrent(params, data) +
                        calculateVccintioClkNetworkX5phioCurrent(params, data);
    return clocking::railCurrent(*this, params, data, parts, kOutputs, &Model::calculateVccintioClkoutCurrent,
                                 "FUDGE_FACTOR_INT");
}

float Model::computeVccauxPwr(Params& params, Data const& data) const {
    return calculateVccauxIntCurrent(params, data) * getVccaux(params, data);
}

float Model::computeVccintioPwr(Params& params, Data const& data) const {
    return calculateVccintioIntCurrent(params, data) * getVccintio(params, data);
}
