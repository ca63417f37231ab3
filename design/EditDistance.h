#pragma once
// The distance between two names, for the "did you mean" of a misspelt one: the design files' checks
// and the command line's suggestions both measure with it.

#include <cstddef>
#include <string_view>

namespace prsm::design {

// Levenshtein distance, ignoring letter case.
std::size_t editDistance(std::string_view a, std::string_view b);

}  // namespace prsm::design
