// Formulas of the second-generation AI-engine sheet: the first generation's terms, plus the row of
// shared memory tiles (in the memory group) and 4-bit integer kernels.
//
// Every dynamic term is a count (cores, banks, tiles, streams, columns) times the array clock in MHz
// times a coefficient in W per MHz, scaled by the voltage law of the array and the device's VCCINT
// scale. The core group (kernel tiles, idle tiles, the PLL's VCCINT part) and the memory group (data
// memory, memory tiles, interconnect, interface row, the PLL's VCCAUX part) are only charged when at least
// one core is in use: an array without cores is powered down.
#include <prsm/models/talvex/PRSMTalvexAie2Model.h>

#include <prsm/sheetfunc/PRSMHelperUtils.h>

#include <cmath>

using Model = PRSMTalvexAie2Model;
using PRSMHelperUtils::IFERROR;
using PRSMHelperUtils::MAX;
using PRSMHelperUtils::MIN;

namespace {

// Exponent of the array's power against VCCINT.
constexpr double kVoltageExponent = 2.3;
// Signal-processing kernels are costed in full; any other workload at this fraction.
constexpr float kOtherWorkloadFactor = 0.7f;
constexpr float kBanksPerTile = 0.125f;  // eight memory banks to a tile

// A coefficient of the function table, or 0 when the table has no such row.
float coefficient(Model::Data const& data, char const* name) {
    return IFERROR(data.getAieDataOrError(name, "DYNAMIC"), 0.0f);
}

// A figure of the device's interface row, or 0 when the table has no such entry.
int shimFigure(Model::Data const& data, std::string const& device, char const* key) {
    return IFERROR(data.getShimDataOrError(device, key), 0);
}

// Requested streams or tiles limited to what the device offers; a negative request uses nothing.
float limitedCount(int requested, int available) {
    return MAX(0.0f, MIN(static_cast<float>(requested), static_cast<float>(available)));
}

// A group's power while at least one core is in use; an array without cores is powered down. The
// terms are evaluated either way, so that every intermediate cell shows its figure.
float inUse(Model const& model, Model::Params& params, Model::Data const& data, float power) {
    return model.getAieCores(params, data) >= 1 ? power : 0.0f;
}

}  // namespace

// ---- Inputs ----

int Model::defaultAieTiles(Params& params, Data const& data) const {
    return static_cast<int>(MAX(static_cast<float>(getAieCores(params, data)),
                                static_cast<float>(getNumMemoryBanks(params, data)) * kBanksPerTile));
}

bool Model::isValidPlInterfaceStreams(Params& params, Data const& data) const {
    int const streams = getPlInterfaceStreams(params, data);
    return streams >= 0 && streams <= calculatePlStreams(params, data);
}

bool Model::isValidMemTiles(Params& params, Data const& data) const {
    int const tiles = getMemTiles(params, data);
    return tiles >= 0 && tiles <= calculateMemTileCount(params, data);
}

bool Model::isValidNocAximmsInterfaceStreams(Params& params, Data const& data) const {
    int const streams = getNocAximmsInterfaceStreams(params, data);
    return streams >= 0 && streams <= calculateNocStreams(params, data);
}

// ---- Device ----

int Model::computeBColumnFactor(Params& params, Data const& data) const {
    return shimFigure(data, getInternalDeviceName(params, data), "B_COLUMN_FACTOR");
}

int Model::computePlStreams(Params& params, Data const& data) const {
    return shimFigure(data, getInternalDeviceName(params, data), "PL_STREAMS");
}

int Model::computeMemTileCount(Params& params, Data const& data) const {
    return shimFigure(data, getInternalDeviceName(params, data), "MEM_TILES");
}

int Model::computeNocStreams(Params& params, Data const& data) const {
    return shimFigure(data, getInternalDeviceName(params, data), "NOC_STREAMS");
}

// Without a characterisation voltage the coefficients are taken as they stand.
float Model::computeVoltageScaling(Params& params, Data const& data) const {
    float const simVoltage = data.getSimConditionsOrError("PSIM_VOLTAGE");
    if (PRSMHelperUtils::ISERROR(simVoltage)) return 1.0f;
    double const vccint = getVccint(params, data);
    if (!(simVoltage > 0.0f) || !(vccint > 0.0)) return 0.0f;
    return static_cast<float>(std::pow(vccint / simVoltage, kVoltageExponent));
}

float Model::computeVccintScale(Params& params, Data const& data) const {
    return IFERROR(data.getBlockPowerScaleOrError(getDevice(params, data), "AIE_VCCINT"),
                   IFERROR(data.getBlockPowerScaleOrError("DEFAULT", "AIE_VCCINT"), 1.0f));
}

// ---- Cores ----

namespace {

// The tiles of one kernel type: load-dependent vector power plus the idle and scalar floor of each
// core, for every core at the array clock; 0 unless the kernel is of that type.
float kernelTiles(Model const& model, Model::Params& params, Model::Data const& data, char const* type,
                  char const* coreKey) {
    if (model.getKernelType(params, data) != type) return 0.0f;
    float const floor = coefficient(data, "AIE_TILE_IDLE_POWER") + coefficient(data, "AIE_TILE_SCALAR_POWER");
    return (model.getCoreLoad(params, data) * coefficient(data, coreKey) + floor) *
           (static_cast<float>(model.getAieCores(params, data)) * model.getClkFreq(params, data));
}

}  // namespace

// Complex kernels are costed as 16-bit integer kernels.
float Model::computeAieTileCplxBit(Params& params, Data const& data) const {
    return kernelTiles(*this, params, data, "Complex", "AIE_INT_CORE_POWER_16BIT");
}

float Model::computeAieTile16Bit(Params& params, Data const& data) const {
    return kernelTiles(*this, params, data, "Int16", "AIE_INT_CORE_POWER_16BIT");
}

float Model::computeAieTile8Bit(Params& params, Data const& data) const {
    return kernelTiles(*this, params, data, "Int8", "AIE_INT_CORE_POWER_8BIT");
}

float Model::computeAieTile4Bit(Params& params, Data const& data) const {
    return kernelTiles(*this, params, data, "Int4", "AIE_INT_CORE_POWER_4BIT");
}

float Model::computeAieTileFloat(Params& params, Data const& data) const {
    return kernelTiles(*this, params, data, "Floating", "AIE_FP_CORE_POWER");
}

// The FFT coefficient already includes the cores' floor.
float Model::computeAieTileFft(Params& params, Data const& data) const {
    if (getKernelType(params, data) != "FFT") return 0.0f;
    return static_cast<float>(getAieCores(params, data)) * getClkFreq(params, data) *
           getCoreLoad(params, data) * coefficient(data, "AIE_FFT_CORE_POWER");
}

float Model::computeAieTilePower(Params& params, Data const& data) const {
    float const kernels = calculateAieTileCplxBit(params, data) + calculateAieTile16Bit(params, data) +
                          calculateAieTile8Bit(params, data) + calculateAieTile4Bit(params, data) +
                          calculateAieTileFloat(params, data) + calculateAieTileFft(params, data);
    float const workload = getWorkloadType(params, data) == "DSP" ? 1.0f : kOtherWorkloadFactor;
    return kernels * calculateVoltageScaling(params, data) * calculateVccintScale(params, data) * workload;
}

float Model::computeAieIdlePower(Params& params, Data const& data) const {
    int const idleTiles = getAieTiles(params, data) - getAieCores(params, data);
    if (idleTiles <= 0) return 0.0f;
    return static_cast<float>(idleTiles) * getClkFreq(params, data) *
           coefficient(data, "AIE_TILE_IDLE_POWER") * calculateVoltageScaling(params, data) *
           calculateVccintScale(params, data);
}

float Model::computeAiePllVccintPower(Params& params, Data const& data) const {
    return coefficient(data, "PLL_POWER_VCCINT") * calculateVoltageScaling(params, data);
}

// The PLL's auxiliary supply is regulated: not voltage-scaled.
float Model::computeAiePllVccauxPower(Params& params, Data const& data) const {
    return getAieCores(params, data) >= 1 ? coefficient(data, "PLL_POWER_VCCAUX") : 0.0f;
}

// ---- Memory, interconnect and interface row ----

float Model::computeAieMemoryPower(Params& params, Data const& data) const {
    return static_cast<float>(getNumMemoryBanks(params, data)) * getMemoryReadWriteRate(params, data) *
           getClkFreq(params, data) * coefficient(data, "AIE_MEMORY_POWER") *
           calculateVoltageScaling(params, data) * calculateVccintScale(params, data);
}

// Memory tiles in use, up to the device's count, at the data memory's read/write rate.
float Model::computeAieMemTilePower(Params& params, Data const& data) const {
    return limitedCount(getMemTiles(params, data), calculateMemTileCount(params, data)) *
           getMemoryReadWriteRate(params, data) * getClkFreq(params, data) *
           coefficient(data, "AIE_MEM_TILE_POWER") * calculateVoltageScaling(params, data) *
           calculateVccintScale(params, data);
}

float Model::computeAieInterconnectStreamPower(Params& params, Data const& data) const {
    return static_cast<float>(getAieTiles(params, data)) * getInterconnectLoad(params, data) *
           getClkFreq(params, data) * coefficient(data, "STREAM_INTERCONNECT_POWER") *
           calculateVoltageScaling(params, data) * calculateVccintScale(params, data);
}

float Model::computeAieShimPowerTop(Params& params, Data const& data) const {
    float const columns =
        static_cast<float>(calculateBColumnFactor(params, data)) * coefficient(data, "AIE_SHIM_TOP_POWER");
    return getClkFreq(params, data) * (columns + coefficient(data, "AIE_SHIM_C_POWER")) *
           calculateVoltageScaling(params, data) * calculateVccintScale(params, data);
}

// Each interface stream in use, up to the device's count, costs its coefficient at the array clock.
float Model::computeAiePlShimPower(Params& params, Data const& data) const {
    float const power = limitedCount(getPlInterfaceStreams(params, data), calculatePlStreams(params, data)) *
                        getClkFreq(params, data) * coefficient(data, "AIE_SHIM_PL_STREAM_POWER") *
                        calculateVoltageScaling(params, data) * calculateVccintScale(params, data);
    return inUse(*this, params, data, power);
}

float Model::computeAieNocShimPower(Params& params, Data const& data) const {
    float const power =
        limitedCount(getNocAximmsInterfaceStreams(params, data), calculateNocStreams(params, data)) *
        getClkFreq(params, data) * coefficient(data, "AIE_SHIM_NOC_STREAM_POWER") *
        calculateVoltageScaling(params, data) * calculateVccintScale(params, data);
    return inUse(*this, params, data, power);
}

float Model::computeAieShimPower(Params& params, Data const& data) const {
    return calculateAiePlShimPower(params, data) + calculateAieNocShimPower(params, data);
}

// ---- Groups and rails ----

float Model::computeAieCorePower(Params& params, Data const& data) const {
    float const power = calculateAieIdlePower(params, data) + calculateAieTilePower(params, data) +
                        calculateAiePllVccintPower(params, data);
    return inUse(*this, params, data, power);
}

float Model::computeAieMemPower(Params& params, Data const& data) const {
    float const power = calculateAieShimPower(params, data) + calculateAieMemoryPower(params, data) +
                        calculateAieMemTilePower(params, data) +
                        calculateAieInterconnectStreamPower(params, data) +
                        calculateAiePllVccauxPower(params, data) + calculateAieShimPowerTop(params, data);
    return inUse(*this, params, data, power);
}

float Model::computeAieCoreMemPower(Params& params, Data const& data) const {
    return calculateAieCorePower(params, data) + calculateAieMemPower(params, data);
}

float Model::computeTotalPower(Params& params, Data const& data) const {
    return calculateAieCoreMemPower(params, data);
}

// The PLL's auxiliary power is booked in the memory group; VCCINT is everything else.
float Model::computeAieVccintPower(Params& params, Data const& data) const {
    return calculateAieCoreMemPower(params, data) - calculateAiePllVccauxPower(params, data);
}

float Model::computeAieVccauxPower(Params& params, Data const& data) const {
    return calculateAiePllVccauxPower(params, data);
}
