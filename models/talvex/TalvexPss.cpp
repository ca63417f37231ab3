// Formulas of the processor-subsystem sheet.
//
// Every clocked block (application cores and their cluster, L2 memory, interconnects, memories, I/O
// unit, Ethernet and USB controllers, real-time cores) is one member of the Block family and follows
// the one pattern of prsm::ps::clockedPower: a clock term at zero load unless clock-gated, a load term,
// power gating, a count, and the voltage scaling of its domain. Every _POWER output is the block's
// dynamic power: the leakage of the domains belongs to the static sheet. The multiplexed I/O of the
// Ethernet controllers and the low-speed peripherals costs its pins on the core supply (VCCPSLP) and on
// the bank's supply at the voltage selected.
#include <prsm/models/talvex/PRSMTalvexPssModel.h>
#include <prsm/models/talvex/PRSMTalvexPssCells.h>

#include <prsm/framework/PRSMCellSupport.h>

#include "ProcessingSystemFormulas.h"

#include <array>
#include <string>
#include <string_view>

using Model = PRSMTalvexPssModel;
using prsm::ps::BankVoltage;
using prsm::ps::BlockKind;

namespace {

constexpr char kEnabled[] = "ENABLED";

using FloatInput = float (Model::*)(Model::Params&, Model::Data const&) const;
using IntInput = int (Model::*)(Model::Params&, Model::Data const&) const;

enum class Domain { FullPower, LowPower };

// How one block of the family reads its inputs and coefficients. A null gate never gates; a null count
// is one; a null switch is always on.
struct BlockWiring {
    char const* key;  // PSS_DATA.<key>_CLOCK and <key>_DYNAMIC
    BlockKind kind;
    Domain domain;
    FloatInput frequency;
    FloatInput load;
    IntInput clockGated;
    IntInput powerGated;
    IntInput count;
    IntInput onOff;
    char const* companionKey;  // a second coefficient pair on the same clock and load, counted once
};

// In the order of the Block family's members.
std::array<BlockWiring, 13> const kBlocks{{
    {"APU", BlockKind::Peripheral, Domain::FullPower, &Model::getApuClkFreq, &Model::getApuLoad,
     &Model::getApuClockGated, nullptr, nullptr, nullptr, nullptr},
    {"CCI", BlockKind::Peripheral, Domain::FullPower, &Model::getCciClkFreq, &Model::getCciLoad,
     &Model::getCciClockGated, nullptr, nullptr, nullptr, nullptr},
    {"MAIA_CPU", BlockKind::Core, Domain::FullPower, &Model::getCpuClkFreq, &Model::getCpuLoad,
     &Model::getCpuClockGated, &Model::getCpuPowerGated, &Model::getCpuCores, nullptr, nullptr},
    {"DUAL_R5", BlockKind::Core, Domain::LowPower, &Model::getDualR5ClkFreq, &Model::getDualR5Load,
     &Model::getDualR5ClockGated, &Model::getDualR5PowerGated, &Model::getRpuCores, nullptr,
     "RPU_TIEOFF_WRAPPER"},
    {"FP_INTERCONNECT", BlockKind::Peripheral, Domain::FullPower, &Model::getFpInterconnectClkFreq,
     &Model::getFpInterconnectLoad, &Model::getFpInterconnectClockGated, nullptr, nullptr, nullptr, nullptr},
    {"GEM", BlockKind::Peripheral, Domain::LowPower, &Model::getGem0ClkFreq, &Model::getGem0Load,
     &Model::getGem0ClockGated, nullptr, nullptr, nullptr, nullptr},
    {"GEM", BlockKind::Peripheral, Domain::LowPower, &Model::getGem1ClkFreq, &Model::getGem1Load,
     &Model::getGem1ClockGated, nullptr, nullptr, nullptr, nullptr},
    {"L2_MEMORY", BlockKind::Peripheral, Domain::FullPower, &Model::getL2MemoryClkFreq,
     &Model::getL2MemoryLoad, &Model::getL2MemoryClockGated, &Model::getL2MemoryPowerGated, nullptr,
     &Model::getL2MemoryOnOff, nullptr},
    {"LPD_IOU", BlockKind::Peripheral, Domain::LowPower, &Model::getLpdIouClkFreq, &Model::getLpdIouLoad,
     &Model::getLpdIouClockGated, nullptr, &Model::getNumLpdIou, nullptr, nullptr},
    {"LP_INTERCONNECT", BlockKind::Peripheral, Domain::LowPower, &Model::getLpInterconnectClkFreq,
     &Model::getLpInterconnectLoad, &Model::getLpInterconnectClockGated, nullptr, nullptr, nullptr, nullptr},
    {"OCM_MEMORY", BlockKind::Peripheral, Domain::LowPower, &Model::getOcmMemoryClkFreq,
     &Model::getOcmMemoryLoad, &Model::getOcmMemoryClockGated, &Model::getOcmMemoryPowerGated,
     &Model::getOcmMemoryCores, nullptr, nullptr},
    {"TCM_MEMORY", BlockKind::Peripheral, Domain::LowPower, &Model::getTcmMemoryClkFreq,
     &Model::getTcmMemoryLoad, &Model::getTcmMemoryClockGated, &Model::getTcmMemoryPowerGated,
     &Model::getTcmMemoryCores, nullptr, nullptr},
    {"USB", BlockKind::Peripheral, Domain::LowPower, &Model::getUsb0ClkFreq, &Model::getUsb0Load, nullptr,
     nullptr, &Model::getUsb0Ios, nullptr, nullptr},
}};

bool isEnabled(std::string const& usage) {
    return usage == kEnabled;
}

BankVoltage bankVoltage(std::string const& text) {
    return prsm::ps::parseBankVoltage(text);
}

}  // namespace

// ---- Voltage scaling ----

float Model::computeVccpsfpVoltageScaling(Params& params, Data const& data) const {
    return prsm::ps::voltageScaling(getVccpsfp(params, data), data.getSimConditions("PSIM_VOLTAGE"));
}

float Model::computeVccpslpVoltageScaling(Params& params, Data const& data) const {
    return prsm::ps::voltageScaling(getVccpslp(params, data), data.getSimConditions("PSIM_VOLTAGE"));
}

// ---- The clocked blocks ----

float Model::computeDynamicPower(Params& params, Data const& data, Block member) const {
    BlockWiring const& block = kBlocks[static_cast<std::size_t>(member)];
    auto const flag = [&](IntInput input) { return input != nullptr && (this->*input)(params, data) == 1; };
    float const frequency = (this->*block.frequency)(params, data);
    float const load = (this->*block.load)(params, data);
    bool const clockGated = flag(block.clockGated);
    bool const powerGated =
        flag(block.powerGated) || (block.onOff != nullptr && (this->*block.onOff)(params, data) != 1);
    double const count = block.count != nullptr ? (this->*block.count)(params, data) : 1;
    double const scaling = block.domain == Domain::FullPower ? calculateVccpsfpVoltageScaling(params, data)
                                                             : calculateVccpslpVoltageScaling(params, data);

    double const clock = data.getPssData(prsm::concatKey(block.key, "_CLOCK"));
    double const dynamic = data.getPssData(prsm::concatKey(block.key, "_DYNAMIC"));
    double power =
        count * prsm::ps::clockedPower(block.kind, clock, dynamic, frequency, load, clockGated, powerGated);
    if (block.companionKey != nullptr) {
        double const companionClock = data.getPssData(prsm::concatKey(block.companionKey, "_CLOCK"));
        double const companionDynamic = data.getPssData(prsm::concatKey(block.companionKey, "_DYNAMIC"));
        power += prsm::ps::clockedPower(BlockKind::Peripheral, companionClock, companionDynamic, frequency,
                                        load, clockGated, powerGated);
    }
    return static_cast<float>(power * scaling);
}

// ---- Block powers: the dynamic parts, and the domain totals ----

float Model::computeApuCpuPower(Params& params, Data const& data) const {
    return calculateApuDynamicPower(params, data) + calculateCpuDynamicPower(params, data);
}

float Model::computeL2MemoryPower(Params& params, Data const& data) const {
    return calculateL2MemoryDynamicPower(params, data);
}

float Model::computeFpInterconnectPower(Params& params, Data const& data) const {
    return calculateFpInterconnectDynamicPower(params, data);
}

float Model::computeCciPower(Params& params, Data const& data) const {
    return calculateCciDynamicPower(params, data);
}

float Model::computeIouWithoutIoPower(Params& params, Data const& data) const {
    return calculateLpdIouDynamicPower(params, data);
}

float Model::computeGem0Power(Params& params, Data const& data) const {
    return calculateGem0DynamicPower(params, data);
}

float Model::computeGem1Power(Params& params, Data const& data) const {
    return calculateGem1DynamicPower(params, data);
}

float Model::computeUsb0Power(Params& params, Data const& data) const {
    return calculateUsb0DynamicPower(params, data);
}

float Model::computeLpInteconnectPower(Params& params, Data const& data) const {
    return calculateLpInterconnectDynamicPower(params, data);
}

float Model::computeDualR5Power(Params& params, Data const& data) const {
    return calculateDualRpDynamicPower(params, data);
}

float Model::computeOcmMemoryPower(Params& params, Data const& data) const {
    return calculateOcmMemoryDynamicPower(params, data);
}

float Model::computeTcmMemoryPower(Params& params, Data const& data) const {
    return calculateTcmMemoryDynamicPower(params, data);
}

float Model::computeFpdTotalDynamicPower(Params& params, Data const& data) const {
    return calculateApuCpuPower(params, data) + calculateL2MemoryPower(params, data) +
           calculateFpInterconnectPower(params, data) + calculateCciPower(params, data) +
           calculateFpdPllPower(params, data);
}

float Model::computeLpdTotalDynamicPower(Params& params, Data const& data) const {
    return calculateIouWithoutIoPower(params, data) + calculateGem0Power(params, data) +
           calculateGem1Power(params, data) + calculateUsb0Power(params, data) +
           calculateLpInteconnectPower(params, data) + calculateDualR5Power(params, data) +
           calculateOcmMemoryPower(params, data) + calculateTcmMemoryPower(params, data) +
           calculateLpdPllPower(params, data) + calculateLpdGem0Power(params, data) +
           calculateLpdGem1Power(params, data) + calculateLpdLowPerIosPower(params, data);
}

// ---- PLLs: W per MHz of output clock on the domain's supply (scaled) and on VCCAUX, while on ----

float Model::computeFpdPllDynamicVccintPower(Params& params, Data const& data) const {
    if (getFpdPllOnOff(params, data) != 1) return 0.0f;
    return static_cast<float>(data.getPssData("FPD_PLL_VCCINT_CLOCK") * getFpdPllClkFreq(params, data) *
                              calculateVccpsfpVoltageScaling(params, data));
}

float Model::computeFpdPllDynamicVccauxPower(Params& params, Data const& data) const {
    if (getFpdPllOnOff(params, data) != 1) return 0.0f;
    return data.getPssData("FPD_PLL_VCCAUX_CLOCK") * getFpdPllClkFreq(params, data);
}

float Model::computeFpdPllPower(Params& params, Data const& data) const {
    return calculateFpdPllDynamicVccintPower(params, data) + calculateFpdPllDynamicVccauxPower(params, data);
}

float Model::computeLpdPllVccpslpDynamicPower(Params& params, Data const& data) const {
    if (getLpdPllOnOff(params, data) != 1) return 0.0f;
    return static_cast<float>(data.getPssData("LPD_PLL_VCCINT_CLOCK") * getLpdPllClkFreq(params, data) *
                              calculateVccpslpVoltageScaling(params, data));
}

float Model::computeLpdPllVccauxDynamicPower(Params& params, Data const& data) const {
    if (getLpdPllOnOff(params, data) != 1) return 0.0f;
    return data.getPssData("LPD_PLL_VCCAUX_CLOCK") * getLpdPllClkFreq(params, data);
}

float Model::computeLpdPllPower(Params& params, Data const& data) const {
    return calculateLpdPllVccpslpDynamicPower(params, data) + calculateLpdPllVccauxDynamicPower(params, data);
}

// ---- Multiplexed I/O ----

namespace {

// The usage, bank voltage, clock and load of one multiplexed-I/O interface, and its pin group.
struct MioWiring {
    std::string (Model::*usage)(Model::Params&, Model::Data const&) const;
    std::string (Model::*voltage)(Model::Params&, Model::Data const&) const;
    FloatInput frequency;
    FloatInput load;
    Model::PinGroup pins;
};

// In the order of the Mio family's members (and of MioPart's, and of PinGroup's).
std::array<MioWiring, 3> const kMio{{
    {&Model::getLpdGem0Mode, &Model::getLpdMioGem0Voltage, &Model::getGem0ClkFreq, &Model::getLpdGem0Load,
     Model::PinGroup::GEM0},
    {&Model::getLpdGem1Mode, &Model::getLpdMioGem1Voltage, &Model::getGem1ClkFreq, &Model::getLpdGem1Load,
     Model::PinGroup::GEM1},
    {&Model::getLpdLowPerIoMode, &Model::getLpdMioLowPerIoVoltage, &Model::getLpdIouClkFreq,
     &Model::getLpdLowPerIoLoad, Model::PinGroup::LPD_IOU_BANK1},
}};

MioWiring const& mioOf(Model::Mio member) {
    return kMio[static_cast<std::size_t>(member)];
}

MioWiring const& mioOf(Model::MioPart member) {
    return kMio[static_cast<std::size_t>(member)];
}

std::size_t pinGroupIndex(Model::PinGroup group) {
    return static_cast<std::size_t>(group);
}

}  // namespace

// The pins of an interface whose usage is "ENABLED", as MIO_BANK_DISTRIBUTION places them; none otherwise.
namespace {
int distributedPins(Model const& model, Model::Params& params, Model::Data const& data, Model::PinGroup group,
                    char const* direction) {
    MioWiring const& mio = kMio[pinGroupIndex(group)];
    if (!isEnabled((model.*mio.usage)(params, data))) return 0;
    return data.getMioBankDistribution(Model::memberName(group), direction);
}

prsm::ps::Pins pinsOf(Model const& model, Model::Params& params, Model::Data const& data,
                      Model::PinGroup group) {
    return {model.calculateInputs(params, data, group), model.calculateOutputs(params, data, group),
            model.calculateBidis(params, data, group)};
}
}  // namespace

int Model::computeInputs(Params& params, Data const& data, PinGroup member) const {
    return distributedPins(*this, params, data, member, "INPUTS");
}

int Model::computeOutputs(Params& params, Data const& data, PinGroup member) const {
    return distributedPins(*this, params, data, member, "OUTPUTS");
}

int Model::computeBidis(Params& params, Data const& data, PinGroup member) const {
    return distributedPins(*this, params, data, member, "BIDIS");
}

// Core side: receivers and drivers at the interface's clock and load, and the static term, on VCCPSLP.
float Model::computeDynamicVccintPower(Params& params, Data const& data, Mio member) const {
    MioWiring const& mio = mioOf(member);
    prsm::ps::Pins const pins = pinsOf(*this, params, data, mio.pins);
    if (pins.total() == 0) return 0.0f;
    auto const coefficient = [&data](std::string_view key) {
        return static_cast<double>(data.getPssData(key));
    };
    double const power =
        prsm::ps::coreSidePower(pins, prsm::ps::coreSideCoefficients(coefficient),
                                (this->*mio.frequency)(params, data), (this->*mio.load)(params, data));
    return static_cast<float>(power * calculateVccpslpVoltageScaling(params, data));
}

float Model::computeDynamicMioPower(Params& params, Data const& data, Mio member) const {
    auto const part = static_cast<MioPart>(member);
    return calculate18Power(params, data, part) + calculate25Power(params, data, part) +
           calculate33Power(params, data, part);
}

namespace {
// The bank-side power of an interface when its bank runs at `voltage`, else 0. The Ethernet pins' bias
// is kept in GEM<n>_BIAS (evaluated either way, so that the cell shows its figure); the low-speed
// peripherals' is added here.
float bankPart(Model const& model, Model::Params& params, Model::Data const& data, Model::MioPart member,
               BankVoltage voltage) {
    MioWiring const& mio = mioOf(member);
    bool const lowSpeed = member == Model::MioPart::LPD_LOW_PER_IO_DYNAMIC_MIO;
    float const ethernetBias = member == Model::MioPart::LPD_GEM0_MIO ? model.calculateGem0Bias(params, data)
                               : member == Model::MioPart::LPD_GEM1_MIO
                                   ? model.calculateGem1Bias(params, data)
                                   : 0.0f;
    if (bankVoltage((model.*mio.voltage)(params, data)) != voltage) return 0.0f;
    prsm::ps::Pins const pins = pinsOf(model, params, data, mio.pins);
    if (pins.total() == 0) return 0.0f;
    auto const coefficient = [&data](std::string_view key) {
        return static_cast<double>(data.getPssData(key));
    };
    prsm::ps::BankSideCoefficients const k = prsm::ps::bankSideCoefficients(voltage, coefficient);
    double const power = prsm::ps::bankSidePower(pins, k, (model.*mio.frequency)(params, data),
                                                 (model.*mio.load)(params, data));
    return static_cast<float>(power + (lowSpeed ? prsm::ps::biasPower(pins, k) : ethernetBias));
}

float ethernetBias(Model const& model, Model::Params& params, Model::Data const& data,
                   Model::MioPart member) {
    MioWiring const& mio = mioOf(member);
    BankVoltage const voltage = bankVoltage((model.*mio.voltage)(params, data));
    prsm::ps::Pins const pins = pinsOf(model, params, data, mio.pins);
    if (voltage == BankVoltage::None || pins.total() == 0) return 0.0f;
    std::string_view const key =
        prsm::concatKey("MIO_BIAS_VCCO_PMIO_", prsm::ps::bankVoltageInfo(voltage).tag, "_STATIC");
    return static_cast<float>(data.getPssData(key) * pins.total());
}
}  // namespace

float Model::compute18Power(Params& params, Data const& data, MioPart member) const {
    return bankPart(*this, params, data, member, BankVoltage::V18);
}

float Model::compute25Power(Params& params, Data const& data, MioPart member) const {
    return bankPart(*this, params, data, member, BankVoltage::V25);
}

float Model::compute33Power(Params& params, Data const& data, MioPart member) const {
    return bankPart(*this, params, data, member, BankVoltage::V33);
}

float Model::computeGem0Bias(Params& params, Data const& data) const {
    return ethernetBias(*this, params, data, MioPart::LPD_GEM0_MIO);
}

float Model::computeGem1Bias(Params& params, Data const& data) const {
    return ethernetBias(*this, params, data, MioPart::LPD_GEM1_MIO);
}

float Model::computeLpdGem0Power(Params& params, Data const& data) const {
    return calculateLpdGem0DynamicVccintPower(params, data) + calculateLpdGem0DynamicMioPower(params, data);
}

float Model::computeLpdGem1Power(Params& params, Data const& data) const {
    return calculateLpdGem1DynamicVccintPower(params, data) + calculateLpdGem1DynamicMioPower(params, data);
}

float Model::computeLpdLowPerIosPower(Params& params, Data const& data) const {
    return calculateLpdLowPerIoDynamicVccintPower(params, data) +
           calculateLpdLowPerIoDynamicMioPower(params, data);
}
