#pragma once
// Formulas shared by the DDR memory-controller and memory-stack sheets. Both move READ_RATE and
// WRITE_RATE shares of an interface's peak bandwidth at DATA_RATE (MT/s, or Mb/s a pin), valid up to
// the fastest rate the part allows, over INSTANCE_COUNT identical interfaces (controllers or stacks).
// Figures of one interface are in mW; a rail's power is the interfaces' sum in W. The device scale and
// the voltage laws are the memories' own (RamFormulas.h).

#include "RamFormulas.h"

namespace prsm::memory {

// The share of the peak bandwidth in use: reads and writes together (above 1 asks for more than the
// interface moves, and is warned about).
template <typename Model>
float bandwidthShare(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    return model.getReadRate(params, data) + model.getWriteRate(params, data);
}

// The data rate by default: the fastest the memory and the part allow.
template <typename Model>
float fastestRate(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    return model.calculateGetMaxDataRate(params, data);
}

template <typename Model>
bool dataRateInRange(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    float const rate = model.getDataRate(params, data);
    return rate >= model.calculateGetMinDataRate(params, data) &&
           rate <= model.calculateGetMaxDataRate(params, data);
}

// 0 (none used) up to the interfaces the part has.
template <typename Model>
bool instanceCountInRange(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    int const count = model.getInstanceCount(params, data);
    return count >= 0 && static_cast<float>(count) <= model.calculateGetMaxInstanceCount(params, data);
}

// GB/s moved by all the interfaces: their peak times the share in use.
template <typename Model>
float usedBandwidth(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    return static_cast<float>(model.getInstanceCount(params, data)) *
           model.calculatePeakBandwidth(params, data) * model.calculateBandwidthShare(params, data);
}

// A rail's power in W: the interfaces times one interface's figure in mW.
template <typename Model>
float railPower(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data,
                float (Model::*instancePower)(ParamsOf<Model>&, DataOf<Model> const&) const) {
    double const interfaces = model.getInstanceCount(params, data);
    return static_cast<float>(interfaces * static_cast<double>((model.*instancePower)(params, data)) * 0.001);
}

}  // namespace prsm::memory
