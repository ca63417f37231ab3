// The rules and the voltage factor of the DSP sheet; models/talvex/DspFormulas.h holds its formulas.
#include <prsm/models/talvex/PRSMTalvexDspModel.h>
#include <prsm/models/talvex/PRSMTalvexDspCells.h>

#include "DspFormulas.h"

using Model = PRSMTalvexDspModel;
using Data = Model::Data;

bool Model::isValidAWidth(Params& params, Data const& data) const {
    return prsm::dsp::isValidAWidth(*this, params, data);
}
bool Model::isValidBWidth(Params& params, Data const& data) const {
    return prsm::dsp::isValidBWidth(*this, params, data);
}
std::vector<std::string> Model::validListUsePreadder(Params& params, Data const& data) const {
    return prsm::dsp::preadderChoices(*this, params, data);
}
float Model::computeVoltageFactor(Params& params, Data const& data) const {
    return prsm::dsp::voltageFactor(*this, params, data);
}
