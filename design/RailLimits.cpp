#include <prsm/design/RailLimits.h>
#include <prsm/design/Resources.h>
#include <prsm/framework/PRSMCommonParamControlData.h>
#include <prsm/framework/PRSMReservedValues.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace prsm::design {

namespace {

// The catalogue's figure as written (8.4, not the float's 8.3999996).
double toSevenDigits(float value) {
    char text[32];
    std::snprintf(text, sizeof text, "%.7g", static_cast<double>(value));
    return std::strtod(text, nullptr);
}

}  // namespace

std::vector<double> railMaxCurrents(Device const& device, std::vector<std::string> const& rails) {
    std::vector<double> limits(rails.size(), 0.0);
    std::vector<std::string> const names = catalogueNames(device);
    try {
        PRSMCommonParamControlData const& catalogue = PRSMCommonParamControlData::getGlobal();
        for (std::size_t r = 0; r < rails.size(); ++r)
            for (std::string const& name : names) {
                float const limit = catalogue.getParamVarsFloatOrError(name, rails[r] + "_MAX_CURRENT");
                if (limit != kFloatNotSet && std::isfinite(limit)) {
                    limits[r] = limit > 0 ? toSevenDigits(limit) : 0.0;
                    break;
                }
            }
    } catch (...) {  // no catalogue: no rail is checked against it
    }
    return limits;
}

}  // namespace prsm::design
