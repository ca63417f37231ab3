#pragma once
// The machine-readable forms of a report together with its optional views: the corner comparison, the
// budget and the junction limit. Without either they are the report's own forms (ReportFormat.h), key for key.

#include <prsm/design/Budget.h>
#include <prsm/design/Corners.h>
#include <prsm/design/Estimate.h>
#include <prsm/design/JunctionLimit.h>

#include <string>
#include <vector>

namespace prsm::design {

struct ReportViews {
    CornerReports const* corners = nullptr;      // `corners`: typical and worst per rail, region, supply
    std::vector<BudgetLine> const* budget = nullptr;  // `budget`: each limit against its figure
    JunctionLimit const* junctionLimit = nullptr;     // `junction_limit`: theta_ja and ambient at the limit
};

// The report's JSON object with `corners`, `budget` and `junction_limit` added when given.
std::string toJson(Report const& report, ReportViews const& views);
// The report's CSV lines, then the sections corner, corner_rail, corner_region, corner_supply,
// corner_total, budget, junction_limit.
std::string toCsv(Report const& report, ReportViews const& views);

}  // namespace prsm::design
