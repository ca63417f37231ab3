// Formulas of the transceiver preset sheet: every output is the selected preset's entry of the same name
// in GT_PRESETS, read as the output's type. The table's columns are read into numbers when the file
// loads; a setting is the entry at its member's position (a family numbers its members as the columns
// list them). A preset that lacks an entry is an incomplete file: the lookup throws PRSMException naming
// the key.
#include <prsm/models/talvex/PRSMTalvexGtPresetModel.h>
#include <prsm/models/talvex/PRSMTalvexGtPresetCells.h>

#include <cstddef>
#include <string>

using Model = PRSMTalvexGtPresetModel;

std::string Model::computeDescription(Params& params, Data const& data) const {
    return data.getGtPresets(refPreset(params, data), "DESCRIPTION");
}

int Model::computeIntSetting(Params& params, Data const& data, IntSetting member) const {
    return data.getGtPresetsInt(refPreset(params, data), static_cast<std::size_t>(member));
}

float Model::computeFloatSetting(Params& params, Data const& data, FloatSetting member) const {
    return data.getGtPresetsFloat(refPreset(params, data), static_cast<std::size_t>(member));
}

std::string Model::computeStringSetting(Params& params, Data const& data, StringSetting member) const {
    return data.getGtPresetsString(refPreset(params, data), static_cast<std::size_t>(member));
}
