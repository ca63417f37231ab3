// Formulas of the older architecture's processing-system sheet.
//
// Every clocked block (application cores, GPU, interconnects, real-time cores, memories, peripheral
// controllers) is one member of the Block family, whose rows in the table give its domain, count and
// gates, and follows prsm::ps::clockedPower as a core does, as the newer architecture's larger processor
// system does (models/talvex/ProcessingSystemBlocks.h): an idle clock term unless clock-gated, a load
// term added to it, power gating, a count, and its domain's voltage and device scaling. The peripherals'
// pins cost their receivers and drivers on VCCPSINTLP and on the supply of their bank. The DDR interface
// has a controller and PHY logic term per memory clock, pins that switch and terminate with the
// traffic, and its PLL. Leakage belongs to the static sheet.
#include <prsm/models/dravik/PRSMDravikPsModel.h>
#include <prsm/models/dravik/PRSMDravikPsCells.h>

#include <prsm/models/talvex/DeviceScale.h>
#include <prsm/models/talvex/ProcessingSystemBlocks.h>
#include <prsm/sheetfunc/PRSMHelperUtils.h>

#include <array>
#include <cmath>
#include <cstddef>

using PRSMHelperUtils::IFERROR;
using PRSMHelperUtils::ISERROR;
using Model = PRSMDravikPsModel;
using Data = Model::Data;
using prsm::ps::blockData;
using prsm::ps::kPeripheralCount;
using prsm::ps::PinField;

namespace {

using BlockKey = Data::BlockDataKey;

static_assert(Model::kBlockMembers == 14);
static_assert(Data::kBlockDataKeys[0] == "CPU.CLOCK" && Data::kBlockDataKeys[Model::kBlockMembers] == "CPU.DYNAMIC" &&
              Data::kBlockDataKeys[2 * Model::kBlockMembers] == "USB.PIN_ACTIVITY" &&
              Data::kBlockDataKeys[2 * Model::kBlockMembers + kPeripheralCount - 1] == "SPI.PIN_ACTIVITY");
// PERIPHERAL_PINS: each peripheral's INPUTS, OUTPUTS, BIDIS, BANK.
static_assert(Data::kPeripheralPinsKeys.size() == 4 * kPeripheralCount &&
              Data::kPeripheralPinsKeys[0] == "USB.INPUTS" && Data::kPeripheralPinsKeys[7] == "ETHERNET.BANK");
static_assert(Data::kMioDataKeys[3] == "MIO_IOB_VCCO_PMIO_1V8_RX_DYNAMIC" &&
              Data::kMioDataKeys[8] == "MIO_IOB_VCCO_PMIO_2V5_RX_DYNAMIC" &&
              Data::kMioDataKeys[13] == "MIO_IOB_VCCO_PMIO_3V3_RX_DYNAMIC" &&
              Data::kMioDataKeys[17] == "MIO_BIAS_VCCO_PMIO_3V3_STATIC");

// (supply / characterised supply)^2 of an analog or pin supply; 1 when either is unknown.
double squareLaw(double supply, float characterised) {
    if (ISERROR(characterised) || !(characterised > 0.0f)) return 1.0;
    double const ratio = supply / characterised;
    return ratio * ratio;
}

// A DDR_DATA figure of the memory type; 0 when the file lacks it.
double ddrData(Model const& model, Model::Params& params, Data const& data, std::string_view key) {
    return IFERROR(data.getDdrDataOrError(model.refMemoryType(params, data), key), 0.0f);
}

}  // namespace

// ---- Voltage and device scaling of the domains ----

float Model::computeVccpsintfpVoltageScaling(Params& params, Data const& data) const {
    return prsm::ps::domainVoltageScaling(data, getVccpsintfp(params, data));
}

float Model::computeVccpsintlpVoltageScaling(Params& params, Data const& data) const {
    return prsm::ps::domainVoltageScaling(data, getVccpsintlp(params, data));
}

float Model::computeVccpsintddrVoltageScaling(Params& params, Data const& data) const {
    return prsm::ps::domainVoltageScaling(data, getVccpsintddr(params, data));
}

float Model::computeFpdDeviceScale(Params& params, Data const& data) const {
    return prsm::deviceScale(*this, params, data, Data::BlockPowerScaleKey::DEFAULT_PS_FPD, "PS_FPD");
}

float Model::computeLpdDeviceScale(Params& params, Data const& data) const {
    return prsm::deviceScale(*this, params, data, Data::BlockPowerScaleKey::DEFAULT_PS_LPD, "PS_LPD");
}

float Model::computeDdrDeviceScale(Params& params, Data const& data) const {
    return prsm::deviceScale(*this, params, data, Data::BlockPowerScaleKey::DEFAULT_PS_DDR, "PS_DDR");
}

namespace {

double domainScale(Model const& model, Model::Params& params, Data const& data, Model::BlockDomain domain) {
    if (domain == Model::BlockDomain::FULL_POWER)
        return static_cast<double>(model.calculateVccpsintfpVoltageScaling(params, data)) *
               model.calculateFpdDeviceScale(params, data);
    return static_cast<double>(model.calculateVccpsintlpVoltageScaling(params, data)) *
           model.calculateLpdDeviceScale(params, data);
}

}  // namespace

// ---- The clocked blocks ----

float Model::computeDynamicPower(Params& params, Data const& data, Block member) const {
    return static_cast<float>(prsm::ps::blockPower(*this, params, data, member) *
                              domainScale(*this, params, data, row(member).domain));
}

// ---- PLLs: W per MHz of output clock on the domain's supply (scaled), while on ----

float Model::computeFpdPllCorePower(Params& params, Data const& data) const {
    if (getFpdPllOnOff(params, data) != 1) return 0.0f;
    return static_cast<float>(blockData(data, BlockKey::FPD_PLL_CORE) * getFpdPllClkFreq(params, data) *
                              domainScale(*this, params, data, BlockDomain::FULL_POWER));
}

float Model::computeLpdPllCorePower(Params& params, Data const& data) const {
    if (getLpdPllOnOff(params, data) != 1) return 0.0f;
    return static_cast<float>(blockData(data, BlockKey::LPD_PLL_CORE) * getLpdPllClkFreq(params, data) *
                              domainScale(*this, params, data, BlockDomain::LOW_POWER));
}

// The analog parts of both PLLs on VCCPSPLL, with the square of its voltage.
float Model::computePllAuxPower(Params& params, Data const& data) const {
    double power = 0.0;
    if (getFpdPllOnOff(params, data) == 1)
        power += blockData(data, BlockKey::FPD_PLL_AUX) * getFpdPllClkFreq(params, data);
    if (getLpdPllOnOff(params, data) == 1)
        power += blockData(data, BlockKey::LPD_PLL_AUX) * getLpdPllClkFreq(params, data);
    return static_cast<float>(power *
                              squareLaw(getVccpspll(params, data),
                                        data.getSimConditionsOrError(Data::SimConditionsKey::PLL_VOLTAGE)));
}

// The auxiliary circuits draw a standing power whenever the system is up.
float Model::computeAuxPower(Params& params, Data const& data) const {
    return static_cast<float>(blockData(data, BlockKey::PS_AUX_STANDBY) *
                              squareLaw(getVccpsaux(params, data),
                                        data.getSimConditionsOrError(Data::SimConditionsKey::AUX_VOLTAGE)));
}

// ---- The peripherals' pins ----

namespace {

// The bank the file places a peripheral's pins on: 0..2, or -1 for none.
int bankOf(Data const& data, Model::Peripheral member) {
    return prsm::ps::peripheralPins(data, static_cast<std::size_t>(member), PinField::Bank);
}

constexpr std::array<float (Model::*)(Model::Params&, Data const&) const, 3> kBankSupplies{
    &Model::getVccopsio0500, &Model::getVccopsio1501, &Model::getVccopsio2502};

}  // namespace

float Model::computeIoCorePower(Params& params, Data const& data, Peripheral member) const {
    return static_cast<float>(prsm::ps::pinCorePower(*this, params, data, member) *
                              domainScale(*this, params, data, BlockDomain::LOW_POWER));
}

// On the supply of the peripheral's bank. A peripheral whose bank the file does not name (or names
// outside 0..2) places no pins.
float Model::computeIoBankPower(Params& params, Data const& data, Peripheral member) const {
    int const bankIndex = bankOf(data, member);
    if (bankIndex < 0 || bankIndex >= static_cast<int>(kBankSupplies.size())) return 0.0f;
    double const volts = (this->*kBankSupplies[static_cast<std::size_t>(bankIndex)])(params, data);
    return prsm::ps::pinBankPower(*this, params, data, member, volts);
}

float Model::computeMioBankPower(Params& params, Data const& data, MioBank member) const {
    float total = 0.0f;
    for (std::size_t i = 0; i < kPeripheralCount; ++i) {
        auto const peripheral = static_cast<Peripheral>(i);
        if (bankOf(data, peripheral) == static_cast<int>(member))
            total += calculateIoBankPower(params, data, peripheral);
    }
    return total;
}

bool Model::isValidVccopsio0500(Params& params, Data const& data) const {
    return prsm::ps::nearStandardBankVoltage(getVccopsio0500(params, data));
}

bool Model::isValidVccopsio1501(Params& params, Data const& data) const {
    return prsm::ps::nearStandardBankVoltage(getVccopsio1501(params, data));
}

bool Model::isValidVccopsio2502(Params& params, Data const& data) const {
    return prsm::ps::nearStandardBankVoltage(getVccopsio2502(params, data));
}

// ---- The DDR interface ----

float Model::computeDdrClockFreq(Params& params, Data const& data) const {
    return getDataRate(params, data) / 2.0f;
}

float Model::computeGetMinDataRate(Params& params, Data const& data) const {
    return static_cast<float>(ddrData(*this, params, data, "MIN_RATE"));
}

float Model::computeGetMaxDataRate(Params& params, Data const& data) const {
    return static_cast<float>(ddrData(*this, params, data, "MAX_RATE"));
}

bool Model::isValidDataRate(Params& params, Data const& data) const {
    float const rate = getDataRate(params, data);
    return rate >= calculateGetMinDataRate(params, data) && rate <= calculateGetMaxDataRate(params, data);
}

bool Model::isValidDataWidth(Params& params, Data const& data) const {
    int const width = getDataWidth(params, data);
    return (width == 16 || width == 32 || width == 64) && width <= ddrData(*this, params, data, "MAX_WIDTH");
}

bool Model::isValidVccopsddr12(Params& params, Data const& data) const {
    double const nominal = ddrData(*this, params, data, "IO_VOLTAGE");
    return nominal > 0.0 && std::fabs(getVccopsddr12(params, data) - nominal) <= 0.05 * nominal;
}

// Reads and writes together (above 1 asks for more than the memory moves, and is warned about).
float Model::computeBandwidthShare(Params& params, Data const& data) const {
    return getReadRate(params, data) + getWriteRate(params, data);
}

// GB/s: MT/s times bytes per transfer.
float Model::computePeakBandwidth(Params& params, Data const& data) const {
    return getDataRate(params, data) * static_cast<float>(getDataWidth(params, data)) / 8.0f / 1000.0f;
}

float Model::computeBandwidth(Params& params, Data const& data) const {
    return calculatePeakBandwidth(params, data) * calculateBandwidthShare(params, data);
}

// Controller and PHY logic: (idle + active * share) W per MHz of memory clock, the PHY's per data bit.
float Model::computeDdrCorePower(Params& params, Data const& data) const {
    double const share = calculateBandwidthShare(params, data);
    double const bits = getDataWidth(params, data);
    double const controller =
        ddrData(*this, params, data, "CTRL_IDLE") + ddrData(*this, params, data, "CTRL_ACTIVE") * share;
    double const phy = bits * (ddrData(*this, params, data, "PHY_IDLE") +
                               ddrData(*this, params, data, "PHY_ACTIVE") * share);
    return static_cast<float>((controller + phy) * calculateDdrClockFreq(params, data) *
                              calculateVccpsintddrVoltageScaling(params, data) *
                              calculateDdrDeviceScale(params, data));
}

// Pins, per data bit: switching at the transfer rate and termination while data moves, plus a standing
// term, all with the square of the pin supply against the memory type's pin voltage.
float Model::computeDdrIoPower(Params& params, Data const& data) const {
    double const share = calculateBandwidthShare(params, data);
    double const perBit = ddrData(*this, params, data, "IO_SWITCH") * getDataRate(params, data) * share +
                          ddrData(*this, params, data, "IO_TERMINATION") * share +
                          ddrData(*this, params, data, "IO_STATIC");
    double const nominal = ddrData(*this, params, data, "IO_VOLTAGE");
    double const ratio = nominal > 0.0 ? getVccopsddr12(params, data) / nominal : 1.0;
    return static_cast<float>(perBit * getDataWidth(params, data) * ratio * ratio);
}

float Model::computeDdrPllPower(Params& params, Data const& data) const {
    return static_cast<float>(ddrData(*this, params, data, "PLL") * calculateDdrClockFreq(params, data) *
                              squareLaw(getVccpsddrpll(params, data),
                                        data.getSimConditionsOrError(Data::SimConditionsKey::AUX_VOLTAGE)));
}

// ---- Rail totals ----

float Model::computeFpdTotalDynamicPower(Params& params, Data const& data) const {
    return calculateCpuDynamicPower(params, data) + calculateGpuDynamicPower(params, data) +
           calculateFpInterconnectDynamicPower(params, data) + calculateFpdPllCorePower(params, data);
}

float Model::computeLpdTotalDynamicPower(Params& params, Data const& data) const {
    return prsm::ps::lowPowerDomainPower(*this, params, data);
}

float Model::computeTotalDynamicPower(Params& params, Data const& data) const {
    return calculateFpdTotalDynamicPower(params, data) + calculateLpdTotalDynamicPower(params, data) +
           calculateDdrCorePower(params, data) + calculateDdrIoPower(params, data) +
           calculateDdrPllPower(params, data) + calculatePllAuxPower(params, data) +
           calculateAuxPower(params, data) + calculateMioBank0Power(params, data) +
           calculateMioBank1Power(params, data) + calculateMioBank2Power(params, data);
}
