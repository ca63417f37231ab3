// Formulas of the older architecture's static-power sheet.
//
// The rails' own leakage follows the rules both architectures share (LeakageFormulas.h, bound in the
// sheet's table); what is written here is what differs. There is no thermal step: every polynomial is
// taken at JUNCTION_TEMPERATURE itself, the memory stacks at JUNCTION_TEMPERATURE_HBMDRAM, and neither
// EFFECTIVE_THETAJ nor TOTAL_ACTIVE_POWER enters a leakage. Voltage scaling has the single-supply form
// only. The leaking blocks (block RAM, UltraRAM, I/O PHYs, transceiver quads, memory stacks, the video
// codec unit) add their currents to the rails they leak on; a rail at 0 V carries nothing.
#include <prsm/models/dravik/DravikStaticFormulas.h>
#include <prsm/models/dravik/PRSMDravikStaticModel.h>
#include <prsm/models/dravik/PRSMDravikStaticCells.h>

#include <prsm/framework/PRSMConfigHelpers.h>
#include <prsm/sheetfunc/PRSMHelperUtils.h>

#include <cstddef>
#include <string>
#include <string_view>

using Model = PRSMDravikStaticModel;
using Rail = Model::Rail;
using Block = Model::Block;
using PRSMHelperUtils::IFERROR;

namespace {

using Params = Model::Params;
using Data = Model::Data;

using prsm::leakage::deviceName;
using prsm::leakage::singleSupplyScaling;
using prsm::leakage::skuName;
using prsm::leakage::sumOfStaticPowers;
using prsm::leakage::vtCoefficient;

// The share of a block's leakage left in a power-gated state; 1 (no gating) without a row.
float gatedShare(Model const& model, Params& params, Data const& data, char const* state) {
    return IFERROR(data.getPowerGatingOrError(deviceName(model, params, data), state), 1.0f);
}

}  // namespace

// ---- Device, grades and bin ----

std::vector<std::string> Model::validListDeviceName(Params&, Data const& data) const {
    return PRSMHelperUtils::getCfgKeyVectorFromList(data.m_DeviceNames);
}

// BIN_NAMES keys cannot begin with a digit: speed grade "2" is keyed "S2".
std::string Model::computeSpeedGradeStr(Params& params, Data const& data) const {
    return "S" + getSpeedGrade(params, data);
}

// The bin of the grades, the empty string when they have no row.
std::string Model::computeSkuName(Params& params, Data const& data) const {
    return IFERROR(data.getBinNamesOrError(calculateSpeedGradeStr(params, data), getTempGrade(params, data)),
                   "");
}

float Model::defaultRail(Params& params, Data const& data, Rail rail) const {
    return IFERROR(data.getVoltageRangeOrError(getVoltageCorner(params, data), memberName(rail)), 0.0f);
}

// ---- A rail's own leakage (the other COMMON_<RAIL>_... cells are the shared rules) ----

float Model::computeCommonVtLeakage(Params& params, Data const& data, Rail rail) const {
    return prsm::leakage::leakageAt(*this, params, data, rail, getJunctionTemperature(params, data));
}

// A rail's own leakage is counted once.
float Model::computeCommonMultiplier(Params&, Data const&, Rail) const {
    return 1.0f;
}

// The factor has no default: a missing row throws, and only the worst process reads it.
float Model::computeCommonTotalPowerFactor(Params& params, Data const& data, Rail rail) const {
    return data.getTotalPowerFactor(deviceName(*this, params, data), memberName(rail));
}

// ---- A block's leakage (<BLOCK>_<RAIL>_...) ----

// A block with a temperature of its own (the memory stacks) leaks at it; every other block at the
// junction temperature.
float Model::computeVtLeakage(Params& params, Data const& data, Block block) const {
    BlockRow const& blockRow = row(block);
    float const t = blockRow.temperature ? (this->*blockRow.temperature)(params, data)
                                         : getJunctionTemperature(params, data);
    return prsm::leakage::leakageAt(*this, params, data, block, t);
}

float Model::computeVScaling(Params& params, Data const& data, Block block) const {
    float const c1 = calculateVC1(params, data, block);
    if (c1 == 0.0f) return 1.0f;
    return singleSupplyScaling(c1, calculateVC2(params, data, block), getRail(params, data, row(block).rail));
}

float Model::computeVoltBinning(Params& params, Data const& data, Block block) const {
    return prsm::leakage::voltBinning(*this, params, data, memberName(block), skuName(*this, params, data));
}

// The count or share of a block that leaks, by its row's rule: the used ones; the used block RAMs, a
// sleeping one leaking its gated share; the device's whole UltraRAM array (its coefficients are the
// array's), less what sleeps or idles with its gated share; the device's memory stacks against the
// reference stack; or one, for the blocks that are always powered.
float Model::computeMultiplier(Params& params, Data const& data, Block block) const {
    BlockRow const& blockRow = row(block);
    auto const used = [&] { return blockRow.count ? (this->*blockRow.count)(params, data) : 0.0f; };
    switch (blockRow.multiplier) {
        case BlockMultiplier::USED:
            return used();
        case BlockMultiplier::USED_GATED:
            return used() *
                   (1.0f - getBramAvgSleepRate(params, data) *
                               (1.0f - gatedShare(*this, params, data, "BRAM_SLEEP")));
        case BlockMultiplier::ARRAY_GATED:
            return 1.0f -
                   getUramAvgSleepRate(params, data) *
                       (1.0f - gatedShare(*this, params, data, "URAM_SLEEP")) -
                   getUramAvgInactiveCycles(params, data) *
                       (1.0f - gatedShare(*this, params, data, "URAM_INACTIVE"));
        case BlockMultiplier::STACKS:
            return IFERROR(data.getHbmScaleFactorsOrError(deviceName(*this, params, data)), 0.0f);
        case BlockMultiplier::ALWAYS:
            return 1.0f;
    }
    return 0.0f;
}

// A block not in use carries nothing: its coefficients are not even read (the product is 0).
float Model::computeStaticCurrent(Params& params, Data const& data, Block block) const {
    float const multiplier = calculateMultiplier(params, data, block);
    if (multiplier == 0.0f) return 0.0f;
    return calculateVtLeakage(params, data, block) * calculateVScaling(params, data, block) *
           calculateVoltBinning(params, data, block) * multiplier;
}

// ---- Rail outputs ----

// The rail's own leakage plus the blocks on it; nothing at 0 V (a NaN voltage computes as usual).
float Model::computeStaticCurrent(Params& params, Data const& data, Rail rail) const {
    if (getRail(params, data, rail) == 0.0f) return 0.0f;
    float total = calculateCommonStaticCurrent(params, data, rail);
    for (std::size_t i = 0; i < kBlockMembers; ++i) {
        Block const block = static_cast<Block>(i);
        if (row(block).rail == rail) total += calculateStaticCurrent(params, data, block);
    }
    return total;
}

// The video codec unit's share of VCCAUX and VCCPSPLL.
float Model::computeVcuVccauxStaticPower(Params& params, Data const& data) const {
    if (getVccaux(params, data) == 0.0f) return 0.0f;
    return getVccaux(params, data) * calculateStaticCurrent(params, data, Block::VCU_VCCAUX);
}

float Model::computeVcuVccpspllStaticPower(Params& params, Data const& data) const {
    if (getVccpspll(params, data) == 0.0f) return 0.0f;
    return getVccpspll(params, data) * calculateStaticCurrent(params, data, Block::VCU_VCCPSPLL);
}

// ---- Region totals ----

float Model::computePlStaticPower(Params& params, Data const& data) const {
    static constexpr Rail rails[] = {
        Rail::VCCINT,    Rail::VCCINTIO,   Rail::VCCBRAM,   Rail::VCCAUX,     Rail::VCCAUXIO,
        Rail::VCCINTGT,  Rail::VCCADC,     Rail::VCCINTAMS, Rail::VCCINTISP,  Rail::VCCSDFEC,
        Rail::VCCVCUINT, Rail::VCCO10,     Rail::VCCO12,    Rail::VCCO135,    Rail::VCCO15,
        Rail::VCCO18,    Rail::VCCO25,     Rail::VCCO33,    Rail::MGTAVCC,    Rail::MGTAVTT,
        Rail::MGTVCCAUX, Rail::MGTYAVCC,   Rail::MGTYAVTT,  Rail::MGTYVCCAUX, Rail::MGTFAVCC,
        Rail::MGTFAVTT,  Rail::MGTFVCCAUX, Rail::MGTMAVCC,  Rail::MGTMAVTT,   Rail::MGTMVCCAUX,
        Rail::ADCAVCC,   Rail::ADCAVCCAUX, Rail::DACAVCC,   Rail::DACAVCCAUX, Rail::DACAVTT};
    return sumOfStaticPowers(*this, params, data, rails);
}

float Model::computePssStaticPower(Params& params, Data const& data) const {
    static constexpr Rail rails[] = {
        Rail::VCCPSINTFP,   Rail::VCCPSINTLP,   Rail::VCCPSAUX,     Rail::VCCPSPLL,    Rail::VCCPSADC,
        Rail::VCCPSBATT,    Rail::VCCPSDDRPLL,  Rail::VCCPSINTDDR,  Rail::VCCOPSDDR12, Rail::VCCOPSIO0500,
        Rail::VCCOPSIO1501, Rail::VCCOPSIO2502, Rail::VCCOPSIO3503, Rail::VCCPSGTA,    Rail::VTTPSGTA};
    return sumOfStaticPowers(*this, params, data, rails);
}

float Model::computeHbmStaticPower(Params& params, Data const& data) const {
    static constexpr Rail rails[] = {Rail::VCCHBM, Rail::VCCIOHBM, Rail::VCCAUXHBM};
    return sumOfStaticPowers(*this, params, data, rails);
}

float Model::computeTotalStaticPower(Params& params, Data const& data) const {
    float total = 0.0f;
    total += calculatePlStaticPower(params, data);
    total += calculatePssStaticPower(params, data);
    total += calculateHbmStaticPower(params, data);
    return total;
}
