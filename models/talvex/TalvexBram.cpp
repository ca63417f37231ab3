// Formulas of the block-RAM sheet that the shared memory formulas leave out: the word-line boost on
// VCCAUX, the totals and the rules of the inputs (models/talvex/RamFormulas.h holds the rest).
#include <prsm/models/talvex/PRSMTalvexBramModel.h>
#include <prsm/models/talvex/PRSMTalvexBramCells.h>

#include "RamFormulas.h"

using Model = PRSMTalvexBramModel;
using Data = Model::Data;

// ---- Inputs -------------------------------------------------------------------------------------

bool Model::isValidCascadeDepth(Params& params, Data const& data) const {
    return prsm::ram::isValidCascadeModeDepth(*this, params, data);
}

bool Model::isValidPortAWidth(Params& params, Data const& data) const {
    return prsm::ram::isValidPortWidth(*this, params, data, Port::A, refBramType(params, data));
}

bool Model::isValidPortBWidth(Params& params, Data const& data) const {
    return prsm::ram::isValidPortWidth(*this, params, data, Port::B, refBramType(params, data));
}

std::vector<std::string> Model::validListEcc(Params& params, Data const& data) const {
    return prsm::ram::eccChoices(*this, params, data, refBramType(params, data));
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
