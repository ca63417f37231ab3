// Formulas of the test-only counting block: 1 mW per unit, and the units and block RAMs together.
#include <prsm/tests/design/PRSMTestCountsModel.h>
#include <prsm/tests/design/PRSMTestCountsCells.h>

using Model = PRSMTestCountsModel;

float Model::computeUnitPower(Params& params, Data const& data) const {
    return 0.001f * static_cast<float>(getUnits(params, data));
}

int Model::computeTotalUnits(Params& params, Data const& data) const {
    return getUnits(params, data) + getBrams(params, data);
}
