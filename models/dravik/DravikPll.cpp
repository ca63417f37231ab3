// Formulas of the older architecture's PLL: its frequency chain, limits, currents and powers are the
// clock managers' shared ones (DravikClockManagerFormulas.h); what is left here is the VCCINT sum and
// the validity rules that name its own outputs.
#include <prsm/models/dravik/PRSMDravikPllModel.h>
#include <prsm/models/dravik/PRSMDravikPllCells.h>

#include "DravikClockManagerFormulas.h"

using Model = PRSMDravikPllModel;

namespace clocking = prsm::clocking;

namespace {

constexpr Model::Output kOutputs[] = {Model::Output::N0, Model::Output::N1};

}  // namespace

float Model::computeVccintIntCurrent(Params& params, Data const& data) const {
    float const parts = calculateVccintBaseCurrent(params, data) +
                        calculateVccintPfdClockCurrent(params, data) +
                        calculateVccintClockfboutCurrent(params, data);
    return clocking::intCurrent(*this, params, data, parts, kOutputs);
}

float Model::computeTotalPwr(Params& params, Data const& data) const {
    return calculateVccintPwr(params, data) + calculateVccauxPwr(params, data);
}

bool Model::isValidInstanceCount(Params& params, Data const& data) const {
    return clocking::instanceCountValid(*this, params, data, Data::DeviceResourcesKey::DEFAULT_PLLS, "PLLS");
}
bool Model::isValidInputFrequency(Params& params, Data const& data) const {
    return clocking::inputFrequencyValid(*this, params, data);
}
bool Model::isValidDCounter(Params& params, Data const& data) const {
    return clocking::dCounterValid(*this, params, data);
}
bool Model::isValidMCounter(Params& params, Data const& data) const {
    return clocking::mCounterValid(*this, params, data);
}
bool Model::isValidClkout0Divide(Params& params, Data const& data) const {
    return clocking::clkoutDivideValid(*this, params, data, Output::N0);
}
bool Model::isValidClkout1Divide(Params& params, Data const& data) const {
    return clocking::clkoutDivideValid(*this, params, data, Output::N1);
}
