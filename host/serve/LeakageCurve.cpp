#include <prsm/design/ReportHtml.h>
#include <prsm/design/StaticCurve.h>
#include <prsm/host/serve/LeakageCurve.h>

#include <nlohmann/json.hpp>

namespace prsm::host::serve {

std::string leakageCurveJson(DesignSession const& session) {
    design::Report const& report = session.report();
    nlohmann::json points = nlohmann::json::array();
    if (report.complete)
        for (auto const& [junction, power] :
             design::staticAgainstJunction(session.design(), design::reportJunctions()))
            points.push_back({junction, power});
    // The operating point lies on the curve: the static sheet at the design's own junction temperature.
    bool const onCurve = report.complete && !report.staticModel.empty();
    return nlohmann::json{
        {"points", points},
        {"junction_temperature", report.thermal.junction},
        {"static_power", onCurve ? nlohmann::json(report.staticPower) : nlohmann::json(nullptr)}}
        .dump();
}

}  // namespace prsm::host::serve
