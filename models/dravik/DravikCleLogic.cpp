// Formulas of the older architecture's logic-element sheet. Capacitances are in pF and frequencies in
// MHz, so capacitance x frequency x VCCINT^VPOW x 0.001 gives one element's figure in mW, and
// LOGIC_POWER, a further 0.001 on the group, is in W. Data completes a cycle every second toggle.
#include <prsm/models/dravik/PRSMDravikCleLogicModel.h>
#include <prsm/models/dravik/PRSMDravikCleLogicCells.h>

#include <prsm/sheetfunc/PRSMHelperUtils.h>

#include <cmath>

using PRSMHelperUtils::IFERROR;
using Model = PRSMDravikCleLogicModel;
using Data = Model::Data;

namespace {

// An element's table figure; a kind or key the file lacks switches nothing.
float elementCap(Model const& model, Model::Params& params, Data const& data, char const* key) {
    return IFERROR(data.getElementCapOrError(model.refInstanceType(params, data), key), 0.0f);
}

float component(Model const& model, Model::Params& params, Data const& data, float capFreq) {
    return static_cast<float>(static_cast<double>(capFreq * model.derivedVoltageFactor(params, data)) * 0.001 *
                              static_cast<double>(model.calculateVccintScale(params, data)));
}

}  // namespace

float Model::computeVoltageFactor(Params& params, Data const& data) const {
    return std::pow(getVccint(params, data), IFERROR(data.getMiscOrError(Data::MiscKey::VPOW), 2.0f));
}

float Model::computeVccintScale(Params& params, Data const& data) const {
    return IFERROR(data.getBlockPowerScaleOrError(refDevice(params, data), "CLE_LOGIC_VCCINT"),
                   IFERROR(data.getBlockPowerScaleOrError(Data::BlockPowerScaleKey::DEFAULT_CLE_LOGIC_VCCINT), 1.0f));
}

float Model::computeSigFreq(Params& params, Data const& data) const {
    return getClockFreq(params, data) * getToggleRate(params, data) * 0.5f;
}

float Model::computeSignalCapFreq(Params& params, Data const& data) const {
    return calculateSigFreq(params, data) * elementCap(*this, params, data, "SIGNAL");
}

// A LUT memory writes (a shift register shifts) on the enabled share of the clocks.
float Model::computeMemoryWriteCapFreq(Params& params, Data const& data) const {
    return getClockFreq(params, data) * getLutWeProb(params, data) * elementCap(*this, params, data, "WRITE");
}

float Model::computeSignalComponent(Params& params, Data const& data) const {
    return component(*this, params, data, calculateSignalCapFreq(params, data));
}

float Model::computeMemoryWriteComponent(Params& params, Data const& data) const {
    return component(*this, params, data, calculateMemoryWriteCapFreq(params, data));
}

float Model::computeInstancePower(Params& params, Data const& data) const {
    return calculateSignalComponent(params, data) + calculateMemoryWriteComponent(params, data);
}

float Model::computeLogicPower(Params& params, Data const& data) const {
    return static_cast<float>(static_cast<double>(getInstanceCount(params, data)) *
                              static_cast<double>(calculateInstancePower(params, data)) * 0.001);
}
