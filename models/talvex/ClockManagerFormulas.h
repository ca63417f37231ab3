#pragma once
// Formulas shared by the clock-manager sheets: the frequency chain from the input clock to the outputs,
// and the currents that follow it. Each is a template over the sheet's generated model, whose getters and
// cell functions have the same names on every sheet that has the cell; a sheet's own formula passes the
// coefficient keys of its rail. Coefficients are "COMMON_DATA" entries, in amperes per MHz for the
// "_pMHz" keys. A key is the sheet's constant-key enumerator (Data::CommonDataKey::...) or its text.

namespace prsm::clocking {

// The phase-detector clock: the input clock after the input divider; no clock when the divider is 0.
// The feedback clock runs at the phase-detector rate once the loop is locked, so it is this formula too.
template <typename Model>
float pfdClock(Model const& model, typename Model::Params& params, typename Model::Data const& data) {
    int const d = model.getDCounter(params, data);
    return d == 0 ? 0.0f : model.getInputFrequency(params, data) / static_cast<float>(d);
}

template <typename Model>
float fvco(Model const& model, typename Model::Params& params, typename Model::Data const& data) {
    int const d = model.getDCounter(params, data);
    if (d == 0) return 0.0f;
    return static_cast<float>(model.getMCounter(params, data)) *
           (model.getInputFrequency(params, data) / static_cast<float>(d));
}

// A divide of 1 (or 0, or a negative one, which reads as a huge unsigned divide) drives no output clock.
template <typename Model>
float clockout(Model const& model, typename Model::Params& params, typename Model::Data const& data,
               typename Model::Output member) {
    int const divide = model.getClkoutDivide(params, data, member);
    if (static_cast<unsigned>(divide) <= 1u) return 0.0f;
    return model.calculateFvco(params, data) / static_cast<float>(divide);
}

// The PHY clock is the VCO divided by one of the few ratios the PHY accepts; no clock without a divide.
template <typename Model>
float xiphyClock(Model const& model, typename Model::Params& params, typename Model::Data const& data) {
    int const divide = model.getXiphyDivide(params, data);
    return divide < 1 ? 0.0f : model.calculateFvco(params, data) / static_cast<float>(divide);
}

// A block that toggles at the VCO rate.
template <typename Model, typename Key>
float vcoCurrent(Model const& model, typename Model::Params& params, typename Model::Data const& data,
                 Key perMhzKey) {
    return data.getCommonData(perMhzKey) * model.calculateFvco(params, data);
}

// A block that toggles at the PHY clock rate.
template <typename Model, typename Key>
float xiphyClockCurrent(Model const& model, typename Model::Params& params, typename Model::Data const& data,
                        Key perMhzKey) {
    return data.getCommonData(perMhzKey) * model.calculateXiphyClock(params, data);
}

// The phase detector at the phase-detector rate and the input divider at the input rate.
template <typename Model, typename Key>
float pfdClockCurrent(Model const& model, typename Model::Params& params, typename Model::Data const& data,
                      Key pfdKey, Key inputCountersKey) {
    return data.getCommonData(pfdKey) * model.calculatePfdClock(params, data) +
           data.getCommonData(inputCountersKey) * model.getInputFrequency(params, data);
}

// An output's counter runs at the VCO rate (divide times the output rate), its driver at the output rate.
// A divide of exactly 1 bypasses both.
template <typename Model, typename Key>
float clkoutCurrent(Model const& model, typename Model::Params& params, typename Model::Data const& data,
                    typename Model::Output member, Key countersKey, Key driverKey) {
    int const divide = model.getClkoutDivide(params, data, member);
    if (divide == 1) return 0.0f;
    return (data.getCommonData(countersKey) * static_cast<float>(divide) + data.getCommonData(driverKey)) *
           model.calculateClockout(params, data, member);
}

// Likewise the feedback counter (M times the feedback rate is the VCO rate) and its driver.
template <typename Model, typename Key>
float clockfboutCurrent(Model const& model, typename Model::Params& params, typename Model::Data const& data,
                        Key countersKey, Key driverKey) {
    return (data.getCommonData(countersKey) * static_cast<float>(model.getMCounter(params, data)) +
            data.getCommonData(driverKey)) *
           model.calculateClockfbout(params, data);
}

// A rail's current: the sum of its shared parts, then each output's share in the order of `outputs`,
// calibrated by the rail's factor.
template <typename Model, typename Outputs, typename Key>
float railCurrent(Model const& model, typename Model::Params& params, typename Model::Data const& data,
                  float parts, Outputs const& outputs,
                  float (Model::*outputCurrent)(typename Model::Params&, typename Model::Data const&,
                                                typename Model::Output) const,
                  Key factorKey) {
    for (typename Model::Output const output : outputs) parts += (model.*outputCurrent)(params, data, output);
    return data.getCommonData(factorKey) * parts;
}

// The I/O-bank PLLs' VCCAUX: regulator and charge pump, the VCO, and the buffer that drives the PHY
// clock, calibrated by the auxiliary factor.
template <typename Model>
float ioPllAuxBaseCurrent(Model const&, typename Model::Params&, typename Model::Data const& data) {
    return data.getCommonData(Model::Data::CommonDataKey::IVCCAUX_REGULATOR) +
           data.getCommonData(Model::Data::CommonDataKey::IVCCAUX_CHARGE_PUMP);
}

template <typename Model>
float ioPllAuxIntCurrent(Model const& model, typename Model::Params& params,
                         typename Model::Data const& data) {
    return data.getCommonData(Model::Data::CommonDataKey::FUDGE_FACTOR_AUX) *
           (model.calculateVccAuxBaseCurrent(params, data) + model.calculateVccAuxVcoCurrent(params, data) +
            model.calculateVccAuxXiphyClockCurrent(params, data));
}

// The I/O-bank PLLs' VCCINTIO control logic.
template <typename Model>
float ioPllIntioBaseCurrent(Model const&, typename Model::Params&, typename Model::Data const& data) {
    return data.getCommonData(Model::Data::CommonDataKey::IVCCINTIO_CTRL_LOGIC);
}

template <typename Model>
float ioPllAuxPower(Model const& model, typename Model::Params& params, typename Model::Data const& data) {
    return model.calculateVccauxIntCurrent(params, data) * model.getVccaux(params, data);
}

template <typename Model>
float ioPllIntioPower(Model const& model, typename Model::Params& params, typename Model::Data const& data) {
    return model.calculateVccintioIntCurrent(params, data) * model.getVccintio(params, data);
}

}  // namespace prsm::clocking
