// Formulas of the larger processor system's preset sheet: every output is the selected preset's entry of
// the same name in PSXL_PRESETS, read as the output's type. The table's columns are read into numbers
// when the file loads; a setting is the entry at its member's position (a family numbers its members as
// the columns list them). A preset that lacks an entry is an incomplete file: the lookup throws
// PRSMException naming the key.
#include <prsm/models/talvex/PRSMTalvexPsxlPresetModel.h>
#include <prsm/models/talvex/PRSMTalvexPsxlPresetCells.h>

#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

using Model = PRSMTalvexPsxlPresetModel;

// The presets of the table: the first part of every key, each once, sorted.
std::vector<std::string> Model::validListPreset(Params&, Data const& data) const {
    std::vector<std::string> names;
    for (auto const& entry : data.m_PsxlPresets) {
        std::string name = entry.first.substr(0, entry.first.find('.'));
        if (std::find(names.begin(), names.end(), name) == names.end()) names.push_back(std::move(name));
    }
    std::sort(names.begin(), names.end());
    return names;
}

std::string Model::computeDescription(Params& params, Data const& data) const {
    return data.getPsxlPresets(refPreset(params, data), "DESCRIPTION");
}

int Model::computeIntSetting(Params& params, Data const& data, IntSetting member) const {
    return data.getPsxlPresetsInt(refPreset(params, data), static_cast<std::size_t>(member));
}

float Model::computeFloatSetting(Params& params, Data const& data, FloatSetting member) const {
    return data.getPsxlPresetsFloat(refPreset(params, data), static_cast<std::size_t>(member));
}
