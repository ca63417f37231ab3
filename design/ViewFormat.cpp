#include <prsm/design/CsvText.h>
#include <prsm/design/ReportFormat.h>
#include <prsm/design/ViewFormat.h>

#include <nlohmann/json.hpp>

#include <cmath>
#include <sstream>

namespace prsm::design {

namespace {

using Json = nlohmann::ordered_json;

Json figure(double value) { return std::isfinite(value) ? Json(value) : Json(nullptr); }

char const* worstCorner(CornerFigure const& f) { return f.worstIsHigher() ? "worst" : "typical"; }

Json cornerRows(std::vector<CornerFigure> const& figures, char const* key, char const* quantity) {
    Json rows = Json::array();
    for (CornerFigure const& f : figures)
        rows.push_back({{key, f.name},
                        {std::string("typical_") + quantity, figure(f.typical)},
                        {std::string("worst_") + quantity, figure(f.worst)},
                        {"worst", worstCorner(f)}});
    return rows;
}

// The declared regulators' loads, then the regulator groups' currents and powers, marked as the rails are.
Json cornerSupplies(CornerReports const& c) {
    Json rows = Json::array();
    for (CornerFigure const& f : c.regulatorLoads)
        rows.push_back({{"supply", f.name},
                        {"kind", "regulator"},
                        {"typical_current", figure(f.typical)},
                        {"worst_current", figure(f.worst)},
                        {"worst", worstCorner(f)}});
    for (std::size_t i = 0; i < c.groupCurrents.size(); ++i) {
        CornerFigure const& f = c.groupCurrents[i];
        Json row{{"supply", f.name},
                 {"kind", "group"},
                 {"typical_current", figure(f.typical)},
                 {"worst_current", figure(f.worst)}};
        if (i < c.groupPowers.size()) {
            row["typical_power"] = figure(c.groupPowers[i].typical);
            row["worst_power"] = figure(c.groupPowers[i].worst);
        }
        row["worst"] = worstCorner(f);
        rows.push_back(row);
    }
    return rows;
}

Json conditions(Report const& r) {
    Json out{{"voltage_corner", r.voltageCorner},
             {"complete", r.complete},
             {"junction_temperature", r.thermal.junction}};
    if (r.thermal.solved) out["ambient_temperature"] = r.thermal.ambient;
    return out;
}

Json cornersJson(CornerReports const& c) {
    Json typical = conditions(c.typical);
    typical["process"] = "typical";
    Json worst = conditions(c.worst);
    worst["process"] = "max";
    worst["junction_from"] = toString(c.hotJunction);
    worst["failures"] = c.worst.failures;
    Json rails = cornerRows(c.railCurrents, "rail", "current");
    for (std::size_t i = 0; i < rails.size() && i < c.railPowers.size(); ++i) {
        rails[i]["typical_power"] = figure(c.railPowers[i].typical);
        rails[i]["worst_power"] = figure(c.railPowers[i].worst);
    }
    Json total{{"typical_power", c.typical.complete ? figure(c.totalPower.typical) : Json(nullptr)},
               {"worst_power", c.worst.complete ? figure(c.totalPower.worst) : Json(nullptr)},
               {"worst", worstCorner(c.totalPower)}};
    return {{"typical", typical},
            {"worst", worst},
            {"rails", rails},
            {"regions", cornerRows(c.regionPowers, "region", "power")},
            {"supplies", cornerSupplies(c)},
            {"total", total}};
}

Json budgetJson(std::vector<BudgetLine> const& lines) {
    Json out = Json::array();
    for (BudgetLine const& l : lines)
        out.push_back({{"figure", l.isTotal()        ? "total_power"
                                  : l.supply.empty() ? "rail"
                                                     : "supply"},
                       {"rail", l.rail.empty() ? Json(nullptr) : Json(l.rail)},
                       {"supply", l.supply.empty() ? Json(nullptr) : Json(l.supply)},
                       {"limit", l.limit},
                       {"value", figure(l.value)},
                       {"unit", l.unit()},
                       {"exceeded", l.exceeded}});
    return out;
}

}  // namespace

std::string toJson(Report const& report, ReportViews const& views) {
    if (!views.corners && !views.budget && !views.junctionLimit) return toJson(report);
    // The report's own object, key for key, with the views appended after it.
    Json out = Json::parse(toJson(report));
    if (views.corners) out["corners"] = cornersJson(*views.corners);
    if (views.budget) out["budget"] = budgetJson(*views.budget);
    if (JunctionLimit const* l = views.junctionLimit)
        out["junction_limit"] = {{"junction_temperature", l->junction},
                                 {"power", figure(l->power)},
                                 {"max_theta_ja", figure(l->maxThetaJa)},
                                 {"max_ambient_temperature", figure(l->maxAmbient)},
                                 {"missing", l->missing.empty() ? Json(nullptr) : Json(l->missing)}};
    return out.dump(2) + "\n";
}

std::string toCsv(Report const& report, ReportViews const& views) {
    std::ostringstream out;
    out << toCsv(report);
    auto line = [&](char const* section, std::string const& name, std::string const& rail,
                    std::string const& quantity, std::string const& value, char const* unit) {
        out << section << "," << csvField(name) << "," << csvField(rail) << "," << quantity << ","
            << csvField(value) << "," << unit << "\n";
    };
    if (CornerReports const* c = views.corners) {
        line("corner", "typical", "", "process", "typical", "");
        line("corner", "typical", "", "junction_temperature", csvFigure(c->typical.thermal.junction), "degC");
        line("corner", "worst", "", "process", "max", "");
        line("corner", "worst", "", "voltage_corner", c->worst.voltageCorner, "");
        line("corner", "worst", "", "junction_temperature", csvFigure(c->worst.thermal.junction), "degC");
        line("corner", "worst", "", "junction_from", toString(c->hotJunction), "");
        auto rows = [&](char const* section, std::vector<CornerFigure> const& figures, bool rail,
                        char const* quantity, char const* unit) {
            for (CornerFigure const& f : figures) {
                std::string const q = quantity;
                line(section, f.name, rail ? f.name : "", "typical_" + q, csvFigure(f.typical), unit);
                line(section, f.name, rail ? f.name : "", "worst_" + q, csvFigure(f.worst), unit);
            }
        };
        rows("corner_rail", c->railCurrents, true, "current", "A");
        rows("corner_rail", c->railPowers, true, "power", "W");
        rows("corner_region", c->regionPowers, false, "power", "W");
        rows("corner_supply", c->regulatorLoads, false, "current", "A");
        rows("corner_supply", c->groupCurrents, false, "current", "A");
        rows("corner_supply", c->groupPowers, false, "power", "W");
        if (c->typical.complete && c->worst.complete) rows("corner_total", {c->totalPower}, false, "power", "W");
    }
    if (views.budget)
        for (BudgetLine const& l : *views.budget) {
            std::string const name = l.isTotal() ? "total_power" : l.supply.empty() ? l.rail : l.supply;
            line("budget", name, l.rail, "limit", csvFigure(l.limit), l.unit());
            line("budget", name, l.rail, "value", csvFigure(l.value), l.unit());
            line("budget", name, l.rail, "exceeded", l.exceeded ? "1" : "0", "");
        }
    if (JunctionLimit const* l = views.junctionLimit) {
        line("junction_limit", "", "", "junction_temperature", csvFigure(l->junction), "degC");
        line("junction_limit", "", "", "power", csvFigure(l->power), "W");
        line("junction_limit", "", "", "max_theta_ja", csvFigure(l->maxThetaJa), "degC/W");
        line("junction_limit", "", "", "max_ambient_temperature", csvFigure(l->maxAmbient), "degC");
        if (!l->missing.empty()) line("junction_limit", "", "", "missing", l->missing, "");
    }
    return out.str();
}

}  // namespace prsm::design
