#pragma once
// A list input's valid values come from its sheet as one text of comma-separated entries ("1,2,3");
// callers that weigh the entries one by one take them apart here.

#include <string>
#include <vector>

namespace prsm {

// The entries of `validValues` in order, empty ones left out.
std::vector<std::string> validValueEntries(std::string const& validValues);

}  // namespace prsm
