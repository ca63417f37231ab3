// Formulas of the larger processor system's sheet.
//
// Every clocked block (application cores, L3 cache, interconnects, real-time cores, memories, peripheral
// controllers) is one member of the Block family, whose rows in the table give its domain, count and
// gates, and follows prsm::ps::clockedPower as a core does (ProcessingSystemBlocks.h): an idle clock
// term unless clock-gated, a load term added to it, power gating, a count, and the voltage
// and device scaling of its domain. The older system's peripheral law, where the load term replaces the
// idle term, is not used: it makes a block's power fall as a light load starts. The peripherals' pins
// cost their receivers and drivers on VCCLPD and on the bank's supply, VCCOPMIO2, whose voltage selects
// the characterised bank voltage. Leakage belongs to the static sheet, which takes the USED_PSXL_* counts.
#include <prsm/models/talvex/PRSMTalvexPsxlModel.h>
#include <prsm/models/talvex/PRSMTalvexPsxlCells.h>

#include <prsm/sheetfunc/PRSMHelperUtils.h>

#include "DeviceScale.h"
#include "ProcessingSystemBlocks.h"

#include <cstddef>

using PRSMHelperUtils::IFERROR;
using Model = PRSMTalvexPsxlModel;
using Data = Model::Data;
using prsm::ps::kPeripheralCount;

namespace {

using BlockKey = Data::BlockDataKey;

static_assert(Model::kBlockMembers == 14);
static_assert(Data::kPeripheralPinsKeys.size() == 3 * kPeripheralCount &&
              Data::kPeripheralPinsKeys[0] == "USB.INPUTS" && Data::kPeripheralPinsKeys[5] == "ETHERNET.BIDIS");
static_assert(Data::kBlockDataKeys[0] == "CPU.CLOCK" && Data::kBlockDataKeys[Model::kBlockMembers] == "CPU.DYNAMIC" &&
              Data::kBlockDataKeys[2 * Model::kBlockMembers] == "USB.PIN_ACTIVITY" &&
              Data::kBlockDataKeys[2 * Model::kBlockMembers + kPeripheralCount - 1] == "SPI.PIN_ACTIVITY");
static_assert(Data::kMioDataKeys[3] == "MIO_IOB_VCCO_PMIO_1V8_RX_DYNAMIC" &&
              Data::kMioDataKeys[8] == "MIO_IOB_VCCO_PMIO_2V5_RX_DYNAMIC" &&
              Data::kMioDataKeys[13] == "MIO_IOB_VCCO_PMIO_3V3_RX_DYNAMIC" &&
              Data::kMioDataKeys[17] == "MIO_BIAS_VCCO_PMIO_3V3_STATIC");

}  // namespace

// ---- Voltage and device scaling of the two domains ----

float Model::computeVccfpdVoltageScaling(Params& params, Data const& data) const {
    return prsm::ps::domainVoltageScaling(data, getVccfpd(params, data));
}

float Model::computeVcclpdVoltageScaling(Params& params, Data const& data) const {
    return prsm::ps::domainVoltageScaling(data, getVcclpd(params, data));
}

float Model::computeFpdDeviceScale(Params& params, Data const& data) const {
    return prsm::deviceScale(*this, params, data, Data::BlockPowerScaleKey::DEFAULT_PSXL_VCCFPD, "PSXL_VCCFPD");
}

float Model::computeLpdDeviceScale(Params& params, Data const& data) const {
    return prsm::deviceScale(*this, params, data, Data::BlockPowerScaleKey::DEFAULT_PSXL_VCCLPD, "PSXL_VCCLPD");
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
    double const scale = row(member).domain == BlockDomain::FULL_POWER ? fpdScale(*this, params, data)
                                                                       : lpdScale(*this, params, data);
    return static_cast<float>(prsm::ps::blockPower(*this, params, data, member) * scale);
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
    return static_cast<float>(prsm::ps::blockData(data, BlockKey::FPD_PLL_CORE) * getFpdPllClkFreq(params, data) *
                              fpdScale(*this, params, data));
}

float Model::computeFpdPllAuxPower(Params& params, Data const& data) const {
    if (getFpdPllOnOff(params, data) != 1) return 0.0f;
    return static_cast<float>(prsm::ps::blockData(data, BlockKey::FPD_PLL_AUX) * getFpdPllClkFreq(params, data) *
                              auxScaling(*this, params, data));
}

float Model::computeLpdPllCorePower(Params& params, Data const& data) const {
    if (getLpdPllOnOff(params, data) != 1) return 0.0f;
    return static_cast<float>(prsm::ps::blockData(data, BlockKey::LPD_PLL_CORE) * getLpdPllClkFreq(params, data) *
                              lpdScale(*this, params, data));
}

float Model::computeLpdPllAuxPower(Params& params, Data const& data) const {
    if (getLpdPllOnOff(params, data) != 1) return 0.0f;
    return static_cast<float>(prsm::ps::blockData(data, BlockKey::LPD_PLL_AUX) * getLpdPllClkFreq(params, data) *
                              auxScaling(*this, params, data));
}

// ---- The peripherals' pins ----

float Model::computeIoCorePower(Params& params, Data const& data, Peripheral member) const {
    return static_cast<float>(prsm::ps::pinCorePower(*this, params, data, member) * lpdScale(*this, params, data));
}

// On the bank VCCOPMIO2 supplies.
float Model::computeIoBankPower(Params& params, Data const& data, Peripheral member) const {
    return prsm::ps::pinBankPower(*this, params, data, member, getVccopmio2(params, data));
}

bool Model::isValidVccopmio2(Params& params, Data const& data) const {
    return prsm::ps::nearStandardBankVoltage(getVccopmio2(params, data));
}

// ---- Rail totals ----

float Model::computeFpdTotalDynamicPower(Params& params, Data const& data) const {
    return calculateCpuDynamicPower(params, data) + calculateL3CacheDynamicPower(params, data) +
           calculateFpInterconnectDynamicPower(params, data) + calculateFpdPllCorePower(params, data);
}

float Model::computeLpdTotalDynamicPower(Params& params, Data const& data) const {
    return prsm::ps::lowPowerDomainPower(*this, params, data);
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

// The units of a block with a power gate: its count, or one without a count cell.
int poweredUnits(Model const& model, Model::Params& params, Data const& data, Model::Block member) {
    Model::BlockRow const& row = Model::row(member);
    if ((model.*row.power_gate)(params, data) == 1) return 0;
    return row.count != nullptr ? (model.*row.count)(params, data) : 1;
}

}  // namespace

int Model::computeUsedPsxlCpu(Params& params, Data const& data) const {
    return poweredUnits(*this, params, data, Block::CPU);
}

int Model::computeUsedPsxlL3Cache(Params& params, Data const& data) const {
    return poweredUnits(*this, params, data, Block::L3_CACHE);
}

int Model::computeUsedPsxlRpu(Params& params, Data const& data) const {
    return poweredUnits(*this, params, data, Block::RPU);
}

int Model::computeUsedPsxlRpuOcm(Params& params, Data const& data) const {
    return poweredUnits(*this, params, data, Block::OCM_MEMORY);
}

int Model::computeUsedPsxlRpuTcm(Params& params, Data const& data) const {
    return poweredUnits(*this, params, data, Block::TCM_MEMORY);
}
