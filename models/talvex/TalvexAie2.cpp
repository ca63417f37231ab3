// Formulas of the second-generation AI-engine sheet: the first generation's terms (AieFormulas.h),
// plus the row of shared memory tiles (in the memory group) and 4-bit integer kernels.
#include <prsm/models/talvex/PRSMTalvexAie2Model.h>

#include "AieFormulas.h"

using Model = PRSMTalvexAie2Model;
namespace aie = prsm::aie;

// ---- Inputs ----

int Model::defaultAieTiles(Params& params, Data const& data) const {
    return aie::defaultAieTiles(*this, params, data);
}

bool Model::isValidPlInterfaceStreams(Params& params, Data const& data) const {
    return aie::isValidPlInterfaceStreams(*this, params, data);
}

bool Model::isValidMemTiles(Params& params, Data const& data) const {
    int const tiles = getMemTiles(params, data);
    return tiles >= 0 && tiles <= calculateMemTileCount(params, data);
}

bool Model::isValidNocAximmsInterfaceStreams(Params& params, Data const& data) const {
    return aie::isValidNocAximmsInterfaceStreams(*this, params, data);
}

// ---- Device ----

int Model::computeBColumnFactor(Params& params, Data const& data) const {
    return aie::bColumnFactor(*this, params, data);
}

int Model::computePlStreams(Params& params, Data const& data) const {
    return aie::plStreams(*this, params, data);
}

int Model::computeMemTileCount(Params& params, Data const& data) const {
    return aie::shimFigure(*this, params, data, "MEM_TILES");
}

int Model::computeNocStreams(Params& params, Data const& data) const {
    return aie::nocStreams(*this, params, data);
}

float Model::computeVoltageScaling(Params& params, Data const& data) const {
    return aie::voltageScaling(*this, params, data);
}

float Model::computeVccintScale(Params& params, Data const& data) const {
    return aie::vccintScale(*this, params, data);
}

// ---- Cores ----

float Model::computeAieTileCplxBit(Params& params, Data const& data) const {
    return aie::complexTiles(*this, params, data);
}

float Model::computeAieTile16Bit(Params& params, Data const& data) const {
    return aie::int16Tiles(*this, params, data);
}

float Model::computeAieTile8Bit(Params& params, Data const& data) const {
    return aie::int8Tiles(*this, params, data);
}

float Model::computeAieTile4Bit(Params& params, Data const& data) const {
    return aie::kernelTiles(*this, params, data, "Int4", "AIE_INT_CORE_POWER_4BIT");
}

float Model::computeAieTileFloat(Params& params, Data const& data) const {
    return aie::floatTiles(*this, params, data);
}

float Model::computeAieTileFft(Params& params, Data const& data) const {
    return aie::fftTiles(*this, params, data);
}

float Model::computeAieTilePower(Params& params, Data const& data) const {
    float const kernels = calculateAieTileCplxBit(params, data) + calculateAieTile16Bit(params, data) +
                          calculateAieTile8Bit(params, data) + calculateAieTile4Bit(params, data) +
                          calculateAieTileFloat(params, data) + calculateAieTileFft(params, data);
    return aie::tilePower(*this, params, data, kernels);
}

float Model::computeAieIdlePower(Params& params, Data const& data) const {
    return aie::idlePower(*this, params, data);
}

float Model::computeAiePllVccintPower(Params& params, Data const& data) const {
    return aie::pllVccintPower(*this, params, data);
}

float Model::computeAiePllVccauxPower(Params& params, Data const& data) const {
    return aie::pllVccauxPower(*this, params, data);
}

// ---- Memory, interconnect and interface row ----

float Model::computeAieMemoryPower(Params& params, Data const& data) const {
    return aie::memoryPower(*this, params, data);
}

// Memory tiles in use, up to the device's count, at the data memory's read/write rate.
float Model::computeAieMemTilePower(Params& params, Data const& data) const {
    float const tiles = aie::limitedCount(getMemTiles(params, data), calculateMemTileCount(params, data));
    return aie::arrayPower(*this, params, data, tiles * getMemoryReadWriteRate(params, data),
                           "AIE_MEM_TILE_POWER");
}

float Model::computeAieInterconnectStreamPower(Params& params, Data const& data) const {
    return aie::interconnectStreamPower(*this, params, data);
}

float Model::computeAieShimPowerTop(Params& params, Data const& data) const {
    return aie::shimPowerTop(*this, params, data);
}

float Model::computeAiePlShimPower(Params& params, Data const& data) const {
    return aie::plShimPower(*this, params, data);
}

float Model::computeAieNocShimPower(Params& params, Data const& data) const {
    return aie::nocShimPower(*this, params, data);
}

float Model::computeAieShimPower(Params& params, Data const& data) const {
    return aie::shimPower(*this, params, data);
}

// ---- Groups and rails ----

float Model::computeAieCorePower(Params& params, Data const& data) const {
    return aie::corePower(*this, params, data);
}

// Data memory, memory tiles, interconnect, interface row and the PLL's VCCAUX part.
float Model::computeAieMemPower(Params& params, Data const& data) const {
    float const power = calculateAieShimPower(params, data) + calculateAieMemoryPower(params, data) +
                        calculateAieMemTilePower(params, data) +
                        calculateAieInterconnectStreamPower(params, data) +
                        calculateAiePllVccauxPower(params, data) + calculateAieShimPowerTop(params, data);
    return aie::inUse(*this, params, data, power);
}

float Model::computeAieCoreMemPower(Params& params, Data const& data) const {
    return aie::coreMemPower(*this, params, data);
}

float Model::computeTotalPower(Params& params, Data const& data) const {
    return aie::totalPower(*this, params, data);
}

float Model::computeAieVccintPower(Params& params, Data const& data) const {
    return aie::vccintPower(*this, params, data);
}

float Model::computeAieVccauxPower(Params& params, Data const& data) const {
    return aie::vccauxPower(*this, params, data);
}
