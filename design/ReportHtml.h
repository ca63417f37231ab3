#pragma once
// A design report as one self-contained HTML page: the charts are inline SVG, the styles are in the
// page, and there is no script, so it opens offline, prints, and can be mailed as it is.

#include <prsm/design/Design.h>
#include <prsm/design/Estimate.h>

#include <string>
#include <utility>
#include <vector>

namespace prsm::design {

// The page for `report`, estimated from `design` (its description and device head the page).
// `staticCurve` holds (junction degC, static W) points for the leakage chart; empty leaves it out.
// Every text from the design or the sheets is HTML-escaped.
std::string toHtml(Report const& report, Design const& design,
                   std::vector<std::pair<double, double>> const& staticCurve = {});

// The junction temperatures of the leakage chart, degC: 0 to 100 in steps of 10.
std::vector<double> reportJunctions();

}  // namespace prsm::design
