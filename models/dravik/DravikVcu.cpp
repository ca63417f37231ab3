// Formulas of the video codec unit's sheet. One block is one direction of one codec: its power on
// VCCVCUINT is a standing term while streams run plus a term per Mpixel/s they need, with the supply's
// voltage law (the processing systems' exponent) and the part's scale; the unit's PLL and clocking draw
// a fixed power on VCCAUX while it is used. Streams beyond the unit's capacity are flagged, and
// calculated as given.
#include <prsm/models/dravik/PRSMDravikVcuModel.h>
#include <prsm/models/dravik/PRSMDravikVcuCells.h>

#include <prsm/models/talvex/ProcessingSystemFormulas.h>
#include <prsm/sheetfunc/PRSMHelperUtils.h>

using PRSMHelperUtils::IFERROR;
using PRSMHelperUtils::ISERROR;
using Model = PRSMDravikVcuModel;
using Data = Model::Data;
using Conditions = Data::SimConditionsKey;

namespace {

constexpr int kMaxStreams = 32;

}  // namespace

float Model::computeGetMinStreams(Params&, Data const&) const {
    return 0.0f;
}

float Model::computeGetMaxStreams(Params&, Data const&) const {
    return static_cast<float>(kMaxStreams);
}

// Mpixel/s: streams x pixels per picture x pictures per second (0 for a resolution the file lacks).
float Model::computePixelRate(Params& params, Data const& data) const {
    float const pixels = IFERROR(data.getResolutionPixelsOrError(refResolution(params, data)), 0.0f);
    return static_cast<float>(static_cast<double>(getStreams(params, data)) * pixels *
                              getFrameRate(params, data) * 1e-6);
}

// Against one direction's capacity; 0 when the file gives none.
float Model::computeUtilisation(Params& params, Data const& data) const {
    float const capacity = data.getSimConditionsOrError(Conditions::CAPACITY_MPIXELS);
    if (ISERROR(capacity) || !(capacity > 0.0f)) return 0.0f;
    return calculatePixelRate(params, data) / capacity;
}

bool Model::isValidStreams(Params& params, Data const& data) const {
    int const streams = getStreams(params, data);
    return streams >= 0 && streams <= kMaxStreams && calculateUtilisation(params, data) <= 1.0f;
}

float Model::computeVoltageScaling(Params& params, Data const& data) const {
    float const characterised = data.getSimConditionsOrError(Conditions::VCU_VOLTAGE);
    if (ISERROR(characterised)) return 1.0f;
    return prsm::ps::voltageScaling(getVccvcuint(params, data), characterised);
}

float Model::computeDeviceScale(Params& params, Data const& data) const {
    return IFERROR(data.getBlockPowerScaleOrError(refDevice(params, data), "VCU"),
                   IFERROR(data.getBlockPowerScaleOrError(Data::BlockPowerScaleKey::DEFAULT_VCU), 1.0f));
}

float Model::computeVccvcuintPower(Params& params, Data const& data) const {
    if (getStreams(params, data) <= 0) return 0.0f;
    std::string const& codec = refCodec(params, data);
    std::string const& mode = refMode(params, data);
    double const standing = IFERROR(data.getCodecDataOrError(codec, mode, "STANDING"), 0.0f);
    double const perMpixel = IFERROR(data.getCodecDataOrError(codec, mode, "PER_MPIXEL"), 0.0f);
    return static_cast<float>((standing + perMpixel * calculatePixelRate(params, data)) *
                              calculateVoltageScaling(params, data) * calculateDeviceScale(params, data));
}

// The square of VCCAUX against its characterised voltage.
float Model::computeVccauxPower(Params& params, Data const& data) const {
    if (getStreams(params, data) <= 0) return 0.0f;
    double const power = IFERROR(data.getSimConditionsOrError(Conditions::AUX_POWER), 0.0f);
    float const characterised = data.getSimConditionsOrError(Conditions::AUX_VOLTAGE);
    if (ISERROR(characterised) || !(characterised > 0.0f)) return static_cast<float>(power);
    double const ratio = getVccaux(params, data) / characterised;
    return static_cast<float>(power * ratio * ratio);
}

float Model::computeTotalPower(Params& params, Data const& data) const {
    return calculateVccvcuintPower(params, data) + calculateVccauxPower(params, data);
}
