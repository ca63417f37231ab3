#pragma once
// The machine-readable forms of a design report, the same for every host.

#include <prsm/design/Estimate.h>

#include <string>

namespace prsm::design {

// One JSON object: rails, blocks, regions, static inputs and counts, device resources, thermal, totals,
// warnings, failures. Numbers
// are in V, A, W and degC; the totals are null when the report is not complete.
std::string toJson(Report const& report);

// Long form, one quantity per line: section,name,rail,quantity,value,unit (RFC 4180 quoting).
std::string toCsv(Report const& report);

}  // namespace prsm::design
