#pragma once
// Supply-rail and region names the design engine accepts.

#include <string>
#include <vector>

namespace prsm::design {

// A rail of the newer architecture's supply list, or one that a registered sheet declares.
bool isKnownRail(std::string const& rail);

// The regions in report order: logic, io, gt, ps_pmc, noc, aie, hbm.
std::vector<std::string> const& regionNames();
// A region's title for the report ("programmable logic").
std::string regionTitle(std::string const& region);

}  // namespace prsm::design
