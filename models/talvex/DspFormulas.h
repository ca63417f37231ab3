#pragma once
// Formulas shared by the DSP sheets of both architectures. A block is one or more multiply-accumulate
// slices in a mode (MODE_WIDTH, MODE_COUNT and MODE_CAP by mode, SLICE_CAP for what every slice has), and
// every part of it is a switched capacitance: pF x MHz x V^VPOW x 0.001 gives one block's figure in mW,
// and DSP_POWER, a further 0.001 on the instance total, is in W. Data bits switch at CLOCK_FREQ x
// TOGGLE_RATE transitions per microsecond, half of that in full cycles (DATA_FREQ); register clock pins
// and the slice's clock spine cycle once per clock. Each template works on the cells both sheets name
// alike; a missing table entry counts 0.

#include <prsm/framework/PRSMModelTypes.h>
#include <prsm/models/talvex/DeviceScale.h>
#include <prsm/sheetfunc/PRSMHelperUtils.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace prsm::dsp {

template <typename Model>
int modeWidth(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data, std::string_view key) {
    return PRSMHelperUtils::IFERROR(data.getModeWidthOrError(model.refDspMode(params, data), key), 0);
}

template <typename Model>
int modeCount(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data, std::string_view key) {
    return PRSMHelperUtils::IFERROR(data.getModeCountOrError(model.refDspMode(params, data), key), 0);
}

template <typename Model>
float modeCap(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data, std::string_view key) {
    return PRSMHelperUtils::IFERROR(data.getModeCapOrError(model.refDspMode(params, data), key), 0.0f);
}

template <typename Data>
float sliceCap(Data const& data, typename Data::SliceCapKey key) {
    return PRSMHelperUtils::IFERROR(data.getSliceCapOrError(key), 0.0f);
}

inline bool isYes(std::string_view choice) {
    return choice == "YES";
}

// ---- Operand widths: each mode's own range ------------------------------------------------------

// An operand's default (its "A_MAX" or "B_MAX": the widest the mode takes).
template <typename Model>
int widestOperand(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data, char const* key) {
    return modeWidth(model, params, data, key);
}

// GET_MIN_/GET_MAX_ of an operand width: the mode's "A_MIN", "A_MAX", ...
template <typename Model>
float widthLimit(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data, char const* key) {
    return static_cast<float>(modeWidth(model, params, data, key));
}

template <typename Model>
bool isValidAWidth(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    float const width = static_cast<float>(model.getAWidth(params, data));
    return width >= model.calculateGetMinAWidth(params, data) && width <= model.calculateGetMaxAWidth(params, data);
}

template <typename Model>
bool isValidBWidth(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    float const width = static_cast<float>(model.getBWidth(params, data));
    return width >= model.calculateGetMinBWidth(params, data) && width <= model.calculateGetMaxBWidth(params, data);
}

// A mode without a pre-adder (a width of 0) offers only "NO".
template <typename Model>
std::vector<std::string> preadderChoices(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    if (modeWidth(model, params, data, "PREADD") > 0) return data.getDropdownLists("YES_NO");
    return {"NO"};
}

// ---- Bits of each part --------------------------------------------------------------------------

template <typename Model>
int modeSlices(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    return modeCount(model, params, data, "SLICES");
}

// Every real product of the mode is an A x B array of partial-product bits.
template <typename Model>
float productBits(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    return static_cast<float>(modeCount(model, params, data, "PRODUCTS")) *
           static_cast<float>(model.getAWidth(params, data)) * static_cast<float>(model.getBWidth(params, data));
}

// Each slice's pre-adder takes A, up to the pre-adder's own width.
template <typename Model>
float preaddBits(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    if (!isYes(model.refUsePreadder(params, data))) return 0.0f;
    int const bits = std::min(model.getAWidth(params, data), modeWidth(model, params, data, "PREADD"));
    return static_cast<float>(model.calculateModeSlices(params, data)) * static_cast<float>(bits);
}

template <typename Model>
int accBits(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    return modeWidth(model, params, data, "ACC");
}

// A register level holds both operands (or the product, as wide) in every slice of the block.
template <typename Model>
float stageBits(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    return static_cast<float>(model.calculateModeSlices(params, data)) *
           (static_cast<float>(model.getAWidth(params, data)) + static_cast<float>(model.getBWidth(params, data)));
}

template <typename Model>
int cascadePorts(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    std::string_view const cascade = model.refCascade(params, data);
    if (cascade == "IN_OUT") return 2;
    return cascade == "IN" || cascade == "OUT" ? 1 : 0;
}

// ---- Capacitance-frequency products (pF x MHz) --------------------------------------------------

template <typename Model>
float dataFreq(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    return model.getClockFreq(params, data) * model.getToggleRate(params, data) * 0.5f;
}

template <typename Model>
float multCapFreq(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    return model.calculateProductBits(params, data) * modeCap(model, params, data, "MULT") *
           model.calculateDataFreq(params, data);
}

template <typename Model>
float preaddCapFreq(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    return model.calculatePreaddBits(params, data) * sliceCap(data, DataOf<Model>::SliceCapKey::PREADD) *
           model.calculateDataFreq(params, data);
}

template <typename Model>
float accCapFreq(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    if (!isYes(model.refUseAccumulator(params, data))) return 0.0f;
    return static_cast<float>(model.calculateAccBits(params, data)) * modeCap(model, params, data, "ACC") *
           model.calculateDataFreq(params, data);
}

// Data bits switch with the data; every register bit's clock pin cycles every clock.
template <typename Model>
float regCapFreq(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    using Key = typename DataOf<Model>::SliceCapKey;
    float const perBit = sliceCap(data, Key::REG_DATA) * model.calculateDataFreq(params, data) +
                         sliceCap(data, Key::REG_CLOCK) * model.getClockFreq(params, data);
    return static_cast<float>(model.getPipelineStages(params, data)) * model.calculateStageBits(params, data) *
           perBit;
}

// A cascade port carries the accumulator's width to or from the neighbouring slice.
template <typename Model>
float cascadeCapFreq(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    return static_cast<float>(model.calculateCascadePorts(params, data)) *
           static_cast<float>(model.calculateAccBits(params, data)) *
           sliceCap(data, DataOf<Model>::SliceCapKey::CASCADE) * model.calculateDataFreq(params, data);
}

// A slice without registers is combinational: its clock spine stays off.
template <typename Model>
float clockCapFreq(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    if (model.getPipelineStages(params, data) <= 0) return 0.0f;
    return static_cast<float>(model.calculateModeSlices(params, data)) *
           sliceCap(data, DataOf<Model>::SliceCapKey::CLOCK) * model.getClockFreq(params, data);
}

// ---- Components: capacitance-frequency product x V^VPOW x 0.001 x device scale ------------------

// V^VPOW; a file without VPOW keeps the square law of dynamic power.
template <typename Model>
float voltageFactor(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    float const exponent =
        PRSMHelperUtils::IFERROR(data.getSliceCapOrError(DataOf<Model>::SliceCapKey::VPOW), 2.0f);
    return std::pow(model.getVccint(params, data), exponent);
}

// One part's mW, given the cell function of its capacitance-frequency product.
template <typename Model>
float component(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data,
                float (Model::*capFreq)(ParamsOf<Model>&, DataOf<Model> const&) const) {
    return (model.*capFreq)(params, data) * model.derivedVoltageFactor(params, data) * 0.001f *
           model.calculateVccintScale(params, data);
}

template <typename Model>
float instancePower(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    return model.calculateMultComponent(params, data) + model.calculatePreaddComponent(params, data) +
           model.calculateAccComponent(params, data) + model.calculateRegComponent(params, data) +
           model.calculateCascadeComponent(params, data) + model.calculateClockComponent(params, data);
}

template <typename Model>
float groupPower(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    return static_cast<float>(model.getInstanceCount(params, data)) *
           model.calculateDspInstancePower(params, data) * 0.001f;
}

// Formed in 64 bits; a count beyond the int range wraps as the cell stores it.
template <typename Model>
int sliceCount(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    return static_cast<int>(static_cast<std::int64_t>(model.getInstanceCount(params, data)) *
                            model.calculateModeSlices(params, data));
}

}  // namespace prsm::dsp
