// Formulas of the mixed-mode clock manager. Coefficients are "COMMON_DATA" entries in amperes, or in
// amperes per MHz for the "_pMHz" keys; powers come out in watts.
#include <prsm/models/talvex/PRSMTalvexMmcmModel.h>
#include <prsm/models/talvex/PRSMTalvexMmcmCells.h>

#include "ClockManagerFormulas.h"

using Model = PRSMTalvexMmcmModel;

namespace clocking = prsm::clocking;

namespace {

constexpr Model::Output kOutputs[] = {Model::Output::N0, Model::Output::N1, Model::Output::N2,
                                      Model::Output::N3, Model::Output::N4, Model::Output::N5,
                                      Model::Output::N6};

}  // namespace

// The VCCRAM share of the VCO ring is four times its per-MHz coefficient; the factor belongs to the model.
float Model::computeVccramVcoCurrent(Params& params, Data const& data) const {
    return clocking::vcoCurrent(*this, params, data, Data::CommonDataKey::IVCCINT_VCO_RING_pMHz) * 4;
}

float Model::computeVccramBaseCurrent(Params&, Data const& data) const {
    return data.getCommonData(Data::CommonDataKey::IVCCINT_FREQ_COMP) +
           data.getCommonData(Data::CommonDataKey::IVCCINT_CTRL_LOGIC);
}

// The phase detector toggles at the PFD rate; the input counters see both edges of the input clock.
float Model::computeVccramPfdClockCurrent(Params& params, Data const& data) const {
    return data.getCommonData(Data::CommonDataKey::IVCCINT_PFD) * calculatePfdClock(params, data) +
           data.getCommonData(Data::CommonDataKey::IVCCINT_INPUT_COUNTERS) * 2 *
               getInputFrequency(params, data);
}

// The interpolator and the counter run at the VCO rate (divide times the output rate); the driver at the
// output rate.
float Model::computeVccramClkoutCurrent(Params& params, Data const& data, Output member) const {
    int const divide = getClkoutDivide(params, data, member);
    if (divide == 1) return 0.0f;
    float const div = static_cast<float>(divide);
    return (data.getCommonData(Data::CommonDataKey::IVCCINT_INTERPOLATOR) * div +
            data.getCommonData(Data::CommonDataKey::IVCCINT_OUTPUT_COUNTERS) * div +
            data.getCommonData(Data::CommonDataKey::IVCCINT_OUTPUT_DRIVER)) *
           calculateClockout(params, data, member);
}

float Model::computeVccramClockfboutCurrent(Params& params, Data const& data) const {
    float const m = static_cast<float>(getMCounter(params, data));
    float const spread = std::string_view(refSpreadSpectrum(params, data)) == "ON"
                             ? data.getCommonData(Data::CommonDataKey::IVCCINT_SPREAD_SPECTRUM)
                             : 0.0f;
    return (data.getCommonData(Data::CommonDataKey::IVCCINT_INTERPOLATOR) * m +
            data.getCommonData(Data::CommonDataKey::IVCCINT_OUTPUT_COUNTERS) * m +
            data.getCommonData(Data::CommonDataKey::IVCCINT_OUTPUT_DRIVER) + spread) *
           calculateClockfbout(params, data);
}

float Model::computeVccramIntCurrent(Params& params, Data const& data) const {
    float const parts = calculateVccramBaseCurrent(params, data) + calculateVccramVcoCurrent(params, data) +
                        calculateVccramPfdClockCurrent(params, data) +
                        calculateVccramClockfboutCurrent(params, data);
    return clocking::railCurrent(*this, params, data, parts, kOutputs, &Model::calculateVccramClkoutCurrent,
                                 Data::CommonDataKey::FUDGE_FACTOR_INT);
}

float Model::computeVccauxBaseCurrent(Params&, Data const& data) const {
    return data.getCommonData(Data::CommonDataKey::IVCCAUX_AVDD_REGULATOR) +
           data.getCommonData(Data::CommonDataKey::IVCCAUX_CHARGE_PUMP) +
           data.getCommonData(Data::CommonDataKey::IVCCAUX_LFDRV_KVCO);
}

// The calibration offset is taken off before the common factor is applied, so that the rail power
// comes out as VCCAUX * (FUDGE_FACTOR * (base + VCO) - FUDGE_FACTOR_AUX).
float Model::computeVccauxIntCurrent(Params& params, Data const& data) const {
    float const current = calculateVccauxBaseCurrent(params, data) + calculateVccauxVcoCurrent(params, data);
    float const factor = data.getCommonData(Data::CommonDataKey::FUDGE_FACTOR);
    return factor == 0.0f ? current
                          : current - data.getCommonData(Data::CommonDataKey::FUDGE_FACTOR_AUX) / factor;
}

float Model::computeVccauxPwr(Params& params, Data const& data) const {
    return data.getCommonData(Data::CommonDataKey::FUDGE_FACTOR) * calculateVccauxIntCurrent(params, data) *
           getVccaux(params, data);
}

// The VCCRAM power scales with the square of the rail voltage relative to the characterisation voltage.
float Model::computeVccramPwr(Params& params, Data const& data) const {
    float const simulated = data.getCommonData(Data::CommonDataKey::VCCRAM_SIM);
    if (simulated == 0.0f) return 0.0f;
    float const vccram = getVccram(params, data);
    return data.getCommonData(Data::CommonDataKey::FUDGE_FACTOR) * calculateVccramIntCurrent(params, data) *
           vccram * (vccram / simulated);
}
