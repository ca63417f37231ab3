// Formulas of the older architecture's block-RAM sheet that the shared memory formulas leave out: the
// rules of its inputs and its totals (models/talvex/RamFormulas.h holds the rest).
#include <prsm/models/dravik/PRSMDravikBramModel.h>
#include <prsm/models/dravik/PRSMDravikBramCells.h>

#include "DravikRamFormulas.h"

using Model = PRSMDravikBramModel;
using Data = Model::Data;

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

float Model::computeInstancePower(Params& params, Data const& data) const {
    return calculateVccintInstancePower(params, data) + calculateVccbramInstancePower(params, data);
}

float Model::computeTotalPower(Params& params, Data const& data) const {
    return calculateVccintPower(params, data) + calculateVccbramPower(params, data);
}
