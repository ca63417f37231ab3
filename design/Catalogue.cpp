#include <prsm/design/Catalogue.h>
#include <prsm/framework/PRSMCommonParamControlData.h>
#include <prsm/framework/PRSMReservedValues.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace prsm::design::catalogue {

namespace {

PRSMCommonParamControlData const& data() {
    return PRSMCommonParamControlData::getGlobal();
}

// The catalogue's name of a part: its alias resolved, else the part as given.
std::string resolvedName(std::string const& part) {
    std::string name = data().getDeviceAliasOrError(part);
    return name == prsm::kStringNotSet ? part : name;
}

// The family that lists `name` as a part, or one of whose parts has it as internal name. The DEVICE
// table is keyed <family>.<part>, and only its entries say which family a part is in.
std::string listingFamily(std::string const& name) {
    std::string family;
    for (auto const& [key, value] : data().m_Device) {
        std::size_t const dot = key.find('.');
        if (dot == std::string::npos) continue;
        if (key.compare(dot + 1, std::string::npos, name) == 0) return key.substr(0, dot);
        if (value == name) family = key.substr(0, dot);
    }
    return family;
}

}  // namespace

std::string internalPart(std::string const& part) {
    try {
        std::string const name = resolvedName(part);
        std::string const suffix = "." + name;
        for (auto const& [key, value] : data().m_Device)
            if (key.size() > suffix.size() &&
                key.compare(key.size() - suffix.size(), suffix.size(), suffix) == 0)
                return value;
        for (auto const& entry : data().m_Device)  // a module's base device is its own internal name
            if (entry.second == name) return name;
    } catch (...) {  // no catalogue: the sheets keep their own default
    }
    return {};
}

std::string familyOf(std::string const& part) {
    try {
        return listingFamily(resolvedName(part));
    } catch (...) {  // no catalogue
        return {};
    }
}

std::string architectureOf(std::string const& part) {
    try {
        std::string const family = listingFamily(resolvedName(part));
        if (family.empty()) return {};
        for (auto const& entry : data().m_DeviceFamily) {
            std::size_t const dot = entry.first.find('.');
            if (dot != std::string::npos && entry.first.compare(dot + 1, std::string::npos, family) == 0)
                return entry.first.substr(0, dot);
        }
    } catch (...) {  // no catalogue
    }
    return {};
}

double nominalVoltage(std::string const& rail) {
    try {
        float const v = data().getParamVarsFloatOrError("VOLTAGE", rail + "_NOMINAL");
        if (v != prsm::kFloatNotSet) {
            char text[32];
            std::snprintf(text, sizeof text, "%.7g", static_cast<double>(v));
            return std::strtod(text, nullptr);
        }
    } catch (...) {  // no catalogue
    }
    return std::nan("");
}

double maxJunctionTemperature() {
    try {
        int const limit = data().getParamVarsIntOrError("THERMAL", "MAX_JUNCTION_TEMP");
        return limit == prsm::kIntNotSet ? 0.0 : limit;
    } catch (...) {  // no catalogue
        return 0.0;
    }
}

}  // namespace prsm::design::catalogue
