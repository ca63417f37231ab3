// Formulas of the platform-management-controller sheet.
//
// The interconnect and the I/O unit follow the clocked-block pattern of the processor subsystem
// (prsm::ps::clockedPower). The PLLs cost W per MHz of their clock on VCCINTPMC and VCCAUXPMC while
// their usage is "ENABLED". An interface whose usage is "ENABLED" costs its pins: receivers and
// drivers at its clock and load plus a static term on VCCINTPMC, a static term per pin on VCCAUXPMC,
// and on its bank's supply the terms of the bank's voltage (from the bank's I/O standard). Everything
// on VCCINTPMC is scaled by the supply's voltage law, everything on VCCAUXPMC linearly by VCCAUXPMC
// against its characterisation voltage; bank supplies are not scaled.
#include <prsm/models/talvex/PRSMTalvexPmcModel.h>
#include <prsm/models/talvex/PRSMTalvexPmcCells.h>

#include "ProcessingSystemFormulas.h"

#include <string>
#include <string_view>

using Model = PRSMTalvexPmcModel;
using prsm::ps::BankVoltage;
using prsm::ps::BlockKind;

namespace {

constexpr char kEnabled[] = "ENABLED";

bool isEnabled(std::string const& usage) {
    return usage == kEnabled;
}

double coefficient(Model::Data const& data, std::string_view key) {
    return data.getPmcData(key);
}

// VCCAUXPMC against its characterisation voltage; 0 when that voltage is not positive.
double auxScale(Model const& model, Model::Params& params, Model::Data const& data) {
    double const characterisation = data.getSimConditions("AUX_VOLTAGE");
    if (!(characterisation > 0.0)) return 0.0;
    return model.getVccauxpmc(params, data) / characterisation;
}

// The pins of an interface whose usage is "ENABLED"; none otherwise.
prsm::ps::Pins pinsOf(Model const& model, Model::Params& params, Model::Data const& data, Model::Port port) {
    if (!isEnabled(model.getUsage(params, data, port))) return {};
    return {model.getInputs(params, data, port), model.getOutputs(params, data, port),
            model.getBidis(params, data, port)};
}

// The I/O standard of the bank an interface sits on: dedicated I/O on bank 3, Ethernet on bank 1,
// everything else on bank 0.
BankVoltage bankVoltageOf(Model const& model, Model::Params& params, Model::Data const& data,
                          Model::Port port) {
    switch (port) {
        case Model::Port::PMC_DED_IO:
            return prsm::ps::parseBankVoltage(model.getPmcBank3Iostd(params, data));
        case Model::Port::PMC_GEM0:
        case Model::Port::PMC_GEM1:
            return prsm::ps::parseBankVoltage(model.getPmcBank1Iostd(params, data));
        default:
            return prsm::ps::parseBankVoltage(model.getPmcBank0Iostd(params, data));
    }
}

float coreSide(Model const& model, Model::Params& params, Model::Data const& data, Model::Port port) {
    prsm::ps::Pins const pins = pinsOf(model, params, data, port);
    if (pins.total() == 0) return 0.0f;
    auto const lookup = [&data](std::string_view key) { return coefficient(data, key); };
    double const power =
        prsm::ps::coreSidePower(pins, prsm::ps::coreSideCoefficients(lookup),
                                model.getFreq(params, data, port), model.getLoad(params, data, port));
    return static_cast<float>(power * model.calculateVccintpmcVoltageScaling(params, data));
}

float auxSide(Model const& model, Model::Params& params, Model::Data const& data, Model::Port port) {
    prsm::ps::Pins const pins = pinsOf(model, params, data, port);
    if (pins.total() == 0) return 0.0f;
    return static_cast<float>(pins.total() * coefficient(data, "MIO_IOB_VCCAUX_STATIC") *
                              auxScale(model, params, data));
}

// In the order of the IoPart family's members.
constexpr Model::Port kIoPartPort[] = {
    Model::Port::PMC_DED_IO, Model::Port::PMC_GEM0,     Model::Port::PMC_GEM1,
    Model::Port::PMC_I2C,    Model::Port::PMC_IO_BANK0, Model::Port::PMC_OSPI,
    Model::Port::PMC_QSPI,   Model::Port::PMC_SD,       Model::Port::PMC_USB0};

// The bank-supply power of an interface when its bank runs at `voltage`, bias included; else 0.
float bankPart(Model const& model, Model::Params& params, Model::Data const& data, Model::IoPart part,
               BankVoltage voltage) {
    Model::Port const port = kIoPartPort[static_cast<std::size_t>(part)];
    if (bankVoltageOf(model, params, data, port) != voltage) return 0.0f;
    prsm::ps::Pins const pins = pinsOf(model, params, data, port);
    if (pins.total() == 0) return 0.0f;
    auto const lookup = [&data](std::string_view key) { return coefficient(data, key); };
    prsm::ps::BankSideCoefficients const k = prsm::ps::bankSideCoefficients(voltage, lookup);
    return static_cast<float>(prsm::ps::bankSidePower(pins, k, model.getFreq(params, data, port),
                                                      model.getLoad(params, data, port)) +
                              prsm::ps::biasPower(pins, k));
}

Model::Port portOf(Model::Bank0Port port) {
    switch (port) {
        case Model::Bank0Port::PMC_I2C:
            return Model::Port::PMC_I2C;
        case Model::Bank0Port::PMC_OSPI:
            return Model::Port::PMC_OSPI;
        case Model::Bank0Port::PMC_QSPI:
            return Model::Port::PMC_QSPI;
        case Model::Bank0Port::PMC_SD:
            return Model::Port::PMC_SD;
        case Model::Bank0Port::PMC_USB0:
            break;
    }
    return Model::Port::PMC_USB0;
}

Model::IoPart ioPartOf(Model::Bank0Port port) {
    switch (port) {
        case Model::Bank0Port::PMC_I2C:
            return Model::IoPart::I2C_MIO;
        case Model::Bank0Port::PMC_OSPI:
            return Model::IoPart::OSPI_MIO;
        case Model::Bank0Port::PMC_QSPI:
            return Model::IoPart::QSPI_MIO;
        case Model::Bank0Port::PMC_SD:
            return Model::IoPart::SD_MIO;
        case Model::Bank0Port::PMC_USB0:
            break;
    }
    return Model::IoPart::USB0_MIO;
}

Model::Port portOf(Model::Bank1Port port) {
    return port == Model::Bank1Port::GEM0 ? Model::Port::PMC_GEM0 : Model::Port::PMC_GEM1;
}

Model::IoPart ioPartOf(Model::Bank1Port port) {
    return port == Model::Bank1Port::GEM0 ? Model::IoPart::GEM0_MIO : Model::IoPart::GEM1_MIO;
}

float allVoltages(Model const& model, Model::Params& params, Model::Data const& data, Model::IoPart part) {
    return model.calculate18Power(params, data, part) + model.calculate25Power(params, data, part) +
           model.calculate33Power(params, data, part);
}

}  // namespace

float Model::computeVccintpmcVoltageScaling(Params& params, Data const& data) const {
    return prsm::ps::voltageScaling(getVccintpmc(params, data), data.getSimConditions("PSIM_VOLTAGE"));
}

// ---- Interconnect and I/O unit ----

float Model::computePmcInterconnectVccintpmcPower(Params& params, Data const& data) const {
    double const power = prsm::ps::clockedPower(
        BlockKind::Peripheral, coefficient(data, "PMC_INTERCONNECT_CLOCK"),
        coefficient(data, "PMC_INTERCONNECT_DYNAMIC"), getInterconnectClockFreq(params, data),
        getInterconnectLoad(params, data), isEnabled(getClockGating(params, data)), false);
    return static_cast<float>(power * calculateVccintpmcVoltageScaling(params, data));
}

float Model::computePmcIouVccintpmcPower(Params& params, Data const& data) const {
    double const power =
        prsm::ps::clockedPower(BlockKind::Peripheral, coefficient(data, "PMC_IOU_CLOCK"),
                               coefficient(data, "PMC_IOU_DYNAMIC"), getIouClockFreq(params, data),
                               getIouLoad(params, data), isEnabled(getClockGating(params, data)), false);
    return static_cast<float>(power * calculateVccintpmcVoltageScaling(params, data));
}

// ---- PLLs ----

float Model::computePmcPllVccintpmcPower(Params& params, Data const& data) const {
    if (!isEnabled(getPmcPllUsage(params, data))) return 0.0f;
    return static_cast<float>(coefficient(data, "PMC_PLL_VCCINT_CLOCK") * getPmcPllClock(params, data) *
                              calculateVccintpmcVoltageScaling(params, data));
}

float Model::computePmcPllVccauxpmcPower(Params& params, Data const& data) const {
    if (!isEnabled(getPmcPllUsage(params, data))) return 0.0f;
    return static_cast<float>(coefficient(data, "PMC_PLL_VCCAUX_CLOCK") * getPmcPllClock(params, data) *
                              auxScale(*this, params, data));
}

float Model::computeNocPllVccintpmcPower(Params& params, Data const& data) const {
    if (!isEnabled(getNocPllUsage(params, data))) return 0.0f;
    return static_cast<float>(coefficient(data, "NOC_PLL_VCCINT_CLOCK") * getNocPllClock(params, data) *
                              calculateVccintpmcVoltageScaling(params, data));
}

float Model::computeNocPllVccauxpmcPower(Params& params, Data const& data) const {
    if (!isEnabled(getNocPllUsage(params, data))) return 0.0f;
    return static_cast<float>(coefficient(data, "NOC_PLL_VCCAUX_CLOCK") * getNocPllClock(params, data) *
                              auxScale(*this, params, data));
}

// ---- Interfaces, per supply ----

float Model::compute18Power(Params& params, Data const& data, IoPart member) const {
    return bankPart(*this, params, data, member, BankVoltage::V18);
}

float Model::compute25Power(Params& params, Data const& data, IoPart member) const {
    return bankPart(*this, params, data, member, BankVoltage::V25);
}

float Model::compute33Power(Params& params, Data const& data, IoPart member) const {
    return bankPart(*this, params, data, member, BankVoltage::V33);
}

float Model::computeDedIoVccintpmcPower(Params& params, Data const& data) const {
    return coreSide(*this, params, data, Port::PMC_DED_IO);
}

float Model::computeDedIoVccauxpmcPower(Params& params, Data const& data) const {
    return auxSide(*this, params, data, Port::PMC_DED_IO);
}

float Model::computeDedIoVccfioPower(Params& params, Data const& data) const {
    return allVoltages(*this, params, data, IoPart::DED_IO_FIO);
}

float Model::computeBank1VccintpmcPower(Params& params, Data const& data, Bank1Port member) const {
    return coreSide(*this, params, data, portOf(member));
}

float Model::computeBank1VccauxpmcPower(Params& params, Data const& data, Bank1Port member) const {
    return auxSide(*this, params, data, portOf(member));
}

float Model::computeBank1Vccpmio1Power(Params& params, Data const& data, Bank1Port member) const {
    return allVoltages(*this, params, data, ioPartOf(member));
}

float Model::computeBank0VccintpmcPower(Params& params, Data const& data, Bank0Port member) const {
    return coreSide(*this, params, data, portOf(member));
}

float Model::computeBank0VccauxpmcPower(Params& params, Data const& data, Bank0Port member) const {
    return auxSide(*this, params, data, portOf(member));
}

float Model::computeBank0Vccpmio0Power(Params& params, Data const& data, Bank0Port member) const {
    return allVoltages(*this, params, data, ioPartOf(member));
}

float Model::computePmcIoBank0VccintpmcPower(Params& params, Data const& data) const {
    return coreSide(*this, params, data, Port::PMC_IO_BANK0);
}

float Model::computePmcIoBank0VccauxPower(Params& params, Data const& data) const {
    return auxSide(*this, params, data, Port::PMC_IO_BANK0);
}

// Bank 0: its interfaces and its general-purpose pins.
float Model::computePmcBank0VccintpmcPower(Params& params, Data const& data) const {
    float sum = calculatePmcIoBank0VccintpmcPower(params, data);
    for (Bank0Port port : {Bank0Port::PMC_I2C, Bank0Port::PMC_OSPI, Bank0Port::PMC_QSPI, Bank0Port::PMC_SD,
                           Bank0Port::PMC_USB0})
        sum += calculateBank0VccintpmcPower(params, data, port);
    return sum;
}

float Model::computePmcBank0VccauxpmcPower(Params& params, Data const& data) const {
    float sum = calculatePmcIoBank0VccauxPower(params, data);
    for (Bank0Port port : {Bank0Port::PMC_I2C, Bank0Port::PMC_OSPI, Bank0Port::PMC_QSPI, Bank0Port::PMC_SD,
                           Bank0Port::PMC_USB0})
        sum += calculateBank0VccauxpmcPower(params, data, port);
    return sum;
}

// ---- Analog monitor and auxiliary circuits: fixed powers while the device is on ----

float Model::computePmcAmspmcpower(Params& params, Data const& data) const {
    return static_cast<float>(coefficient(data, "AMS_VCCINTPMC") *
                              calculateVccintpmcVoltageScaling(params, data));
}

float Model::computePmcAmsauxpower(Params& params, Data const& data) const {
    return static_cast<float>(coefficient(data, "AMS_VCCAUXPMC") * auxScale(*this, params, data));
}

float Model::computePmcAmsintpower(Params&, Data const& data) const {
    return static_cast<float>(coefficient(data, "AMS_VCCINT"));
}

float Model::computePmcAmsvccsocpower(Params&, Data const& data) const {
    return static_cast<float>(coefficient(data, "AMS_VCC_SOC"));
}

float Model::computePmcAmsDynamicPower(Params& params, Data const& data) const {
    return calculatePmcAmspmcpower(params, data) + calculatePmcAmsauxpower(params, data) +
           calculatePmcAmsintpower(params, data) + calculatePmcAmsvccsocpower(params, data);
}

float Model::computePmcPmcauxPower(Params& params, Data const& data) const {
    return static_cast<float>(coefficient(data, "PMCAUX_VCCAUXPMC") * auxScale(*this, params, data));
}

// ---- Supply totals ----

float Model::computeVccintPmcPower(Params& params, Data const& data) const {
    return calculatePmcInterconnectVccintpmcPower(params, data) +
           calculatePmcIouVccintpmcPower(params, data) + calculatePmcPllVccintpmcPower(params, data) +
           calculateNocPllVccintpmcPower(params, data) + calculateDedIoVccintpmcPower(params, data) +
           calculateGem0Bank1VccintpmcPower(params, data) + calculateGem1Bank1VccintpmcPower(params, data) +
           calculatePmcBank0VccintpmcPower(params, data) + calculatePmcAmspmcpower(params, data);
}

float Model::computeVccauxPmcPower(Params& params, Data const& data) const {
    return calculatePmcPllVccauxpmcPower(params, data) + calculateNocPllVccauxpmcPower(params, data) +
           calculateDedIoVccauxpmcPower(params, data) + calculateGem0Bank1VccauxpmcPower(params, data) +
           calculateGem1Bank1VccauxpmcPower(params, data) + calculatePmcBank0VccauxpmcPower(params, data) +
           calculatePmcAmsauxpower(params, data) + calculatePmcPmcauxPower(params, data);
}

float Model::computeVccpmio0Power(Params& params, Data const& data) const {
    float sum = allVoltages(*this, params, data, IoPart::IO_BANK0_MIO);
    for (Bank0Port port : {Bank0Port::PMC_I2C, Bank0Port::PMC_OSPI, Bank0Port::PMC_QSPI, Bank0Port::PMC_SD,
                           Bank0Port::PMC_USB0})
        sum += calculateBank0Vccpmio0Power(params, data, port);
    return sum;
}

float Model::computeVccpmio1Power(Params& params, Data const& data) const {
    return calculateGem0Bank1Vccpmio1Power(params, data) + calculateGem1Bank1Vccpmio1Power(params, data);
}

float Model::computeVccFioPower(Params& params, Data const& data) const {
    return calculateDedIoVccfioPower(params, data);
}

// The controller's own supplies.
float Model::computePmcDynamicPower(Params& params, Data const& data) const {
    return calculateVccintPmcPower(params, data) + calculateVccauxPmcPower(params, data);
}

// Every supply of the sheet. The monitor's VCCINT and VCC_SOC parts belong to those supplies' sheets.
float Model::computeTotalDynamicPower(Params& params, Data const& data) const {
    return calculatePmcDynamicPower(params, data) + calculateVccpmio0Power(params, data) +
           calculateVccpmio1Power(params, data) + calculateVccFioPower(params, data);
}
