#pragma once
// Close-name suggestions for misspelt model and cell names.

#include <prsm/design/EditDistance.h>

#include <cstddef>
#include <string>
#include <vector>

namespace prsm::host {

// The candidates closest to `wanted`, best first, at most `limit`. A case-insensitive match alone wins;
// otherwise a candidate qualifies when it is within a quarter of the name's length in edits (at least
// two) or when one name contains the other, ignoring case.
std::vector<std::string> suggestNames(std::string const& wanted, std::vector<std::string> const& candidates,
                                      std::size_t limit = 3);

// " (did you mean A, B or C?)", or the empty string when there is nothing to suggest.
std::string didYouMean(std::vector<std::string> const& suggestions);

}  // namespace prsm::host
