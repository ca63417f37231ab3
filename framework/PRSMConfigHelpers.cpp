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
        case libconfig::Setting::TypeInt: text << static_cast<int>(s); break;
        case libconfig::Setting::TypeInt64: text << static_cast<long long>(s); break;
        case libconfig::Setting::TypeFloat: text << static_cast<double>(s); break;
        case libconfig::Setting::TypeBoolean: text << std::boolalpha << static_cast<bool>(s); break;
        default: break;
    }
    return text.str();
}

bool isNumber(libconfig::Setting const& s) { return s.isNumber() || s.getType() == libconfig::Setting::TypeBoolean; }

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
    if (s.getType() == libconfig::Setting::TypeBoolean) value = s;
    else if (s.isNumber()) value = static_cast<long long>(s) != 0;
    else return false;
    return true;
}
bool readScalar(libconfig::Setting const& s, std::string& value) {
    if (s.getType() == libconfig::Setting::TypeString) value = static_cast<char const*>(s);
    else if (isNumber(s)) value = numberText(s);
    else return false;
    return true;
}

template <typename T>
bool loadTree(libconfig::Setting const& setting, std::vector<std::string>& path, std::unordered_map<std::string, T>& out) {
    if (setting.isGroup()) {
        for (int i = 0; i < setting.getLength(); ++i) {
            libconfig::Setting const& child = setting[i];
            path.emplace_back(child.getName());
            bool const ok = loadTree(child, path, out);
            path.pop_back();
            if (!ok) return false;
        }
        return true;
    }
    if (setting.isAggregate()) {
        std::cerr << "Unsupported cfg file format error: to use loadCfgDataToVar function, cfg has to be a nested "
                     "dictionary that does not contain any array or list."
                  << std::endl;
        return false;
    }
    T value{};
    if (!readScalar(setting, value)) {
        std::cerr << "Unsupported value type in configuration setting " << joinPath(path, 0) << "; skipped."
                  << std::endl;
        return true;
    }
    out[joinPath(path, 2)] = std::move(value);
    return true;
}

void loadListTree(libconfig::Setting const& setting, std::vector<std::string>& path,
                  std::unordered_map<std::string, CfgList>& out) {
    if (setting.isGroup()) {
        for (int i = 0; i < setting.getLength(); ++i) {
            libconfig::Setting const& child = setting[i];
            path.emplace_back(child.getName());
            loadListTree(child, path, out);
            path.pop_back();
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
    std::string key = joinPath(path, 2);
    if (key.empty()) key = path.back();
    out[key] = std::move(values);
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
bool loadCfgDataToVar(libconfig::Config* cfg, std::vector<std::string>& path, std::unordered_map<std::string, T>& out,
                      bool top) {
    std::string const key = joinPath(path, 0);
    if (!cfg->exists(key)) return false;
    AutoConvertScope const autoConvert(cfg, top);
    return loadTree(cfg->lookup(key), path, out);
}

bool loadCfgDataToList(libconfig::Config* cfg, std::vector<std::string>& path,
                       std::unordered_map<std::string, CfgList>& out, bool /*top*/) {
    std::string const key = joinPath(path, 0);
    if (path.empty() || !cfg->exists(key)) return false;
    loadListTree(cfg->lookup(key), path, out);
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

template bool loadCfgDataToVar(libconfig::Config*, std::vector<std::string>&, std::unordered_map<std::string, float>&,
                               bool);
template bool loadCfgDataToVar(libconfig::Config*, std::vector<std::string>&, std::unordered_map<std::string, int>&,
                               bool);
template bool loadCfgDataToVar(libconfig::Config*, std::vector<std::string>&, std::unordered_map<std::string, bool>&,
                               bool);
template bool loadCfgDataToVar(libconfig::Config*, std::vector<std::string>&,
                               std::unordered_map<std::string, std::string>&, bool);

}  // namespace PRSMHelperUtils
