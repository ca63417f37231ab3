#include <prsm/host/HostError.h>
#include <prsm/host/OutputPatterns.h>

#include <algorithm>

namespace prsm::host {

// Greedy with one backtrack point: a later "*" makes an earlier one's choice final, so the match takes
// time proportional to the product of the lengths, never exponential.
bool globMatch(std::string const& pattern, std::string const& name) {
    std::size_t p = 0, n = 0;
    std::size_t star = std::string::npos, resume = 0;
    while (n < name.size()) {
        if (p < pattern.size() && pattern[p] == '*') {
            star = p++;
            resume = n;
        } else if (p < pattern.size() && (pattern[p] == '?' || pattern[p] == name[n])) {
            ++p;
            ++n;
        } else if (star != std::string::npos) {
            p = star + 1;
            n = ++resume;
        } else {
            return false;
        }
    }
    while (p < pattern.size() && pattern[p] == '*') ++p;
    return p == pattern.size();
}

std::vector<std::string> parseOutputPatterns(std::string const& list) {
    auto const blank = [](char c) { return c == ' ' || c == '\t'; };
    if (std::all_of(list.begin(), list.end(), blank)) return {};
    std::vector<std::string> patterns;
    std::size_t start = 0;
    while (true) {
        std::size_t const end = std::min(list.find(',', start), list.size());
        std::size_t first = start, last = end;
        while (first < last && blank(list[first])) ++first;
        while (last > first && blank(list[last - 1])) --last;
        if (first == last)
            throw HostError(kExitBadInput, "the list of outputs (\"" + list + "\") has an empty item");
        patterns.push_back(list.substr(first, last - first));
        if (end == list.size()) return patterns;
        start = end + 1;
    }
}

std::vector<bool> pickOutputs(std::vector<std::string> const& names, std::vector<std::string> const& patterns,
                              std::string const& owner, std::string const& hint) {
    std::vector<bool> picked(names.size(), false);
    for (std::string const& pattern : patterns) {
        bool matched = false;
        for (std::size_t i = 0; i < names.size(); ++i)
            if (globMatch(pattern, names[i])) picked[i] = matched = true;
        if (!matched)
            throw HostError(kExitBadInput, "no output of " + owner + " matches \"" + pattern + "\"; " + hint);
    }
    return picked;
}

}  // namespace prsm::host
