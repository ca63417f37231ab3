#pragma once
// What every generated data class does with its tables, compiled once here rather than once per class:
// copying them and dumping them as text.

#include <string>
#include <unordered_map>
#include <vector>

namespace prsm::data {

template <typename T>
using Table = std::unordered_map<std::string, T>;
using ListTable = Table<std::vector<std::string>>;

// `to` = `from`.
void copyTable(Table<float>& to, Table<float> const& from);
void copyTable(Table<int>& to, Table<int> const& from);
void copyTable(Table<bool>& to, Table<bool> const& from);
void copyTable(Table<std::string>& to, Table<std::string> const& from);
void copyTable(ListTable& to, ListTable const& from);

// Appends one "TABLE.key = value" line per entry, sorted by key; a list shows as "[a, b]".
void appendTable(std::string& text, char const* table, Table<float> const& map);
void appendTable(std::string& text, char const* table, Table<int> const& map);
void appendTable(std::string& text, char const* table, Table<bool> const& map);
void appendTable(std::string& text, char const* table, Table<std::string> const& map);
void appendTable(std::string& text, char const* table, ListTable const& map);

}  // namespace prsm::data
