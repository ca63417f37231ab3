#pragma once
// The AI-engine array's formulas, written once for both generations of the array. Each is a function
// template over the sheet's model class: the generated getters and calculate... functions have the same
// names in both sheets, so one template serves either. A sheet's compute... members call these; what
// only one generation has (memory tiles, 4-bit kernels) stays in that sheet's own file.
//
// Every dynamic term is a count (cores, banks, tiles, streams, columns) times the array clock in MHz
// times a coefficient in W per MHz, scaled by the voltage law of the array and the device's VCCINT
// scale. The core group (kernel tiles, idle tiles, the PLL's VCCINT part) and the memory group (data
// memory, interconnect, interface row, the PLL's VCCAUX part, and memory tiles where the array has
// them) are only charged when at least one core is in use: an array without cores is powered down.

#include <prsm/framework/PRSMModelTypes.h>
#include <prsm/sheetfunc/PRSMHelperUtils.h>

#include <cmath>
#include <string>

namespace prsm::aie {

// The function table's coefficients that the formulas name, resolved when the data loads
// ("<name>.DYNAMIC" entries of AIE_DATA).
template <typename Model>
using Coefficient = typename DataOf<Model>::AieDataKey;

// Exponent of the array's power against VCCINT.
inline constexpr double kVoltageExponent = 2.3;
// Signal-processing kernels are costed in full; any other workload at this fraction.
inline constexpr float kOtherWorkloadFactor = 0.7f;
inline constexpr float kBanksPerTile = 0.125f;  // eight memory banks to a tile

// A coefficient of the function table, or 0 when the table has no such row.
template <typename Data, typename Key>
float coefficient(Data const& data, Key key) {
    return PRSMHelperUtils::IFERROR(data.getAieDataOrError(key), 0.0f);
}

// A figure of the device's interface row, or 0 when the table has no such entry.
template <typename Model>
int shimFigure(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data, char const* key) {
    using PRSMHelperUtils::IFERROR;
    return IFERROR(data.getShimDataOrError(model.refInternalDeviceName(params, data), key), 0);
}

// Requested streams or tiles limited to what the device offers; a negative request uses nothing.
inline float limitedCount(int requested, int available) {
    using PRSMHelperUtils::MAX;
    using PRSMHelperUtils::MIN;
    return MAX(0.0f, MIN(static_cast<float>(requested), static_cast<float>(available)));
}

// A group's power while at least one core is in use; an array without cores is powered down. The
// terms are evaluated either way, so that every intermediate cell shows its figure.
template <typename Model>
float inUse(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data, float power) {
    return model.getAieCores(params, data) >= 1 ? power : 0.0f;
}

// A dynamic term: so many units (a count, or a count times its rate or load) at the array clock, at the
// coefficient of that key, voltage- and device-scaled.
template <typename Model, typename Key>
float arrayPower(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data, float units,
                 Key key) {
    return units * model.getClkFreq(params, data) * coefficient(data, key) *
           model.calculateVoltageScaling(params, data) * model.calculateVccintScale(params, data);
}

// ---- Inputs ----

template <typename Model>
int defaultAieTiles(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    return PRSMHelperUtils::toIntSaturated(
        PRSMHelperUtils::MAX(static_cast<float>(model.getAieCores(params, data)),
                             static_cast<float>(model.getNumMemoryBanks(params, data)) * kBanksPerTile));
}

template <typename Model>
bool isValidPlInterfaceStreams(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    int const streams = model.getPlInterfaceStreams(params, data);
    return streams >= 0 && streams <= model.calculatePlStreams(params, data);
}

template <typename Model>
bool isValidNocAximmsInterfaceStreams(Model const& model, ParamsOf<Model>& params,
                                      DataOf<Model> const& data) {
    int const streams = model.getNocAximmsInterfaceStreams(params, data);
    return streams >= 0 && streams <= model.calculateNocStreams(params, data);
}

// ---- Device ----

template <typename Model>
int bColumnFactor(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    return shimFigure(model, params, data, "B_COLUMN_FACTOR");
}

template <typename Model>
int plStreams(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    return shimFigure(model, params, data, "PL_STREAMS");
}

template <typename Model>
int nocStreams(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    return shimFigure(model, params, data, "NOC_STREAMS");
}

// Without a characterisation voltage the coefficients are taken as they stand.
template <typename Model>
float voltageScaling(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    float const simVoltage = data.getSimConditionsOrError(DataOf<Model>::SimConditionsKey::PSIM_VOLTAGE);
    if (PRSMHelperUtils::ISERROR(simVoltage)) return 1.0f;
    double const vccint = model.getVccint(params, data);
    if (!(simVoltage > 0.0f) || !(vccint > 0.0)) return 0.0f;
    return static_cast<float>(std::pow(vccint / simVoltage, kVoltageExponent));
}

template <typename Model>
float vccintScale(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    using PRSMHelperUtils::IFERROR;
    return IFERROR(
        data.getBlockPowerScaleOrError(model.refDevice(params, data), "AIE_VCCINT"),
        IFERROR(data.getBlockPowerScaleOrError(DataOf<Model>::BlockPowerScaleKey::DEFAULT_AIE_VCCINT), 1.0f));
}

// ---- Cores ----

// The tiles of one kernel type: load-dependent vector power plus the idle and scalar floor of each
// core, for every core at the array clock; 0 unless the kernel is of that type.
template <typename Model, typename Key>
float kernelTiles(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data, char const* type,
                  Key coreKey) {
    if (std::string_view(model.refKernelType(params, data)) != type) return 0.0f;
    float const floor = coefficient(data, Coefficient<Model>::AIE_TILE_IDLE_POWER_DYNAMIC) +
                        coefficient(data, Coefficient<Model>::AIE_TILE_SCALAR_POWER_DYNAMIC);
    return (model.getCoreLoad(params, data) * coefficient(data, coreKey) + floor) *
           (static_cast<float>(model.getAieCores(params, data)) * model.getClkFreq(params, data));
}

// Complex kernels are costed as 16-bit integer kernels.
template <typename Model>
float complexTiles(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    return kernelTiles(model, params, data, "Complex", Coefficient<Model>::AIE_INT_CORE_POWER_16BIT_DYNAMIC);
}

template <typename Model>
float int16Tiles(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    return kernelTiles(model, params, data, "Int16", Coefficient<Model>::AIE_INT_CORE_POWER_16BIT_DYNAMIC);
}

template <typename Model>
float int8Tiles(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    return kernelTiles(model, params, data, "Int8", Coefficient<Model>::AIE_INT_CORE_POWER_8BIT_DYNAMIC);
}

template <typename Model>
float floatTiles(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    return kernelTiles(model, params, data, "Floating", Coefficient<Model>::AIE_FP_CORE_POWER_DYNAMIC);
}

// The FFT coefficient already includes the cores' floor.
template <typename Model>
float fftTiles(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    if (std::string_view(model.refKernelType(params, data)) != "FFT") return 0.0f;
    return static_cast<float>(model.getAieCores(params, data)) * model.getClkFreq(params, data) *
           model.getCoreLoad(params, data) *
           coefficient(data, Coefficient<Model>::AIE_FFT_CORE_POWER_DYNAMIC);
}

// The kernel tiles, summed by the sheet over the kernel types its array runs, scaled and weighted by
// the workload.
template <typename Model>
float tilePower(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data, float kernels) {
    float const workload =
        std::string_view(model.refWorkloadType(params, data)) == "DSP" ? 1.0f : kOtherWorkloadFactor;
    return kernels * model.calculateVoltageScaling(params, data) * model.calculateVccintScale(params, data) *
           workload;
}

template <typename Model>
float idlePower(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    int const idleTiles = model.getAieTiles(params, data) - model.getAieCores(params, data);
    if (idleTiles <= 0) return 0.0f;
    return arrayPower(model, params, data, static_cast<float>(idleTiles),
                      Coefficient<Model>::AIE_TILE_IDLE_POWER_DYNAMIC);
}

template <typename Model>
float pllVccintPower(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    return coefficient(data, Coefficient<Model>::PLL_POWER_VCCINT_DYNAMIC) *
           model.calculateVoltageScaling(params, data);
}

// The PLL's auxiliary supply is regulated: not voltage-scaled.
template <typename Model>
float pllVccauxPower(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    return model.getAieCores(params, data) >= 1
               ? coefficient(data, Coefficient<Model>::PLL_POWER_VCCAUX_DYNAMIC)
               : 0.0f;
}

// ---- Memory, interconnect and interface row ----

template <typename Model>
float memoryPower(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    return arrayPower(model, params, data,
                      static_cast<float>(model.getNumMemoryBanks(params, data)) *
                          model.getMemoryReadWriteRate(params, data),
                      Coefficient<Model>::AIE_MEMORY_POWER_DYNAMIC);
}

template <typename Model>
float interconnectStreamPower(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    return arrayPower(
        model, params, data,
        static_cast<float>(model.getAieTiles(params, data)) * model.getInterconnectLoad(params, data),
        Coefficient<Model>::STREAM_INTERCONNECT_POWER_DYNAMIC);
}

template <typename Model>
float shimPowerTop(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    float const columns = static_cast<float>(model.calculateBColumnFactor(params, data)) *
                          coefficient(data, Coefficient<Model>::AIE_SHIM_TOP_POWER_DYNAMIC);
    return model.getClkFreq(params, data) *
           (columns + coefficient(data, Coefficient<Model>::AIE_SHIM_C_POWER_DYNAMIC)) *
           model.calculateVoltageScaling(params, data) * model.calculateVccintScale(params, data);
}

// Each interface stream in use, up to the device's count, costs its coefficient at the array clock.
template <typename Model, typename Key>
float shimStreamPower(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data, int requested,
                      int available, Key key) {
    float const power = arrayPower(model, params, data, limitedCount(requested, available), key);
    return inUse(model, params, data, power);
}

template <typename Model>
float plShimPower(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    return shimStreamPower(model, params, data, model.getPlInterfaceStreams(params, data),
                           model.calculatePlStreams(params, data),
                           Coefficient<Model>::AIE_SHIM_PL_STREAM_POWER_DYNAMIC);
}

template <typename Model>
float nocShimPower(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    return shimStreamPower(model, params, data, model.getNocAximmsInterfaceStreams(params, data),
                           model.calculateNocStreams(params, data),
                           Coefficient<Model>::AIE_SHIM_NOC_STREAM_POWER_DYNAMIC);
}

template <typename Model>
float shimPower(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    return model.calculateAiePlShimPower(params, data) + model.calculateAieNocShimPower(params, data);
}

// ---- Groups and rails ----

template <typename Model>
float corePower(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    float const power = model.calculateAieIdlePower(params, data) +
                        model.calculateAieTilePower(params, data) +
                        model.calculateAiePllVccintPower(params, data);
    return inUse(model, params, data, power);
}

template <typename Model>
float coreMemPower(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    return model.calculateAieCorePower(params, data) + model.calculateAieMemPower(params, data);
}

template <typename Model>
float totalPower(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    return model.calculateAieCoreMemPower(params, data);
}

// The PLL's auxiliary power is booked in the memory group; VCCINT is everything else.
template <typename Model>
float vccintPower(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    return model.calculateAieCoreMemPower(params, data) - model.calculateAiePllVccauxPower(params, data);
}

template <typename Model>
float vccauxPower(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    return model.calculateAiePllVccauxPower(params, data);
}

}  // namespace prsm::aie
