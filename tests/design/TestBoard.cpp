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
    return getAuxCurrent(params, data) + getIoCurrent(params, data);
}

float Model::computeAuxLoss(Params& params, Data const& data) const {
    return calculateAuxLoad(params, data) * (3.3f - 1.5f);
}

float Model::computeAuxOverlimit(Params& params, Data const& data) const {
    return std::max(calculateAuxLoad(params, data) - 0.5f, 0.0f) * 1.5f * 1000.0f;
}

float Model::computeBoardPower(Params& params, Data const& data) const {
    return calculateCoreLoad(params, data) * 0.8f + calculateAuxLoad(params, data) * 1.5f +
           calculateCoreLoss(params, data) + calculateAuxLoss(params, data) + getOtherPower(params, data);
}
