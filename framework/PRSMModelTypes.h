#pragma once
// A generated model's parameter-set and data types, for formulas written once for several sheets.

namespace prsm {

template <typename Model>
using ParamsOf = typename Model::Params;
template <typename Model>
using DataOf = typename Model::Data;

}  // namespace prsm
