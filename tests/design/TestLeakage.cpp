// Formulas of the test-only static sheet: I = I25 + SLOPE * (t - 25) on each rail, 0 when the rail is
// off, with t the junction temperature less HEATING degrees per watt of logic dynamic power. A rail's
// maximum current is its MAX_CURRENT row, 0 (no limit) without one. Only VCCAUX has a power-up current:
// twice its leakage at 25 degC.
#include <prsm/framework/PRSMReservedValues.h>
#include <prsm/tests/design/PRSMTestLeakageModel.h>
#include <prsm/tests/design/PRSMTestLeakageCells.h>

using Model = PRSMTestLeakageModel;

namespace {

float leakage(Model const& model, Model::Params& params, Model::Data const& data, char const* rail,
              float volts) {
    if (volts == 0.0f) return 0.0f;
    std::string const device = model.getDeviceName(params, data);
    float const t = model.calculateEffectiveTemperature(params, data);
    return data.getLeakage(device, rail, "I25") + data.getLeakage(device, rail, "SLOPE") * (t - 25.0f);
}

}  // namespace

float Model::computeEffectiveTemperature(Params& params, Data const& data) const {
    return getJunctionTemperature(params, data) -
           data.getHeating(getDeviceName(params, data)) * getLogicDynPower(params, data);
}

float Model::computeVccintStaticCurrent(Params& params, Data const& data) const {
    return leakage(*this, params, data, "VCCINT", getVccint(params, data));
}

float Model::computeVccauxStaticCurrent(Params& params, Data const& data) const {
    return leakage(*this, params, data, "VCCAUX", getVccaux(params, data));
}

float Model::computeLogicStaticPower(Params& params, Data const& data) const {
    return getVccint(params, data) * calculateVccintStaticCurrent(params, data) +
           getVccaux(params, data) * calculateVccauxStaticCurrent(params, data);
}

float Model::computeTotalStaticPower(Params& params, Data const& data) const {
    return calculateLogicStaticPower(params, data);
}

float Model::computeVccintMaxCurrent(Params& params, Data const& data) const {
    float const limit = data.getMaxCurrentOrError(getDeviceName(params, data), "VCCINT");
    return limit == prsm::kFloatNotSet ? 0.0f : limit;
}

float Model::computeVccauxMaxCurrent(Params& params, Data const& data) const {
    float const limit = data.getMaxCurrentOrError(getDeviceName(params, data), "VCCAUX");
    return limit == prsm::kFloatNotSet ? 0.0f : limit;
}

float Model::computeVccauxPowerupCurrent(Params& params, Data const& data) const {
    if (getVccaux(params, data) == 0.0f) return 0.0f;
    return 2.0f * data.getLeakage(getDeviceName(params, data), "VCCAUX", "I25");
}
