#pragma once
// How far apart two names are, for the "did you mean" of a misspelt name.

#include <cstddef>
#include <string_view>

namespace prsm::design {

// Levenshtein distance, ignoring letter case.
std::size_t editDistance(std::string_view a, std::string_view b);

}  // namespace prsm::design
