#include <prsm/host/Suggest.h>

#include <algorithm>
#include <cctype>
#include <utility>

namespace prsm::host {

namespace {

char lower(char c) {
    return static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
}

std::string lowered(std::string_view text) {
    std::string out(text);
    std::transform(out.begin(), out.end(), out.begin(), lower);
    return out;
}

}  // namespace

std::vector<std::string> suggestNames(std::string const& wanted, std::vector<std::string> const& candidates,
                                      std::size_t limit) {
    std::string const key = lowered(wanted);
    std::vector<std::pair<std::size_t, std::string>> ranked;
    for (std::string const& candidate : candidates) {
        std::string const other = lowered(candidate);
        if (other == key) return {candidate};
        std::size_t const distance = editDistance(key, other);
        bool const near = distance <= std::max<std::size_t>(2, key.size() / 4);
        bool const contained =
            key.size() >= 3 && (other.find(key) != std::string::npos || key.find(other) != std::string::npos);
        if (near || contained) ranked.emplace_back(distance, candidate);
    }
    std::sort(ranked.begin(), ranked.end());
    std::vector<std::string> names;
    for (std::size_t i = 0; i < ranked.size() && i < limit; ++i) names.push_back(ranked[i].second);
    return names;
}

std::string didYouMean(std::vector<std::string> const& suggestions) {
    if (suggestions.empty()) return std::string();
    std::string text = " (did you mean ";
    for (std::size_t i = 0; i < suggestions.size(); ++i) {
        if (i > 0) text += i + 1 == suggestions.size() ? " or " : ", ";
        text += suggestions[i];
    }
    return text + "?)";
}

}  // namespace prsm::host
