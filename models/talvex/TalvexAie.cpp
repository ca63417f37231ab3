// Formulas of the first-generation AI-engine sheet. Its terms are those both generations share
// (AieFormulas.h); this file binds them to the sheet's cells and sums its kernel and memory groups.
#include <prsm/models/talvex/PRSMTalvexAieModel.h>
#include <prsm/models/talvex/PRSMTalvexAieCells.h>

#include "AieFormulas.h"

using Model = PRSMTalvexAieModel;
namespace aie = prsm::aie;

// ---- Inputs ----

bool Model::isValidPlInterfaceStreams(Params& params, Data const& data) const {
    return aie::isValidPlInterfaceStreams(*this, params, data);
}

bool Model::isValidNocAximmsInterfaceStreams(Params& params, Data const& data) const {
    return aie::isValidNocAximmsInterfaceStreams(*this, params, data);
}

// ---- Cores ----

float Model::computeAieTilePower(Params& params, Data const& data) const {
    float const kernels = calculateAieTileCplxBit(params, data) + calculateAieTile16Bit(params, data) +
                          calculateAieTile8Bit(params, data) + calculateAieTileFloat(params, data) +
                          calculateAieTileFft(params, data);
    return aie::tilePower(*this, params, data, kernels);
}

// ---- Groups and rails ----

// Data memory, interconnect, interface row and the PLL's VCCAUX part.
float Model::computeAieMemPower(Params& params, Data const& data) const {
    float const power = calculateAieShimPower(params, data) + calculateAieMemoryPower(params, data) +
                        calculateAieInterconnectStreamPower(params, data) +
                        calculateAiePllVccauxPower(params, data) + calculateAieShimPowerTop(params, data);
    return aie::inUse(*this, params, data, power);
}
