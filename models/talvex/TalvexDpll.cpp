// Formulas of the digital PLL. Coefficients are "COMMON_DATA" entries in amperes, or in amperes per MHz
// for the "_pMHz" keys; each rail's current is summed per function, calibrated by the rail's factor and
// multiplied by the rail voltage, giving watts.
#include <prsm/models/talvex/PRSMTalvexDpllModel.h>
#include <prsm/models/talvex/PRSMTalvexDpllCells.h>

#include "ClockManagerFormulas.h"

using Model = PRSMTalvexDpllModel;

namespace clocking = prsm::clocking;

namespace {

constexpr Model::Output kOutputs[] = {Model::Output::N0, Model::Output::N1, Model::Output::N2,
                                      Model::Output::N3};

}  // namespace

// VCCAUX: regulator and bias, the oscillator, the phase-detector front end and the output drivers.
float Model::computeVccAuxBaseCurrent(Params&, Data const& data) const {
    return data.getCommonData(Data::CommonDataKey::IVCCAUX_REGULATOR) +
           data.getCommonData(Data::CommonDataKey::IVCCAUX_BIAS);
}

float Model::computeVccAuxPfdClockCurrent(Params& params, Data const& data) const {
    return data.getCommonData(Data::CommonDataKey::IVCCAUX_PFD_pMHz) * calculatePfdClock(params, data);
}

float Model::computeVccAuxClkoutCurrent(Params& params, Data const& data, Output member) const {
    if (getClkoutDivide(params, data, member) == 1) return 0.0f;
    return data.getCommonData(Data::CommonDataKey::IVCCAUX_OUTPUT_DRIVER_pMHz) *
           calculateClockout(params, data, member);
}

float Model::computeVccauxIntCurrent(Params& params, Data const& data) const {
    float const parts = calculateVccAuxBaseCurrent(params, data) + calculateVccAuxVcoCurrent(params, data) +
                        calculateVccAuxPfdClockCurrent(params, data);
    return clocking::railCurrent(*this, params, data, parts, kOutputs, &Model::calculateVccAuxClkoutCurrent,
                                 Data::CommonDataKey::FUDGE_FACTOR_AUX);
}

// VCCINT: loop filter and control logic, the oscillator's control word and feedback divider (both at
// the oscillator rate), the phase detector and input divider, and the output counters.
float Model::computeVccintBaseCurrent(Params&, Data const& data) const {
    return data.getCommonData(Data::CommonDataKey::IVCCINT_LOOP_FILTER) +
           data.getCommonData(Data::CommonDataKey::IVCCINT_CTRL_LOGIC);
}

// The loop and, when spread spectrum is "ON" (exactly), its modulator update at the phase-detector rate.
float Model::computeVccintPfdClockCurrent(Params& params, Data const& data) const {
    float const perMhz = data.getCommonData(Data::CommonDataKey::IVCCINT_PFD_pMHz) +
                         (std::string_view(refSpreadSpectrum(params, data)) == "ON"
                              ? data.getCommonData(Data::CommonDataKey::IVCCINT_SPREAD_SPECTRUM_pMHz)
                              : 0.0f);
    return perMhz * calculatePfdClock(params, data) +
           data.getCommonData(Data::CommonDataKey::IVCCINT_INPUT_COUNTERS_pMHz) *
               getInputFrequency(params, data);
}

float Model::computeVccintIntCurrent(Params& params, Data const& data) const {
    float const parts = calculateVccintBaseCurrent(params, data) + calculateVccintVcoCurrent(params, data) +
                        calculateVccintPfdClockCurrent(params, data);
    return clocking::railCurrent(*this, params, data, parts, kOutputs, &Model::calculateVccintClkoutCurrent,
                                 Data::CommonDataKey::FUDGE_FACTOR_INT);
}

// VCCRAM: the configuration and calibration memory, independent of the clocks.
float Model::computeVccramBaseCurrent(Params&, Data const& data) const {
    return data.getCommonData(Data::CommonDataKey::IVCCRAM_CONFIG);
}

float Model::computeVccramIntCurrent(Params& params, Data const& data) const {
    return data.getCommonData(Data::CommonDataKey::FUDGE_FACTOR_RAM) *
           calculateVccramBaseCurrent(params, data);
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
