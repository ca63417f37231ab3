#include <prsm/framework/PRSMConfigHelpers.h>

#include <prsm/framework/PRSMDataSupport.h>
#include <prsm/framework/PRSMDataText.h>
#include <prsm/framework/PRSMException.h>

#include <climits>
#include <cmath>
#include <iostream>
#include <libconfig.h++>
#include <sstream>

namespace PRSMHelperUtils {
namespace {

std::string joinPath(std::vector<std::string> const& path, std::size_t from) {
    std::string key;
    for (std::size_t i = from; i < path.size(); ++i) {
        if (i > from) key += '.';
        key += path[i];
    }
    return key;
}

std::string numberText(libconfig::Setting const& s) {
    std::ostringstream text;
    switch (s.getType()) {
        case libconfig::Setting::TypeInt:
            text << static_cast<int>(s);
            break;
        case libconfig::Setting::TypeInt64:
            text << static_cast<long long>(s);
            break;
        case libconfig::Setting::TypeFloat:
            text << static_cast<double>(s);
            break;
        case libconfig::Setting::TypeBoolean:
            text << std::boolalpha << static_cast<bool>(s);
            break;
        default:
            break;
    }
    return text.str();
}

bool isNumber(libconfig::Setting const& s) {
    return s.isNumber() || s.getType() == libconfig::Setting::TypeBoolean;
}

// What a leaf holds, for the loader's messages.
char const* typeName(libconfig::Setting const& s) {
    switch (s.getType()) {
        case libconfig::Setting::TypeString:
            return "a string";
        case libconfig::Setting::TypeBoolean:
            return "a boolean";
        default:
            return s.isNumber() ? "a number" : "a setting of another kind";
    }
}

// Where a leaf sits, for the loader's messages: the key below its table, the table, the file.
struct LeafContext {
    libconfig::Config const* cfg;
    std::string const& table;
};

std::string describeLeaf(LeafContext const& context, libconfig::Setting const& s, std::string const& key) {
    std::string text = "key \"" + key + "\" of table " + context.table;
    std::string const source = prsm::data::describeSource(context.cfg, s);
    if (!source.empty()) text += " (" + source + ")";
    return text;
}

void reportNotLoaded(LeafContext const& context, libconfig::Setting const& s, std::string const& key,
                     std::string const& why) {
    std::cerr << "Unsupported cfg value error: " << describeLeaf(context, s, key) << " " << why
              << "; the key is not loaded." << std::endl;
}

void reportDoesNotFit(LeafContext const& context, libconfig::Setting const& s, std::string const& key,
                      char const* type) {
    reportNotLoaded(context, s, key, "holds " + numberText(s) + ", which does not fit " + type);
}

// Reads a scalar leaf as T: false, after reporting it, when the leaf's type or value does not fit T.
// The raw value is read by its own type (int, 64-bit int or double), never through a conversion of
// the configuration library, so nothing wraps or overflows on the way.
bool readScalar(LeafContext const& context, libconfig::Setting const& s, std::string const& key,
                float& value) {
    switch (s.getType()) {
        case libconfig::Setting::TypeInt:
            value = static_cast<float>(static_cast<int>(s));
            return true;
        case libconfig::Setting::TypeInt64:
            value = static_cast<float>(static_cast<long long>(s));
            return true;
        case libconfig::Setting::TypeFloat: {
            double const raw = s;
            // Values from halfway between the largest float and 2^128 on round to infinity.
            if (!(std::fabs(raw) < 0x1.ffffffp+127)) {
                reportDoesNotFit(context, s, key, "a float");
                return false;
            }
            value = static_cast<float>(raw);
            return true;
        }
        default:
            reportNotLoaded(
                context, s, key,
                std::string("has the wrong type: ") + typeName(s) + " where the table holds numbers");
            return false;
    }
}

bool readScalar(LeafContext const& context, libconfig::Setting const& s, std::string const& key, int& value) {
    switch (s.getType()) {
        case libconfig::Setting::TypeInt:
            value = s;
            return true;
        case libconfig::Setting::TypeInt64: {
            long long const raw = s;
            if (raw < INT_MIN || raw > INT_MAX) {
                reportDoesNotFit(context, s, key, "an int");
                return false;
            }
            value = static_cast<int>(raw);
            return true;
        }
        case libconfig::Setting::TypeFloat: {
            double const raw = s;
            if (!(raw > -2147483649.0 && raw < 2147483648.0)) {
                reportDoesNotFit(context, s, key, "an int");
                return false;
            }
            // Truncated toward zero, as the configuration library converts it.
            value = static_cast<int>(raw);
            if (static_cast<double>(value) != raw)
                std::cerr << "Cfg value warning: " << describeLeaf(context, s, key) << " holds "
                          << numberText(s) << ", not a whole number; loaded as " << value << "." << std::endl;
            return true;
        }
        default:
            reportNotLoaded(
                context, s, key,
                std::string("has the wrong type: ") + typeName(s) + " where the table holds whole numbers");
            return false;
    }
}

bool readScalar(LeafContext const& context, libconfig::Setting const& s, std::string const& key,
                bool& value) {
    switch (s.getType()) {
        case libconfig::Setting::TypeBoolean:
            value = s;
            return true;
        case libconfig::Setting::TypeInt:
            value = static_cast<int>(s) != 0;
            return true;
        case libconfig::Setting::TypeInt64:
            value = static_cast<long long>(s) != 0;
            return true;
        case libconfig::Setting::TypeFloat:
            value = std::trunc(static_cast<double>(s)) != 0.0;
            return true;
        default:
            reportNotLoaded(
                context, s, key,
                std::string("has the wrong type: ") + typeName(s) + " where the table holds booleans");
            return false;
    }
}

bool readScalar(libconfig::Setting const& s, std::string& value) {
    if (s.getType() == libconfig::Setting::TypeString)
        value = static_cast<char const*>(s);
    else if (isNumber(s))
        value = numberText(s);
    else
        return false;
    return true;
}

bool readScalar(LeafContext const& context, libconfig::Setting const& s, std::string const& key,
                std::string& value) {
    if (readScalar(s, value)) return true;
    reportNotLoaded(context, s, key,
                    std::string("has the wrong type: ") + typeName(s) + " where the table holds text");
    return false;
}

// Descends into `child`: its key below the table is `key` + "." + its name. Returns the length to
// cut `key` back to afterwards.
std::size_t enter(std::string& key, libconfig::Setting const& child) {
    std::size_t const length = key.size();
    if (length != 0) key += '.';
    key += child.getName();
    return length;
}

// `key` is the setting's path below the table, kept in one buffer as the walk goes down and up.
template <typename T>
bool loadTree(LeafContext const& context, libconfig::Setting const& setting, std::string& key,
              std::unordered_map<std::string, T>& out) {
    if (setting.isGroup()) {
        for (int i = 0; i < setting.getLength(); ++i) {
            libconfig::Setting const& child = setting[i];
            std::size_t const length = enter(key, child);
            bool const ok = loadTree(context, child, key, out);
            key.resize(length);
            if (!ok) return false;
        }
        return true;
    }
    if (setting.isAggregate()) {
        std::cerr
            << "Unsupported cfg file format error: to use loadCfgDataToVar function, cfg has to be a nested "
               "dictionary that does not contain any array or list."
            << std::endl;
        return false;
    }
    T value{};
    // A value that does not fit is reported and left out: a later lookup fails as a missing key.
    if (readScalar(context, setting, key, value)) out.insert_or_assign(key, std::move(value));
    return true;
}

void loadListTree(libconfig::Setting const& setting, std::string& key,
                  std::unordered_map<std::string, CfgList>& out) {
    if (setting.isGroup()) {
        for (int i = 0; i < setting.getLength(); ++i) {
            libconfig::Setting const& child = setting[i];
            std::size_t const length = enter(key, child);
            loadListTree(child, key, out);
            key.resize(length);
        }
        return;
    }
    CfgList values;
    if (setting.isAggregate()) {
        values.reserve(setting.getLength());
        for (int i = 0; i < setting.getLength(); ++i) {
            std::string text;
            if (readScalar(setting[i], text)) values.push_back(std::move(text));
        }
    } else {
        std::string text;
        if (readScalar(setting, text)) values.push_back(std::move(text));
    }
    // A list that is the table itself is known by the table's name.
    char const* name = setting.getName();  // null only for the file's root
    out.insert_or_assign(key.empty() ? std::string(name != nullptr ? name : "") : key, std::move(values));
}

// The setting at `path`, or null when there is none: the same setting as cfg->lookup(joined path),
// found by walking the names down from the root (a group's members compared in order, which is
// cheaper than the library parsing the joined path), unless a name holds a path separator.
libconfig::Setting const* findSetting(libconfig::Config* cfg, std::vector<std::string> const& path) {
    libconfig::Setting const* setting = &cfg->getRoot();
    for (std::string const& name : path) {
        if (name.empty() || name.find_first_of(":./[") != std::string::npos) {
            std::string const key = joinPath(path, 0);
            return cfg->exists(key) ? &cfg->lookup(key) : nullptr;
        }
        if (!setting->isGroup()) return nullptr;
        libconfig::Setting const* child = nullptr;
        for (int i = 0, n = setting->getLength(); i < n && child == nullptr; ++i) {
            char const* childName = (*setting)[i].getName();
            if (childName != nullptr && name == childName) child = &(*setting)[i];
        }
        if (child == nullptr) return nullptr;
        setting = child;
    }
    return setting;
}

// Switches automatic conversion on for the duration of a top-level load.
class AutoConvertScope {
public:
    AutoConvertScope(libconfig::Config* cfg, bool active) : m_cfg(active ? cfg : nullptr) {
        if (m_cfg == nullptr) return;
        m_previous = m_cfg->getAutoConvert();
        m_cfg->setAutoConvert(true);
    }
    ~AutoConvertScope() {
        if (m_cfg != nullptr) m_cfg->setAutoConvert(m_previous);
    }
    AutoConvertScope(AutoConvertScope const&) = delete;
    AutoConvertScope& operator=(AutoConvertScope const&) = delete;

private:
    libconfig::Config* m_cfg;
    bool m_previous = false;
};

}  // namespace

template <typename T>
bool loadCfgDataToVar(libconfig::Config* cfg, std::vector<std::string>& path,
                      std::unordered_map<std::string, T>& out, bool top) {
    libconfig::Setting const* const setting = findSetting(cfg, path);
    if (setting == nullptr) return false;
    AutoConvertScope const autoConvert(cfg, top);
    std::string below = joinPath(path, 2);
    std::string const table = path.size() >= 2 ? path[1] : joinPath(path, 0);
    return loadTree(LeafContext{cfg, table}, *setting, below, out);
}

bool loadCfgDataToList(libconfig::Config* cfg, std::vector<std::string>& path,
                       std::unordered_map<std::string, CfgList>& out, bool /*top*/) {
    libconfig::Setting const* const setting = path.empty() ? nullptr : findSetting(cfg, path);
    if (setting == nullptr) return false;
    std::string below = joinPath(path, 2);
    loadListTree(*setting, below, out);
    return true;
}

CfgList getCfgDataFromList(std::unordered_map<std::string, CfgList> const& map, std::string const& key,
                           char const* table) {
    auto const it = map.find(key);
    if (it == map.end()) throwMissingKey(key, table, "getCfgDataFromList");
    return it->second;
}

void throwMissingKey(std::string const& key, char const* table, char const* function) {
    std::string message = "key \"" + key + "\" not found";
    if (table != nullptr) message += std::string(" in table \"") + table + "\"";
    throw PRSMException(message.c_str(), function);
}

template <typename T>
bool loadCfgSetting(libconfig::Config* cfg, std::vector<std::string>& path, char const* setting,
                    std::unordered_map<std::string, T>& out) {
    path.emplace_back(setting);
    bool const found = loadCfgDataToVar(cfg, path, out, true);
    path.pop_back();
    return found;
}

bool loadCfgListSetting(libconfig::Config* cfg, std::vector<std::string>& path, char const* setting,
                        std::unordered_map<std::string, CfgList>& out) {
    path.emplace_back(setting);
    bool const found = loadCfgDataToList(cfg, path, out, true);
    path.pop_back();
    return found;
}

template <typename T>
void appendCfgKeys(std::vector<std::string>& keys, std::unordered_map<std::string, T> const& map) {
    std::vector<std::string> const more = getCfgKeyVectorFromList(map);
    keys.insert(keys.end(), more.begin(), more.end());
}

using prsm::data::Table;

// The value types of the generated data classes' tables.
template std::vector<std::string> getCfgKeyVectorFromList(Table<float> const&);
template std::vector<std::string> getCfgKeyVectorFromList(Table<int> const&);
template std::vector<std::string> getCfgKeyVectorFromList(Table<bool> const&);
template std::vector<std::string> getCfgKeyVectorFromList(Table<std::string> const&);
template std::vector<std::string> getCfgKeyVectorFromList(Table<CfgList> const&);
template void appendCfgKeys(std::vector<std::string>&, Table<float> const&);
template void appendCfgKeys(std::vector<std::string>&, Table<int> const&);
template void appendCfgKeys(std::vector<std::string>&, Table<bool> const&);
template void appendCfgKeys(std::vector<std::string>&, Table<std::string> const&);
template void appendCfgKeys(std::vector<std::string>&, Table<CfgList> const&);
template bool loadCfgDataToVar(libconfig::Config*, std::vector<std::string>&, Table<float>&, bool);
template bool loadCfgDataToVar(libconfig::Config*, std::vector<std::string>&, Table<int>&, bool);
template bool loadCfgDataToVar(libconfig::Config*, std::vector<std::string>&, Table<bool>&, bool);
template bool loadCfgDataToVar(libconfig::Config*, std::vector<std::string>&, Table<std::string>&, bool);
template bool loadCfgSetting(libconfig::Config*, std::vector<std::string>&, char const*, Table<float>&);
template bool loadCfgSetting(libconfig::Config*, std::vector<std::string>&, char const*, Table<int>&);
template bool loadCfgSetting(libconfig::Config*, std::vector<std::string>&, char const*, Table<bool>&);
template bool loadCfgSetting(libconfig::Config*, std::vector<std::string>&, char const*, Table<std::string>&);

}  // namespace PRSMHelperUtils
