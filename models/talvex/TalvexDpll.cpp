// Formulas of the digital PLL. Coefficients are "COMMON_DATA" entries in amperes, or in amperes per MHz
// for the "_pMHz" keys; each rail's current is summed per function, calibrated by the rail's factor and
// multiplied by the rail voltage, giving watts.
#include <prsm/models/talvex/PRSMTalvexDpllModel.h>

using Model = PRSMTalvexDpllModel;

namespace {

constexpr Model::Output kOutputs[] = {Model::Output::N0, Model::Output::N1, Model::Output::N2, Model::Output::N3};

}  // namespace

float Model::computePfdClock(Params& params, Data const& data) const {
    int const d = getDCounter(params, data);
    return d == 0 ? 0.0f : getInputFrequency(params, data) / static_cast<float>(d);
}

float Model::computeFvco(Params& params, Data const& data) const {
    int const d = getDCounter(params, data);
    if (d == 0) return 0.0f;
    return static_cast<float>(getMCounter(params, data)) * (getInputFrequency(params, data) / static_cast<float>(d));
}

// A divide of 1 (or 0, or a negative one, which reads as a huge unsigned divide) drives no output clock.
float Model::computeClockout(Params& params, Data const& data, Output member) const {
    int const divide = getClkoutDivide(params, data, member);
    if (static_cast<unsigned>(divide) <= 1u) return 0.0f;
    return calculateFvco(params, data) / static_cast<float>(divide);
}

// VCCAUX: regulator and bias, the oscillator, the phase-detector front end and the output drivers.
float Model::computeVccAuxBaseCurrent(Params&, Data const& data) const {
    return data.getCommonData("IVCCAUX_REGULATOR") + data.getCommonData("IVCCAUX_BIAS");
}

float Model::computeVccAuxVcoCurrent(Params& params, Data const& data) const {
    return data.getCommonData("IVCCAUX_VCO_pMHz") * calculateFvco(params, data);
}

float Model::computeVccAuxPfdClockCurrent(Params& params, Data const& data) const {
    return data.getCommonData("IVCCAUX_PFD_pMHz") * calculatePfdClock(params, data);
}

float Model::computeVccAuxClkoutCurrent(Params& params, Data const& data, Output member) const {
    if (getClkoutDivide(params, data, member) == 1) return 0.0f;
    return data.getCommonData("IVCCAUX_OUTPUT_DRIVER_pMHz") * calculateClockout(params, data, member);
}

float Model::computeVccauxIntCurrent(Params& params, Data const& data) const {
    float sum = calculateVccAuxBaseCurrent(params, data) + calculateVccAuxVcoCurrent(params, data) +
                calculateVccAuxPfdClockCurrent(params, data);
    for (Output const output : kOutputs) sum += calculateVccAuxClkoutCurrent(params, data, output);
    return data.getCommonData("FUDGE_FACTOR_AUX") * sum;
}

// VCCINT: loop filter and control logic, the oscillator's control word and feedback divider (both at
// the oscillator rate), the phase detector and input divider, and the output counters.
float Model::computeVccintBaseCurrent(Params&, Data const& data) const {
    return data.getCommonData("IVCCINT_LOOP_FILTER") + data.getCommonData("IVCCINT_CTRL_LOGIC");
}

float Model::computeVccintVcoCurrent(Params& params, Data const& data) const {
    return data.getCommonData("IVCCINT_VCO_pMHz") * calculateFvco(params, data);
}

// The loop and, when spread spectrum is "ON" (exactly), its modulator update at the phase-detector rate.
float Model::computeVccintPfdClockCurrent(Params& params, Data const& data) const {
    float const perMhz = data.getCommonData("IVCCINT_PFD_pMHz") +
                         (getSpreadSpectrum(params, data) == "ON" ? data.getCommonData("IVCCINT_SPREAD_SPECTRUM_pMHz")
                                                                  : 0.0f);
    return perMhz * calculatePfdClock(params, data) +
           data.getCommonData("IVCCINT_INPUT_COUNTERS_pMHz") * getInputFrequency(params, data);
}

// The counter runs at the oscillator rate (divide times the output rate), the driver at the output rate.
float Model::computeVccintClkoutCurrent(Params& params, Data const& data, Output member) const {
    int const divide = getClkoutDivide(params, data, member);
    if (divide == 1) return 0.0f;
    return (data.getCommonData("IVCCINT_OUTPUT_COUNTERS_pMHz") * static_cast<float>(divide) +
            data.getCommonData("IVCCINT_OUTPUT_DRIVER_pMHz")) *
           calculateClockout(params, data, member);
}

float Model::computeVccintIntCurrent(Params& params, Data const& data) const {
    float sum = calculateVccintBaseCurrent(params, data) + calculateVccintVcoCurrent(params, data) +
                calculateVccintPfdClockCurrent(params, data);
    for (Output const output : kOutputs) sum += calculateVccintClkoutCurrent(params, data, output);
    return data.getCommonData("FUDGE_FACTOR_INT") * sum;
}

// VCCRAM: the configuration and calibration memory, independent of the clocks.
float Model::computeVccramBaseCurrent(Params&, Data const& data) const {
    return data.getCommonData("IVCCRAM_CONFIG");
}

float Model::computeVccramIntCurrent(Params& params, Data const& data) const {
    return data.getCommonData("FUDGE_FACTOR_RAM") * calculateVccramBaseCurrent(params, data);
}

float Model::computeVccauxPwr(Params& params, Data const& data) const {
    return calculateVccauxIntCurrent(params, data) * getVccaux(params, data);
}

float Model::computeVccintPwr(Params& params, Data const& data) const {
    return calculateVccintIntCurrent(params, data) * getVccint(params, data);
}

float Model::computeVccramPwr(Params& params, Data const& data) const {
    return calculateVccramIntCurrent(params, data) * getVccram(params, data);
}
