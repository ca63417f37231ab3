// Formulas of the I/O-bank PLL. Coefficients are "COMMON_DATA" entries in amperes, or in amperes per MHz
// for the "_pMHz" keys; each rail's current is summed per function, calibrated by the rail's factor and
// multiplied by the rail voltage, giving watts.
#include <prsm/models/talvex/PRSMTalvexXpllModel.h>
#include <prsm/models/talvex/PRSMTalvexXpllCells.h>

#include "ClockManagerFormulas.h"

using Model = PRSMTalvexXpllModel;

namespace clocking = prsm::clocking;

namespace {

constexpr Model::Output kOutputs[] = {Model::Output::N0, Model::Output::N1, Model::Output::N2,
                                      Model::Output::N3};

}  // namespace

// VCCINTIO: control logic, the VCO's digital share, phase detector and input divider, the output and
// feedback counters and drivers, the PHY clock path.
float Model::computeVccintioIntCurrent(Params& params, Data const& data) const {
    float const parts =
        calculateVccintioBaseCurrent(params, data) + calculateVccintioVcoCurrent(params, data) +
        calculateVccintioPfdClockCurrent(params, data) + calculateVccintioClockfboutCurrent(params, data) +
        calculateVccintioXiphyClkCurrent(params, data);
    return clocking::railCurrent(*this, params, data, parts, kOutputs, &Model::calculateVccintioClkoutCurrent,
                                 Data::CommonDataKey::FUDGE_FACTOR_INT);
}
