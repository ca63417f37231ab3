#pragma once
// The older architecture's clock managers share the newer one's frequency chain and per-function
// currents (models/talvex/ClockManagerFormulas.h). What is theirs: the ranges an input must keep, read
// from the sheet's LIMITS table, and the rail powers of INSTANCE_COUNT managers, VCCINT's current
// following its voltage from the characterisation voltage and VCCAUX's (regulated) staying as it is.
#include <prsm/models/talvex/ClockManagerFormulas.h>
#include <prsm/sheetfunc/PRSMHelperUtils.h>

#include <cmath>

namespace prsm::clocking {

// A limit of the LIMITS table; 0 when the file lacks it.
template <typename Model, typename Key>
float limit(Model const&, typename Model::Params&, typename Model::Data const& data, Key key) {
    return PRSMHelperUtils::IFERROR(data.getLimitsOrError(key), 0.0f);
}

template <typename Data, typename Key>
bool within(Data const& data, float value, Key low, Key high) {
    return value >= PRSMHelperUtils::IFERROR(data.getLimitsOrError(low), 0.0f) &&
           value <= PRSMHelperUtils::IFERROR(data.getLimitsOrError(high), 0.0f);
}

template <typename Model>
bool inputFrequencyValid(Model const& model, typename Model::Params& params, typename Model::Data const& data) {
    using Key = typename Model::Data::LimitsKey;
    return within(data, model.getInputFrequency(params, data), Key::FIN_MIN, Key::FIN_MAX);
}

// D within its range, and the phase detector's clock within the detector's.
template <typename Model>
bool dCounterValid(Model const& model, typename Model::Params& params, typename Model::Data const& data) {
    using Key = typename Model::Data::LimitsKey;
    return within(data, static_cast<float>(model.getDCounter(params, data)), Key::D_MIN, Key::D_MAX) &&
           within(data, model.calculatePfdClock(params, data), Key::FPFD_MIN, Key::FPFD_MAX);
}

// M within its range, and the VCO within its band.
template <typename Model>
bool mCounterValid(Model const& model, typename Model::Params& params, typename Model::Data const& data) {
    using Key = typename Model::Data::LimitsKey;
    return within(data, static_cast<float>(model.getMCounter(params, data)), Key::M_MIN, Key::M_MAX) &&
           within(data, model.calculateFvco(params, data), Key::FVCO_MIN, Key::FVCO_MAX);
}

// 0 leaves the output unused; otherwise the divide within its range and the output clock no faster
// than an output may run.
template <typename Model>
bool clkoutDivideValid(Model const& model, typename Model::Params& params, typename Model::Data const& data,
                       typename Model::Output output) {
    using Key = typename Model::Data::LimitsKey;
    int const divide = model.getClkoutDivide(params, data, output);
    if (divide == 0) return true;
    return within(data, static_cast<float>(divide), Key::DIVIDE_MIN, Key::DIVIDE_MAX) &&
           model.calculateClockout(params, data, output) <= limit(model, params, data, Key::FOUT_MAX);
}

// 0 up to the managers of this kind the part has (its row of DEVICE_RESOURCES, else the DEFAULT row).
template <typename Model, typename Key>
float deviceResource(Model const& model, typename Model::Params& params, typename Model::Data const& data,
                     Key defaultKey, char const* key) {
    return static_cast<float>(PRSMHelperUtils::IFERROR(
        data.getDeviceResourcesOrError(model.refDevice(params, data), key),
        PRSMHelperUtils::IFERROR(data.getDeviceResourcesOrError(defaultKey), 0)));
}

template <typename Model>
bool instanceCountValid(Model const& model, typename Model::Params& params, typename Model::Data const& data) {
    int const count = model.getInstanceCount(params, data);
    return count >= 0 && static_cast<float>(count) <= model.calculateGetMaxInstanceCount(params, data);
}

// The device's scale of one rail: its row, else the DEFAULT row, else 1.
template <typename Model, typename Key>
float railScale(Model const& model, typename Model::Params& params, typename Model::Data const& data,
                Key defaultKey, char const* rail) {
    return PRSMHelperUtils::IFERROR(data.getBlockPowerScaleOrError(model.refDevice(params, data), rail),
                                    PRSMHelperUtils::IFERROR(data.getBlockPowerScaleOrError(defaultKey), 1.0f));
}

// A current coefficient of COMMON_DATA (0 when the file lacks it) and a calibration factor (1).
template <typename Data, typename Key>
float coefficient(Data const& data, Key key) {
    return PRSMHelperUtils::IFERROR(data.getCommonDataOrError(key), 0.0f);
}

template <typename Data, typename Key>
float factor(Data const& data, Key key) {
    return PRSMHelperUtils::IFERROR(data.getCommonDataOrError(key), 1.0f);
}

// VCCAUX: the regulator, charge pump and bias, and the VCO ring on the regulated supply.
template <typename Model>
float auxBaseCurrent(Model const&, typename Model::Params&, typename Model::Data const& data) {
    using Key = typename Model::Data::CommonDataKey;
    return coefficient(data, Key::IVCCAUX_REGULATOR) + coefficient(data, Key::IVCCAUX_CHARGE_PUMP) +
           coefficient(data, Key::IVCCAUX_BIAS);
}

template <typename Model>
float auxVcoCurrent(Model const& model, typename Model::Params& params, typename Model::Data const& data) {
    return coefficient(data, Model::Data::CommonDataKey::IVCCAUX_VCO_pMHz) * model.calculateFvco(params, data);
}

template <typename Model>
float auxIntCurrent(Model const& model, typename Model::Params& params, typename Model::Data const& data) {
    return factor(data, Model::Data::CommonDataKey::FACTOR_VCCAUX) *
           (model.calculateVccauxBaseCurrent(params, data) + model.calculateVccauxVcoCurrent(params, data));
}

// VCCINT: the control logic; the phase detector at its clock and the input divider at the input clock.
template <typename Model>
float intBaseCurrent(Model const&, typename Model::Params&, typename Model::Data const& data) {
    return coefficient(data, Model::Data::CommonDataKey::IVCCINT_CTRL_LOGIC);
}

template <typename Model>
float intPfdClockCurrent(Model const& model, typename Model::Params& params, typename Model::Data const& data) {
    using Key = typename Model::Data::CommonDataKey;
    return coefficient(data, Key::IVCCINT_PFD_pMHz) * model.calculatePfdClock(params, data) +
           coefficient(data, Key::IVCCINT_INPUT_COUNTERS_pMHz) * model.getInputFrequency(params, data);
}

// A used output's counter counts at the VCO rate and its driver runs at the output's; an unused
// output draws nothing. The feedback path is an output at the phase-detector rate.
template <typename Model>
float pathCurrent(Model const& model, typename Model::Params& params, typename Model::Data const& data,
                  float clock) {
    using Key = typename Model::Data::CommonDataKey;
    if (clock <= 0.0f) return 0.0f;
    return coefficient(data, Key::IVCCINT_OUTPUT_COUNTERS_pMHz) * model.calculateFvco(params, data) +
           coefficient(data, Key::IVCCINT_OUTPUT_DRIVER_pMHz) * clock;
}

template <typename Model>
float intClkoutCurrent(Model const& model, typename Model::Params& params, typename Model::Data const& data,
                       typename Model::Output output) {
    return pathCurrent(model, params, data, model.calculateClockout(params, data, output));
}

template <typename Model>
float intClockfboutCurrent(Model const& model, typename Model::Params& params, typename Model::Data const& data) {
    return pathCurrent(model, params, data, model.calculateClockfbout(params, data));
}

// VCCINT's shared parts (the sheet's own sum) and every output's share, calibrated by the rail's factor.
template <typename Model, typename Outputs>
float intCurrent(Model const& model, typename Model::Params& params, typename Model::Data const& data,
                 float parts, Outputs const& outputs) {
    for (typename Model::Output const output : outputs) parts += model.calculateVccintClkoutCurrent(params, data, output);
    return factor(data, Model::Data::CommonDataKey::FACTOR_VCCINT) * parts;
}

// W of all the managers on VCCAUX: the regulated current does not follow the rail.
template <typename Model>
float auxPower(Model const& model, typename Model::Params& params, typename Model::Data const& data) {
    return static_cast<float>(model.getInstanceCount(params, data)) * model.calculateVccauxIntCurrent(params, data) *
           model.getVccaux(params, data) * model.calculateVccauxScale(params, data);
}

// W of all the managers on VCCINT: a switched current goes with the voltage, so the power with its
// square against the characterisation voltage (0 when the file gives none).
template <typename Model>
float intPower(Model const& model, typename Model::Params& params, typename Model::Data const& data) {
    float const characterised = coefficient(data, Model::Data::CommonDataKey::VCCINT_CHAR);
    if (characterised == 0.0f) return 0.0f;
    float const vccint = model.getVccint(params, data);
    return static_cast<float>(model.getInstanceCount(params, data)) * model.calculateVccintIntCurrent(params, data) *
           vccint * (vccint / characterised) * model.calculateVccintScale(params, data);
}

}  // namespace prsm::clocking
