#pragma once
// Two estimates side by side: per rail, region, block and in total, the figure of each, the difference
// and the ratio. Blocks (and loads) are matched by name; a figure only one report has is NaN in the other.

#include <prsm/design/Estimate.h>

#include <cmath>
#include <string>
#include <vector>

namespace prsm::design {

struct DiffRow {
    std::string section;   // "total", "rail", "region" or "block"
    std::string name;      // the rail, region or block; for "total": "dynamic", "static", "total"
    std::string quantity;  // "power" or, for a rail, "current"
    char const* unit = "W";
    double a = 0, b = 0;
    double difference() const { return b - a; }                        // NaN when either is missing
    double ratio() const { return a != 0 ? b / a : std::nan(""); }     // b / a; NaN for a of 0
};

// The totals (both complete, else left out), the rails, the regions and the blocks: A's order, then
// the names only B has.
std::vector<DiffRow> compareReports(Report const& a, Report const& b);

}  // namespace prsm::design
