#include <prsm/design/SupplyFormat.h>

#include <cmath>
#include <cstdio>

namespace prsm::design {

namespace {

using Json = nlohmann::ordered_json;

Json figureOrNull(double value) {
    return std::isnan(value) ? Json(nullptr) : Json(value);
}

std::string number(double value) {
    char buffer[32];
    std::snprintf(buffer, sizeof buffer, "%.9g", value);
    return buffer;
}

Json railJson(GroupRail const& r) {
    Json held = Json::array();
    for (GroupRail const& h : r.held) held.push_back(railJson(h));
    return {{"rail", r.rail},
            {"voltage", r.voltage},
            {"current", r.current},
            {"power", r.power},
            {"powerup_current", figureOrNull(r.powerupCurrent)},
            {"held", held}};
}

}  // namespace

double wholeCapacitors(double count) {
    if (std::isnan(count)) return count;  // the sheet could not count them: no whole count either
    return std::max(0.0, std::ceil(count - 1e-6));
}

void addSupplyViews(Report const& report, Json& out) {
    if (!report.supplyModel.empty()) {
        Json groups = Json::array();
        for (SupplyGroup const& g : report.supplyGroups) {
            Json rails = Json::array();
            for (GroupRail const& r : g.rails) rails.push_back(railJson(r));
            groups.push_back({{"name", g.name},
                              {"label", g.label},
                              {"sequence", g.sequence},
                              {"dc_tolerance", g.dcTolerance},
                              {"ac_ripple", g.acRipple},
                              {"rails", rails},
                              {"voltage", figureOrNull(g.voltage)},
                              {"current", g.current},
                              {"power", g.power},
                              {"powerup_current", figureOrNull(g.powerupCurrent)}});
        }
        out["supplies"]["groups"] = groups;
    }
    if (report.decouplingModel.empty()) return;
    Json rails = Json::array();
    for (RailDecoupling const& r : report.decoupling) {
        Json capacitors = Json::array();
        for (CapacitorCount const& c : r.capacitors)
            capacitors.push_back(
                {{"value", c.value}, {"count", c.count}, {"whole_count", wholeCapacitors(c.count)}});
        Json rail{{"rail", r.rail}, {"step_current", r.stepCurrent}};
        if (!r.stepParts.empty()) {
            Json parts = Json::object();
            for (auto const& [part, step] : r.stepParts) parts[part] = step;
            rail["step_parts"] = parts;
        }
        rail["capacitors"] = capacitors;
        rails.push_back(rail);
    }
    out["decoupling"] = {{"model", report.decouplingModel}, {"rails", rails}};
}

void supplyViewsCsv(Report const& report, CsvLine const& line) {
    for (SupplyGroup const& g : report.supplyGroups) {
        std::string rails;
        for (GroupRail const& r : g.rails) {
            rails += (rails.empty() ? "" : " ") + r.rail;
            for (GroupRail const& h : r.held) rails += " " + h.rail;
        }
        line("supply_group", g.name, rails, "label", g.label, "");
        line("supply_group", g.name, rails, "sequence", g.sequence, "");
        line("supply_group", g.name, rails, "dc_tolerance", g.dcTolerance, "");
        line("supply_group", g.name, rails, "ac_ripple", g.acRipple, "");
        if (!std::isnan(g.voltage)) line("supply_group", g.name, rails, "voltage", number(g.voltage), "V");
        line("supply_group", g.name, rails, "current", number(g.current), "A");
        line("supply_group", g.name, rails, "power", number(g.power), "W");
        if (!std::isnan(g.powerupCurrent))
            line("supply_group", g.name, rails, "powerup_current", number(g.powerupCurrent), "A");
        auto railLines = [&](GroupRail const& r, std::string const& holder) {
            line("supply_group_rail", g.name, r.rail, "voltage", number(r.voltage), "V");
            line("supply_group_rail", g.name, r.rail, "current", number(r.current), "A");
            line("supply_group_rail", g.name, r.rail, "power", number(r.power), "W");
            if (!std::isnan(r.powerupCurrent))
                line("supply_group_rail", g.name, r.rail, "powerup_current", number(r.powerupCurrent), "A");
            if (!holder.empty()) line("supply_group_rail", g.name, r.rail, "held_in", holder, "");
        };
        for (GroupRail const& r : g.rails) {
            railLines(r, "");
            for (GroupRail const& h : r.held) railLines(h, r.rail);
        }
    }
    for (RailDecoupling const& r : report.decoupling) {
        line("decoupling", "", r.rail, "step_current", number(r.stepCurrent), "A");
        for (auto const& [part, step] : r.stepParts)
            line("decoupling", part, r.rail, "step_current", number(step), "A");
        for (CapacitorCount const& c : r.capacitors) {
            line("decoupling", c.value, r.rail, "count", number(c.count), "count");
            line("decoupling", c.value, r.rail, "whole_count", number(wholeCapacitors(c.count)), "count");
        }
    }
}

}  // namespace prsm::design
