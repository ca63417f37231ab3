#pragma once
// Formulas shared by the DDR memory-interface sheets of both architectures: the newer one's hard
// controllers and the older one's controllers in the logic. One interface is counted in pins, each pin's
// current and load following the memory type's drive and termination (TYPE_PINS, TYPE_IO); the PHY and
// the controller are switched capacitance (PHY, CONTROLLER), clocked whether data moves or not, plus a
// part per bit moved. Per-interface figures are in mW. The rails a sheet puts the controller and the
// PHY's analog part on are its own: the templates take their cells as arguments.

#include "MemoryFormulas.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <string_view>
#include <vector>

namespace prsm::ddr {

template <typename Model>
using Getter = float (Model::*)(ParamsOf<Model>&, DataOf<Model> const&) const;

// A figure of the memory type, or 0 when the file has no such entry.
template <typename Model>
int typePins(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data, std::string_view key) {
    return PRSMHelperUtils::IFERROR(data.getTypePinsOrError(model.refMemoryType(params, data), key), 0);
}

template <typename Model>
float typeIo(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data, std::string_view key) {
    return PRSMHelperUtils::IFERROR(data.getTypeIoOrError(model.refMemoryType(params, data), key), 0.0f);
}

template <typename Data>
float phy(Data const& data, typename Data::PhyKey key) {
    return PRSMHelperUtils::IFERROR(data.getPhyOrError(key), 0.0f);
}

template <typename Data>
float controller(Data const& data, typename Data::ControllerKey key) {
    return PRSMHelperUtils::IFERROR(data.getControllerOrError(key), 0.0f);
}

// 1 / (a + b) in 1/ohm: the current per volt through a driver and a termination in series (0 when the
// file gives neither).
inline float seriesConductance(float a, float b) {
    return a + b > 0.0f ? 1.0f / (a + b) : 0.0f;
}

// Counts are formed in double precision and stored saturated, so that no width, rank or instance count
// a user types overflows an int on the way.
inline int saturated(double value) {
    return PRSMHelperUtils::toIntSaturated(value);
}

// Data and check bits of the interface.
template <typename Model>
double bitsOf(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    return static_cast<double>(model.getDataWidth(params, data)) + model.calculateCheckBits(params, data);
}

// Whole bytes of the interface, check bits included: each has its mask pin and strobe pair.
template <typename Model>
double bytesOf(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    return std::floor(bitsOf(model, params, data) / 8.0);
}

// Whole banks of `bankPins` pins: a part-filled bank is not shared with another interface.
template <typename Model>
int wholeBanks(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data, int bankPins) {
    if (bankPins <= 0) return 0;
    return saturated(std::ceil(static_cast<double>(model.calculateIoPins(params, data)) / bankPins));
}

// ---- Inputs and their rules -----------------------------------------------------------------------------

template <typename Model>
int widestWidth(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    return typePins(model, params, data, "MAX_WIDTH");
}

template <typename Model>
float narrowestWidthBound(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    return static_cast<float>(typePins(model, params, data, "MIN_WIDTH"));
}

template <typename Model>
float widestWidthBound(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    return static_cast<float>(typePins(model, params, data, "MAX_WIDTH"));
}

// The narrowest width doubled a whole number of times (16, 32, 64), up to the widest.
template <typename Model>
bool dataWidthAllowed(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    int const width = model.getDataWidth(params, data);
    int const narrowest = typePins(model, params, data, "MIN_WIDTH");
    if (narrowest <= 0 || width < narrowest || width > typePins(model, params, data, "MAX_WIDTH")) return false;
    int const multiple = width / narrowest;
    return width % narrowest == 0 && (multiple & (multiple - 1)) == 0;
}

template <typename Model>
std::vector<std::string> eccChoices(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    bool const allowed = typePins(model, params, data, "ECC_BITS") > 0 &&
                         model.getDataWidth(params, data) >= typePins(model, params, data, "ECC_MIN_WIDTH");
    if (allowed) return {"NO", "YES"};
    return {"NO"};
}

template <typename Model>
float oneRank(Model const&, ParamsOf<Model>&, DataOf<Model> const&) {
    return 1.0f;
}

template <typename Model>
float mostRanks(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    return static_cast<float>(typePins(model, params, data, "MAX_RANKS"));
}

template <typename Model>
bool ranksAllowed(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    int const ranks = model.getRanks(params, data);
    return ranks >= 1 && static_cast<float>(ranks) <= model.calculateGetMaxRanks(params, data);
}

template <typename Model>
float slowestRate(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    return typeIo(model, params, data, "MIN_RATE");
}

// The type's fastest, lowered to the part's own limit (MAX_DATA_RATE.<part>.<type>, else the DEFAULT row).
template <typename Model>
float fastestAllowedRate(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    std::string_view const type = model.refMemoryType(params, data);
    float const typeMax = typeIo(model, params, data, "MAX_RATE");
    float const partMax =
        PRSMHelperUtils::IFERROR(data.getMaxDataRateOrError(model.refDevice(params, data), type),
                                 PRSMHelperUtils::IFERROR(data.getMaxDataRateOrError("DEFAULT", type), typeMax));
    return std::min(typeMax, partMax);
}

template <typename Model>
float noInstances(Model const&, ParamsOf<Model>&, DataOf<Model> const&) {
    return 0.0f;
}

// ---- Pins -------------------------------------------------------------------------------------------------

template <typename Model>
int checkBits(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    return model.refEcc(params, data) == "YES" ? typePins(model, params, data, "ECC_BITS") : 0;
}

// DDR4 is one channel whatever its width; LPDDR4 is built of 16-bit channels.
template <typename Model>
int channels(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    int const channelWidth = typePins(model, params, data, "CHANNEL_WIDTH");
    return channelWidth > 0 ? std::max(1, model.getDataWidth(params, data) / channelWidth) : 1;
}

template <typename Model>
int dataPins(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    return saturated(bitsOf(model, params, data) +
                     bytesOf(model, params, data) * typePins(model, params, data, "MASK_PER_BYTE"));
}

template <typename Model>
int strobePins(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    return saturated(bytesOf(model, params, data) * typePins(model, params, data, "STROBE_PER_BYTE"));
}

template <typename Model>
int commandPins(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    double const perChannel =
        typePins(model, params, data, "CA_PER_CHANNEL") +
        static_cast<double>(model.getRanks(params, data)) * typePins(model, params, data, "RANK_PER_CHANNEL");
    return saturated(model.calculateChannels(params, data) * perChannel +
                     typePins(model, params, data, "MISC_PINS"));
}

template <typename Model>
int clockPins(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    return saturated(static_cast<double>(model.calculateChannels(params, data)) *
                     typePins(model, params, data, "CLOCK_PER_CHANNEL"));
}

template <typename Model>
int ioPins(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    return saturated(static_cast<double>(model.calculateDataPins(params, data)) +
                     model.calculateStrobePins(params, data) + model.calculateCommandPins(params, data) +
                     model.calculateClockPins(params, data));
}

// ---- Clocks and bandwidth -----------------------------------------------------------------------------

// Two transfers per clock.
template <typename Model>
float memoryClock(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    return model.getDataRate(params, data) * 0.5f;
}

template <typename Model>
float controllerClock(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    float const divide = typeIo(model, params, data, "CONTROLLER_DIVIDE");
    return divide > 0.0f ? model.getDataRate(params, data) / divide : 0.0f;
}

// Data bits x MT/s is Mb/s; / 8 / 1000 gives GB/s.
template <typename Model>
float peakBandwidth(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    return static_cast<float>(model.getDataWidth(params, data)) * model.getDataRate(params, data) * 0.000125f;
}

// ---- I/O on the type's VCCO rail ------------------------------------------------------------------------

// "NONE" for a type the file gives no rail: its pins then draw from no VCCO rail.
template <typename Model>
std::string ioRail(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    return PRSMHelperUtils::IFERROR(data.getIoRailOrError(model.refMemoryType(params, data)), "NONE");
}

template <typename Model>
bool onRail(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data, std::string_view rail) {
    return std::string_view(model.refIoRail(params, data)) == rail;
}

// A VCCO rail's voltage check: the type's range when its I/O is on this rail, else merely above 0.
template <typename Model>
bool vccoAllowed(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data, std::string_view rail,
                 float volts) {
    if (!onRail(model, params, data, rail)) return volts > 0.0f;
    return volts >= typeIo(model, params, data, "VCCO_MIN") && volts <= typeIo(model, params, data, "VCCO_MAX");
}

// The signal's swing: VCCO, or for a low-swing standard the share of it the drivers regulate to.
template <typename Model>
float ioSwing(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    return model.calculateIoVoltage(params, data) * typeIo(model, params, data, "SWING_RATIO");
}

// mA of a data or strobe pin, averaged: half the bits at the level that draws current through the
// termination. Terminated to VDDQ, this side pays while it receives (reads, through its own termination);
// terminated to ground, while it sends (writes, into the memory's termination).
template <typename Model>
float dataPinCurrent(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    float const toVddq = typeIo(model, params, data, "TERM_TO_VDDQ");
    float const reading = model.getReadRate(params, data) *
                          seriesConductance(typeIo(model, params, data, "DRAM_DRIVE_OHM"),
                                            typeIo(model, params, data, "ODT_OHM"));
    float const writing = model.getWriteRate(params, data) *
                          seriesConductance(typeIo(model, params, data, "DRIVE_OHM"),
                                            typeIo(model, params, data, "DRAM_ODT_OHM"));
    return 1000.0f * 0.5f * model.calculateIoSwing(params, data) * (toVddq * reading + (1.0f - toVddq) * writing);
}

// mA of a command or clock pin: always driven, half the time at the level that draws, across the share
// of the swing its termination spans (to VTT at half the swing, or to ground).
template <typename Model>
float commandPinCurrent(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    float const span = typeIo(model, params, data, "CA_TERM_SPAN");
    return 1000.0f * 0.5f * model.calculateIoSwing(params, data) * span *
           seriesConductance(typeIo(model, params, data, "DRIVE_OHM"), typeIo(model, params, data, "CA_TERM_OHM"));
}

template <typename Model>
float ioTerminationComponent(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    float const dataLike = static_cast<float>(model.calculateDataPins(params, data)) +
                           static_cast<float>(model.calculateStrobePins(params, data));
    float const driven = static_cast<float>(model.calculateCommandPins(params, data)) +
                         static_cast<float>(model.calculateClockPins(params, data));
    float const milliamps = model.calculateDataPinCurrent(params, data) * dataLike +
                            model.calculateCommandPinCurrent(params, data) * driven;
    return model.calculateIoVoltage(params, data) * milliamps * model.calculateVccoScale(params, data);
}

// A data pin loads the pad and trace and one memory pin per rank.
template <typename Model>
float dataLoad(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    return typeIo(model, params, data, "DQ_PF") +
           static_cast<float>(model.getRanks(params, data)) * typeIo(model, params, data, "DQ_RANK_PF");
}

// A command line reaches a memory input per byte of every rank.
template <typename Model>
float commandLoad(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    float const inputs = static_cast<float>(model.getRanks(params, data) * bytesOf(model, params, data));
    return typeIo(model, params, data, "CA_PF") + inputs * typeIo(model, params, data, "CA_RANK_PF");
}

// Rising edges per second (MHz) charge a load from VCCO to the swing: pF x MHz x V x V x 0.001 is mW.
// Written data bits switch half the time (a rise a quarter of the bits); a strobe rises once per clock
// while writing; command lines switch CA_TOGGLE times a clock at full traffic; clocks rise every cycle.
template <typename Model>
float ioSwitchingComponent(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    float const rate = model.getDataRate(params, data), clock = model.calculateMemoryClock(params, data);
    float const writes = model.getWriteRate(params, data);
    float const dataRises = static_cast<float>(model.calculateDataPins(params, data)) * rate * writes * 0.25f +
                            static_cast<float>(model.calculateStrobePins(params, data)) * clock * writes;
    float const commandRises = static_cast<float>(model.calculateCommandPins(params, data)) * clock *
                                   typeIo(model, params, data, "CA_TOGGLE") *
                                   model.calculateBandwidthShare(params, data) * 0.5f +
                               static_cast<float>(model.calculateClockPins(params, data)) * clock;
    float const capFreq = model.calculateDataLoad(params, data) * dataRises +
                          model.calculateCommandLoad(params, data) * commandRises;
    return capFreq * model.calculateIoVoltage(params, data) * model.calculateIoSwing(params, data) * 0.001f *
           model.calculateVccoScale(params, data);
}

template <typename Model>
float ioInstancePower(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    return model.calculateIoTerminationComponent(params, data) + model.calculateIoSwitchingComponent(params, data);
}

// The interfaces' pins on one VCCO rail, in W: 0 unless it is the type's rail.
template <typename Model>
float vccoPower(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data, std::string_view rail) {
    if (!onRail(model, params, data, rail)) return 0.0f;
    return static_cast<float>(static_cast<double>(model.getInstanceCount(params, data)) *
                              static_cast<double>(model.calculateIoInstancePower(params, data)) * 0.001);
}

// ---- PHY and controller ---------------------------------------------------------------------------------

// Every pin's serialiser, delay line and phase interpolator at the memory clock, idle or not; each data
// bit moved through its FIFO and serialiser.
template <typename Model>
float phyLogicPower(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    using Data = DataOf<Model>;
    float const clocking = static_cast<float>(model.calculateIoPins(params, data)) *
                           phy(data, Data::PhyKey::PIN_CLOCK_PF) * model.calculateMemoryClock(params, data);
    float const moving = static_cast<float>(model.calculateDataPins(params, data)) * model.getDataRate(params, data) *
                         model.calculateBandwidthShare(params, data) * phy(data, Data::PhyKey::BIT_PF);
    return prsm::ram::milliwatts(clocking + moving,
                                 prsm::ram::capacitanceVoltageFactor(data, model.getVccintio(params, data)),
                                 model.calculateVccintioScale(params, data));
}

// V x mA: a PLL per bank (`banks`), its bias growing with the clock, and the receivers of the pins that
// read, on the rail whose voltage `volts` gives, scaled by `scale`.
template <typename Model>
float phyAnalogPower(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data,
                     int (Model::*banks)(ParamsOf<Model>&, DataOf<Model> const&) const, Getter<Model> volts,
                     Getter<Model> scale) {
    using Data = DataOf<Model>;
    float const clockGhz = model.calculateMemoryClock(params, data) * 0.001f;
    float const plls = static_cast<float>((model.*banks)(params, data)) *
                       (phy(data, Data::PhyKey::PLL_MA) + phy(data, Data::PhyKey::PLL_MA_PER_GHZ) * clockGhz);
    float const receivers = (static_cast<float>(model.calculateDataPins(params, data)) +
                             static_cast<float>(model.calculateStrobePins(params, data))) *
                            phy(data, Data::PhyKey::RX_MA) * model.getReadRate(params, data);
    return (model.*volts)(params, data) * (plls + receivers) * (model.*scale)(params, data);
}

// The scheduler and its ports, a datapath register per bit and each rank's state at the controller
// clock, and the datapath (check bits included) per bit moved, on the rail whose voltage `volts` gives.
template <typename Model>
float controllerPower(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data, Getter<Model> volts,
                      Getter<Model> scale) {
    using Data = DataOf<Model>;
    float const bits = static_cast<float>(bitsOf(model, params, data));
    float const clocked = controller(data, Data::ControllerKey::CLOCK_PF) +
                          bits * controller(data, Data::ControllerKey::DATAPATH_CLOCK_PF) +
                          static_cast<float>(model.getRanks(params, data)) *
                              controller(data, Data::ControllerKey::RANK_CLOCK_PF);
    float const moving = bits * model.getDataRate(params, data) * model.calculateBandwidthShare(params, data) *
                         controller(data, Data::ControllerKey::BIT_PF);
    return prsm::ram::milliwatts(clocked * model.calculateControllerClock(params, data) + moving,
                                 prsm::ram::capacitanceVoltageFactor(data, (model.*volts)(params, data)),
                                 (model.*scale)(params, data));
}

}  // namespace prsm::ddr
