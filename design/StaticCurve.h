#pragma once
// The design's static power across junction temperatures: the leakage picture of a report.

#include <prsm/design/Design.h>

#include <utility>
#include <vector>

namespace prsm::design {

// (junction in degC, static power in W) at each of `junctions`, the blocks calculated once and only
// the static sheet again per temperature. Points whose estimate is not complete are left out; the
// list is empty for a design without a static sheet. Throws as Estimator does.
std::vector<std::pair<double, double>> staticAgainstJunction(Design const& design,
                                                             std::vector<double> const& junctions);

}  // namespace prsm::design
