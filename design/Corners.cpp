#include <prsm/design/Catalogue.h>
#include <prsm/design/Corners.h>
#include <prsm/framework/PRSMSheetRegistry.h>

#include <algorithm>
#include <cmath>
#include <map>

namespace prsm::design {

namespace {

void setDeviceField(Design& design, std::string const& field, std::string const& value) {
    for (auto& [name, text] : design.device.fields)
        if (name == field) {
            text = value;
            return;
        }
    design.device.fields.emplace_back(field, value);
}

// The hot thermal conditions of the worst corner, given the junction the typical corner reached.
HotJunction hotThermal(Thermal& thermal, double typicalJunction) {
    if (thermal.maxAmbient) {
        thermal.ambient = *thermal.maxAmbient;
        thermal.junction.reset();
        return HotJunction::MaxAmbient;
    }
    double const limit = catalogue::maxJunctionTemperature();  // 0 when the catalogue gives none
    if (limit <= 0) return HotJunction::FileThermal;
    // Leakage only grows with temperature: never evaluate the worst corner cooler than the typical one.
    thermal.junction = std::max(limit, typicalJunction);
    return typicalJunction > limit ? HotJunction::TypicalHotter : HotJunction::GradeMaximum;
}

// The rails whose voltage the static sheet takes: those it knows a maximum-corner voltage for.
std::vector<std::string> staticSheetRails(Design const& design) {
    std::vector<std::string> rails;
    if (!design.staticSheet) return rails;
    if (auto sheet = SheetRegistry::instance().find(design.staticSheet->model))
        for (auto const& [cell, rail] : sheet->design().voltageInputs) rails.push_back(rail);
    return rails;
}

std::vector<CornerFigure> compare(std::vector<std::pair<std::string, double>> const& typical,
                                  std::vector<std::pair<std::string, double>> const& worst) {
    std::map<std::string, double> worstByName(worst.begin(), worst.end());
    std::vector<CornerFigure> figures;
    for (auto const& [name, value] : typical) {
        auto const found = worstByName.find(name);
        figures.push_back({name, value, found == worstByName.end() ? std::nan("") : found->second});
    }
    return figures;
}

template <typename Row, typename Figure>
std::vector<std::pair<std::string, double>> figuresOf(std::vector<Row> const& rows, Figure figure) {
    std::vector<std::pair<std::string, double>> out;
    for (Row const& row : rows) out.push_back(figure(row));
    return out;
}

}  // namespace

char const* toString(HotJunction source) {
    switch (source) {
        case HotJunction::MaxAmbient:
            return "max_ambient";
        case HotJunction::GradeMaximum:
            return "grade_maximum";
        case HotJunction::TypicalHotter:
            return "typical_junction";
        case HotJunction::FileThermal:
            return "file";
    }
    return "";
}

Design typicalCornerOf(Design design) {
    setDeviceField(design, "process", "typical");
    setDeviceField(design, "voltage_corner", "nominal");
    return design;
}

CornerReports estimateCorners(Design const& design) {
    CornerReports out;
    out.typical = Estimator(typicalCornerOf(design)).estimate();

    Design worst = design;
    setDeviceField(worst, "process", "max");
    setDeviceField(worst, "voltage_corner", "max");
    out.hotJunction = hotThermal(worst.thermal, out.typical.thermal.junction);
    // A rail the design gives goes to the static sheet's maximum-corner voltage when that is higher:
    // leave it out so that the engine settles the corner's voltage, then put back the higher.
    std::map<std::string, double> given;
    for (std::string const& rail : staticSheetRails(worst)) {
        auto const it = std::find_if(worst.rails.begin(), worst.rails.end(),
                                     [&](auto const& entry) { return entry.first == rail; });
        if (it == worst.rails.end()) continue;
        given.insert(*it);
        worst.rails.erase(it);
    }
    Estimator engine(std::move(worst));
    for (auto const& [rail, corner] : engine.railVoltages())
        if (auto const it = given.find(rail); it != given.end() && it->second > corner)
            engine.setRailVoltage(rail, it->second);
    out.worst = engine.estimate();

    auto railCurrent = [](RailResult const& r) { return std::make_pair(r.rail, r.totalCurrent); };
    auto railPower = [](RailResult const& r) { return std::make_pair(r.rail, r.power); };
    auto regionPower = [](RegionResult const& r) {
        return std::make_pair(r.region, r.dynamicPower + r.staticPower);
    };
    out.railCurrents = compare(figuresOf(out.typical.rails, railCurrent), figuresOf(out.worst.rails, railCurrent));
    out.railPowers = compare(figuresOf(out.typical.rails, railPower), figuresOf(out.worst.rails, railPower));
    out.regionPowers =
        compare(figuresOf(out.typical.regions, regionPower), figuresOf(out.worst.regions, regionPower));
    auto regulatorLoad = [](RegulatorLoad const& r) { return std::make_pair(r.name, r.load); };
    auto groupCurrent = [](SupplyGroup const& g) { return std::make_pair(g.name, g.current); };
    auto groupPower = [](SupplyGroup const& g) { return std::make_pair(g.name, g.power); };
    out.regulatorLoads = compare(figuresOf(out.typical.regulators, regulatorLoad),
                                 figuresOf(out.worst.regulators, regulatorLoad));
    out.groupCurrents = compare(figuresOf(out.typical.supplyGroups, groupCurrent),
                                figuresOf(out.worst.supplyGroups, groupCurrent));
    out.groupPowers = compare(figuresOf(out.typical.supplyGroups, groupPower),
                              figuresOf(out.worst.supplyGroups, groupPower));
    out.totalPower = {"total", out.typical.totalPower, out.worst.totalPower};
    return out;
}

}  // namespace prsm::design
