// Formulas of the wide-bank I/O PLL. Coefficients are "COMMON_DATA" entries in amperes, or in amperes per MHz
// for the "_pMHz" keys; each rail's current is summed per function, calibrated by the rail's factor and
// multiplied by the rail voltage, giving watts.
#include <prsm/models/talvex/PRSMTalvexX5PllModel.h>
#include <prsm/models/talvex/PRSMTalvexX5PllCells.h>

#include "ClockManagerFormulas.h"

using Model = PRSMTalvexX5PllModel;

namespace clocking = prsm::clocking;

namespace {

constexpr Model::Output kOutputs[] = {Model::Output::N0, Model::Output::N1, Model::Output::N2,
                                      Model::Output::N3};

}  // namespace

// VCCINTIO: control logic, the VCO's digital share, phase detector and input divider, the output and
// feedback counters and drivers, the PHY clock path, the wide-bank PHY's quadrature clock path and clock
// network (both at the PHY clock rate).
float Model::computeVccintioIntCurrent(Params& params, Data const& data) const {
    float const parts =
        calculateVccintioBaseCurrent(params, data) + calculateVccintioVcoCurrent(params, data) +
        calculateVccintioPfdClockCurrent(params, data) + calculateVccintioClockfboutCurrent(params, data) +
        calculateVccintioXiphyClkCurrent(params, data) + calculateVccintioClk0Clk90PathCurrent(params, data) +
        calculateVccintioClkNetworkX5phioCurrent(params, data);
    return clocking::railCurrent(*this, params, data, parts, kOutputs, &Model::calculateVccintioClkoutCurrent,
                                 Data::CommonDataKey::FUDGE_FACTOR_INT);
}
