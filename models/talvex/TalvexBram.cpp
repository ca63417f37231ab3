// Formulas of the block-RAM sheet that the UltraRAM sheet does not share: the 18 Kb halves, the
// word-line boost on VCCAUX, the cascade mode and the rules of the inputs (models/talvex/RamFormulas.h
// holds the rest).
#include <prsm/models/talvex/PRSMTalvexBramModel.h>
#include <prsm/models/talvex/PRSMTalvexBramCells.h>

#include "RamFormulas.h"

using Model = PRSMTalvexBramModel;
using Data = Model::Data;

namespace {

constexpr char kCascadeMode[] = "CASCADE";

bool isHalfBlock(std::string_view type) {
    return type == "BRAM18";
}

// 36 Kb sites for a number of blocks: two 18 Kb halves share a site, so halves round up.
int sites(std::string_view type, int blocks) {
    return isHalfBlock(type) ? blocks / 2 + blocks % 2 : blocks;
}

}  // namespace

// ---- Inputs -------------------------------------------------------------------------------------

int Model::defaultCascadeDepth(Params& params, Data const& data) const {
    return refRamMode(params, data) == kCascadeMode ? 2 : 1;
}

// A cascade chains at least two blocks; no other mode chains any.
bool Model::isValidCascadeDepth(Params& params, Data const& data) const {
    int const depth = getCascadeDepth(params, data);
    if (refRamMode(params, data) != kCascadeMode) return depth == 1;
    int const longest =
        PRSMHelperUtils::IFERROR(data.getMaxCascadeDepthOrError(refBramType(params, data)), 0);
    return depth >= 2 && depth <= longest;
}

bool Model::isValidPortAWidth(Params& params, Data const& data) const {
    return prsm::ram::isValidPortWidth(*this, params, data, Port::A, refBramType(params, data));
}

bool Model::isValidPortBWidth(Params& params, Data const& data) const {
    return prsm::ram::isValidPortWidth(*this, params, data, Port::B, refBramType(params, data));
}

std::vector<std::string> Model::validListEcc(Params& params, Data const& data) const {
    if (prsm::ram::eccAllowed(*this, params, data, refBramType(params, data))) return {"NO", "YES"};
    return {"NO"};
}

// ---- Power --------------------------------------------------------------------------------------

// The word line is boosted from VCCAUX on every array access of either port.
float Model::computeVccauxInstancePower(Params& params, Data const& data) const {
    float const energy = prsm::ram::arrayEnergy(data, refBramType(params, data), "WORDLINE_BOOST");
    float const factor = prsm::ram::energyVoltageFactor(data, getVccaux(params, data),
                                                        Data::VoltageScalingKey::VCCAUX_NOMINAL);
    return prsm::ram::milliwatts(prsm::ram::arrayAccesses(*this, params, data) * energy, factor,
                                 calculateVccauxScale(params, data));
}

float Model::computeInstancePower(Params& params, Data const& data) const {
    return calculateVccintInstancePower(params, data) + calculateVccramInstancePower(params, data) +
           calculateVccauxInstancePower(params, data);
}

float Model::computeTotalPower(Params& params, Data const& data) const {
    return calculateVccintPower(params, data) + calculateVccramPower(params, data) +
           calculateVccauxPower(params, data);
}

// ---- Blocks the design uses ---------------------------------------------------------------------

int Model::computeBram36ActiveCount(Params& params, Data const& data) const {
    return sites(refBramType(params, data), calculateActiveInstanceCount(params, data));
}

int Model::computeBram36SleepCount(Params& params, Data const& data) const {
    return sites(refBramType(params, data), calculateSleepInstanceCount(params, data));
}
