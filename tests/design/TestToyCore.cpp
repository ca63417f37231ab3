// Formulas of the test-only toy core: 2 mW per core.
#include <prsm/tests/design/PRSMTestToyCoreModel.h>
#include <prsm/tests/design/PRSMTestToyCoreCells.h>

using Model = PRSMTestToyCoreModel;

float Model::computeCorePower(Params& params, Data const& data) const {
    return 0.002f * static_cast<float>(getCores(params, data));
}
