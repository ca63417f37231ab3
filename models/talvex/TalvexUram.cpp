// Formulas of the UltraRAM sheet that the block-RAM sheet does not share: the rules of its inputs and
// its totals (models/talvex/RamFormulas.h holds the rest).
#include <prsm/models/talvex/PRSMTalvexUramModel.h>
#include <prsm/models/talvex/PRSMTalvexUramCells.h>

#include "RamFormulas.h"

using Model = PRSMTalvexUramModel;
using Data = Model::Data;

namespace {

constexpr char kBlock[] = "URAM288";

}  // namespace

bool Model::isValidCascadeDepth(Params& params, Data const& data) const {
    return prsm::ram::isValidChainDepth(*this, params, data, kBlock);
}

bool Model::isValidPortAWidth(Params& params, Data const& data) const {
    return prsm::ram::isValidPortWidth(*this, params, data, Port::A, kBlock);
}

bool Model::isValidPortBWidth(Params& params, Data const& data) const {
    return prsm::ram::isValidPortWidth(*this, params, data, Port::B, kBlock);
}

std::vector<std::string> Model::validListEcc(Params& params, Data const& data) const {
    return prsm::ram::eccChoices(*this, params, data, kBlock);
}

float Model::computeInstancePower(Params& params, Data const& data) const {
    return calculateVccintInstancePower(params, data) + calculateVccramInstancePower(params, data);
}

float Model::computeTotalPower(Params& params, Data const& data) const {
    return calculateVccintPower(params, data) + calculateVccramPower(params, data);
}
