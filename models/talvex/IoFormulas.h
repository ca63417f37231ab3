#pragma once
// Formulas shared by the general-purpose I/O sheets of both architectures. Every figure is per signal (a
// pin, or a pair of pins for a differential standard) in mW, and per block in W on its rail. A line that
// switches draws C x VCCO x swing per cycle from VCCO: pF x V^2 x MHz x 0.001 gives mW, the lines cycling
// at DATA_RATE x TOGGLE_RATE / 2 (SWITCHING_FREQ). Terminations draw a DC current that follows from the
// resistor network and the line's level, high half the time; a current-mode driver draws its constant
// current whatever the data. Both sheets' data hold STANDARD.<standard>.<key>, STANDARD_RAIL,
// MAX_DATA_RATE.<bank>.<standard>, BANK.<bank>.<key>, SLEW_FACTOR, DRIVE_STRENGTHS and
// CONSTANTS.VCCO_TOLERANCE; the cells below are named alike in both.

#include <prsm/framework/PRSMModelTypes.h>
#include <prsm/models/talvex/DeviceScale.h>
#include <prsm/sheetfunc/PRSMHelperUtils.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace prsm::io {

// A standard's figure, 0 when the standard or the key has no row.
template <typename Data>
float standardFigure(Data const& data, std::string_view standard, std::string_view key) {
    return PRSMHelperUtils::IFERROR(data.getStandardOrError(standard, key), 0.0f);
}

template <typename Model>
float standardFigure(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data, std::string_view key) {
    return standardFigure(data, model.refIoStandard(params, data), key);
}

template <typename Model>
float bankFigure(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data, std::string_view key) {
    return PRSMHelperUtils::IFERROR(data.getBankOrError(model.refBankType(params, data), key), 0.0f);
}

template <typename Model>
bool terminated(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    return standardFigure(model, params, data, "TERMINATED") > 0.0f;
}

inline bool receives(std::string_view direction) {
    return direction == "INPUT" || direction == "BIDIR";
}

// The voltages the standard allows on its rail: its VCCO within the tolerance either way, to the
// millivolt, so that a warning quotes 1.71 V rather than the float product 1.7099999.
struct VoltageRange {
    float low;
    float high;
};

inline float toMillivolt(float volts) { return static_cast<float>(std::round(volts * 1000.0) / 1000.0); }

template <typename Data>
VoltageRange standardRange(Data const& data, std::string_view standard) {
    float const nominal = standardFigure(data, standard, "VCCO");
    float const tolerance =
        PRSMHelperUtils::IFERROR(data.getConstantsOrError(Data::ConstantsKey::VCCO_TOLERANCE), 0.0f);
    return {toMillivolt(nominal * (1.0f - tolerance)), toMillivolt(nominal * (1.0f + tolerance))};
}

// VCCO current per volt of VCCO (1/ohm) of a line our driver (impedance `driver`) holds at VCCO or
// ground half the time each, against a termination `termination` to `level` x VCCO at the far end:
// only the high half draws from our VCCO.
inline float outputTermination(float driver, float termination, float level) {
    if (termination <= 0.0f || driver + termination <= 0.0f) return 0.0f;
    return 0.5f * (1.0f - level) / (driver + termination);
}

// The same for an on-die termination at our input, built as a divider of odt / level to VCCO and
// odt / (1 - level) to ground (odt to level x VCCO), while the far end's driver (impedance `driver`)
// holds the line high or low half the time each: our VCCO feeds the divider's upper resistor.
inline float inputTermination(float driver, float odt, float level) {
    if (odt <= 0.0f || level <= 0.0f) return 0.0f;
    float const meanLine =
        driver > 0.0f ? (0.5f / driver + level / odt) / (1.0f / driver + 1.0f / odt) : 0.5f;
    return (1.0f - meanLine) * level / odt;
}

// ---- The standard's rail ------------------------------------------------------------------------------
// `rails` are the VCCO rails the sheet draws from.

// The design's voltage on the rail of that name; `absent` when the sheet does not draw from it.
template <typename Model, std::size_t N>
float railVoltage(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data,
                  typename Model::VccoRail const (&rails)[N], std::string_view rail, float absent) {
    for (auto member : rails)
        if (Model::memberName(member) == rail) return model.getVccoRail(params, data, member);
    return absent;
}

// The rail the standard's voltage selects, or "NONE": no row, or a rail the sheet does not draw from.
template <typename Model, std::size_t N>
std::string vccoRail(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data,
                     typename Model::VccoRail const (&rails)[N]) {
    std::string rail = data.getStandardRailOrError(model.refIoStandard(params, data));
    bool const known = std::any_of(std::begin(rails), std::end(rails),
                                   [&](auto member) { return Model::memberName(member) == rail; });
    return known ? rail : std::string("NONE");
}

template <typename Model, std::size_t N>
float vcco(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data,
           typename Model::VccoRail const (&rails)[N]) {
    return railVoltage(model, params, data, rails, model.refVccoRail(params, data), 0.0f);
}

// The voltage range the standard wants on a VCCO rail: 0 .. 0 on the rails it does not draw from.
template <typename Model>
float standardMin(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data,
                  typename Model::VccoRail member) {
    if (Model::memberName(member) != model.refVccoRail(params, data)) return 0.0f;
    return standardRange(data, model.refIoStandard(params, data)).low;
}

template <typename Model>
float standardMax(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data,
                  typename Model::VccoRail member) {
    if (Model::memberName(member) != model.refVccoRail(params, data)) return 0.0f;
    return standardRange(data, model.refIoStandard(params, data)).high;
}

// ---- Defaults and validity -----------------------------------------------------------------------------

template <typename Model>
int defaultDriveStrength(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    return static_cast<int>(standardFigure(model, params, data, "DRIVE"));
}

template <typename Model>
float defaultOdt(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    return standardFigure(model, params, data, "DEFAULT_ODT");
}

template <typename Model>
float defaultExternalTermination(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    return standardFigure(model, params, data, "DEFAULT_TERMINATION");
}

template <typename Model>
float noDataRate(Model const&, ParamsOf<Model>&, DataOf<Model> const&) {
    return 0.0f;
}

// The standard's highest rate on the bank type; 0 where the bank type does not carry it.
template <typename Model>
float maxDataRate(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    return PRSMHelperUtils::IFERROR(
        data.getMaxDataRateOrError(model.refBankType(params, data), model.refIoStandard(params, data)), 0.0f);
}

template <typename Model>
bool dataRateAllowed(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    float const rate = model.getDataRate(params, data);
    return rate > 0.0f && rate <= model.calculateGetMaxDataRate(params, data);
}

// A standard with drive settings takes one of them; the others have their impedance, and 0.
template <typename Model>
bool driveStrengthAllowed(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    int const drive = model.getDriveStrength(params, data);
    auto const settings = data.m_DriveStrengths.find(model.refIoStandard(params, data));
    if (settings == data.m_DriveStrengths.end()) return drive == 0;
    return std::find(settings->second.begin(), settings->second.end(), std::to_string(drive)) !=
           settings->second.end();
}

template <typename Model>
bool odtAllowed(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    float const odt = model.getOdt(params, data);
    if (odt == 0.0f) return true;
    return terminated(model, params, data) && odt >= standardFigure(model, params, data, "ODT_MIN") &&
           odt <= standardFigure(model, params, data, "ODT_MAX");
}

template <typename Model>
bool externalTerminationAllowed(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    float const termination = model.getExternalTermination(params, data);
    return termination == 0.0f || (termination > 0.0f && terminated(model, params, data));
}

// The standards the bank type carries whose voltage range holds the design's voltage on their rail.
template <typename Model, std::size_t N>
std::vector<std::string> allowedStandards(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data,
                                          typename Model::VccoRail const (&rails)[N]) {
    std::string const& bank = model.refBankType(params, data);
    std::vector<std::string> standards;
    for (std::string const& standard : data.getDropdownLists("STANDARD_LIST")) {
        if (PRSMHelperUtils::IFERROR(data.getMaxDataRateOrError(bank, standard), -1.0f) < 0.0f) continue;
        float const voltage =
            railVoltage(model, params, data, rails, data.getStandardRailOrError(standard), -1.0f);
        VoltageRange const range = standardRange(data, standard);
        if (voltage >= 0.0f && voltage >= range.low && voltage <= range.high) standards.push_back(standard);
    }
    return standards;
}

// ---- Activity ---------------------------------------------------------------------------------------

template <typename Model>
float driveShare(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    std::string_view const direction = model.refDirection(params, data);
    if (direction == "OUTPUT") return 1.0f;
    return direction == "BIDIR" ? model.getOutputShare(params, data) : 0.0f;
}

template <typename Model>
float receiveShare(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    std::string_view const direction = model.refDirection(params, data);
    if (direction == "INPUT") return 1.0f;
    return direction == "BIDIR" ? 1.0f - model.getOutputShare(params, data) : 0.0f;
}

template <typename Model>
float switchingFreq(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    return model.getDataRate(params, data) * model.getToggleRate(params, data) * 0.5f;
}

// The board's load, the pad and the output stage; a drive setting widens the stage, a fast edge lets
// more current cross it while it switches.
template <typename Model>
float outputCap(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    float const slew = PRSMHelperUtils::IFERROR(data.getSlewFactorOrError(model.refSlew(params, data)), 1.0f);
    float const stage = standardFigure(model, params, data, "DRIVER_CAP") +
                        standardFigure(model, params, data, "DRIVER_CAP_PER_MA") *
                            static_cast<float>(model.getDriveStrength(params, data));
    return model.getLoadCap(params, data) + bankFigure(model, params, data, "PAD_CAP") + slew * stage;
}

// ---- One signal's components (mW) -------------------------------------------------------------------------

template <typename Model>
float switchingComponent(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    float const vcco = model.calculateVcco(params, data);
    return model.calculateDriveShare(params, data) * standardFigure(model, params, data, "LINES") *
           model.calculateOutputCap(params, data) * vcco * vcco * standardFigure(model, params, data, "SWING") *
           model.calculateSwitchingFreq(params, data) * 0.001f * model.calculateVccoScale(params, data);
}

template <typename Model>
float terminationComponent(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    if (!terminated(model, params, data)) return 0.0f;
    float const driver = standardFigure(model, params, data, "DRIVER_OHMS");
    float const level = standardFigure(model, params, data, "TERM_LEVEL");
    float const perVolt =
        model.calculateDriveShare(params, data) *
            outputTermination(driver, model.getExternalTermination(params, data), level) +
        model.calculateReceiveShare(params, data) * inputTermination(driver, model.getOdt(params, data), level);
    float const vcco = model.calculateVcco(params, data);
    return standardFigure(model, params, data, "LINES") * vcco * vcco * perVolt * 1000.0f *
           model.calculateVccoScale(params, data);
}

// mA x V = mW.
template <typename Model>
float driverBiasComponent(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    return model.calculateDriveShare(params, data) * model.calculateVcco(params, data) *
           standardFigure(model, params, data, "DRIVER_CURRENT") * model.calculateVccoScale(params, data);
}

// The receiver's bias flows while it is enabled (an input, or a bidirectional pin all the time); its
// switching follows the data it receives. `auxVolts` gives the voltage of the rail the receivers draw
// from; VCCAUX_SCALE scales them whichever it is.
template <typename Model>
float receiverComponent(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data,
                        float (Model::*auxVolts)(ParamsOf<Model>&, DataOf<Model> const&) const) {
    float const volts = (model.*auxVolts)(params, data);
    float const bias = receives(model.refDirection(params, data))
                           ? standardFigure(model, params, data, "RX_BIAS") * volts
                           : 0.0f;
    float const switching = model.calculateReceiveShare(params, data) *
                            standardFigure(model, params, data, "RX_CAP") * volts * volts *
                            model.calculateSwitchingFreq(params, data) * 0.001f;
    return (bias + switching) * model.calculateVccauxScale(params, data);
}

// Pre-driver and serialiser of an output, deserialiser of an input, with the data; the I/O clocking at
// half the bit rate whatever the data.
template <typename Model>
float ioLogicComponent(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    float const vccintio = model.getVccintio(params, data);
    float const dataCapFreq =
        (model.calculateDriveShare(params, data) * bankFigure(model, params, data, "PREDRIVER_CAP") +
         model.calculateReceiveShare(params, data) * bankFigure(model, params, data, "DESER_CAP")) *
        model.calculateSwitchingFreq(params, data);
    float const clockCapFreq = bankFigure(model, params, data, "CLOCK_CAP") * model.getDataRate(params, data) * 0.5f;
    return (dataCapFreq + clockCapFreq) * vccintio * vccintio * 0.001f * model.calculateVccintioScale(params, data);
}

template <typename Model>
float vccoSignalPower(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    return model.calculateSwitchingComponent(params, data) + model.calculateTerminationComponent(params, data) +
           model.calculateDriverBiasComponent(params, data);
}

template <typename Model>
float signalPower(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    return model.calculateVccoSignalPower(params, data) + model.calculateReceiverComponent(params, data) +
           model.calculateIoLogicComponent(params, data);
}

// ---- The block (W) ------------------------------------------------------------------------------------

template <typename Model>
float blockPower(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data, float signalMilliwatts) {
    return static_cast<float>(model.getPinCount(params, data)) * signalMilliwatts * 0.001f;
}

// The block's power on a rail from one signal's figure: `signal` is the cell function of that figure.
template <typename Model>
float railPower(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data,
                float (Model::*signal)(ParamsOf<Model>&, DataOf<Model> const&) const) {
    return blockPower(model, params, data, (model.*signal)(params, data));
}

template <typename Model>
float vccoPower(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data,
                typename Model::VccoRail member) {
    if (Model::memberName(member) != model.refVccoRail(params, data)) return 0.0f;
    return blockPower(model, params, data, model.calculateVccoSignalPower(params, data));
}

// ---- Pins and banks ------------------------------------------------------------------------------------

// Formed in 64 bits; a count beyond the int range wraps as the cell stores it.
template <typename Model>
int pinsUsed(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    return static_cast<int>(static_cast<std::int64_t>(model.getPinCount(params, data)) *
                            static_cast<std::int64_t>(standardFigure(model, params, data, "LINES")));
}

// Whole banks: a block's pins fill banks of their own.
template <typename Model>
int banksUsed(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    auto const perBank = static_cast<std::int64_t>(bankFigure(model, params, data, "PINS"));
    std::int64_t const pins = model.calculatePinsUsed(params, data);
    if (perBank <= 0 || pins <= 0) return 0;
    return static_cast<int>((pins + perBank - 1) / perBank);
}

}  // namespace prsm::io
