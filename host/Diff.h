#pragma once
// `prsm diff A.json B.json`: two designs estimated and compared per rail, region, block and in total.

#include <prsm/host/Request.h>

#include <iosfwd>

namespace prsm::host {

// The comparison as a table, JSON or CSV on `out`; each design's failures as errors on `err`. A refused
// design ends with kExitBadInput, an incomplete estimate with kExitDataFailure (the rows still printed).
int runDiff(Request const& request, std::ostream& out, std::ostream& err);

}  // namespace prsm::host
