#pragma once
// The older architecture's clock managers take the newer one's frequency chain
// (models/talvex/ClockManagerFormulas.h: PFD, VCO, output clocks). What is theirs: the ranges an input
// must keep, read from the sheet's LIMITS table; per-function currents whose coefficients fall back to 0
// (factors to 1) when a file lacks them; and the rail powers of INSTANCE_COUNT managers, VCCINT's
// current following its voltage from the characterisation voltage and VCCAUX's (regulated) staying.
#include <prsm/models/talvex/ClockManagerFormulas.h>
#include <prsm/models/talvex/DeviceScale.h>
#include <prsm/sheetfunc/PRSMHelperUtils.h>

#include <limits>
#include <string_view>

namespace prsm::clocking {

// A limit of the LIMITS table, for its GET_MIN_/GET_MAX_ cell; 0 when the file lacks it.
template <typename Model, typename Key>
float limit(Model const&, typename Model::Params&, typename Model::Data const& data, Key key) {
    return PRSMHelperUtils::IFERROR(data.getLimitsOrError(key), 0.0f);
}

// A bound the file lacks checks nothing on its side.
template <typename Data, typename Key>
float bound(Data const& data, Key key, float missing) {
    return PRSMHelperUtils::IFERROR(data.getLimitsOrError(key), missing);
}

template <typename Data, typename Key>
bool within(Data const& data, float value, Key low, Key high) {
    float const infinity = std::numeric_limits<float>::infinity();
    return value >= bound(data, low, -infinity) && value <= bound(data, high, infinity);
}

template <typename Model>
bool inputFrequencyValid(Model const& model, typename Model::Params& params,
                         typename Model::Data const& data) {
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
           model.calculateClockout(params, data, output) <=
               bound(data, Key::FOUT_MAX, std::numeric_limits<float>::infinity());
}

// The managers of this kind the part has: its row of DEVICE_RESOURCES, else the DEFAULT row, else
// `missing`.
template <typename Data, typename Key>
int partResource(std::string_view device, Data const& data, Key defaultKey, char const* key, int missing) {
    return PRSMHelperUtils::IFERROR(
        data.getDeviceResourcesOrError(device, key),
        PRSMHelperUtils::IFERROR(data.getDeviceResourcesOrError(defaultKey), missing));
}

// For the GET_MAX_INSTANCE_COUNT cell: 0 when the file gives no count.
template <typename Model, typename Key>
float deviceResource(Model const& model, typename Model::Params& params, typename Model::Data const& data,
                     Key defaultKey, char const* key) {
    return static_cast<float>(partResource(model.refDevice(params, data), data, defaultKey, key, 0));
}

// 0 up to the part's count; a file that gives no count checks only that the count is not negative.
template <typename Model, typename Key>
bool instanceCountValid(Model const& model, typename Model::Params& params, typename Model::Data const& data,
                        Key defaultKey, char const* key) {
    int const count = model.getInstanceCount(params, data);
    int const available =
        partResource(model.refDevice(params, data), data, defaultKey, key, std::numeric_limits<int>::max());
    return count >= 0 && count <= available;
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
    return coefficient(data, Model::Data::CommonDataKey::IVCCAUX_VCO_pMHz) *
           model.calculateFvco(params, data);
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
float intPfdClockCurrent(Model const& model, typename Model::Params& params,
                         typename Model::Data const& data) {
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
float intClockfboutCurrent(Model const& model, typename Model::Params& params,
                           typename Model::Data const& data) {
    return pathCurrent(model, params, data, model.calculateClockfbout(params, data));
}

// VCCINT's shared parts (the sheet's own sum) and every output's share, calibrated by the rail's factor.
template <typename Model, typename Outputs>
float intCurrent(Model const& model, typename Model::Params& params, typename Model::Data const& data,
                 float parts, Outputs const& outputs) {
    for (typename Model::Output const output : outputs)
        parts += model.calculateVccintClkoutCurrent(params, data, output);
    return factor(data, Model::Data::CommonDataKey::FACTOR_VCCINT) * parts;
}

// W of all the managers on VCCAUX: the regulated current does not follow the rail.
template <typename Model>
float auxPower(Model const& model, typename Model::Params& params, typename Model::Data const& data) {
    return static_cast<float>(model.getInstanceCount(params, data)) *
           model.calculateVccauxIntCurrent(params, data) * model.getVccaux(params, data) *
           model.calculateVccauxScale(params, data);
}

// W of all the managers on VCCINT: a switched current goes with the voltage, so the power with its
// square against the characterisation voltage (0 when the file gives none).
template <typename Model>
float intPower(Model const& model, typename Model::Params& params, typename Model::Data const& data) {
    float const characterised = coefficient(data, Model::Data::CommonDataKey::VCCINT_CHAR);
    if (characterised == 0.0f) return 0.0f;
    float const vccint = model.getVccint(params, data);
    return static_cast<float>(model.getInstanceCount(params, data)) *
           model.calculateVccintIntCurrent(params, data) * vccint * (vccint / characterised) *
           model.calculateVccintScale(params, data);
}

}  // namespace prsm::clocking
