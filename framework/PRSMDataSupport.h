#pragma once
// The text dump shared by every generated data class: one "TABLE.key = value" line per entry.

#include <algorithm>
#include <sstream>
#include <string>
#include <unordered_map>
#include <vector>

namespace prsm::data {

inline void appendValue(std::ostream& out, std::vector<std::string> const& list) {
    out << "[";
    for (std::size_t i = 0; i < list.size(); ++i) out << (i ? ", " : "") << list[i];
    out << "]";
}

template <typename T>
void appendValue(std::ostream& out, T const& value) {
    out << value;
}

template <typename T>
void appendTable(std::string& text, char const* table, std::unordered_map<std::string, T> const& map) {
    std::vector<typename std::unordered_map<std::string, T>::const_iterator> entries;
    for (auto it = map.begin(); it != map.end(); ++it) entries.push_back(it);
    std::sort(entries.begin(), entries.end(), [](auto a, auto b) { return a->first < b->first; });
    std::ostringstream out;
    out << std::boolalpha;
    for (auto const& entry : entries) {
        out << table << "." << entry->first << " = ";
        appendValue(out, entry->second);
        out << "\n";
    }
    text += out.str();
}

}  // namespace prsm::data
