#pragma once
// A design's budget checked against an estimate: each limit the file states beside the figure it
// bounds, so that a pipeline can stop on a design that has outgrown its power supply.

#include <prsm/design/Design.h>
#include <prsm/design/Estimate.h>

#include <string>
#include <vector>

namespace prsm::design {

struct BudgetLine {
    std::string rail;   // empty for the total power
    double limit = 0;   // W for the total, A for a rail
    double value = 0;   // the estimate's figure; NaN when the report is incomplete
    bool exceeded = false;
    char const* unit() const { return rail.empty() ? "W" : "A"; }
};

// The total first, then the rails in the file's order. A rail the design does not use draws 0 A.
std::vector<BudgetLine> checkBudget(Budget const& budget, Report const& report);

bool anyExceeded(std::vector<BudgetLine> const& lines);

}  // namespace prsm::design
