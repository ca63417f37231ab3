// Formulas of the general-purpose I/O sheet. Every figure is per signal (a pin, or a pair of pins for a
// differential standard) in mW, and per block in W on its rail. A line that switches draws
// C x VCCO x swing per cycle from VCCO: pF x V^2 x MHz x 0.001 gives mW, the lines cycling at
// DATA_RATE x TOGGLE_RATE / 2 (SWITCHING_FREQ). Terminations draw a DC current that follows from the
// resistor network and the line's level, high half the time; a current-mode driver draws its constant
// current whatever the data.
#include <prsm/models/talvex/PRSMTalvexIoModel.h>
#include <prsm/models/talvex/PRSMTalvexIoCells.h>

#include <prsm/sheetfunc/PRSMHelperUtils.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

using PRSMHelperUtils::IFERROR;
using Model = PRSMTalvexIoModel;
using Data = Model::Data;
using Rail = Model::VccoRail;

namespace {

constexpr Rail kVccoRails[] = {Rail::VCCO10, Rail::VCCO11, Rail::VCCO12, Rail::VCCO135,
                               Rail::VCCO15, Rail::VCCO18, Rail::VCCO25, Rail::VCCO33};

// What VCCO_RAIL holds when the standard has no rail: no row, or a rail this sheet does not draw from.
constexpr std::string_view kNoRail = "NONE";

// A standard's figure, 0 when the standard or the key has no row.
float standardFigure(Data const& data, std::string_view standard, std::string_view key) {
    return IFERROR(data.getStandardOrError(standard, key), 0.0f);
}

float standardFigure(Model const& model, Model::Params& params, Data const& data, std::string_view key) {
    return standardFigure(data, model.refIoStandard(params, data), key);
}

float bankFigure(Model const& model, Model::Params& params, Data const& data, std::string_view key) {
    return IFERROR(data.getBankOrError(model.refBankType(params, data), key), 0.0f);
}

bool terminated(Model const& model, Model::Params& params, Data const& data) {
    return standardFigure(model, params, data, "TERMINATED") > 0.0f;
}

bool receives(std::string_view direction) {
    return direction == "INPUT" || direction == "BIDIR";
}

// The voltages the standard allows on its rail: its VCCO within the tolerance either way.
struct VoltageRange {
    float low;
    float high;
};

VoltageRange standardRange(Data const& data, std::string_view standard) {
    float const nominal = standardFigure(data, standard, "VCCO");
    float const tolerance = IFERROR(data.getConstantsOrError(Data::ConstantsKey::VCCO_TOLERANCE), 0.0f);
    return {nominal * (1.0f - tolerance), nominal * (1.0f + tolerance)};
}

// VCCO current per volt of VCCO (1/ohm) of a line our driver (impedance `driver`) holds at VCCO or
// ground half the time each, against a termination `termination` to `level` x VCCO at the far end:
// only the high half draws from our VCCO.
float outputTermination(float driver, float termination, float level) {
    if (termination <= 0.0f || driver + termination <= 0.0f) return 0.0f;
    return 0.5f * (1.0f - level) / (driver + termination);
}

// The same for an on-die termination at our input, built as a divider of odt / level to VCCO and
// odt / (1 - level) to ground (odt to level x VCCO), while the far end's driver (impedance `driver`)
// holds the line high or low half the time each: our VCCO feeds the divider's upper resistor.
float inputTermination(float driver, float odt, float level) {
    if (odt <= 0.0f || level <= 0.0f) return 0.0f;
    float const meanLine =
        driver > 0.0f ? (0.5f / driver + level / odt) / (1.0f / driver + 1.0f / odt) : 0.5f;
    return (1.0f - meanLine) * level / odt;
}

// The part's own scale, else the DEFAULT row's, else 1.
float deviceScale(Data const& data, std::string_view device, Data::BlockPowerScaleKey fallback,
                  std::string_view key) {
    return IFERROR(data.getBlockPowerScaleOrError(device, key),
                   IFERROR(data.getBlockPowerScaleOrError(fallback), 1.0f));
}

}  // namespace

// ---- The standard's rail --------------------------------------------------------------------------------

std::string Model::computeVccoRail(Params& params, Data const& data) const {
    std::string rail = data.getStandardRailOrError(refIoStandard(params, data));
    bool const known = std::any_of(std::begin(kVccoRails), std::end(kVccoRails),
                                   [&](Rail member) { return memberName(member) == rail; });
    return known ? rail : std::string(kNoRail);
}

float Model::computeVcco(Params& params, Data const& data) const {
    std::string_view const rail = refVccoRail(params, data);
    for (Rail member : kVccoRails)
        if (memberName(member) == rail) return getVccoRail(params, data, member);
    return 0.0f;
}

float Model::computeStandardMin(Params& params, Data const& data, VccoRail member) const {
    if (memberName(member) != refVccoRail(params, data)) return 0.0f;
    return standardRange(data, refIoStandard(params, data)).low;
}

float Model::computeStandardMax(Params& params, Data const& data, VccoRail member) const {
    if (memberName(member) != refVccoRail(params, data)) return 0.0f;
    return standardRange(data, refIoStandard(params, data)).high;
}

// ---- Defaults and validity ----------------------------------------------------------------------------

int Model::defaultDriveStrength(Params& params, Data const& data) const {
    return static_cast<int>(standardFigure(*this, params, data, "DRIVE"));
}

float Model::defaultOdt(Params& params, Data const& data) const {
    return standardFigure(*this, params, data, "DEFAULT_ODT");
}

float Model::defaultExternalTermination(Params& params, Data const& data) const {
    return standardFigure(*this, params, data, "DEFAULT_TERMINATION");
}

// The standards the bank type carries whose voltage range holds the design's voltage on their rail.
std::vector<std::string> Model::validListIoStandard(Params& params, Data const& data) const {
    std::string const& bank = refBankType(params, data);
    std::vector<std::string> standards;
    for (std::string const& standard : data.getDropdownLists("STANDARD_LIST")) {
        if (IFERROR(data.getMaxDataRateOrError(bank, standard), -1.0f) < 0.0f) continue;
        std::string const rail = data.getStandardRailOrError(standard);
        VoltageRange const range = standardRange(data, standard);
        for (Rail member : kVccoRails) {
            if (memberName(member) != rail) continue;
            float const voltage = getVccoRail(params, data, member);
            if (voltage >= range.low && voltage <= range.high) standards.push_back(standard);
        }
    }
    return standards;
}

float Model::computeGetMinDataRate(Params&, Data const&) const {
    return 0.0f;
}

float Model::computeGetMaxDataRate(Params& params, Data const& data) const {
    return IFERROR(data.getMaxDataRateOrError(refBankType(params, data), refIoStandard(params, data)), 0.0f);
}

bool Model::isValidDataRate(Params& params, Data const& data) const {
    float const rate = getDataRate(params, data);
    return rate > 0.0f && rate <= calculateGetMaxDataRate(params, data);
}

// A standard with drive settings takes one of them; the others have their impedance, and 0.
bool Model::isValidDriveStrength(Params& params, Data const& data) const {
    int const drive = getDriveStrength(params, data);
    auto const settings = data.m_DriveStrengths.find(refIoStandard(params, data));
    if (settings == data.m_DriveStrengths.end()) return drive == 0;
    return std::find(settings->second.begin(), settings->second.end(), std::to_string(drive)) !=
           settings->second.end();
}

bool Model::isValidOdt(Params& params, Data const& data) const {
    float const odt = getOdt(params, data);
    if (odt == 0.0f) return true;
    return terminated(*this, params, data) && odt >= standardFigure(*this, params, data, "ODT_MIN") &&
           odt <= standardFigure(*this, params, data, "ODT_MAX");
}

bool Model::isValidExternalTermination(Params& params, Data const& data) const {
    float const termination = getExternalTermination(params, data);
    return termination == 0.0f || (termination > 0.0f && terminated(*this, params, data));
}

// ---- Activity ----------------------------------------------------------------------------------------

float Model::computeDriveShare(Params& params, Data const& data) const {
    std::string_view const direction = refDirection(params, data);
    if (direction == "OUTPUT") return 1.0f;
    return direction == "BIDIR" ? getOutputShare(params, data) : 0.0f;
}

float Model::computeReceiveShare(Params& params, Data const& data) const {
    std::string_view const direction = refDirection(params, data);
    if (direction == "INPUT") return 1.0f;
    return direction == "BIDIR" ? 1.0f - getOutputShare(params, data) : 0.0f;
}

float Model::computeSwitchingFreq(Params& params, Data const& data) const {
    return getDataRate(params, data) * getToggleRate(params, data) * 0.5f;
}

// The board's load, the pad and the output stage; a drive setting widens the stage, a fast edge
// lets more current cross it while it switches.
float Model::computeOutputCap(Params& params, Data const& data) const {
    float const slew = IFERROR(data.getSlewFactorOrError(refSlew(params, data)), 1.0f);
    float const stage = standardFigure(*this, params, data, "DRIVER_CAP") +
                        standardFigure(*this, params, data, "DRIVER_CAP_PER_MA") *
                            static_cast<float>(getDriveStrength(params, data));
    return getLoadCap(params, data) + bankFigure(*this, params, data, "PAD_CAP") + slew * stage;
}

float Model::computeVccoScale(Params& params, Data const& data) const {
    return deviceScale(data, refDevice(params, data), Data::BlockPowerScaleKey::DEFAULT_IO_VCCO, "IO_VCCO");
}
float Model::computeVccauxScale(Params& params, Data const& data) const {
    return deviceScale(data, refDevice(params, data), Data::BlockPowerScaleKey::DEFAULT_IO_VCCAUX,
                       "IO_VCCAUX");
}
float Model::computeVccintioScale(Params& params, Data const& data) const {
    return deviceScale(data, refDevice(params, data), Data::BlockPowerScaleKey::DEFAULT_IO_VCCINTIO,
                       "IO_VCCINTIO");
}

// ---- One signal's components (mW) -----------------------------------------------------------------------

float Model::computeSwitchingComponent(Params& params, Data const& data) const {
    float const vcco = calculateVcco(params, data);
    return calculateDriveShare(params, data) * standardFigure(*this, params, data, "LINES") *
           calculateOutputCap(params, data) * vcco * vcco * standardFigure(*this, params, data, "SWING") *
           calculateSwitchingFreq(params, data) * 0.001f * calculateVccoScale(params, data);
}

float Model::computeTerminationComponent(Params& params, Data const& data) const {
    if (!terminated(*this, params, data)) return 0.0f;
    float const driver = standardFigure(*this, params, data, "DRIVER_OHMS");
    float const level = standardFigure(*this, params, data, "TERM_LEVEL");
    float const perVolt =
        calculateDriveShare(params, data) *
            outputTermination(driver, getExternalTermination(params, data), level) +
        calculateReceiveShare(params, data) * inputTermination(driver, getOdt(params, data), level);
    float const vcco = calculateVcco(params, data);
    return standardFigure(*this, params, data, "LINES") * vcco * vcco * perVolt * 1000.0f *
           calculateVccoScale(params, data);
}

// mA x V = mW.
float Model::computeDriverBiasComponent(Params& params, Data const& data) const {
    return calculateDriveShare(params, data) * calculateVcco(params, data) *
           standardFigure(*this, params, data, "DRIVER_CURRENT") * calculateVccoScale(params, data);
}

// The receiver's bias flows while it is enabled (an input, or a bidirectional pin all the time); its
// switching follows the data it receives.
float Model::computeReceiverComponent(Params& params, Data const& data) const {
    float const vccaux = getVccaux(params, data);
    float const bias =
        receives(refDirection(params, data)) ? standardFigure(*this, params, data, "RX_BIAS") * vccaux : 0.0f;
    float const switching = calculateReceiveShare(params, data) *
                            standardFigure(*this, params, data, "RX_CAP") * vccaux * vccaux *
                            calculateSwitchingFreq(params, data) * 0.001f;
    return (bias + switching) * calculateVccauxScale(params, data);
}

// Pre-driver and serialiser of an output, deserialiser of an input, with the data; the I/O clocking
// at half the bit rate whatever the data.
float Model::computeIoLogicComponent(Params& params, Data const& data) const {
    float const vccintio = getVccintio(params, data);
    float const dataCapFreq =
        (calculateDriveShare(params, data) * bankFigure(*this, params, data, "PREDRIVER_CAP") +
         calculateReceiveShare(params, data) * bankFigure(*this, params, data, "DESER_CAP")) *
        calculateSwitchingFreq(params, data);
    float const clockCapFreq =
        bankFigure(*this, params, data, "CLOCK_CAP") * getDataRate(params, data) * 0.5f;
    return (dataCapFreq + clockCapFreq) * vccintio * vccintio * 0.001f * calculateVccintioScale(params, data);
}

float Model::computeVccoSignalPower(Params& params, Data const& data) const {
    return calculateSwitchingComponent(params, data) + calculateTerminationComponent(params, data) +
           calculateDriverBiasComponent(params, data);
}

float Model::computeSignalPower(Params& params, Data const& data) const {
    return calculateVccoSignalPower(params, data) + calculateReceiverComponent(params, data) +
           calculateIoLogicComponent(params, data);
}

// ---- The block (W) ----------------------------------------------------------------------------------

namespace {

float blockPower(Model const& model, Model::Params& params, Data const& data, float signalMilliwatts) {
    return static_cast<float>(model.getPinCount(params, data)) * signalMilliwatts * 0.001f;
}

}  // namespace

float Model::computePower(Params& params, Data const& data, VccoRail member) const {
    if (memberName(member) != refVccoRail(params, data)) return 0.0f;
    return blockPower(*this, params, data, calculateVccoSignalPower(params, data));
}

float Model::computeVccauxPower(Params& params, Data const& data) const {
    return blockPower(*this, params, data, calculateReceiverComponent(params, data));
}

float Model::computeVccintioPower(Params& params, Data const& data) const {
    return blockPower(*this, params, data, calculateIoLogicComponent(params, data));
}

float Model::computeTotalPower(Params& params, Data const& data) const {
    return blockPower(*this, params, data, calculateSignalPower(params, data));
}

// ---- Pins and banks --------------------------------------------------------------------------------------

// Formed in 64 bits; a count beyond the int range wraps as the cell stores it.
int Model::computePinsUsed(Params& params, Data const& data) const {
    return static_cast<int>(static_cast<std::int64_t>(getPinCount(params, data)) *
                            static_cast<std::int64_t>(standardFigure(*this, params, data, "LINES")));
}

// Whole banks: a block's pins fill banks of their own.
int Model::computeBanksUsed(Params& params, Data const& data) const {
    auto const perBank = static_cast<std::int64_t>(bankFigure(*this, params, data, "PINS"));
    std::int64_t const pins = calculatePinsUsed(params, data);
    if (perBank <= 0 || pins <= 0) return 0;
    return static_cast<int>((pins + perBank - 1) / perBank);
}

// The block's banks count in the one group of its rail and bank type (<rail>_<bank type>).
int Model::computeUsedBanks(Params& params, Data const& data, BankGroup member) const {
    std::string_view const group = memberName(member);
    std::string_view const rail = refVccoRail(params, data);
    std::string_view const bank = refBankType(params, data);
    bool const mine = group.size() == rail.size() + 1 + bank.size() && group.substr(0, rail.size()) == rail &&
                      group[rail.size()] == '_' && group.substr(rail.size() + 1) == bank;
    return mine ? calculateBanksUsed(params, data) : 0;
}
