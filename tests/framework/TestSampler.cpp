// Formulas of the test-only sheet.
#include <prsm/tests/framework/PRSMTestSamplerModel.h>
#include <prsm/tests/framework/PRSMTestSamplerCells.h>

using Model = PRSMTestSamplerModel;

float Model::defaultScale(Params& params, Data const& data) const {
    return 2.0f * getRate(params, data);
}

float Model::defaultLaneLoad(Params& params, Data const& data, Lane) const {
    return getRate(params, data);
}

float Model::computeLanePower(Params& params, Data const& data, Lane lane) const {
    return getLaneLoad(params, data, lane) * data.getLaneCap(getMode(params, data), memberName(lane)) *
           getScale(params, data);
}

float Model::computeTotal(Params& params, Data const& data) const {
    return calculateLanePower(params, data, Lane::A) + calculateLanePower(params, data, Lane::B) +
           calculatePlaceholder(params, data);
}

std::string Model::computeLabel(Params& params, Data const& data) const {
    return getMode(params, data) + ":" + std::to_string(getCount(params, data));
}

int Model::computeCountOut(Params& params, Data const& data) const {
    return 2 * getCount(params, data);
}
