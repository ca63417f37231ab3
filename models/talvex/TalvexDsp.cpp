// Formulas of the DSP sheet. Every part of a block is a switched capacitance: pF x MHz x V^VPOW x 0.001
// gives one block's figure in mW, and DSP_POWER, a further 0.001 on the instance total, is in W. Data
// bits switch at CLOCK_FREQ x TOGGLE_RATE transitions per microsecond, half of that in full cycles
// (DATA_FREQ); register clock pins and the slice's clock spine cycle once per clock.
#include <prsm/models/talvex/PRSMTalvexDspModel.h>
#include <prsm/models/talvex/PRSMTalvexDspCells.h>

#include <prsm/sheetfunc/PRSMHelperUtils.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <string>
#include <vector>

using PRSMHelperUtils::IFERROR;
using Model = PRSMTalvexDspModel;
using Data = Model::Data;

namespace {

// A lookup that falls back to 0 when the mode or the key has no row.
int modeWidth(Model const& model, Model::Params& params, Data const& data, std::string_view key) {
    return IFERROR(data.getModeWidthOrError(model.refDspMode(params, data), key), 0);
}

int modeCount(Model const& model, Model::Params& params, Data const& data, std::string_view key) {
    return IFERROR(data.getModeCountOrError(model.refDspMode(params, data), key), 0);
}

float modeCap(Model const& model, Model::Params& params, Data const& data, std::string_view key) {
    return IFERROR(data.getModeCapOrError(model.refDspMode(params, data), key), 0.0f);
}

float sliceCap(Data const& data, Data::SliceCapKey key) {
    return IFERROR(data.getSliceCapOrError(key), 0.0f);
}

bool isYes(std::string_view choice) {
    return choice == "YES";
}

}  // namespace

// ---- Operand widths: each mode's own range -----------------------------------------------------------

int Model::defaultAWidth(Params& params, Data const& data) const {
    return modeWidth(*this, params, data, "A_MAX");
}
int Model::defaultBWidth(Params& params, Data const& data) const {
    return modeWidth(*this, params, data, "B_MAX");
}

float Model::computeGetMinAWidth(Params& params, Data const& data) const {
    return static_cast<float>(modeWidth(*this, params, data, "A_MIN"));
}
float Model::computeGetMaxAWidth(Params& params, Data const& data) const {
    return static_cast<float>(modeWidth(*this, params, data, "A_MAX"));
}
float Model::computeGetMinBWidth(Params& params, Data const& data) const {
    return static_cast<float>(modeWidth(*this, params, data, "B_MIN"));
}
float Model::computeGetMaxBWidth(Params& params, Data const& data) const {
    return static_cast<float>(modeWidth(*this, params, data, "B_MAX"));
}

bool Model::isValidAWidth(Params& params, Data const& data) const {
    float const width = static_cast<float>(getAWidth(params, data));
    return width >= calculateGetMinAWidth(params, data) && width <= calculateGetMaxAWidth(params, data);
}
bool Model::isValidBWidth(Params& params, Data const& data) const {
    float const width = static_cast<float>(getBWidth(params, data));
    return width >= calculateGetMinBWidth(params, data) && width <= calculateGetMaxBWidth(params, data);
}

// A mode without a pre-adder (a width of 0) offers only "NO".
std::vector<std::string> Model::validListUsePreadder(Params& params, Data const& data) const {
    if (modeWidth(*this, params, data, "PREADD") > 0) return data.getDropdownLists("YES_NO");
    return {"NO"};
}

// ---- Bits of each part -------------------------------------------------------------------------------

int Model::computeModeSlices(Params& params, Data const& data) const {
    return modeCount(*this, params, data, "SLICES");
}

// Every real product of the mode is an A x B array of partial-product bits.
float Model::computeProductBits(Params& params, Data const& data) const {
    return static_cast<float>(modeCount(*this, params, data, "PRODUCTS")) *
           static_cast<float>(getAWidth(params, data)) * static_cast<float>(getBWidth(params, data));
}

// Each slice's pre-adder takes A, up to the pre-adder's own width.
float Model::computePreaddBits(Params& params, Data const& data) const {
    if (!isYes(refUsePreadder(params, data))) return 0.0f;
    int const bits = std::min(getAWidth(params, data), modeWidth(*this, params, data, "PREADD"));
    return static_cast<float>(calculateModeSlices(params, data)) * static_cast<float>(bits);
}

int Model::computeAccBits(Params& params, Data const& data) const {
    return modeWidth(*this, params, data, "ACC");
}

// A register level holds both operands (or the product, as wide) in every slice of the block.
float Model::computeStageBits(Params& params, Data const& data) const {
    return static_cast<float>(calculateModeSlices(params, data)) *
           (static_cast<float>(getAWidth(params, data)) + static_cast<float>(getBWidth(params, data)));
}

int Model::computeCascadePorts(Params& params, Data const& data) const {
    std::string_view const cascade = refCascade(params, data);
    if (cascade == "IN_OUT") return 2;
    return cascade == "IN" || cascade == "OUT" ? 1 : 0;
}

// ---- Capacitance-frequency products ---------------------------------------------------------------------

float Model::computeDataFreq(Params& params, Data const& data) const {
    return getClockFreq(params, data) * getToggleRate(params, data) * 0.5f;
}

float Model::computeMultCapFreq(Params& params, Data const& data) const {
    return calculateProductBits(params, data) * modeCap(*this, params, data, "MULT") *
           calculateDataFreq(params, data);
}

float Model::computePreaddCapFreq(Params& params, Data const& data) const {
    return calculatePreaddBits(params, data) * sliceCap(data, Data::SliceCapKey::PREADD) *
           calculateDataFreq(params, data);
}

float Model::computeAccCapFreq(Params& params, Data const& data) const {
    if (!isYes(refUseAccumulator(params, data))) return 0.0f;
    return static_cast<float>(calculateAccBits(params, data)) * modeCap(*this, params, data, "ACC") *
           calculateDataFreq(params, data);
}

// Data bits switch with the data; every register bit's clock pin cycles every clock.
float Model::computeRegCapFreq(Params& params, Data const& data) const {
    float const perBit = sliceCap(data, Data::SliceCapKey::REG_DATA) * calculateDataFreq(params, data) +
                         sliceCap(data, Data::SliceCapKey::REG_CLOCK) * getClockFreq(params, data);
    return static_cast<float>(getPipelineStages(params, data)) * calculateStageBits(params, data) * perBit;
}

// A cascade port carries the accumulator's width to or from the neighbouring slice.
float Model::computeCascadeCapFreq(Params& params, Data const& data) const {
    return static_cast<float>(calculateCascadePorts(params, data)) * static_cast<float>(calculateAccBits(params, data)) *
           sliceCap(data, Data::SliceCapKey::CASCADE) * calculateDataFreq(params, data);
}

// A slice without registers is combinational: its clock spine stays off.
float Model::computeClockCapFreq(Params& params, Data const& data) const {
    if (getPipelineStages(params, data) <= 0) return 0.0f;
    return static_cast<float>(calculateModeSlices(params, data)) * sliceCap(data, Data::SliceCapKey::CLOCK) *
           getClockFreq(params, data);
}

// ---- Components: capacitance-frequency product x V^VPOW x 0.001 x device scale -------------------------

// A file without VPOW keeps the square law of dynamic power.
float Model::computeVoltageFactor(Params& params, Data const& data) const {
    return std::pow(getVccint(params, data), IFERROR(data.getSliceCapOrError(Data::SliceCapKey::VPOW), 2.0f));
}

float Model::computeVccintScale(Params& params, Data const& data) const {
    return IFERROR(data.getBlockPowerScaleOrError(refDevice(params, data), "DSP_VCCINT"),
                   IFERROR(data.getBlockPowerScaleOrError(Data::BlockPowerScaleKey::DEFAULT_DSP_VCCINT), 1.0f));
}

namespace {

float component(Model const& model, Model::Params& params, Data const& data, float capFreq) {
    return capFreq * model.derivedVoltageFactor(params, data) * 0.001f * model.calculateVccintScale(params, data);
}

}  // namespace

float Model::computeMultComponent(Params& params, Data const& data) const {
    return component(*this, params, data, calculateMultCapFreq(params, data));
}
float Model::computePreaddComponent(Params& params, Data const& data) const {
    return component(*this, params, data, calculatePreaddCapFreq(params, data));
}
float Model::computeAccComponent(Params& params, Data const& data) const {
    return component(*this, params, data, calculateAccCapFreq(params, data));
}
float Model::computeRegComponent(Params& params, Data const& data) const {
    return component(*this, params, data, calculateRegCapFreq(params, data));
}
float Model::computeCascadeComponent(Params& params, Data const& data) const {
    return component(*this, params, data, calculateCascadeCapFreq(params, data));
}
float Model::computeClockComponent(Params& params, Data const& data) const {
    return component(*this, params, data, calculateClockCapFreq(params, data));
}

// ---- The block and the group ----------------------------------------------------------------------------

float Model::computeDspInstancePower(Params& params, Data const& data) const {
    return calculateMultComponent(params, data) + calculatePreaddComponent(params, data) +
           calculateAccComponent(params, data) + calculateRegComponent(params, data) +
           calculateCascadeComponent(params, data) + calculateClockComponent(params, data);
}

float Model::computeDspPower(Params& params, Data const& data) const {
    return static_cast<float>(getInstanceCount(params, data)) * calculateDspInstancePower(params, data) * 0.001f;
}

// Formed in 64 bits; a count beyond the int range wraps as the cell stores it.
int Model::computeDspSliceCount(Params& params, Data const& data) const {
    return static_cast<int>(static_cast<std::int64_t>(getInstanceCount(params, data)) *
                            calculateModeSlices(params, data));
}
