#include <prsm/design/Budget.h>

#include <algorithm>
#include <cmath>

namespace prsm::design {

std::vector<BudgetLine> checkBudget(Budget const& budget, Report const& report) {
    std::vector<BudgetLine> lines;
    // An incomplete report has no totals to hold against a limit.
    auto line = [&](std::string rail, double limit, double value, std::string supply = {}) {
        if (!report.complete) value = std::nan("");
        lines.push_back({std::move(rail), limit, value, value > limit, std::move(supply)});
    };
    if (budget.totalPower) line("", *budget.totalPower, report.totalPower);
    for (auto const& entry : budget.railCurrents) {  // a lambda may not capture a structured binding
        std::string const& rail = entry.first;
        auto const found = std::find_if(report.rails.begin(), report.rails.end(),
                                        [&](RailResult const& r) { return r.rail == rail; });
        line(rail, entry.second, found == report.rails.end() ? 0.0 : found->totalCurrent);
    }
    for (auto const& entry : budget.supplyCurrents) {
        std::string const& name = entry.first;
        auto const regulator = std::find_if(report.regulators.begin(), report.regulators.end(),
                                            [&](RegulatorLoad const& r) { return r.name == name; });
        auto const group = std::find_if(report.supplyGroups.begin(), report.supplyGroups.end(),
                                        [&](SupplyGroup const& g) { return g.name == name; });
        double const value = regulator != report.regulators.end() ? regulator->load
                             : group != report.supplyGroups.end() ? group->current
                                                                  : 0.0;
        line("", entry.second, value, name);
    }
    return lines;
}

std::string BudgetLine::title() const {
    if (isTotal()) return "total power";
    return (supply.empty() ? rail : "supply " + supply) + " current";
}

bool anyExceeded(std::vector<BudgetLine> const& lines) {
    return std::any_of(lines.begin(), lines.end(), [](BudgetLine const& l) { return l.exceeded; });
}

}  // namespace prsm::design
