#include <prsm/framework/PRSMValueList.h>

#include <algorithm>

namespace prsm {

std::vector<std::string> validValueEntries(std::string const& validValues) {
    std::vector<std::string> entries;
    for (std::size_t start = 0; start <= validValues.size();) {
        std::size_t const comma = std::min(validValues.find(',', start), validValues.size());
        if (comma > start) entries.push_back(validValues.substr(start, comma - start));
        start = comma + 1;
    }
    return entries;
}

}  // namespace prsm
