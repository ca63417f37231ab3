#include <prsm/design/ReportFormat.h>
#include <prsm/design/SupplyFormat.h>

#include <prsm/design/CsvText.h>

#include <nlohmann/json.hpp>

#include <cmath>
#include <sstream>
#include <tuple>

namespace prsm::design {

namespace {

using Json = nlohmann::ordered_json;

// A figure, or null when there is none (NaN).
Json figureOrNull(double value) {
    return std::isnan(value) ? Json(nullptr) : Json(value);
}

}  // namespace

std::string toJson(Report const& report) {
    Json out;
    out["schema_version"] = kSchemaVersion;
    out["design"] = report.source;
    out["complete"] = report.complete;
    out["failures"] = report.failures;
    out["voltage_corner"] = report.voltageCorner;
    Json thermal;
    thermal["junction_temperature"] = report.thermal.junction;
    thermal["solved"] = report.thermal.solved;
    if (report.thermal.solved) {
        thermal["ambient_temperature"] = report.thermal.ambient;
        thermal["theta_ja"] = report.thermal.thetaJa;
        thermal["iterations"] = report.thermal.iterations;
        thermal["runaway"] = report.thermal.runaway;
    }
    out["thermal"] = thermal;
    Json totals;
    totals["dynamic_power"] = report.complete ? Json(report.dynamicPower) : Json(nullptr);
    totals["static_power"] = report.complete ? Json(report.staticPower) : Json(nullptr);
    totals["total_power"] = report.complete ? Json(report.totalPower) : Json(nullptr);
    out["totals"] = totals;
    Json rails = Json::array();
    for (RailResult const& r : report.rails)
        rails.push_back({{"rail", r.rail},
                         {"voltage", r.voltage},
                         {"voltage_source", toString(r.voltageSource)},
                         {"dynamic_current", r.dynamicCurrent},
                         {"static_current", r.staticCurrent},
                         {"total_current", r.totalCurrent},
                         {"power", r.power},
                         {"max_current", r.maxCurrent > 0 ? Json(r.maxCurrent) : Json(nullptr)},
                         {"over_limit", r.overLimit}});
    out["rails"] = rails;
    // Supplies: each rail's power-up current and the rail whose static current holds its own.
    for (std::size_t i = 0; i < report.rails.size(); ++i) {
        RailResult const& r = report.rails[i];
        out["rails"][i]["powerup_current"] = figureOrNull(r.powerupCurrent);
        out["rails"][i]["counted_in"] = r.countedIn.empty() ? Json(nullptr) : Json(r.countedIn);
    }
    if (!report.regulators.empty()) {
        Json regulators = Json::array();
        for (RegulatorLoad const& r : report.regulators)
            regulators.push_back({{"name", r.name},
                                  {"rails", r.rails},
                                  {"rating", r.rating},
                                  {"load", r.load},
                                  {"margin", r.margin},
                                  {"over_rating", r.margin < 0},
                                  {"powerup_current", figureOrNull(r.powerupCurrent)},
                                  {"output_power", r.outputPower},
                                  {"efficiency", r.efficiency},
                                  {"input_power", r.inputPower},
                                  {"loss", r.loss}});
        out["supplies"] = {{"regulators", regulators},
                           {"input_power", report.supplyInputPower},
                           {"unregulated_power", report.unregulatedPower}};
    }
    addSupplyViews(report, out);
    Json blocks = Json::array();
    for (BlockResult const& b : report.blocks) {
        Json block{{"name", b.name}, {"model", b.model}, {"region", b.region}, {"count", b.count}};
        if (!b.error.empty()) {
            block["error"] = b.error;
        } else {
            block["power"] = b.power;
            Json perRail = Json::object();
            for (auto const& [rail, power] : b.rails) perRail[rail] = power;
            block["rails"] = perRail;
        }
        blocks.push_back(block);
    }
    out["blocks"] = blocks;
    Json regions = Json::array();
    for (RegionResult const& r : report.regions)
        regions.push_back(
            {{"region", r.region}, {"dynamic_power", r.dynamicPower}, {"static_power", r.staticPower}});
    out["regions"] = regions;
    if (!report.staticModel.empty()) {
        Json feeds = Json::object();
        for (auto const& [cell, value] : report.staticInputs) feeds[cell] = value;
        Json counts = Json::object();
        for (auto const& [cell, value] : report.staticCounts) counts[cell] = value;
        out["static"] = {{"model", report.staticModel}, {"inputs", feeds}, {"counts", counts}};
    }
    Json resources = Json::array();
    for (ResourceUse const& r : report.resources)
        resources.push_back(
            {{"resource", r.resource},
             {"used", r.used},
             {"available", r.known ? Json(r.available) : Json(nullptr)},
             {"utilisation", r.available > 0 ? Json(r.used / r.available * 100) : Json(nullptr)}});
    out["resources"] = resources;
    if (report.board) {
        BoardResult const& b = *report.board;
        auto figure = [](double value) { return std::isnan(value) ? Json(nullptr) : Json(value); };
        Json currents = Json::object();
        for (auto const& [cell, value] : b.currents) currents[cell] = value;
        Json regulators = Json::array();
        for (RegulatorResult const& r : b.regulators)
            regulators.push_back({{"name", r.name},
                                  {"load", figure(r.load)},
                                  {"efficiency", figure(r.efficiency)},
                                  {"loss", figure(r.loss)},
                                  {"over_limit_mw", figure(r.overLimit)},
                                  {"label", r.label},
                                  {"rail", r.rail.empty() ? Json(nullptr) : Json(r.rail)},
                                  {"kind", r.kind.empty() ? Json(nullptr) : Json(r.kind)},
                                  {"voltage", figure(r.voltage)},
                                  {"input", r.input.empty() ? Json(nullptr) : Json(r.input)},
                                  {"input_voltage", figure(r.inputVoltage)},
                                  {"rating", figure(r.rating)},
                                  {"margin", figure(r.margin)},
                                  {"over_rating", r.margin < 0}});
        Json unsupplied = Json::array();
        for (UnsuppliedRail const& r : b.unsupplied)
            unsupplied.push_back({{"rail", r.rail},
                                  {"current", r.current},
                                  {"dynamic_current", r.dynamicCurrent},
                                  {"power", r.power}});
        out["board"] = {{"model", b.model},
                        {"total_power", figure(b.totalPower)},
                        {"currents", currents},
                        {"regulators", regulators},
                        {"unsupplied", unsupplied},
                        {"unsupplied_power", b.unsuppliedPower}};
    }
    Json warnings = Json::array();
    for (Warning const& w : report.warnings)
        warnings.push_back({{"block", w.block}, {"cell", w.cell}, {"message", w.message}});
    out["warnings"] = warnings;
    return out.dump(2) + "\n";
}

std::string toCsv(Report const& report) {
    std::ostringstream out;
    out << "section,name,rail,quantity,value,unit\n";
    auto line = [&](char const* section, std::string const& name, std::string const& rail,
                    char const* quantity, std::string const& value, char const* unit) {
        out << section << "," << csvField(name) << "," << csvField(rail) << "," << quantity << ","
            << csvField(value) << "," << unit << "\n";
    };
    line("device", "", "", "voltage_corner", report.voltageCorner, "");
    for (RailResult const& r : report.rails) {
        line("rail", r.rail, r.rail, "voltage", csvNumber(r.voltage), "V");
        line("rail", r.rail, r.rail, "voltage_source", toString(r.voltageSource), "");
        line("rail", r.rail, r.rail, "dynamic_current", csvNumber(r.dynamicCurrent), "A");
        line("rail", r.rail, r.rail, "static_current", csvNumber(r.staticCurrent), "A");
        line("rail", r.rail, r.rail, "total_current", csvNumber(r.totalCurrent), "A");
        line("rail", r.rail, r.rail, "power", csvNumber(r.power), "W");
        if (r.maxCurrent > 0) {
            line("rail", r.rail, r.rail, "max_current", csvNumber(r.maxCurrent), "A");
            line("rail", r.rail, r.rail, "over_limit", r.overLimit ? "1" : "0", "");
        }
    }
    for (BlockResult const& b : report.blocks) {
        if (!b.error.empty()) {
            line("block", b.name, "", "error", b.error, "");
            continue;
        }
        line("block", b.name, "", "power", csvNumber(b.power), "W");
        for (auto const& [rail, power] : b.rails) line("block", b.name, rail, "power", csvNumber(power), "W");
    }
    for (RegionResult const& r : report.regions) {
        line("region", r.region, "", "dynamic_power", csvNumber(r.dynamicPower), "W");
        line("region", r.region, "", "static_power", csvNumber(r.staticPower), "W");
    }
    for (auto const& [cell, value] : report.staticInputs)
        line("static_input", cell, "", "power", csvNumber(value), "W");
    for (auto const& [cell, value] : report.staticCounts)
        line("static_count", cell, "", "count", csvNumber(value), "");
    for (ResourceUse const& r : report.resources) {
        line("resource", r.resource, "", "used", csvNumber(r.used), "count");
        if (!r.known) continue;
        line("resource", r.resource, "", "available", csvNumber(r.available), "count");
        if (r.available > 0)
            line("resource", r.resource, "", "utilisation", csvNumber(r.used / r.available * 100), "%");
    }
    line("thermal", "", "", "junction_temperature", csvNumber(report.thermal.junction), "degC");
    if (report.thermal.solved)
        line("thermal", "", "", "iterations", std::to_string(report.thermal.iterations), "count");
    if (report.complete) {
        line("total", "", "", "dynamic_power", csvNumber(report.dynamicPower), "W");
        line("total", "", "", "static_power", csvNumber(report.staticPower), "W");
        line("total", "", "", "total_power", csvNumber(report.totalPower), "W");
    }
    if (report.board) {
        BoardResult const& b = *report.board;
        for (auto const& [cell, value] : b.currents)
            line("board_input", cell, "", "current", csvNumber(value), "A");
        for (RegulatorResult const& r : b.regulators) {
            if (!std::isnan(r.load)) line("regulator", r.name, "", "load", csvNumber(r.load), "A");
            if (!std::isnan(r.efficiency))
                line("regulator", r.name, "", "efficiency", csvNumber(r.efficiency), "fraction");
            if (!std::isnan(r.loss)) line("regulator", r.name, "", "loss", csvNumber(r.loss), "W");
            if (!std::isnan(r.overLimit))
                line("regulator", r.name, "", "over_limit", csvNumber(r.overLimit), "mW");
            if (!r.kind.empty()) line("regulator", r.name, r.rail, "kind", r.kind, "");
            if (!r.input.empty()) line("regulator", r.name, r.rail, "input", r.input, "");
            for (auto const& [quantity, value, unit] :
                 {std::tuple{"voltage", r.voltage, "V"}, std::tuple{"input_voltage", r.inputVoltage, "V"},
                  std::tuple{"rating", r.rating, "A"}, std::tuple{"margin", r.margin, "A"}})
                if (!std::isnan(value)) line("regulator", r.name, r.rail, quantity, csvNumber(value), unit);
        }
        for (UnsuppliedRail const& r : b.unsupplied) {
            line("board_unsupplied", r.rail, r.rail, "current", csvNumber(r.current), "A");
            line("board_unsupplied", r.rail, r.rail, "dynamic_current", csvNumber(r.dynamicCurrent), "A");
            line("board_unsupplied", r.rail, r.rail, "power", csvNumber(r.power), "W");
        }
        if (!std::isnan(b.totalPower)) line("board", b.model, "", "total_power", csvNumber(b.totalPower), "W");
        line("board", b.model, "", "unsupplied_power", csvNumber(b.unsuppliedPower), "W");
    }
    // Supplies.
    for (RailResult const& r : report.rails) {
        if (!std::isnan(r.powerupCurrent))
            line("rail", r.rail, r.rail, "powerup_current", csvNumber(r.powerupCurrent), "A");
        if (!r.countedIn.empty()) line("rail", r.rail, r.rail, "counted_in", r.countedIn, "");
    }
    for (RegulatorLoad const& r : report.regulators) {
        std::string rails;
        for (std::string const& rail : r.rails) rails += (rails.empty() ? "" : " ") + rail;
        line("regulator_supply", r.name, rails, "rating", csvNumber(r.rating), "A");
        line("regulator_supply", r.name, rails, "load", csvNumber(r.load), "A");
        line("regulator_supply", r.name, rails, "margin", csvNumber(r.margin), "A");
        if (!std::isnan(r.powerupCurrent))
            line("regulator_supply", r.name, rails, "powerup_current", csvNumber(r.powerupCurrent), "A");
        line("regulator_supply", r.name, rails, "output_power", csvNumber(r.outputPower), "W");
        line("regulator_supply", r.name, rails, "efficiency", csvNumber(r.efficiency), "fraction");
        line("regulator_supply", r.name, rails, "input_power", csvNumber(r.inputPower), "W");
        line("regulator_supply", r.name, rails, "loss", csvNumber(r.loss), "W");
    }
    if (!report.regulators.empty()) {
        line("supplies", "", "", "input_power", csvNumber(report.supplyInputPower), "W");
        line("supplies", "", "", "unregulated_power", csvNumber(report.unregulatedPower), "W");
    }
    supplyViewsCsv(report, line);
    for (Warning const& w : report.warnings)
        line("warning", w.block, "", "invalid_input", w.cell + ": " + w.message, "");
    for (std::string const& f : report.failures) line("failure", "", "", "error", f, "");
    return out.str();
}

}  // namespace prsm::design
