#include <prsm/framework/PRSMDataSupport.h>

#include <algorithm>
#include <sstream>

namespace prsm::data {

namespace {

void appendValue(std::ostream& out, std::vector<std::string> const& list) {
    out << "[";
    for (std::size_t i = 0; i < list.size(); ++i) out << (i ? ", " : "") << list[i];
    out << "]";
}

template <typename T>
void appendValue(std::ostream& out, T const& value) {
    out << value;
}

template <typename T>
void appendSorted(std::string& text, char const* table, Table<T> const& map) {
    std::vector<typename Table<T>::const_iterator> entries;
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

}  // namespace

void copyTable(Table<float>& to, Table<float> const& from) {
    to = from;
}
void copyTable(Table<int>& to, Table<int> const& from) {
    to = from;
}
void copyTable(Table<bool>& to, Table<bool> const& from) {
    to = from;
}
void copyTable(Table<std::string>& to, Table<std::string> const& from) {
    to = from;
}
void copyTable(ListTable& to, ListTable const& from) {
    to = from;
}

void appendTable(std::string& text, char const* table, Table<float> const& map) {
    appendSorted(text, table, map);
}
void appendTable(std::string& text, char const* table, Table<int> const& map) {
    appendSorted(text, table, map);
}
void appendTable(std::string& text, char const* table, Table<bool> const& map) {
    appendSorted(text, table, map);
}
void appendTable(std::string& text, char const* table, Table<std::string> const& map) {
    appendSorted(text, table, map);
}
void appendTable(std::string& text, char const* table, ListTable const& map) {
    appendSorted(text, table, map);
}

}  // namespace prsm::data
