#pragma once
// The table forms of the report's supply views: the regulator groups of the design's scheme and the
// decoupling capacitors per rail.

#include <prsm/design/Estimate.h>

#include <string>

namespace prsm::host {

// Per group its step, tolerances, rails (a held rail in brackets after its holder) and sums; "" when
// the design names no scheme.
std::string renderSupplyGroups(design::Report const& report);
// Per rail its load step and the whole capacitors of each value; "" when the design asks for none.
std::string renderDecoupling(design::Report const& report);

}  // namespace prsm::host
