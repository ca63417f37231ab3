// Formulas of the test-only static sheet: I = I25 + SLOPE * (t - 25) on each rail, 0 when the rail is
// off, with t the junction temperature less HEATING degrees per watt of logic dynamic power. Each
// leaking block adds its count times its own I25 + SLOPE * (t - 25) (0 without a LEAKAGE row) to the
// rail its row names. A rail's maximum current is its MAX_CURRENT row, 0 (no limit) without one. Only
// VCCAUX has a power-up current: twice its leakage at 25 degC.
#include <prsm/framework/PRSMReservedValues.h>
#include <prsm/tests/design/PRSMTestLeakageModel.h>
#include <prsm/tests/design/PRSMTestLeakageCells.h>

#include <cstddef>
#include <string>
#include <string_view>

using Model = PRSMTestLeakageModel;

namespace {

// I25 + SLOPE * (t - 25) at the effective temperature.
float linear(Model const& model, Model::Params& params, Model::Data const& data, float i25, float slope) {
    return i25 + slope * (model.calculateEffectiveTemperature(params, data) - 25.0f);
}

// A rail's own leakage: its LEAKAGE row must be there (a missing one throws).
float railLeakage(Model const& model, Model::Params& params, Model::Data const& data, std::string_view rail) {
    std::string const device = model.getDeviceName(params, data);
    return linear(model, params, data, data.getLeakage(device, rail, "I25"),
                  data.getLeakage(device, rail, "SLOPE"));
}

// One instance of a block: 0 on a device without the block's LEAKAGE row.
float blockLeakage(Model const& model, Model::Params& params, Model::Data const& data, std::string_view key) {
    std::string const device = model.getDeviceName(params, data);
    float const i25 = data.getLeakageOrError(device, key, "I25");
    float const slope = data.getLeakageOrError(device, key, "SLOPE");
    if (i25 == prsm::kFloatNotSet || slope == prsm::kFloatNotSet) return 0.0f;
    return linear(model, params, data, i25, slope);
}

}  // namespace

float Model::computeEffectiveTemperature(Params& params, Data const& data) const {
    return getJunctionTemperature(params, data) -
           data.getHeating(getDeviceName(params, data)) * getLogicDynPower(params, data);
}

float Model::computeStaticCurrent(Params& params, Data const& data, Block block) const {
    BlockRow const& blockRow = row(block);
    int const count = (this->*blockRow.count)(params, data);
    if (count == 0) return 0.0f;
    return static_cast<float>(count) * blockLeakage(*this, params, data, blockRow.key);
}

// The rail's own leakage, then the blocks whose rows name the rail, in row order.
float Model::computeStaticCurrent(Params& params, Data const& data, Rail rail) const {
    if (getRail(params, data, rail) == 0.0f) return 0.0f;
    float total = railLeakage(*this, params, data, memberName(rail));
    for (std::size_t member = 0; member < kBlockMembers; ++member) {
        Block const block = static_cast<Block>(member);
        if (row(block).rail == rail) total += calculateStaticCurrent(params, data, block);
    }
    return total;
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
