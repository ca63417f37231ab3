#pragma once
// Small helpers used by the generated validity and valid-value functions.

#include <algorithm>
#include <string>
#include <vector>

namespace prsm {

inline bool isListed(std::vector<std::string> const& list, std::string const& value) {
    return std::find(list.begin(), list.end(), value) != list.end();
}

// The valid choices of a drop-down list as one text, comma-separated without blanks.
inline std::string joinList(std::vector<std::string> const& list) {
    std::string text;
    for (std::size_t i = 0; i < list.size(); ++i) {
        if (i != 0) text += ',';
        text += list[i];
    }
    return text;
}

}  // namespace prsm
