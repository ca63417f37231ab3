// Formulas of the older transceiver preset sheet: every output is the selected preset's entry of the same
// name in GT_PRESETS, read as the output's type, as on the newer preset sheet. A preset that lacks an
// entry is an incomplete file: the lookup throws PRSMException naming the key.
#include <prsm/models/dravik/PRSMDravikGtPresetModel.h>
#include <prsm/models/dravik/PRSMDravikGtPresetCells.h>

#include <prsm/sheetfunc/PRSMHelperUtils.h>

#include <string>

using Model = PRSMDravikGtPresetModel;

std::string Model::computeDescription(Params& params, Data const& data) const {
    return data.getGtPresets(refPreset(params, data), "DESCRIPTION");
}

int Model::computeIntSetting(Params& params, Data const& data, IntSetting member) const {
    return PRSMHelperUtils::s2i(data.getGtPresets(refPreset(params, data), memberName(member)));
}

float Model::computeFloatSetting(Params& params, Data const& data, FloatSetting member) const {
    return PRSMHelperUtils::s2f(data.getGtPresets(refPreset(params, data), memberName(member)));
}

std::string Model::computeStringSetting(Params& params, Data const& data, StringSetting member) const {
    return data.getGtPresets(refPreset(params, data), memberName(member));
}
