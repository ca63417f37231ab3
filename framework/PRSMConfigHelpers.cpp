#include <prsm/framework/PRSMConfigHelpers.h>

#include <prsm/framework/PRSMException.h>

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

// Reads a scalar leaf as T; false when its type cannot be read as T.
bool readScalar(libconfig::Setting const& s, float& value) {
    if (!s.isNumber()) return false;
    value = s;
    return true;
}
bool readScalar(libconfig::Setting const& s, int& value) {
    if (!s.isNumber()) return false;
    value = s;
    return true;
}
bool readScalar(libconfig::Setting const& s, bool& value) {
    if (s.getType() == libconfig::Setting::TypeBoolean)
        value = s;
    else if (s.isNumber())
        value = static_cast<long long>(s) != 0;
    else
        return false;
    return true;
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
bool loadTree(libconfig::Setting const& setting, std::string& key, std::unordered_map<std::string, T>& out) {
    if (setting.isGroup()) {
        for (int i = 0; i < setting.getLength(); ++i) {
            libconfig::Setting const& child = setting[i];
            std::size_t const length = enter(key, child);
            bool const ok = loadTree(child, key, out);
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
    if (!readScalar(setting, value)) {
        std::cerr << "Unsupported value type in configuration setting " << setting.getPath() << "; skipped."
                  << std::endl;
        return true;
    }
    out.insert_or_assign(key, std::move(value));
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
    return loadTree(*setting, below, out);
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

template bool loadCfgDataToVar(libconfig::Config*, std::vector<std::string>&,
                               std::unordered_map<std::string, float>&, bool);
template bool loadCfgDataToVar(libconfig::Config*, std::vector<std::string>&,
                               std::unordered_map<std::string, int>&, bool);
template bool loadCfgDataToVar(libconfig::Config*, std::vector<std::string>&,
                               std::unordered_map<std::string, bool>&, bool);
template bool loadCfgDataToVar(libconfig::Config*, std::vector<std::string>&,
                               std::unordered_map<std::string, std::string>&, bool);

}  // namespace PRSMHelperUtils
