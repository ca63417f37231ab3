#include <prsm/design/Counts.h>
#include <prsm/design/Resources.h>
#include <prsm/framework/PRSMCommonParamControlData.h>
#include <prsm/framework/PRSMReservedValues.h>

#include <algorithm>
#include <cstdio>

namespace prsm::design {

std::vector<std::string> catalogueNames(Device const& device) {
    std::vector<std::string> names;
    if (std::string const* part = device.find("part")) {
        if (std::string const* package = device.find("package")) names.push_back(*part + "_" + *package);
        names.push_back(*part);
        try {
            std::string const alias = PRSMCommonParamControlData::getGlobal().getDeviceAliasOrError(*part);
            if (alias != kStringNotSet) names.push_back(alias);
        } catch (...) {  // no catalogue: no alias
        }
    }
    if (std::string const* internal = device.find("internal_part")) names.push_back(*internal);
    return names;
}

DeviceResources::DeviceResources(Device const& device, std::vector<std::string> const& resources) {
    std::vector<std::string> const names = catalogueNames(device);
    try {
        PRSMCommonParamControlData const& catalogue = PRSMCommonParamControlData::getGlobal();
        for (std::string const& resource : resources)
            for (std::string const& name : names) {
                int const count = catalogue.getParamVarsIntOrError(name, resource);
                if (count != kIntNotSet) {
                    m_available[resource] = count;
                    break;
                }
            }
    } catch (...) {  // no catalogue: every resource unknown, nothing checked
    }
}

double DeviceResources::available(std::string const& resource) const {
    auto const it = m_available.find(resource);
    return it == m_available.end() ? 0.0 : it->second;
}

std::vector<ResourceUse> resourceUse(CountTally const& tally, DeviceResources const& device) {
    std::vector<ResourceUse> rows;
    for (CountTally::Count const& count : tally.counts()) {
        if (count.resource.empty()) continue;
        auto row = std::find_if(rows.begin(), rows.end(),
                                [&](ResourceUse const& r) { return r.resource == count.resource; });
        if (row == rows.end())
            row = rows.insert(rows.end(), {count.resource, 0.0, device.available(count.resource),
                                              device.knows(count.resource)});
        row->used += count.total;
    }
    return rows;
}

std::vector<Warning> overUse(std::vector<ResourceUse> const& use, std::string const& part) {
    std::vector<Warning> warnings;
    for (ResourceUse const& row : use) {
        if (!row.known || row.used <= row.available) continue;
        char text[200];
        if (row.available <= 0)
            std::snprintf(text, sizeof text, "the blocks use %.0f %s, the device %s has none", row.used,
                          row.resource.c_str(), part.c_str());
        else
            std::snprintf(text, sizeof text, "the blocks use %.0f %s, the device %s has %.0f (%.1f %%)", row.used,
                          row.resource.c_str(), part.c_str(), row.available, row.used / row.available * 100.0);
        warnings.push_back({"", "/blocks", text});
    }
    return warnings;
}

}  // namespace prsm::design
