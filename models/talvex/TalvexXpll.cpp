// Formulas of the I/O-bank PLL. Coefficients are "COMMON_DATA" entries in amperes, or in amperes per MHz
// for the "_pMHz" keys; each rail's current is summed per function, calibrated by the rail's factor and
// multiplied by the rail voltage, giving watts.
#include <prsm/models/talvex/PRSMTalvexXpllModel.h>

using Model = PRSMTalvexXpllModel;

namespace {

constexpr Model::Output kOutputs[] = {Model::Output::N0, Model::Output::N1, Model::Output::N2, Model::Output::N3};

}  // namespace

float Model::computePfdClock(Params& params, Data const& data) const {
    int const d = getDCounter(params, data);
    return d == 0 ? 0.0f : getInputFrequency(params, data) / static_cast<float>(d);
}

// The feedback clock runs at the phase-detector rate once the loop is locked.
float Model::computeClockfbout(Params& params, Data const& data) const {
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

// The PHY clock is the VCO divided by one of the few ratios the PHY accepts; no clock without a divide.
float Model::computeXiphyClock(Params& params, Data const& data) const {
    int const divide = getXiphyDivide(params, data);
    return divide < 1 ? 0.0f : calculateFvco(params, data) / static_cast<float>(divide);
}

// VCCAUX: regulator and charge pump, the VCO, and the buffer that drives the PHY clock.
float Model::computeVccAuxBaseCurrent(Params&, Data const& data) const {
    return data.getCommonData("IVCCAUX_REGULATOR") + data.getCommonData("IVCCAUX_CHARGE_PUMP");
}

float Model::computeVccAuxVcoCurrent(Params& params, Data const& data) const {
    return data.getCommonData("IVCCAUX_VCO_pMHz") * calculateFvco(params, data);
}

float Model::computeVccAuxXiphyClockCurrent(Params& params, Data const& data) const {
    return data.getCommonData("IVCCAUX_XIPHY_CLOCK_pMHz") * calculateXiphyClock(params, data);
}

float Model::computeVccauxIntCurrent(Params& params, Data const& data) const {
    return data.getCommonData("FUDGE_FACTOR_AUX") *
           (calculateVccAuxBaseCurrent(params, data) + calculateVccAuxVcoCurrent(params, data) +
            calculateVccAuxXiphyClockCurrent(params, data));
}

// VCCINTIO: control logic, the VCO's digital share, phase detector and input divider, the output and
// feedback counters and drivers, and the PHY clock path.
float Model::computeVccintioBaseCurrent(Params&, Data const& data) const {
    return data.getCommonData("IVCCINTIO_CTRL_LOGIC");
}

float Model::computeVccintioVcoCurrent(Params& params, Data const& data) const {
    return data.getCommonData("IVCCINTIO_VCO_pMHz") * calculateFvco(params, data);
}

float Model::computeVccintioPfdClockCurrent(Params& params, Data const& data) const {
    return data.getCommonData("IVCCINTIO_PFD_pMHz") * calculatePfdClock(params, data) +
           data.getCommonData("IVCCINTIO_INPUT_COUNTERS_pMHz") * getInputFrequency(params, data);
}

// The counter runs at the VCO rate (divide times the output rate), the driver at the output rate.
float Model::computeVccintioClkoutCurrent(Params& params, Data const& data, Output member) const {
    int const divide = getClkoutDivide(params, data, member);
    if (divide == 1) return 0.0f;
    return (data.getCommonData("IVCCINTIO_OUTPUT_COUNTERS_pMHz") * static_cast<float>(divide) +
            data.getCommonData("IVCCINTIO_OUTPUT_DRIVER_pMHz")) *
           calculateClockout(params, data, member);
}

float Model::computeVccintioClockfboutCurrent(Params& params, Data const& data) const {
    return (data.getCommonData("IVCCINTIO_OUTPUT_COUNTERS_pMHz") * static_cast<float>(getMCounter(params, data)) +
            data.getCommonData("IVCCINTIO_OUTPUT_DRIVER_pMHz")) *
           calculateClockfbout(params, data);
}

float Model::computeVccintioXiphyClkCurrent(Params& params, Data const& data) const {
    return data.getCommonData("IVCCINTIO_XIPHY_CLK_pMHz") * calculateXiphyClock(params, data);
}

float Model::computeVccintioIntCurrent(Params& params, Data const& data) const {
    float sum = calculateVccintioBaseCurrent(params, data) + calculateVccintioVcoCurrent(params, data) +
                calculateVccintioPfdClockCurrent(params, data) + calculateVccintioClockfboutCurrent(params, data) +
                calculateVccintioXiphyClkCurrent(params, data);
    for (Output const output : kOutputs) sum += calculateVccintioClkoutCurrent(params, data, output);
    return data.getCommonData("FUDGE_FACTOR_INT") * sum;
}

float Model::computeVccauxPwr(Params& params, Data const& data) const {
    return calculateVccauxIntCurrent(params, data) * getVccaux(params, data);
}

float Model::computeVccintioPwr(Params& params, Data const& data) const {
    return calculateVccintioIntCurrent(params, data) * getVccintio(params, data);
}
