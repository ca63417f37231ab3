// Formulas of the test-only module board.
#include <prsm/tests/design/PRSMTestBoardModel.h>
#include <prsm/tests/design/PRSMTestBoardCells.h>

#include <algorithm>

using Model = PRSMTestBoardModel;

float Model::computeCoreLoad(Params& params, Data const& data) const {
    return getCoreCurrent(params, data);
}

float Model::computeCoreEfficiency(Params&, Data const&) const {
    return 0.8f;
}

float Model::computeCoreLoss(Params& params, Data const& data) const {
    return calculateCoreLoad(params, data) * 0.8f * (1.0f / calculateCoreEfficiency(params, data) - 1.0f);
}

float Model::computeCoreOverlimit(Params& params, Data const& data) const {
    return std::max(calculateCoreLoad(params, data) - 1.5f, 0.0f) * 0.8f * 1000.0f;
}

float Model::computeAuxLoad(Params& params, Data const& data) const {
    return getAuxCurrent(params, data);
}

float Model::computeMainLoad(Params& params, Data const& data) const {
    return getIoCurrent(params, data);
}

float Model::computeMainEfficiency(Params&, Data const&) const {
    return 0.9f;
}

float Model::computeMainLoss(Params& params, Data const& data) const {
    float const delivered = (calculateMainLoad(params, data) + calculateAuxLoad(params, data)) * 3.3f;
    return delivered * (1.0f / calculateMainEfficiency(params, data) - 1.0f);
}

float Model::computeAuxLoss(Params& params, Data const& data) const {
    return calculateAuxLoad(params, data) * (3.3f - 1.5f);
}

float Model::computeAuxOverlimit(Params& params, Data const& data) const {
    return std::max(calculateAuxLoad(params, data) - 0.5f, 0.0f) * 1.5f * 1000.0f;
}

float Model::computeBoardPower(Params& params, Data const& data) const {
    return calculateCoreLoad(params, data) * 0.8f + calculateMainLoad(params, data) * 3.3f +
           calculateAuxLoad(params, data) * 1.5f + calculateCoreLoss(params, data) + calculateAuxLoss(params, data) +
           calculateMainLoss(params, data) + getOtherPower(params, data);
}
