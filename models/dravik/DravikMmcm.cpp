// Formulas of the older architecture's mixed-mode clock manager: what the fractional counters and the
// spread-spectrum modulator add to the frequency chain and currents it shares with the PLL
// (DravikClockManagerFormulas.h). Currents are per manager in A; powers are in W.
#include <prsm/models/dravik/PRSMDravikMmcmModel.h>
#include <prsm/models/dravik/PRSMDravikMmcmCells.h>

#include "DravikClockManagerFormulas.h"

#include <cmath>

using PRSMHelperUtils::IFERROR;
using Model = PRSMDravikMmcmModel;
using Data = Model::Data;

namespace clocking = prsm::clocking;

namespace {

constexpr Model::Output kOutputs[] = {Model::Output::N0, Model::Output::N1, Model::Output::N2,
                                      Model::Output::N3, Model::Output::N4, Model::Output::N5,
                                      Model::Output::N6};

// The step of a fractional part (an eighth); 0 when the file gives none: then no fraction is allowed.
float fractionStep(Data const& data) {
    return IFERROR(data.getLimitsOrError(Data::LimitsKey::FRACTION_STEP), 0.0f);
}

// A fractional part is 0, or below 1 and a whole number of steps.
bool fractionValid(Data const& data, float fraction) {
    if (fraction == 0.0f) return true;
    float const step = fractionStep(data);
    if (!(fraction > 0.0f && fraction < 1.0f) || step <= 0.0f) return false;
    float const steps = fraction / step;
    return std::fabs(steps - std::round(steps)) < 1e-4f;
}

}  // namespace

// ---- The frequency chain ------------------------------------------------------------------------------

// The feedback counter counts M and a fraction of a VCO period: the VCO runs at (M + fraction) times
// the phase detector's clock.
float Model::computeFvco(Params& params, Data const& data) const {
    float const multiplier = static_cast<float>(getMCounter(params, data)) + getMFraction(params, data);
    return multiplier * calculatePfdClock(params, data);
}

// Output 0 divides by its divider plus its fraction; a divide of 1 or less (0: unused) drives no clock.
float Model::computeClockout(Params& params, Data const& data, Output member) const {
    int const divide = getClkoutDivide(params, data, member);
    if (static_cast<unsigned>(divide) <= 1u) return 0.0f;
    float const fraction = member == Output::N0 ? getClkout0Fraction(params, data) : 0.0f;
    return calculateFvco(params, data) / (static_cast<float>(divide) + fraction);
}

// ---- Currents -----------------------------------------------------------------------------------------

// A fractional counter in use adds a phase interpolator's control logic at the VCO rate.
float Model::computeVccintFractionalCurrent(Params& params, Data const& data) const {
    int used = getMFraction(params, data) != 0.0f ? 1 : 0;
    if (calculateClockout(params, data, Output::N0) > 0.0f && getClkout0Fraction(params, data) != 0.0f)
        ++used;
    return static_cast<float>(used) *
           clocking::coefficient(data, Data::CommonDataKey::IVCCINT_FRACTIONAL_pMHz) *
           calculateFvco(params, data);
}

// The modulator, when spread spectrum is "ON" (exactly), updates at the phase detector's clock.
float Model::computeVccintSpreadSpectrumCurrent(Params& params, Data const& data) const {
    if (std::string_view(refSpreadSpectrum(params, data)) != "ON") return 0.0f;
    return clocking::coefficient(data, Data::CommonDataKey::IVCCINT_SPREAD_SPECTRUM_pMHz) *
           calculatePfdClock(params, data);
}

float Model::computeVccintIntCurrent(Params& params, Data const& data) const {
    float const parts =
        calculateVccintBaseCurrent(params, data) + calculateVccintPfdClockCurrent(params, data) +
        calculateVccintClockfboutCurrent(params, data) + calculateVccintFractionalCurrent(params, data) +
        calculateVccintSpreadSpectrumCurrent(params, data);
    return clocking::intCurrent(*this, params, data, parts, kOutputs);
}

float Model::computeTotalPwr(Params& params, Data const& data) const {
    return calculateVccintPwr(params, data) + calculateVccauxPwr(params, data);
}

// ---- Validity -----------------------------------------------------------------------------------------

bool Model::isValidInstanceCount(Params& params, Data const& data) const {
    return clocking::instanceCountValid(*this, params, data, Data::DeviceResourcesKey::DEFAULT_MMCMS,
                                        "MMCMS");
}
bool Model::isValidInputFrequency(Params& params, Data const& data) const {
    return clocking::inputFrequencyValid(*this, params, data);
}
bool Model::isValidDCounter(Params& params, Data const& data) const {
    return clocking::dCounterValid(*this, params, data);
}
bool Model::isValidMCounter(Params& params, Data const& data) const {
    return clocking::mCounterValid(*this, params, data);
}
bool Model::isValidMFraction(Params& params, Data const& data) const {
    return fractionValid(data, getMFraction(params, data));
}
bool Model::isValidClkout0Fraction(Params& params, Data const& data) const {
    return fractionValid(data, getClkout0Fraction(params, data));
}
bool Model::isValidClkout0Divide(Params& params, Data const& data) const {
    return clocking::clkoutDivideValid(*this, params, data, Output::N0);
}
bool Model::isValidClkout1Divide(Params& params, Data const& data) const {
    return clocking::clkoutDivideValid(*this, params, data, Output::N1);
}
bool Model::isValidClkout2Divide(Params& params, Data const& data) const {
    return clocking::clkoutDivideValid(*this, params, data, Output::N2);
}
bool Model::isValidClkout3Divide(Params& params, Data const& data) const {
    return clocking::clkoutDivideValid(*this, params, data, Output::N3);
}
bool Model::isValidClkout4Divide(Params& params, Data const& data) const {
    return clocking::clkoutDivideValid(*this, params, data, Output::N4);
}
bool Model::isValidClkout5Divide(Params& params, Data const& data) const {
    return clocking::clkoutDivideValid(*this, params, data, Output::N5);
}
bool Model::isValidClkout6Divide(Params& params, Data const& data) const {
    return clocking::clkoutDivideValid(*this, params, data, Output::N6);
}

float Model::computeGetMaxMFraction(Params&, Data const& data) const {
    float const step = fractionStep(data);
    return step > 0.0f ? 1.0f - step : 0.0f;
}
float Model::computeGetMaxClkout0Fraction(Params& params, Data const& data) const {
    return computeGetMaxMFraction(params, data);
}
