#pragma once
// A design's budget checked against an estimate: each limit the file states beside the figure it
// bounds, so that a pipeline can stop on a design that has outgrown its power supply.

#include <prsm/design/Design.h>
#include <prsm/design/Estimate.h>

#include <string>
#include <vector>

namespace prsm::design {

struct BudgetLine {
    std::string rail;  // empty for the total power and a supply
    double limit = 0;  // W for the total, A for a rail or a supply
    double value = 0;  // the estimate's figure; NaN when the report is incomplete
    bool exceeded = false;
    std::string supply{};  // a declared regulator or a regulator group; empty for the others
    bool isTotal() const { return rail.empty() && supply.empty(); }
    char const* unit() const { return isTotal() ? "W" : "A"; }
    // "total power", "VCCINT current", "supply PL_2 current"
    std::string title() const;
};

// The total first, then the rails and the supplies in the file's order. A rail the design does not use
// draws 0 A, and so does a group that feeds none of its rails. A regulator's figure is its load, a
// group's its current.
std::vector<BudgetLine> checkBudget(Budget const& budget, Report const& report);

bool anyExceeded(std::vector<BudgetLine> const& lines);

}  // namespace prsm::design
