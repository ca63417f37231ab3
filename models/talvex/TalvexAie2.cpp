// Formulas of the second-generation AI-engine sheet: the first generation's terms (AieFormulas.h),
// plus the row of shared memory tiles (in the memory group) and 4-bit integer kernels.
#include <prsm/models/talvex/PRSMTalvexAie2Model.h>
#include <prsm/models/talvex/PRSMTalvexAie2Cells.h>

#include "AieFormulas.h"

using Model = PRSMTalvexAie2Model;
namespace aie = prsm::aie;

// ---- Inputs ----

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

// ---- Cores ----

float Model::computeAieTilePower(Params& params, Data const& data) const {
    float const kernels = calculateAieTileCplxBit(params, data) + calculateAieTile16Bit(params, data) +
                          calculateAieTile8Bit(params, data) + calculateAieTile4Bit(params, data) +
                          calculateAieTileFloat(params, data) + calculateAieTileFft(params, data);
    return aie::tilePower(*this, params, data, kernels);
}

// ---- Memory, interconnect and interface row ----

// Memory tiles in use, up to the device's count, at the data memory's read/write rate.
float Model::computeAieMemTilePower(Params& params, Data const& data) const {
    float const tiles = aie::limitedCount(getMemTiles(params, data), calculateMemTileCount(params, data));
    return aie::arrayPower(*this, params, data, tiles * getMemoryReadWriteRate(params, data),
                           Data::AieDataKey::AIE_MEM_TILE_POWER_DYNAMIC);
}

// ---- Groups and rails ----

// Data memory, memory tiles, interconnect, interface row and the PLL's VCCAUX part.
float Model::computeAieMemPower(Params& params, Data const& data) const {
    float const power = calculateAieShimPower(params, data) + calculateAieMemoryPower(params, data) +
                        calculateAieMemTilePower(params, data) +
                        calculateAieInterconnectStreamPower(params, data) +
                        calculateAiePllVccauxPower(params, data) + calculateAieShimPowerTop(params, data);
    return aie::inUse(*this, params, data, power);
}
