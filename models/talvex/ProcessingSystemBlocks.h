#pragma once
// What the two processing-system sheets with a Block family share (the larger processor system and the
// older architecture's): each clocked block's power from its row (domain, count, gates), the peripherals'
// pins and their coefficients, read from tables laid out alike. The Block family lists the blocks with a
// count and gates of their own, then the peripheral controllers in the Peripheral family's order.
// BLOCK_DATA holds every block's CLOCK, then every block's DYNAMIC, then the peripherals' PIN_ACTIVITY;
// PERIPHERAL_PINS each peripheral's INPUTS, OUTPUTS, BIDIS (and any further field); MIO_DATA the core
// side's three keys, then five per bank voltage in BankVoltage's order. Each sheet applies its own
// domain scaling to what these return.

#include <prsm/framework/PRSMModelTypes.h>
#include <prsm/models/talvex/ProcessingSystemFormulas.h>
#include <prsm/sheetfunc/PRSMHelperUtils.h>

#include <cmath>
#include <cstddef>

namespace prsm::ps {

inline constexpr std::size_t kPeripheralCount = 7;

template <typename Model>
constexpr std::size_t firstPeripheral() {
    return Model::kBlockMembers - kPeripheralCount;
}

template <typename Model>
typename Model::Block blockOf(typename Model::Peripheral peripheral) {
    return static_cast<typename Model::Block>(firstPeripheral<Model>() + static_cast<std::size_t>(peripheral));
}

// ---- Table keys, read by their place in the tables' `fixed` lists ----

enum class BlockTerm { Clock, Dynamic };

template <typename Model>
typename DataOf<Model>::BlockDataKey blockDataKey(typename Model::Block member, BlockTerm term) {
    return static_cast<typename DataOf<Model>::BlockDataKey>(static_cast<std::size_t>(term) * Model::kBlockMembers +
                                                             static_cast<std::size_t>(member));
}

template <typename Model>
typename DataOf<Model>::BlockDataKey pinActivityKey(typename Model::Peripheral member) {
    return static_cast<typename DataOf<Model>::BlockDataKey>(2 * Model::kBlockMembers +
                                                             static_cast<std::size_t>(member));
}

// A coefficient the file lacks costs nothing.
template <typename Data>
float blockData(Data const& data, typename Data::BlockDataKey key) {
    return PRSMHelperUtils::IFERROR(data.getBlockDataOrError(key), 0.0f);
}

enum class PinField { Inputs, Outputs, Bidis, Bank };

// One field of a peripheral's PERIPHERAL_PINS row; 0 when the file lacks it.
template <typename Data>
int peripheralPins(Data const& data, std::size_t peripheral, PinField field) {
    constexpr std::size_t fields = Data::kPeripheralPinsKeys.size() / kPeripheralCount;
    static_assert(fields * kPeripheralCount == Data::kPeripheralPinsKeys.size());
    auto const key = static_cast<typename Data::PeripheralPinsKey>(fields * peripheral + static_cast<std::size_t>(field));
    return PRSMHelperUtils::IFERROR(data.getPeripheralPinsOrError(key), 0);
}

// A coefficient the file lacks costs nothing; a factor it lacks changes nothing.
template <typename Data>
double mioData(Data const& data, std::size_t index, double fallback = 0.0) {
    float const value = data.getMioDataOrError(static_cast<typename Data::MioDataKey>(index));
    return PRSMHelperUtils::ISERROR(value) ? fallback : value;
}

template <typename Data>
CoreSideCoefficients mioCoreSide(Data const& data) {
    return {mioData(data, 0), mioData(data, 1), mioData(data, 2)};
}

template <typename Data>
BankSideCoefficients mioBankSide(Data const& data, BankVoltage bank) {
    std::size_t const first = 3 + 5 * static_cast<std::size_t>(bank);
    return {mioData(data, first), mioData(data, first + 1), mioData(data, first + 2, 1.0),
            mioData(data, first + 3), mioData(data, first + 4)};
}

// (supply / characterised supply)^2.3 of a domain; 1 when the file has no characterisation voltage.
template <typename Data>
float domainVoltageScaling(Data const& data, float supply) {
    float const characterised = data.getSimConditionsOrError(Data::SimConditionsKey::PSIM_VOLTAGE);
    if (PRSMHelperUtils::ISERROR(characterised)) return 1.0f;
    return voltageScaling(supply, characterised);
}

// A bank supply within 5 % of a standard bank voltage.
inline bool nearStandardBankVoltage(double volts) {
    BankVoltage const bank = nearestBankVoltage(volts);
    if (bank == BankVoltage::None) return false;
    double const nominal = nominalVolts(bank);
    return std::fabs(volts - nominal) <= 0.05 * nominal;
}

// ---- The clocked blocks ----

// A block's power before its domain's scaling: its count (a peripheral's from the Peripheral family, a
// block without a count cell one) times the clocked-block law, gated as its row says.
template <typename Model>
double blockPower(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data,
                  typename Model::Block member) {
    auto const index = static_cast<std::size_t>(member);
    auto const& row = Model::row(member);
    auto const flag = [&](auto gate) { return gate != nullptr && (model.*gate)(params, data) == 1; };
    double count = 1.0;
    if (index >= firstPeripheral<Model>())
        count = model.getCount(params, data, static_cast<typename Model::Peripheral>(index - firstPeripheral<Model>()));
    else if (row.count != nullptr)
        count = (model.*row.count)(params, data);
    return count * clockedPower(BlockKind::Core, blockData(data, blockDataKey<Model>(member, BlockTerm::Clock)),
                                blockData(data, blockDataKey<Model>(member, BlockTerm::Dynamic)),
                                model.getClkFreq(params, data, member), model.getLoad(params, data, member),
                                flag(row.clock_gate), flag(row.power_gate));
}

// ---- The peripherals' pins ----

// Every controller in use places its pins on its bank.
template <typename Model>
Pins peripheralPins(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data,
                    typename Model::Peripheral member) {
    int const count = model.getCount(params, data, member);
    auto const index = static_cast<std::size_t>(member);
    return {count * peripheralPins(data, index, PinField::Inputs),
            count * peripheralPins(data, index, PinField::Outputs),
            count * peripheralPins(data, index, PinField::Bidis)};
}

// Pins switch at the controller's clock times its PIN_ACTIVITY (1 when the file has none).
template <typename Model>
double pinFrequency(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data,
                    typename Model::Peripheral member) {
    return model.getClkFreq(params, data, blockOf<Model>(member)) *
           PRSMHelperUtils::IFERROR(data.getBlockDataOrError(pinActivityKey<Model>(member)), 1.0f);
}

// The pins' core side before the domain's scaling.
template <typename Model>
double pinCorePower(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data,
                    typename Model::Peripheral member) {
    return coreSidePower(peripheralPins(model, params, data, member), mioCoreSide(data),
                         pinFrequency(model, params, data, member),
                         model.getLoad(params, data, blockOf<Model>(member)));
}

// The pins on a bank supplied at `volts`, at the bank voltage nearest it: the switching terms scale with
// (V / nominal)^2, the standing and bias currents' power with V / nominal.
template <typename Model>
float pinBankPower(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data,
                   typename Model::Peripheral member, double volts) {
    BankVoltage const bank = nearestBankVoltage(volts);
    if (bank == BankVoltage::None) return 0.0f;
    Pins const pins = peripheralPins(model, params, data, member);
    BankSideCoefficients switching = mioBankSide(data, bank);
    double const standing = (switching.staticPerPin + switching.biasPerPin) * pins.total();
    switching.staticPerPin = 0.0;
    double const dynamic = bankSidePower(pins, switching, pinFrequency(model, params, data, member),
                                         model.getLoad(params, data, blockOf<Model>(member)));
    double const ratio = volts / nominalVolts(bank);
    return static_cast<float>(dynamic * ratio * ratio + standing * ratio);
}

// ---- The low-power domain's total ----

// Its blocks, its PLL's core, and each peripheral controller with its pins' core side.
template <typename Model>
float lowPowerDomainPower(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    float total = model.calculateRpuDynamicPower(params, data) + model.calculateTcmMemoryDynamicPower(params, data) +
                  model.calculateOcmMemoryDynamicPower(params, data) +
                  model.calculateLpInterconnectDynamicPower(params, data) +
                  model.calculateLpdPllCorePower(params, data);
    for (std::size_t i = 0; i < kPeripheralCount; ++i) {
        auto const peripheral = static_cast<typename Model::Peripheral>(i);
        total += model.calculateDynamicPower(params, data, blockOf<Model>(peripheral)) +
                 model.calculateIoCorePower(params, data, peripheral);
    }
    return total;
}

}  // namespace prsm::ps
