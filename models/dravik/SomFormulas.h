#pragma once
// Formulas shared by the system-on-module board sheets. The rules (how a load becomes a table key, the
// efficiency fallback, the conversion loss, the over-limit power, the linear outputs' input draw, the
// memory and storage loads, and X taking over X_CALC) are written here once; each board's formulas
// file only says which rail feeds which regulator, at what voltage and rating.
//
// Loads are in A, powers in W, over-limit power in mW. Table lookups fall back as the sheets do: a
// missing efficiency row counts at 50 %, a missing memory, storage or part figure counts as 0.

#include <prsm/framework/PRSMCellSupport.h>
#include <prsm/framework/PRSMModelTypes.h>
#include <prsm/sheetfunc/PRSMHelperUtils.h>

#include <cmath>
#include <cstddef>
#include <string>
#include <string_view>

namespace prsm::som {

// ---- X takes over X_CALC ----

template <typename Model>
using CellFunction = float (Model::*)(ParamsOf<Model>&, DataOf<Model> const&) const;
template <typename Model, typename Member>
using MemberCellFunction = float (Model::*)(ParamsOf<Model>&, DataOf<Model> const&, Member) const;

// The figure every other formula reads is the computed one, unless the caller has put another there.
template <typename Model>
float takeOver(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data,
               CellFunction<Model> computed) {
    return (model.*computed)(params, data);
}

template <typename Model, typename Member>
float takeOver(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data, Member member,
               MemberCellFunction<Model, Member> computed) {
    return (model.*computed)(params, data, member);
}

// ---- Load keys and efficiency ----

// How a regulator's load is rounded to the rows of its efficiency table.
enum class LoadSteps {
    Buck,    // 10 mA below 200 mA, 25 mA below 1000 mA, 100 mA from 1000 mA on
    Module,  // the MPS3805A outputs: 10 mA below 50 mA, 50 mA from 50 mA on
    Fifty,   // 50 mA at any load
};

// The rounding step, in mA, for a load of `milliamperes`.
inline float loadStep(float milliamperes, LoadSteps steps) {
    switch (steps) {
        case LoadSteps::Buck:
            return milliamperes < 200.0f ? 10.0f : milliamperes < 1000.0f ? 25.0f : 100.0f;
        case LoadSteps::Module:
            return milliamperes < 50.0f ? 10.0f : 50.0f;
        case LoadSteps::Fifty:
            break;
    }
    return 50.0f;
}

// "LOAD_" and the load in whole mA rounded to its step: 0.5 A on a buck is "LOAD_500". A load that no
// int can hold, or that is not a number, is written as it stands: no table has such a row, so the
// regulator counts at the fallback efficiency.
inline std::string loadKey(float amperes, LoadSteps steps) {
    float const milliamperes = amperes * 1000.0f;
    if (!(std::fabs(milliamperes) < 2.0e9f)) return "LOAD_" + PRSMHelperUtils::TEXT(milliamperes, "0");
    int const rounded = PRSMHelperUtils::MROUND(milliamperes, loadStep(milliamperes, steps));
    return "LOAD_" + PRSMHelperUtils::TEXT(static_cast<float>(rounded), "0");
}

// The row key of the efficiency tables: "KEY_LOAD_500".
template <typename Model, typename Member>
std::string keyString(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data, Member member) {
    return "KEY_" + model.calculateLoadKey(params, data, member);
}

// A table's efficiency, or 50 % for a load the table has no row for.
inline float efficiency(float tableValue) {
    return PRSMHelperUtils::IFERROR(tableValue, 0.5);
}

// ---- Losses and limits ----

// The loss of a switching regulator delivering `amperes` at `volts`: P_out (1 / efficiency - 1). An
// efficiency of 0 gives -P_out, the fallback of the formula's own error guard.
inline float conversionLoss(float amperes, float volts, float efficiency) {
    float const delivered = amperes * volts;
    if (efficiency == 0.0f) return -delivered;
    return delivered * (1.0f / efficiency - 1.0f);
}

// The power beyond an output's rating in mW; 0 up to and at the rating.
inline float overLimit(float amperes, float ratingAmperes, float volts) {
    return PRSMHelperUtils::MAX(amperes - ratingAmperes, 0.0f) * volts * 1000.0f;
}

// ---- A board's outputs and ratings ----

// A switching regulator's output: its load, nominal voltage and the steps of its load key.
struct Output {
    float amperes;
    float volts;
    LoadSteps steps;
};

// A board's table of outputs: which rail feeds a regulator, at what voltage.
template <typename Model>
using OutputTable = Output (*)(Model const&, ParamsOf<Model>&, DataOf<Model> const&,
                               typename Model::Converter);

// A regulator's loss at its output, at the efficiency its load keys.
template <typename Model>
float loss(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data, OutputTable<Model> output,
           typename Model::Converter converter) {
    Output const out = output(model, params, data, converter);
    return conversionLoss(out.amperes, out.volts, model.calculateEfficiency(params, data, converter));
}

// A regulator's load key, from its output's load and steps.
template <typename Model>
std::string outputLoadKey(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data,
                          OutputTable<Model> output, typename Model::Converter converter) {
    Output const out = output(model, params, data, converter);
    return loadKey(out.amperes, out.steps);
}

// A DA9062 buck's efficiency (BUCK_DATA_TABLE.<key>.BUCK<n>); `converter` is one of its four bucks.
template <typename Model>
float buckEfficiency(DataOf<Model> const& data, std::string const& key, typename Model::Converter converter) {
    using Converter = typename Model::Converter;
    char const* const column = converter == Converter::DA9062_BUCK1   ? "BUCK1"
                               : converter == Converter::DA9062_BUCK2 ? "BUCK2"
                               : converter == Converter::DA9062_BUCK3 ? "BUCK3"
                                                                      : "BUCK4";
    return efficiency(data.getBuckDataTableOrError(key, column));
}

// The DA9062's members: its four bucks' losses, and the first linear output's input draw.
template <typename Model>
float da9062MemberPower(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data,
                        OutputTable<Model> output, typename Model::Da9062Loss member) {
    using Converter = typename Model::Converter;
    using Loss = typename Model::Da9062Loss;
    switch (member) {
        case Loss::BUCK1:
            return loss(model, params, data, output, Converter::DA9062_BUCK1);
        case Loss::BUCK2:
            return loss(model, params, data, output, Converter::DA9062_BUCK2);
        case Loss::BUCK3:
            return loss(model, params, data, output, Converter::DA9062_BUCK3);
        case Loss::BUCK4:
            return loss(model, params, data, output, Converter::DA9062_BUCK4);
        case Loss::LDO1:
            return model.calculateDa9062Load(params, data, Model::Ldo::LDO1);
    }
    return 0.0f;
}

// An output's rating: the rail whose load counts, the rated current and the nominal voltage.
template <typename Model>
struct Rating {
    typename Model::Rail rail;
    float amperes;
    float volts;
};

// The power beyond a rating in mW.
template <typename Model>
float ratingOverLimit(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data,
                      Rating<Model> const& rating) {
    return overLimit(model.calculateRegLoad(params, data, rating.rail), rating.amperes, rating.volts);
}

// ---- The DA9062's LDOs and its 3.3 V buck ----

// What the 1.8 V transceiver-termination output draws, in W: its output power times 1.7777777 (the
// float nearest 16/9).
inline constexpr float kLdo1InputFactor = 1.7777777f;
// The other three linear outputs run from the 3.3 V buck: they draw their output current at 3.3 V.
inline constexpr float kBuck3Volts = 3.3f;

template <typename Model>
float ldoInputLoad(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data,
                   typename Model::Ldo member) {
    using Ldo = typename Model::Ldo;
    switch (member) {
        case Ldo::LDO1:
            return model.calculateRegLoadMgtravtt1v80(params, data) * 1.8f * kLdo1InputFactor;
        case Ldo::LDO2:
            return model.calculateRegLoadVccPs1v80(params, data) * kBuck3Volts;
        case Ldo::LDO3:
            return model.calculateRegLoadVmgtavcc0v90(params, data) * kBuck3Volts;
        case Ldo::LDO4:
            return model.calculateRegLoadVcc2v5(params, data) * kBuck3Volts;
    }
    return 0.0f;
}

// The 3.3 V buck's output power: the 3.3 V rail's own loads and the four linear outputs' draw.
template <typename Model>
float buck3LoadPower(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    using Ldo = typename Model::Ldo;
    return model.calculateRegLoadVcc3v3(params, data) * kBuck3Volts +
           model.calculateDa9062Load(params, data, Ldo::LDO1) +
           model.calculateDa9062Load(params, data, Ldo::LDO2) +
           model.calculateDa9062Load(params, data, Ldo::LDO3) +
           model.calculateDa9062Load(params, data, Ldo::LDO4);
}

// The same as a current at 3.3 V: the load that keys the buck's efficiency and loss.
template <typename Model>
float buck3Load(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    return model.calculateDa9062Buck3LoadPower(params, data) / kBuck3Volts;
}

// The DA9062's dissipation: the four bucks' losses, DA9062_LDO1_POWER (which takes over
// the first linear output's input draw) and the drop of the other three linear outputs, their input
// draw less their output power.
template <typename Model>
float da9062Power(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    using Loss = typename Model::Da9062Loss;
    using Ldo = typename Model::Ldo;
    float const bucks = model.calculateDa9062Power(params, data, Loss::BUCK1) +
                        model.calculateDa9062Power(params, data, Loss::BUCK2) +
                        model.calculateDa9062Power(params, data, Loss::BUCK3) +
                        model.calculateDa9062Power(params, data, Loss::BUCK4);
    float const drops = (model.calculateDa9062Load(params, data, Ldo::LDO2) -
                         model.calculateRegLoadVccPs1v80(params, data) * 1.8f) +
                        (model.calculateDa9062Load(params, data, Ldo::LDO3) -
                         model.calculateRegLoadVmgtavcc0v90(params, data) * 0.9f) +
                        (model.calculateDa9062Load(params, data, Ldo::LDO4) -
                         model.calculateRegLoadVcc2v5(params, data) * 2.5f);
    return bucks + model.calculateDa9062Power(params, data, Loss::LDO1) + drops;
}

// ---- Board parts ----

// A memory rail's load in A. For each access type ("READ", "WRITE") the table gives the rail's power at
// full rate and when idle (KEY_MAX_<rail>_POWER<suffix>, KEY_IDLE_<rail>_POWER<suffix>) at the clock
// KEY_CLOCK_FREQ; the rail carries each type's rate times the span from idle to full, scaled by the
// memory clock against that clock, and the larger of the two idle figures, all over the rail voltage.
// A missing figure counts as 0; a missing or zero characterisation clock leaves the span unscaled.
template <typename Model>
float memoryRailLoad(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data,
                     std::string_view rail, std::string_view suffix, float volts) {
    using PRSMHelperUtils::IFERROR;
    auto const figure = [&data](std::string_view key, char const* access) {
        return IFERROR(data.getDdr4TableTableOrError(key, access), 0.0f);
    };
    float const clock = model.getPsddrClockFreq(params, data);
    auto const active = [&](float rate, char const* access, float idle) {
        float const full = figure(prsm::concatKey("KEY_MAX_", rail, "_POWER", suffix), access);
        float const characterised = figure("KEY_CLOCK_FREQ", access);
        float const scale = characterised > 0.0f ? clock / characterised : 1.0f;
        return rate * (full - idle) * scale;
    };
    float const idleRead = figure(prsm::concatKey("KEY_IDLE_", rail, "_POWER", suffix), "READ");
    float const idleWrite = figure(prsm::concatKey("KEY_IDLE_", rail, "_POWER", suffix), "WRITE");
    float const power = active(model.getPsddrReadRate(params, data), "READ", idleRead) +
                        active(model.getPsddrWriteRate(params, data), "WRITE", idleWrite) +
                        PRSMHelperUtils::MAX(idleRead, idleWrite);
    return power / volts;
}

// A storage supply's load in A: the idle power plus W per MB/s of read and of write traffic
// (EMMC_TABLE_TABLE.<IDLE|READ|WRITE>.<pin>), over the supply voltage.
template <typename Model>
float storageLoad(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data, char const* pin,
                  float volts) {
    using PRSMHelperUtils::IFERROR;
    float const idle = IFERROR(data.getEmmcTableTableOrError("IDLE", pin), 0.0f);
    float const perRead = IFERROR(data.getEmmcTableTableOrError("READ", pin), 0.0f);
    float const perWrite = IFERROR(data.getEmmcTableTableOrError("WRITE", pin), 0.0f);
    float const power =
        idle + model.getEmmcReadBw(params, data) * perRead + model.getEmmcWriteBw(params, data) * perWrite;
    return power / volts;
}

// A part's fixed load in A (SUPPLY_TABLE_TABLE.<part>.<pin>), 0 when the table does not list it.
template <typename Data>
float fixedLoad(Data const& data, char const* part, char const* pin) {
    return PRSMHelperUtils::IFERROR(data.getSupplyTableTableOrError(part, pin), 0.0f);
}

// The storage, the flash, the EEPROM and the TPM, shared by both boards.
inline constexpr float kEmmcVccVolts = 3.3f;
inline constexpr float kEmmcVccqVolts = 1.8f;
inline constexpr float kEepromVolts = 3.3f;
inline constexpr float kQspiVolts = 1.8f;
inline constexpr float kTpmVolts = 3.3f;

template <typename Model>
float emmcPower(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    using Part = typename Model::Part;
    return model.calculateLoad(params, data, Part::EMMC_VCC) * kEmmcVccVolts +
           model.calculateLoad(params, data, Part::EMMC_VCCQ) * kEmmcVccqVolts;
}

template <typename Model>
float miscPower(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    using Part = typename Model::Part;
    return model.calculateLoad(params, data, Part::EEPROM_VCC) * kEepromVolts +
           model.calculateLoad(params, data, Part::QSPI_VCC) * kQspiVolts +
           model.calculateLoad(params, data, Part::TPM_VDD) * kTpmVolts;
}

// The loads of the parts both boards carry; 0 for the memory rails, which each board computes itself.
template <typename Model>
float commonPartLoad(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data,
                     typename Model::Part member) {
    using Part = typename Model::Part;
    switch (member) {
        case Part::EMMC_VCC:
            return storageLoad(model, params, data, "VCC", kEmmcVccVolts);
        case Part::EMMC_VCCQ:
            return storageLoad(model, params, data, "VCCQ", kEmmcVccqVolts);
        case Part::EEPROM_VCC:
            return fixedLoad(data, "EEPROM", "VCC");
        case Part::QSPI_VCC:
            return fixedLoad(data, "QSPI", "VCC");
        case Part::TPM_VDD:
            return fixedLoad(data, "TPM", "VDD");
        default:
            break;
    }
    return 0.0f;
}

// ---- Device supplies ----

// One device supply: its current input and the voltage it runs at.
template <typename Model>
struct Supply {
    float (Model::*current)(ParamsOf<Model>&, DataOf<Model> const&) const;
    float volts;
};

// The device's power: every supply current times its voltage.
template <typename Model, std::size_t N>
float devicePower(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data,
                  Supply<Model> const (&supplies)[N]) {
    float sum = 0.0f;
    for (Supply<Model> const& supply : supplies) sum += (model.*supply.current)(params, data) * supply.volts;
    return sum;
}

}  // namespace prsm::som
