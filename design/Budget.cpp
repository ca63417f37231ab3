#include <prsm/design/Budget.h>

#include <algorithm>
#include <cmath>

namespace prsm::design {

std::vector<BudgetLine> checkBudget(Budget const& budget, Report const& report) {
    std::vector<BudgetLine> lines;
    // An incomplete report has no totals to hold against a limit.
    auto line = [&](std::string rail, double limit, double value) {
        if (!report.complete) value = std::nan("");
        lines.push_back({std::move(rail), limit, value, value > limit});
    };
    if (budget.totalPower) line("", *budget.totalPower, report.totalPower);
    for (auto const& entry : budget.railCurrents) {  // a lambda may not capture a structured binding
        std::string const& rail = entry.first;
        auto const found = std::find_if(report.rails.begin(), report.rails.end(),
                                        [&](RailResult const& r) { return r.rail == rail; });
        line(rail, entry.second, found == report.rails.end() ? 0.0 : found->totalCurrent);
    }
    return lines;
}

bool anyExceeded(std::vector<BudgetLine> const& lines) {
    return std::any_of(lines.begin(), lines.end(), [](BudgetLine const& l) { return l.exceeded; });
}

}  // namespace prsm::design
