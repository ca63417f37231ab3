#pragma once
// Supply-rail and region names the design engine accepts.

#include <string>
#include <vector>

namespace prsm::design {

// A rail that a registered sheet declares (a static sheet declares every supply of its architecture).
bool isKnownRail(std::string const& rail);

// The regions in report order, as design/regions.toml declares them.
std::vector<std::string> const& regionNames();
// A region's title for the report ("programmable logic").
std::string regionTitle(std::string const& region);

}  // namespace prsm::design
