#pragma once
// Helpers that flatten the nested settings of a configuration file into flat maps and look them up.

#include <algorithm>
#include <string>
#include <unordered_map>
#include <vector>

namespace libconfig {
class Config;
}

namespace PRSMHelperUtils {

using CfgList = std::vector<std::string>;

// Flattens the group tree at `path` (its elements joined with ".") into `out`, keyed by the path of
// each leaf below the table: the elements from the third on, joined with ".". Integer leaves load into
// float tables (automatic conversion is on while loading). Returns false when the setting does not
// exist, or after reporting an array or list found inside the tree.
template <typename T>
bool loadCfgDataToVar(libconfig::Config* cfg, std::vector<std::string>& path,
                      std::unordered_map<std::string, T>& out, bool top = true);

// loadCfgDataToVar of the setting `setting` below `path`; `path` is as it was on return. A generated
// data class loads each of its tables with one call.
template <typename T>
bool loadCfgSetting(libconfig::Config* cfg, std::vector<std::string>& path, char const* setting,
                    std::unordered_map<std::string, T>& out);

// Loads the lists (or arrays) at `path` into `out`. A list found below the table is keyed by its path
// below the table; a list that is the table itself is keyed by the table's name. Elements that are
// numbers are stored as their text. Returns false when the setting does not exist.
bool loadCfgDataToList(libconfig::Config* cfg, std::vector<std::string>& path,
                       std::unordered_map<std::string, CfgList>& out, bool top = true);

// The value stored under `key`; throws PRSMException naming the key (and the table, when given).
template <typename T>
T getCfgDataFromVar(std::unordered_map<std::string, T> const& map, std::string const& key,
                    char const* table = nullptr);

// loadCfgDataToList of the setting `setting` below `path`; `path` is as it was on return.
bool loadCfgListSetting(libconfig::Config* cfg, std::vector<std::string>& path, char const* setting,
                        std::unordered_map<std::string, CfgList>& out);

CfgList getCfgDataFromList(std::unordered_map<std::string, CfgList> const& map, std::string const& key,
                           char const* table = nullptr);

// The keys of a table, sorted so that listings are stable.
template <typename T>
std::vector<std::string> getCfgKeyVectorFromList(std::unordered_map<std::string, T> const& map);

// Appends the keys of a table to `keys`, sorted.
template <typename T>
void appendCfgKeys(std::vector<std::string>& keys, std::unordered_map<std::string, T> const& map);

// Throws the PRSMException of a missing key.
[[noreturn]] void throwMissingKey(std::string const& key, char const* table, char const* function);

template <typename T>
T getCfgDataFromVar(std::unordered_map<std::string, T> const& map, std::string const& key,
                    char const* table) {
    auto const it = map.find(key);
    if (it == map.end()) throwMissingKey(key, table, "getCfgDataFromVar");
    return it->second;
}

template <typename T>
std::vector<std::string> getCfgKeyVectorFromList(std::unordered_map<std::string, T> const& map) {
    std::vector<std::string> keys;
    keys.reserve(map.size());
    for (auto const& entry : map) keys.push_back(entry.first);
    std::sort(keys.begin(), keys.end());
    return keys;
}

// Instantiated once, in the library, for the value types of the generated data classes' tables
// (loadCfgDataToVar, loadCfgSetting and appendCfgKeys are defined there only).
extern template std::vector<std::string> getCfgKeyVectorFromList(
    std::unordered_map<std::string, float> const&);
extern template std::vector<std::string> getCfgKeyVectorFromList(std::unordered_map<std::string, int> const&);
extern template std::vector<std::string> getCfgKeyVectorFromList(
    std::unordered_map<std::string, bool> const&);
extern template std::vector<std::string> getCfgKeyVectorFromList(
    std::unordered_map<std::string, std::string> const&);
extern template std::vector<std::string> getCfgKeyVectorFromList(
    std::unordered_map<std::string, CfgList> const&);

}  // namespace PRSMHelperUtils
