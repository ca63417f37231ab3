#pragma once
// What the logic-clock sheets of both architectures share: the network below the buffer runs only in the
// cycles the clock is not gated off, and each of its parts is C (pF) x f (MHz) x V^VPOW x 0.001 x the
// part's VCCINT scale, in mW per clock.

#include <prsm/framework/PRSMModelTypes.h>
#include <prsm/models/talvex/DeviceScale.h>
#include <prsm/sheetfunc/PRSMHelperUtils.h>

namespace prsm::logicclock {

// A slice holds sixteen flip-flops or eight memory look-up tables.
inline constexpr int kFlipFlopsPerSlice = 16;
inline constexpr int kMemoryLutsPerSlice = 8;

// Coefficients fall back to 0 when the file lacks them.
template <typename Data>
float loadCap(Data const& data, typename Data::LoadCapKey key) {
    return PRSMHelperUtils::IFERROR(data.getLoadCapOrError(key), 0.0f);
}
template <typename Data>
float sliceClockCap(Data const& data, typename Data::SliceClockCapKey key) {
    return PRSMHelperUtils::IFERROR(data.getSliceClockCapOrError(key), 0.0f);
}

// The loads' clock pins: each kind's count times its capacitance, the flip-flops' weighted by how often
// their clock pins switch against the clock.
template <typename Model>
float loadPinCap(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data, float flipFlopActivity) {
    using Key = typename DataOf<Model>::LoadCapKey;
    auto const count = [](int n) { return static_cast<float>(n); };
    return count(model.getFfsUsingClk(params, data)) * loadCap(data, Key::FF) * flipFlopActivity +
           count(model.getLutramsUsingClk(params, data)) * loadCap(data, Key::LUTRAM) +
           count(model.getSrlsUsingClk(params, data)) * loadCap(data, Key::SRL) +
           count(model.getBramsUsingClk(params, data)) * loadCap(data, Key::BRAM) +
           count(model.getUramsUsingClk(params, data)) * loadCap(data, Key::URAM) +
           count(model.getDspsUsingClk(params, data)) * loadCap(data, Key::DSP);
}

template <typename Model>
using FloatCell = float (Model::*)(ParamsOf<Model>&, DataOf<Model> const&) const;

template <typename Model>
float runningFreq(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    return model.getClockFreq(params, data) * (1.0f - model.getGatingProb(params, data));
}

// The buffer type's capacitance; 0 for a type the file lacks.
template <typename Model>
float bufferCap(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    return PRSMHelperUtils::IFERROR(data.getBufferCapOrError(model.refBufType(params, data)), 0.0f);
}

// One part of the network, of the capacitance `cap` gives, at the running clock.
template <typename Model>
float networkComponent(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data,
                       FloatCell<Model> cap) {
    return (model.*cap)(params, data) * model.calculateRunningFreq(params, data) *
           model.derivedVccintFactor(params, data) * 0.001f * model.calculateVccintScale(params, data);
}

template <typename Model>
float clockInstancePower(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    return model.calculateDistributionComponent(params, data) + model.calculateLeafComponent(params, data) +
           model.calculateSliceComponent(params, data) + model.calculateLoadPinComponent(params, data) +
           model.calculateBufferComponent(params, data);
}

}  // namespace prsm::logicclock
