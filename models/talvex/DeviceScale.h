#pragma once
// A part's scale of one of a sheet's figures: its own row of BLOCK_POWER_SCALE, else the DEFAULT row,
// else 1. Every block sheet of both architectures reads its parts' factors so.

#include <prsm/framework/PRSMModelTypes.h>
#include <prsm/sheetfunc/PRSMHelperUtils.h>

#include <string_view>

namespace prsm {

template <typename Model, typename Key>
float deviceScale(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data, Key defaultKey,
                  std::string_view key) {
    return PRSMHelperUtils::IFERROR(data.getBlockPowerScaleOrError(model.refDevice(params, data), key),
                                    PRSMHelperUtils::IFERROR(data.getBlockPowerScaleOrError(defaultKey), 1.0f));
}

}  // namespace prsm
