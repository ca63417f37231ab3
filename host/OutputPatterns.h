#pragma once
// The outputs a user picks with `--outputs`, for `prsm calc` and `prsm sweep` alike: a comma-separated
// list whose items are names or patterns ("*" any run of characters, "?" one character), blanks around
// an item ignored.

#include <string>
#include <vector>

namespace prsm::host {

// Whether `name` matches the pattern as a whole.
bool globMatch(std::string const& pattern, std::string const& name);

// The items of the list, trimmed; none for a blank list. Throws HostError(kExitBadInput) for an empty
// item ("A,,B").
std::vector<std::string> parseOutputPatterns(std::string const& list);

// Which of `names` one of the patterns matches, in the names' order. Throws HostError(kExitBadInput)
// naming the first pattern that matches none ("no output of <owner> matches "X"; <hint>").
std::vector<bool> pickOutputs(std::vector<std::string> const& names, std::vector<std::string> const& patterns,
                              std::string const& owner, std::string const& hint);

}  // namespace prsm::host
