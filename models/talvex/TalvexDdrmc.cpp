// Formulas of the DDR memory-controller sheet (models/talvex/MemoryFormulas.h holds what it shares with
// the memory stacks). One interface is counted in pins, each pin's current and load following the
// memory type's drive and termination; the PHY and the controller are switched capacitance, clocked
// whether data moves or not, plus a part per bit moved. Per-interface figures are in mW.
#include <prsm/models/talvex/PRSMTalvexDdrmcModel.h>
#include <prsm/models/talvex/PRSMTalvexDdrmcCells.h>

#include "MemoryFormulas.h"

#include <algorithm>
#include <cmath>

using PRSMHelperUtils::IFERROR;
using Model = PRSMTalvexDdrmcModel;
using Data = Model::Data;

namespace {

// A figure of the memory type, or 0 when the file has no such entry.
int typePins(Model const& model, Model::Params& params, Data const& data, std::string_view key) {
    return IFERROR(data.getTypePinsOrError(model.refMemoryType(params, data), key), 0);
}

float typeIo(Model const& model, Model::Params& params, Data const& data, std::string_view key) {
    return IFERROR(data.getTypeIoOrError(model.refMemoryType(params, data), key), 0.0f);
}

float phy(Data const& data, Data::PhyKey key) {
    return IFERROR(data.getPhyOrError(key), 0.0f);
}

float controller(Data const& data, Data::ControllerKey key) {
    return IFERROR(data.getControllerOrError(key), 0.0f);
}

// 1 / (a + b) in 1/ohm: the current per volt through a driver and a termination in series (0 when the
// file gives neither).
float seriesConductance(float a, float b) {
    return a + b > 0.0f ? 1.0f / (a + b) : 0.0f;
}

// Counts are formed in double precision and stored saturated, so that no width, rank or instance count
// a user types overflows an int on the way.
int saturated(double value) {
    return PRSMHelperUtils::toIntSaturated(value);
}

// Data and check bits of the interface.
double bitsOf(Model const& model, Model::Params& params, Data const& data) {
    return static_cast<double>(model.getDataWidth(params, data)) + model.calculateCheckBits(params, data);
}

// Whole bytes of the interface, check bits included: each has its mask pin and strobe pair.
double bytesOf(Model const& model, Model::Params& params, Data const& data) {
    return std::floor(bitsOf(model, params, data) / 8.0);
}

bool onRail(Model const& model, Model::Params& params, Data const& data, std::string_view rail) {
    return std::string_view(model.refIoRail(params, data)) == rail;
}

// A VCCO rail's voltage check: the type's range when its I/O is on this rail, else merely above 0.
bool vccoValid(Model const& model, Model::Params& params, Data const& data, std::string_view rail,
               float volts) {
    if (!onRail(model, params, data, rail)) return volts > 0.0f;
    return volts >= typeIo(model, params, data, "VCCO_MIN") &&
           volts <= typeIo(model, params, data, "VCCO_MAX");
}

}  // namespace

// ---- Inputs and their rules -----------------------------------------------------------------------------

int Model::defaultDataWidth(Params& params, Data const& data) const {
    return typePins(*this, params, data, "MAX_WIDTH");
}

float Model::computeGetMinDataWidth(Params& params, Data const& data) const {
    return static_cast<float>(typePins(*this, params, data, "MIN_WIDTH"));
}
float Model::computeGetMaxDataWidth(Params& params, Data const& data) const {
    return static_cast<float>(typePins(*this, params, data, "MAX_WIDTH"));
}

// The narrowest width doubled a whole number of times (16, 32, 64), up to the widest.
bool Model::isValidDataWidth(Params& params, Data const& data) const {
    int const width = getDataWidth(params, data);
    int const narrowest = typePins(*this, params, data, "MIN_WIDTH");
    if (narrowest <= 0 || width < narrowest || width > typePins(*this, params, data, "MAX_WIDTH"))
        return false;
    int const multiple = width / narrowest;
    return width % narrowest == 0 && (multiple & (multiple - 1)) == 0;
}

std::vector<std::string> Model::validListEcc(Params& params, Data const& data) const {
    bool const allowed = typePins(*this, params, data, "ECC_BITS") > 0 &&
                         getDataWidth(params, data) >= typePins(*this, params, data, "ECC_MIN_WIDTH");
    if (allowed) return {"NO", "YES"};
    return {"NO"};
}

float Model::computeGetMinRanks(Params&, Data const&) const {
    return 1.0f;
}
float Model::computeGetMaxRanks(Params& params, Data const& data) const {
    return static_cast<float>(typePins(*this, params, data, "MAX_RANKS"));
}
bool Model::isValidRanks(Params& params, Data const& data) const {
    int const ranks = getRanks(params, data);
    return ranks >= 1 && static_cast<float>(ranks) <= calculateGetMaxRanks(params, data);
}

float Model::computeGetMinDataRate(Params& params, Data const& data) const {
    return typeIo(*this, params, data, "MIN_RATE");
}

// The type's fastest, lowered to the part's own limit (its row, else the DEFAULT row).
float Model::computeGetMaxDataRate(Params& params, Data const& data) const {
    std::string_view const type = refMemoryType(params, data);
    float const typeMax = typeIo(*this, params, data, "MAX_RATE");
    float const partMax = IFERROR(data.getMaxDataRateOrError(refDevice(params, data), type),
                                  IFERROR(data.getMaxDataRateOrError("DEFAULT", type), typeMax));
    return std::min(typeMax, partMax);
}

bool Model::isValidDataRate(Params& params, Data const& data) const {
    return prsm::memory::dataRateInRange(*this, params, data);
}

float Model::computeGetMinInstanceCount(Params&, Data const&) const {
    return 0.0f;
}
float Model::computeGetMaxInstanceCount(Params& params, Data const& data) const {
    int const controllers = IFERROR(data.getControllersOrError(refDevice(params, data)),
                                    IFERROR(data.getControllersOrError(Data::ControllersKey::DEFAULT), 0));
    return static_cast<float>(controllers);
}
bool Model::isValidInstanceCount(Params& params, Data const& data) const {
    return prsm::memory::instanceCountInRange(*this, params, data);
}

bool Model::isValidVcco12(Params& params, Data const& data) const {
    return vccoValid(*this, params, data, "VCCO12", getVcco12(params, data));
}
bool Model::isValidVcco11(Params& params, Data const& data) const {
    return vccoValid(*this, params, data, "VCCO11", getVcco11(params, data));
}

// ---- Pins -------------------------------------------------------------------------------------------------

int Model::computeCheckBits(Params& params, Data const& data) const {
    return refEcc(params, data) == "YES" ? typePins(*this, params, data, "ECC_BITS") : 0;
}

// DDR4 is one channel whatever its width; LPDDR4 is built of 16-bit channels.
int Model::computeChannels(Params& params, Data const& data) const {
    int const channelWidth = typePins(*this, params, data, "CHANNEL_WIDTH");
    return channelWidth > 0 ? std::max(1, getDataWidth(params, data) / channelWidth) : 1;
}

int Model::computeDataPins(Params& params, Data const& data) const {
    return saturated(bitsOf(*this, params, data) +
                     bytesOf(*this, params, data) * typePins(*this, params, data, "MASK_PER_BYTE"));
}

int Model::computeStrobePins(Params& params, Data const& data) const {
    return saturated(bytesOf(*this, params, data) * typePins(*this, params, data, "STROBE_PER_BYTE"));
}

int Model::computeCommandPins(Params& params, Data const& data) const {
    double const perChannel =
        typePins(*this, params, data, "CA_PER_CHANNEL") +
        static_cast<double>(getRanks(params, data)) * typePins(*this, params, data, "RANK_PER_CHANNEL");
    return saturated(calculateChannels(params, data) * perChannel +
                     typePins(*this, params, data, "MISC_PINS"));
}

int Model::computeClockPins(Params& params, Data const& data) const {
    return saturated(static_cast<double>(calculateChannels(params, data)) *
                     typePins(*this, params, data, "CLOCK_PER_CHANNEL"));
}

int Model::computeIoPins(Params& params, Data const& data) const {
    return saturated(static_cast<double>(calculateDataPins(params, data)) +
                     calculateStrobePins(params, data) + calculateCommandPins(params, data) +
                     calculateClockPins(params, data));
}

// Whole banks: a part-filled bank is not shared with another interface.
int Model::computeXpioBanks(Params& params, Data const& data) const {
    int const bankPins = IFERROR(data.getXpioBankOrError(Data::XpioBankKey::PINS), 0);
    if (bankPins <= 0) return 0;
    return saturated(std::ceil(static_cast<double>(calculateIoPins(params, data)) / bankPins));
}

int Model::computeUsedDdrmc(Params& params, Data const& data) const {
    return getInstanceCount(params, data);
}

namespace {

int banksOnRail(Model const& model, Model::Params& params, Data const& data, std::string_view rail) {
    if (!onRail(model, params, data, rail)) return 0;
    return saturated(static_cast<double>(model.getInstanceCount(params, data)) *
                     model.calculateXpioBanks(params, data));
}

}  // namespace

int Model::computeUsedVcco12XpioBanks(Params& params, Data const& data) const {
    return banksOnRail(*this, params, data, "VCCO12");
}
int Model::computeUsedVcco11XpioBanks(Params& params, Data const& data) const {
    return banksOnRail(*this, params, data, "VCCO11");
}

// ---- Clocks and bandwidth -----------------------------------------------------------------------------

// Two transfers per clock.
float Model::computeMemoryClock(Params& params, Data const& data) const {
    return getDataRate(params, data) * 0.5f;
}

float Model::computeControllerClock(Params& params, Data const& data) const {
    float const divide = typeIo(*this, params, data, "CONTROLLER_DIVIDE");
    return divide > 0.0f ? getDataRate(params, data) / divide : 0.0f;
}

// Data bits x MT/s is Mb/s; / 8 / 1000 gives GB/s.
float Model::computePeakBandwidth(Params& params, Data const& data) const {
    return static_cast<float>(getDataWidth(params, data)) * getDataRate(params, data) * 0.000125f;
}

// ---- I/O on the type's VCCO rail ------------------------------------------------------------------------

// "NONE" for a type the file gives no rail: its pins then draw from neither VCCO rail.
std::string Model::computeIoRail(Params& params, Data const& data) const {
    return IFERROR(data.getIoRailOrError(refMemoryType(params, data)), "NONE");
}

float Model::computeIoVoltage(Params& params, Data const& data) const {
    if (onRail(*this, params, data, "VCCO12")) return getVcco12(params, data);
    if (onRail(*this, params, data, "VCCO11")) return getVcco11(params, data);
    return 0.0f;
}

// The signal's swing: VCCO, or for a low-swing standard the share of it the drivers regulate to.
float Model::computeIoSwing(Params& params, Data const& data) const {
    return calculateIoVoltage(params, data) * typeIo(*this, params, data, "SWING_RATIO");
}

// mA of a data or strobe pin, averaged: half the bits at the level that draws current through the
// termination. Terminated to VDDQ, this side pays while it receives (reads, through its own termination);
// terminated to ground, while it sends (writes, into the memory's termination).
float Model::computeDataPinCurrent(Params& params, Data const& data) const {
    float const toVddq = typeIo(*this, params, data, "TERM_TO_VDDQ");
    float const reading =
        getReadRate(params, data) * seriesConductance(typeIo(*this, params, data, "DRAM_DRIVE_OHM"),
                                                      typeIo(*this, params, data, "ODT_OHM"));
    float const writing =
        getWriteRate(params, data) * seriesConductance(typeIo(*this, params, data, "DRIVE_OHM"),
                                                       typeIo(*this, params, data, "DRAM_ODT_OHM"));
    return 1000.0f * 0.5f * calculateIoSwing(params, data) * (toVddq * reading + (1.0f - toVddq) * writing);
}

// mA of a command or clock pin: always driven, half the time at the level that draws, across the
// share of the swing its termination spans (to VTT at half the swing, or to ground).
float Model::computeCommandPinCurrent(Params& params, Data const& data) const {
    float const span = typeIo(*this, params, data, "CA_TERM_SPAN");
    return 1000.0f * 0.5f * calculateIoSwing(params, data) * span *
           seriesConductance(typeIo(*this, params, data, "DRIVE_OHM"),
                             typeIo(*this, params, data, "CA_TERM_OHM"));
}

float Model::computeIoTerminationComponent(Params& params, Data const& data) const {
    float const dataLike = static_cast<float>(calculateDataPins(params, data)) +
                           static_cast<float>(calculateStrobePins(params, data));
    float const driven = static_cast<float>(calculateCommandPins(params, data)) +
                         static_cast<float>(calculateClockPins(params, data));
    float const milliamps =
        calculateDataPinCurrent(params, data) * dataLike + calculateCommandPinCurrent(params, data) * driven;
    return calculateIoVoltage(params, data) * milliamps * calculateVccoScale(params, data);
}

// A data pin loads the pad and trace and one memory pin per rank.
float Model::computeDataLoad(Params& params, Data const& data) const {
    return typeIo(*this, params, data, "DQ_PF") +
           static_cast<float>(getRanks(params, data)) * typeIo(*this, params, data, "DQ_RANK_PF");
}

// A command line reaches a memory input per byte of every rank.
float Model::computeCommandLoad(Params& params, Data const& data) const {
    float const inputs = static_cast<float>(getRanks(params, data) * bytesOf(*this, params, data));
    return typeIo(*this, params, data, "CA_PF") + inputs * typeIo(*this, params, data, "CA_RANK_PF");
}

// Rising edges per second (MHz) charge a load from VCCO to the swing: pF x MHz x V x V x 0.001 is mW.
// Written data bits switch half the time (a rise a quarter of the bits); a strobe rises once per clock
// while writing; command lines switch CA_TOGGLE times a clock at full traffic; clocks rise every cycle.
float Model::computeIoSwitchingComponent(Params& params, Data const& data) const {
    float const rate = getDataRate(params, data), clock = calculateMemoryClock(params, data);
    float const writes = getWriteRate(params, data);
    float const dataRises = static_cast<float>(calculateDataPins(params, data)) * rate * writes * 0.25f +
                            static_cast<float>(calculateStrobePins(params, data)) * clock * writes;
    float const commandRises = static_cast<float>(calculateCommandPins(params, data)) * clock *
                                   typeIo(*this, params, data, "CA_TOGGLE") *
                                   calculateBandwidthShare(params, data) * 0.5f +
                               static_cast<float>(calculateClockPins(params, data)) * clock;
    float const capFreq =
        calculateDataLoad(params, data) * dataRises + calculateCommandLoad(params, data) * commandRises;
    return capFreq * calculateIoVoltage(params, data) * calculateIoSwing(params, data) * 0.001f *
           calculateVccoScale(params, data);
}

float Model::computeIoInstancePower(Params& params, Data const& data) const {
    return calculateIoTerminationComponent(params, data) + calculateIoSwitchingComponent(params, data);
}

namespace {

float vccoPower(Model const& model, Model::Params& params, Data const& data, std::string_view rail) {
    if (!onRail(model, params, data, rail)) return 0.0f;
    return static_cast<float>(static_cast<double>(model.getInstanceCount(params, data)) *
                              static_cast<double>(model.calculateIoInstancePower(params, data)) * 0.001);
}

}  // namespace

float Model::computeVcco12Power(Params& params, Data const& data) const {
    return vccoPower(*this, params, data, "VCCO12");
}
float Model::computeVcco11Power(Params& params, Data const& data) const {
    return vccoPower(*this, params, data, "VCCO11");
}

// ---- PHY and controller ---------------------------------------------------------------------------------

// Every pin's serialiser, delay line and phase interpolator at the memory clock, idle or not; each data
// bit moved through its FIFO and serialiser.
float Model::computeVccintioInstancePower(Params& params, Data const& data) const {
    float const clocking = static_cast<float>(calculateIoPins(params, data)) *
                           phy(data, Data::PhyKey::PIN_CLOCK_PF) * calculateMemoryClock(params, data);
    float const moving = static_cast<float>(calculateDataPins(params, data)) * getDataRate(params, data) *
                         calculateBandwidthShare(params, data) * phy(data, Data::PhyKey::BIT_PF);
    return prsm::ram::milliwatts(clocking + moving,
                                 prsm::ram::capacitanceVoltageFactor(data, getVccintio(params, data)),
                                 calculateVccintioScale(params, data));
}

// V x mA: a PLL per bank, its bias growing with the clock, and the receivers of the pins that read.
float Model::computeVccauxInstancePower(Params& params, Data const& data) const {
    float const clockGhz = calculateMemoryClock(params, data) * 0.001f;
    float const plls = static_cast<float>(calculateXpioBanks(params, data)) *
                       (phy(data, Data::PhyKey::PLL_MA) + phy(data, Data::PhyKey::PLL_MA_PER_GHZ) * clockGhz);
    float const receivers = (static_cast<float>(calculateDataPins(params, data)) +
                             static_cast<float>(calculateStrobePins(params, data))) *
                            phy(data, Data::PhyKey::RX_MA) * getReadRate(params, data);
    return getVccaux(params, data) * (plls + receivers) * calculateVccauxScale(params, data);
}

// The scheduler and its ports, a datapath register per bit and each rank's state at the controller
// clock, and the datapath (check bits included) per bit moved.
float Model::computeVccsocInstancePower(Params& params, Data const& data) const {
    float const bits = static_cast<float>(bitsOf(*this, params, data));
    float const clocked =
        controller(data, Data::ControllerKey::CLOCK_PF) +
        bits * controller(data, Data::ControllerKey::DATAPATH_CLOCK_PF) +
        static_cast<float>(getRanks(params, data)) * controller(data, Data::ControllerKey::RANK_CLOCK_PF);
    float const moving = bits * getDataRate(params, data) * calculateBandwidthShare(params, data) *
                         controller(data, Data::ControllerKey::BIT_PF);
    return prsm::ram::milliwatts(clocked * calculateControllerClock(params, data) + moving,
                                 prsm::ram::capacitanceVoltageFactor(data, getVccsoc(params, data)),
                                 calculateVccsocScale(params, data));
}

// ---- Totals -------------------------------------------------------------------------------------------

float Model::computeInstancePower(Params& params, Data const& data) const {
    return calculateVccsocInstancePower(params, data) + calculateVccintioInstancePower(params, data) +
           calculateVccauxInstancePower(params, data) + calculateIoInstancePower(params, data);
}

float Model::computeTotalPower(Params& params, Data const& data) const {
    return calculateVccsocPower(params, data) + calculateVccintioPower(params, data) +
           calculateVccauxPower(params, data) + calculateVcco12Power(params, data) +
           calculateVcco11Power(params, data);
}
