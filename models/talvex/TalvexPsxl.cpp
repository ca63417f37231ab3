// Formulas of the larger processor system's sheet.
//
// Every clocked block (application cores, L3 cache, interconnects, real-time cores, memories, peripheral
// controllers) is one member of the Block family and follows prsm::ps::clockedPower as a core does: an
// idle clock term unless clock-gated, a load term added to it, power gating, a count, and the voltage
// and device scaling of its domain. The older system's peripheral law, where the load term replaces the
// idle term, is not used: it makes a block's power fall as a light load starts. The peripherals' pins
// cost their receivers and drivers on VCCLPD and on the bank's supply, VCCOPMIO2, whose voltage selects
// the characterised bank voltage. Leakage belongs to the static sheet, which takes the USED_PSXL_* counts.
#include <prsm/models/talvex/PRSMTalvexPsxlModel.h>
#include <prsm/models/talvex/PRSMTalvexPsxlCells.h>

#include <prsm/sheetfunc/PRSMHelperUtils.h>

#include "ProcessingSystemFormulas.h"

#include <array>
#include <cmath>
#include <cstddef>

using PRSMHelperUtils::IFERROR;
using Model = PRSMTalvexPsxlModel;
using Data = Model::Data;
using prsm::ps::BankVoltage;
using prsm::ps::BlockKind;

namespace {

using IntInput = int (Model::*)(Model::Params&, Data const&) const;

enum class Domain { FullPower, LowPower };

// How one block of the family that is not a peripheral is counted and gated. A null count is one; a
// null gate never gates. The peripherals are counted by the Peripheral family, never gated, and draw
// on the low-power domain.
struct BlockWiring {
    Domain domain;
    IntInput count;
    IntInput clockGated;
    IntInput powerGated;
};

// In the order of the Block family's members, whose last seven are the Peripheral family's members.
constexpr std::array<BlockWiring, 7> kBlocks{{
    {Domain::FullPower, &Model::getCpuCores, &Model::getCpuClockGated, &Model::getCpuPowerGated},
    {Domain::FullPower, nullptr, &Model::getL3CacheClockGated, &Model::getL3CachePowerGated},
    {Domain::FullPower, nullptr, &Model::getFpInterconnectClockGated, nullptr},
    {Domain::LowPower, &Model::getRpuCores, &Model::getRpuClockGated, &Model::getRpuPowerGated},
    {Domain::LowPower, &Model::getTcmMemoryCores, &Model::getTcmMemoryClockGated,
     &Model::getTcmMemoryPowerGated},
    {Domain::LowPower, &Model::getOcmMemoryCores, &Model::getOcmMemoryClockGated,
     &Model::getOcmMemoryPowerGated},
    {Domain::LowPower, nullptr, &Model::getLpInterconnectClockGated, nullptr},
}};
constexpr BlockWiring kPeripheralWiring{Domain::LowPower, nullptr, nullptr, nullptr};
constexpr std::size_t kFirstPeripheral = kBlocks.size();
constexpr std::size_t kPeripheralCount = 7;
constexpr std::size_t kBlockCount = kFirstPeripheral + kPeripheralCount;

Model::Block blockOf(Model::Peripheral peripheral) {
    return static_cast<Model::Block>(kFirstPeripheral + static_cast<std::size_t>(peripheral));
}

// ---- Table keys, read by their place in the tables' `fixed` lists ----

using BlockKey = Data::BlockDataKey;
using MioKey = Data::MioDataKey;
using PinKey = Data::PeripheralPinsKey;

static_assert(Data::kPeripheralPinsKeys.size() == 3 * kPeripheralCount);

// BLOCK_DATA: every block's CLOCK, then every block's DYNAMIC, then the peripherals' PIN_ACTIVITY.
static_assert(Data::kBlockDataKeys[0] == "CPU.CLOCK" && Data::kBlockDataKeys[kBlockCount] == "CPU.DYNAMIC" &&
              Data::kBlockDataKeys[2 * kBlockCount] == "USB.PIN_ACTIVITY" &&
              Data::kBlockDataKeys[2 * kBlockCount + kPeripheralCount - 1] == "SPI.PIN_ACTIVITY");
enum class Term { Clock, Dynamic };

BlockKey blockKey(Model::Block member, Term term) {
    return static_cast<BlockKey>(static_cast<std::size_t>(term) * kBlockCount +
                                 static_cast<std::size_t>(member));
}

BlockKey pinActivityKey(Model::Peripheral member) {
    return static_cast<BlockKey>(2 * kBlockCount + static_cast<std::size_t>(member));
}

// PERIPHERAL_PINS: each peripheral's INPUTS, OUTPUTS, BIDIS.
static_assert(Data::kPeripheralPinsKeys[0] == "USB.INPUTS" &&
              Data::kPeripheralPinsKeys[5] == "ETHERNET.BIDIS");
enum class Direction { Inputs, Outputs, Bidis };

PinKey pinKey(Model::Peripheral member, Direction direction) {
    return static_cast<PinKey>(3 * static_cast<std::size_t>(member) + static_cast<std::size_t>(direction));
}

// MIO_DATA: the core side's three keys, then five per bank voltage in BankVoltage's order.
static_assert(Data::kMioDataKeys[3] == "MIO_IOB_VCCO_PMIO_1V8_RX_DYNAMIC" &&
              Data::kMioDataKeys[8] == "MIO_IOB_VCCO_PMIO_2V5_RX_DYNAMIC" &&
              Data::kMioDataKeys[13] == "MIO_IOB_VCCO_PMIO_3V3_RX_DYNAMIC" &&
              Data::kMioDataKeys[17] == "MIO_BIAS_VCCO_PMIO_3V3_STATIC");

// A coefficient the file lacks costs nothing; a factor it lacks changes nothing.
float blockData(Data const& data, BlockKey key) {
    return IFERROR(data.getBlockDataOrError(key), 0.0f);
}

double mioData(Data const& data, std::size_t index, double fallback = 0.0) {
    float const value = data.getMioDataOrError(static_cast<MioKey>(index));
    return PRSMHelperUtils::ISERROR(value) ? fallback : value;
}

prsm::ps::CoreSideCoefficients coreSide(Data const& data) {
    return {mioData(data, 0), mioData(data, 1), mioData(data, 2)};
}

prsm::ps::BankSideCoefficients bankSide(Data const& data, BankVoltage bank) {
    std::size_t const first = 3 + 5 * static_cast<std::size_t>(bank);
    return {mioData(data, first), mioData(data, first + 1), mioData(data, first + 2, 1.0),
            mioData(data, first + 3), mioData(data, first + 4)};
}

// (supply / characterised supply)^2.3; 1 when the file has no characterisation voltage.
float domainVoltageScaling(Data const& data, float supply) {
    float const characterised = data.getSimConditionsOrError(Data::SimConditionsKey::PSIM_VOLTAGE);
    if (PRSMHelperUtils::ISERROR(characterised)) return 1.0f;
    return prsm::ps::voltageScaling(supply, characterised);
}

}  // namespace

// ---- Voltage and device scaling of the two domains ----

float Model::computeVccfpdVoltageScaling(Params& params, Data const& data) const {
    return domainVoltageScaling(data, getVccfpd(params, data));
}

float Model::computeVcclpdVoltageScaling(Params& params, Data const& data) const {
    return domainVoltageScaling(data, getVcclpd(params, data));
}

float Model::computeFpdDeviceScale(Params& params, Data const& data) const {
    return IFERROR(
        data.getBlockPowerScaleOrError(refDevice(params, data), "PSXL_VCCFPD"),
        IFERROR(data.getBlockPowerScaleOrError(Data::BlockPowerScaleKey::DEFAULT_PSXL_VCCFPD), 1.0f));
}

float Model::computeLpdDeviceScale(Params& params, Data const& data) const {
    return IFERROR(
        data.getBlockPowerScaleOrError(refDevice(params, data), "PSXL_VCCLPD"),
        IFERROR(data.getBlockPowerScaleOrError(Data::BlockPowerScaleKey::DEFAULT_PSXL_VCCLPD), 1.0f));
}

namespace {

double fpdScale(Model const& model, Model::Params& params, Data const& data) {
    return static_cast<double>(model.calculateVccfpdVoltageScaling(params, data)) *
           model.calculateFpdDeviceScale(params, data);
}

double lpdScale(Model const& model, Model::Params& params, Data const& data) {
    return static_cast<double>(model.calculateVcclpdVoltageScaling(params, data)) *
           model.calculateLpdDeviceScale(params, data);
}

}  // namespace

// ---- The clocked blocks ----

float Model::computeDynamicPower(Params& params, Data const& data, Block member) const {
    auto const index = static_cast<std::size_t>(member);
    BlockWiring const& block = index < kFirstPeripheral ? kBlocks[index] : kPeripheralWiring;
    auto const flag = [&](IntInput input) { return input != nullptr && (this->*input)(params, data) == 1; };
    double count = 1.0;
    if (index >= kFirstPeripheral)
        count = getCount(params, data, static_cast<Peripheral>(index - kFirstPeripheral));
    else if (block.count != nullptr)
        count = (this->*block.count)(params, data);

    double const power =
        count * prsm::ps::clockedPower(BlockKind::Core, blockData(data, blockKey(member, Term::Clock)),
                                       blockData(data, blockKey(member, Term::Dynamic)),
                                       getClkFreq(params, data, member), getLoad(params, data, member),
                                       flag(block.clockGated), flag(block.powerGated));
    double const scale =
        block.domain == Domain::FullPower ? fpdScale(*this, params, data) : lpdScale(*this, params, data);
    return static_cast<float>(power * scale);
}

// ---- PLLs: W per MHz of output clock on the domain's supply (scaled) and on VCCAUXLPD, while on ----

namespace {

// (VCCAUXLPD / its characterised voltage)^2; 1 when the file has no characterisation voltage.
double auxScaling(Model const& model, Model::Params& params, Data const& data) {
    float const characterised = data.getSimConditionsOrError(Data::SimConditionsKey::AUX_VOLTAGE);
    if (PRSMHelperUtils::ISERROR(characterised) || !(characterised > 0.0f)) return 1.0;
    double const ratio = model.getVccauxlpd(params, data) / characterised;
    return ratio * ratio;
}

}  // namespace

float Model::computeFpdPllCorePower(Params& params, Data const& data) const {
    if (getFpdPllOnOff(params, data) != 1) return 0.0f;
    return static_cast<float>(blockData(data, BlockKey::FPD_PLL_CORE) * getFpdPllClkFreq(params, data) *
                              fpdScale(*this, params, data));
}

float Model::computeFpdPllAuxPower(Params& params, Data const& data) const {
    if (getFpdPllOnOff(params, data) != 1) return 0.0f;
    return static_cast<float>(blockData(data, BlockKey::FPD_PLL_AUX) * getFpdPllClkFreq(params, data) *
                              auxScaling(*this, params, data));
}

float Model::computeLpdPllCorePower(Params& params, Data const& data) const {
    if (getLpdPllOnOff(params, data) != 1) return 0.0f;
    return static_cast<float>(blockData(data, BlockKey::LPD_PLL_CORE) * getLpdPllClkFreq(params, data) *
                              lpdScale(*this, params, data));
}

float Model::computeLpdPllAuxPower(Params& params, Data const& data) const {
    if (getLpdPllOnOff(params, data) != 1) return 0.0f;
    return static_cast<float>(blockData(data, BlockKey::LPD_PLL_AUX) * getLpdPllClkFreq(params, data) *
                              auxScaling(*this, params, data));
}

// ---- The peripherals' pins ----

namespace {

int pinsOf(Data const& data, Model::Peripheral member, Direction direction) {
    return IFERROR(data.getPeripheralPinsOrError(pinKey(member, direction)), 0);
}

// Every controller in use places its pins on the bank.
prsm::ps::Pins pinsOf(Model const& model, Model::Params& params, Data const& data, Model::Peripheral member) {
    int const count = model.getCount(params, data, member);
    return {count * pinsOf(data, member, Direction::Inputs), count * pinsOf(data, member, Direction::Outputs),
            count * pinsOf(data, member, Direction::Bidis)};
}

// Pins switch at the controller's clock times its PIN_ACTIVITY (1 when the file has none).
double pinFrequency(Model const& model, Model::Params& params, Data const& data, Model::Peripheral member) {
    return model.getClkFreq(params, data, blockOf(member)) *
           IFERROR(data.getBlockDataOrError(pinActivityKey(member)), 1.0f);
}

}  // namespace

float Model::computeIoCorePower(Params& params, Data const& data, Peripheral member) const {
    prsm::ps::Pins const pins = pinsOf(*this, params, data, member);
    double const power =
        prsm::ps::coreSidePower(pins, coreSide(data), pinFrequency(*this, params, data, member),
                                getLoad(params, data, blockOf(member)));
    return static_cast<float>(power * lpdScale(*this, params, data));
}

// At the bank voltage nearest VCCOPMIO2: the switching terms scale with (V / nominal)^2, the static and
// bias currents' power with V / nominal.
float Model::computeIoBankPower(Params& params, Data const& data, Peripheral member) const {
    double const volts = getVccopmio2(params, data);
    BankVoltage const bank = prsm::ps::nearestBankVoltage(volts);
    if (bank == BankVoltage::None) return 0.0f;
    prsm::ps::Pins const pins = pinsOf(*this, params, data, member);
    prsm::ps::BankSideCoefficients switching = bankSide(data, bank);
    double const standing = (switching.staticPerPin + switching.biasPerPin) * pins.total();
    switching.staticPerPin = 0.0;
    double const dynamic = prsm::ps::bankSidePower(pins, switching, pinFrequency(*this, params, data, member),
                                                   getLoad(params, data, blockOf(member)));
    double const ratio = volts / prsm::ps::nominalVolts(bank);
    return static_cast<float>(dynamic * ratio * ratio + standing * ratio);
}

bool Model::isValidVccopmio2(Params& params, Data const& data) const {
    double const volts = getVccopmio2(params, data);
    BankVoltage const bank = prsm::ps::nearestBankVoltage(volts);
    if (bank == BankVoltage::None) return false;
    double const nominal = prsm::ps::nominalVolts(bank);
    return std::fabs(volts - nominal) <= 0.05 * nominal;
}

// ---- Rail totals ----

float Model::computeFpdTotalDynamicPower(Params& params, Data const& data) const {
    return calculateCpuDynamicPower(params, data) + calculateL3CacheDynamicPower(params, data) +
           calculateFpInterconnectDynamicPower(params, data) + calculateFpdPllCorePower(params, data);
}

float Model::computeLpdTotalDynamicPower(Params& params, Data const& data) const {
    float total = calculateRpuDynamicPower(params, data) + calculateTcmMemoryDynamicPower(params, data) +
                  calculateOcmMemoryDynamicPower(params, data) +
                  calculateLpInterconnectDynamicPower(params, data) + calculateLpdPllCorePower(params, data);
    for (std::size_t i = 0; i < kPeripheralCount; ++i) {
        auto const peripheral = static_cast<Peripheral>(i);
        total += calculateDynamicPower(params, data, blockOf(peripheral)) +
                 calculateIoCorePower(params, data, peripheral);
    }
    return total;
}

float Model::computeAuxTotalDynamicPower(Params& params, Data const& data) const {
    return calculateFpdPllAuxPower(params, data) + calculateLpdPllAuxPower(params, data);
}

float Model::computeMioTotalDynamicPower(Params& params, Data const& data) const {
    float total = 0.0f;
    for (std::size_t i = 0; i < kPeripheralCount; ++i)
        total += calculateIoBankPower(params, data, static_cast<Peripheral>(i));
    return total;
}

float Model::computeTotalDynamicPower(Params& params, Data const& data) const {
    return calculateFpdTotalDynamicPower(params, data) + calculateLpdTotalDynamicPower(params, data) +
           calculateAuxTotalDynamicPower(params, data) + calculateMioTotalDynamicPower(params, data);
}

// ---- What the static sheet counts: the units powered (a power-gated unit leaks nothing) ----

namespace {

int poweredUnits(Model const& model, Model::Params& params, Data const& data, int units,
                 IntInput powerGated) {
    return (model.*powerGated)(params, data) == 1 ? 0 : units;
}

}  // namespace

int Model::computeUsedPsxlCpu(Params& params, Data const& data) const {
    return poweredUnits(*this, params, data, getCpuCores(params, data), &Model::getCpuPowerGated);
}

int Model::computeUsedPsxlL3Cache(Params& params, Data const& data) const {
    return poweredUnits(*this, params, data, 1, &Model::getL3CachePowerGated);
}

int Model::computeUsedPsxlRpu(Params& params, Data const& data) const {
    return poweredUnits(*this, params, data, getRpuCores(params, data), &Model::getRpuPowerGated);
}

int Model::computeUsedPsxlRpuOcm(Params& params, Data const& data) const {
    return poweredUnits(*this, params, data, getOcmMemoryCores(params, data), &Model::getOcmMemoryPowerGated);
}

int Model::computeUsedPsxlRpuTcm(Params& params, Data const& data) const {
    return poweredUnits(*this, params, data, getTcmMemoryCores(params, data), &Model::getTcmMemoryPowerGated);
}
