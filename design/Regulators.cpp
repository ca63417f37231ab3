#include <prsm/design/Rails.h>
#include <prsm/design/Regulators.h>
#include <prsm/design/Supplies.h>

#include <nlohmann/json.hpp>

#include <cmath>
#include <cstdio>
#include <map>
#include <optional>

namespace prsm::design {

namespace {

using Json = nlohmann::ordered_json;

std::optional<double> finiteNumber(Json const& value) {
    if (!value.is_number()) return std::nullopt;
    double const x = value.get<double>();
    return std::isfinite(x) ? std::optional<double>(x) : std::nullopt;
}

bool isFraction(double x) {
    return x > 0 && x <= 1;
}

// A constant efficiency, or [[load A, efficiency], ...] with increasing loads.
std::vector<std::pair<double, double>> readEfficiency(Json const& value, std::string const& at,
                                                      ProblemSink const& fail) {
    if (auto constant = finiteNumber(value)) {
        if (isFraction(*constant)) return {{0.0, *constant}};
        fail(at, "an efficiency is a fraction above 0 and at most 1");
        return {};
    }
    if (!value.is_array() || value.empty()) {
        fail(at, "a fraction, or an array of [load in A, efficiency] points expected");
        return {};
    }
    std::vector<std::pair<double, double>> curve;
    for (std::size_t i = 0; i < value.size(); ++i) {
        std::string const point = at + "/" + std::to_string(i);
        Json const& p = value[i];
        auto const load = p.is_array() && p.size() == 2 ? finiteNumber(p[0]) : std::nullopt;
        auto const efficiency = load ? finiteNumber(p[1]) : std::nullopt;
        if (!efficiency) {
            fail(point, "a point is [load in A, efficiency], two numbers");
            return {};
        }
        if (*load < 0 || !isFraction(*efficiency) || (!curve.empty() && *load <= curve.back().first)) {
            fail(point, "loads are not negative and increase; an efficiency is above 0 and at most 1");
            return {};
        }
        curve.emplace_back(*load, *efficiency);
    }
    return curve;
}

}  // namespace

std::vector<Regulator> readRegulators(Json const& section, ProblemSink const& fail) {
    std::vector<Regulator> regulators;
    if (!section.is_array()) {
        fail("/regulators", "an array of regulators expected");
        return regulators;
    }
    std::map<std::string, std::string> feeder;  // rail -> the regulator feeding it
    for (std::size_t i = 0; i < section.size(); ++i) {
        std::string const at = "/regulators/" + std::to_string(i);
        Json const& entry = section[i];
        if (!entry.is_object()) {
            fail(at, "a regulator object expected");
            continue;
        }
        for (auto const& item : entry.items())
            if (item.key() != "name" && item.key() != "rails" && item.key() != "rating" &&
                item.key() != "efficiency")
                fail(at + "/" + item.key(),
                     "unknown key \"" + item.key() + "\"; known: efficiency, name, rails, rating");
        Regulator regulator;
        regulator.pointer = at;
        auto const name = entry.find("name");
        if (name == entry.end() || !name->is_string() || name->get<std::string>().empty()) {
            fail(at + "/name", "a regulator needs a name");
        } else {
            regulator.name = name->get<std::string>();
            for (Regulator const& other : regulators)
                if (other.name == regulator.name) fail(at + "/name", "a second regulator " + regulator.name);
        }
        auto const rails = entry.find("rails");
        if (rails == entry.end() || !rails->is_array() || rails->empty()) {
            fail(at + "/rails", "an array of the rails it feeds expected");
        } else {
            for (std::size_t r = 0; r < rails->size(); ++r) {
                std::string const railAt = at + "/rails/" + std::to_string(r);
                std::string const rail = (*rails)[r].is_string() ? (*rails)[r].get<std::string>() : "";
                if (!isKnownRail(rail)) {
                    fail(railAt, "unknown rail " + (rail.empty() ? (*rails)[r].dump() : rail));
                    continue;
                }
                if (auto const [it, added] = feeder.emplace(rail, regulator.name); !added) {
                    fail(railAt, "rail " + rail + " is already fed by regulator " + it->second);
                    continue;
                }
                regulator.rails.push_back(rail);
            }
        }
        auto const rating = entry.find("rating");
        std::optional<double> const amps = rating == entry.end() ? std::nullopt : finiteNumber(*rating);
        if (!amps || *amps <= 0)
            fail(at + "/rating", "a rating is a current in A above 0");
        else
            regulator.rating = *amps;
        if (auto const efficiency = entry.find("efficiency"); efficiency == entry.end())
            fail(at + "/efficiency", "missing: a fraction, or an array of [load in A, efficiency] points");
        else
            regulator.efficiency = readEfficiency(*efficiency, at + "/efficiency", fail);
        regulators.push_back(std::move(regulator));
    }
    return regulators;
}

double efficiencyAt(Regulator const& regulator, double load) {
    auto const& curve = regulator.efficiency;
    if (load <= curve.front().first) return curve.front().second;
    for (std::size_t i = 1; i < curve.size(); ++i) {
        auto const [x0, y0] = curve[i - 1];
        auto const [x1, y1] = curve[i];
        if (load <= x1) return y0 + (y1 - y0) * (load - x0) / (x1 - x0);
    }
    return curve.back().second;
}

void loadRegulators(std::vector<Regulator> const& regulators, Report& report) {
    report.supplyInputPower = 0;
    report.unregulatedPower = 0;
    if (regulators.empty() || !report.complete) {  // no rail totals to load them with
        report.regulators.clear();
        return;
    }

    // Each rail's regulator: a design declares a handful, each over a few rails.
    auto regulatorOf = [&](std::string const& rail) {
        for (std::size_t g = regulators.size(); g-- > 0;)  // the last to name a rail feeds it
            for (std::string const& name : regulators[g].rails)
                if (name == rail) return g;
        return kNoSupply;
    };
    std::vector<std::size_t> supply;
    supply.reserve(report.rails.size());
    for (RailResult const& rail : report.rails) supply.push_back(regulatorOf(rail.rail));
    std::vector<double> const share = supplyShares(report.rails, supply);

    // Into the last report's regulators, whose names and rail lists are the same after an update.
    report.regulators.resize(regulators.size());
    for (std::size_t g = 0; g < regulators.size(); ++g) {
        RegulatorLoad& loaded = report.regulators[g];
        loaded = RegulatorLoad{std::move(loaded.name), std::move(loaded.rails)};
        loaded.name = regulators[g].name;
        loaded.rails = regulators[g].rails;
        loaded.rating = regulators[g].rating;
    }
    for (std::size_t i = 0; i < report.rails.size(); ++i) {
        RailResult const& rail = report.rails[i];
        double const current = share[i];
        std::size_t const g = supply[i];
        if (g == kNoSupply) {
            report.unregulatedPower += rail.voltage * current;
            continue;
        }
        RegulatorLoad& r = report.regulators[g];
        r.load += current;
        r.outputPower += rail.voltage * current;
        if (!std::isnan(rail.powerupCurrent))
            r.powerupCurrent = (std::isnan(r.powerupCurrent) ? 0.0 : r.powerupCurrent) + rail.powerupCurrent;
    }
    for (std::size_t g = 0; g < regulators.size(); ++g) {
        RegulatorLoad& r = report.regulators[g];
        r.efficiency = efficiencyAt(regulators[g], r.load);
        r.inputPower = r.outputPower / r.efficiency;
        r.loss = r.inputPower - r.outputPower;
        r.margin = r.rating - r.load;
        report.supplyInputPower += r.inputPower;
        if (r.margin < 0) {
            char text[160];
            std::snprintf(text, sizeof text, "regulator %s: load %.4g A exceeds its rating %.4g A",
                          r.name.c_str(), r.load, r.rating);
            report.warnings.push_back({"", regulators[g].pointer, text});
        }
        if (r.powerupCurrent > r.rating) {  // false for NaN
            char text[160];
            std::snprintf(text, sizeof text,
                          "regulator %s: the device's power-up current %.4g A exceeds its rating %.4g A",
                          r.name.c_str(), r.powerupCurrent, r.rating);
            report.warnings.push_back({"", regulators[g].pointer, text});
        }
    }
}

}  // namespace prsm::design
