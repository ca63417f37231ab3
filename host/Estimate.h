#pragma once
// `prsm estimate DESIGN.json`: the whole-design report as a table with units, JSON or CSV, and on
// request as an HTML page.

#include <prsm/design/Estimate.h>
#include <prsm/host/Request.h>

#include <iosfwd>
#include <string>

namespace prsm::host {

// The report as aligned tables: rails, blocks, regions, then the totals.
std::string renderEstimateTable(design::Report const& report);

// A warning of the report as standard error shows it, without the "prsm: warning: " prefix.
std::string warningText(design::Warning const& warning);

// Runs the request: the report on `out` (and in request.htmlFile when given), invalid inputs as
// warnings and failures as errors on `err`.
// A design that is refused ends with kExitBadInput, a failed block or a thermal runaway with
// kExitDataFailure and no totals; a failed block adds `dataHint` (where the data was looked for).
int runEstimate(Request const& request, std::string const& dataHint, std::ostream& out, std::ostream& err);

}  // namespace prsm::host
