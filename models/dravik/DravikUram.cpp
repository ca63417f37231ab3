// Formulas of the older architecture's UltraRAM sheet that the shared memory formulas leave out: the
// rules of its inputs and its totals (models/talvex/RamFormulas.h holds the rest).
#include <prsm/models/dravik/PRSMDravikUramModel.h>
#include <prsm/models/dravik/PRSMDravikUramCells.h>

#include "DravikRamFormulas.h"

using Model = PRSMDravikUramModel;
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
    return calculateVccintInstancePower(params, data) + calculateVccbramInstancePower(params, data);
}

float Model::computeTotalPower(Params& params, Data const& data) const {
    return calculateVccintPower(params, data) + calculateVccbramPower(params, data);
}
