#pragma once
// The page's chart of static power against the junction temperature: the curve the review page draws
// (the blocks calculated once, the static sheet at each temperature) and the design's operating point.

#include <prsm/host/serve/DesignSession.h>

#include <string>

namespace prsm::host::serve {

// {"points": [[degC, W], ...], "junction_temperature": degC, "static_power": W or null}. No points when
// the estimate is not complete or the design names no static sheet.
std::string leakageCurveJson(DesignSession const& session);

}  // namespace prsm::host::serve
