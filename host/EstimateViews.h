#pragma once
// The table forms of the estimate's optional views: the corner comparison, the budget and
// the junction limit.

#include <prsm/design/Budget.h>
#include <prsm/design/Corners.h>
#include <prsm/design/JunctionLimit.h>

#include <string>
#include <vector>

namespace prsm::host {

// Each rail, region and the total at both corners, the higher of the two marked with `*`.
std::string renderCornersTable(design::CornerReports const& corners);
// Each limit against its figure, `EXCEEDED` beside those above it.
std::string renderBudgetTable(std::vector<design::BudgetLine> const& lines);
// The largest theta_ja and the highest ambient that keep the junction at the limit, or why not.
std::string renderJunctionLimit(design::JunctionLimit const& limit);

}  // namespace prsm::host
