#include <prsm/design/Budget.h>
#include <prsm/design/Rails.h>
#include <prsm/design/SupplyFormat.h>
#include <prsm/host/DesignOutputs.h>

#include <cmath>
#include <limits>

namespace prsm::host {

namespace {

constexpr double kMissing = std::numeric_limits<double>::quiet_NaN();

std::vector<design::RailResult> const& railsOf(design::Report const& r) {
    return r.rails;
}
std::vector<design::RegionResult> const& regionsOf(design::Report const& r) {
    return r.regions;
}
std::vector<design::RegulatorLoad> const& regulatorsOf(design::Report const& r) {
    return r.regulators;
}
std::vector<design::SupplyGroup> const& groupsOf(design::Report const& r) {
    return r.supplyGroups;
}

// The budget line of `rail` or `supply` (both "" for the total power) at this report.
design::BudgetLine budgetLine(design::Budget const& budget, design::Report const& report,
                              std::string const& rail, std::string const& supply) {
    for (design::BudgetLine const& line : design::checkBudget(budget, report))
        if (line.rail == rail && line.supply == supply) return line;
    return {rail, kMissing, kMissing, false, supply};
}

// The counts of `rail` at this report; none where the sheet did not count for it at this point.
design::RailDecoupling const* decouplingOf(design::Report const& report, std::string const& rail) {
    for (design::RailDecoupling const& counted : report.decoupling)
        if (counted.rail == rail) return &counted;
    return nullptr;
}

// The count of one capacitor value on one rail, as the sheet leaves it; NaN where there is none.
double capacitorCount(design::Report const& report, std::string const& rail, std::string const& value) {
    if (design::RailDecoupling const* counted = decouplingOf(report, rail))
        for (design::CapacitorCount const& c : counted->capacitors)
            if (c.value == value) return c.count;
    return kMissing;
}

}  // namespace

template <typename Row>
void DesignOutputs::addRows(std::string const& prefix, ReportOf from, std::string const& kind,
                            std::vector<std::string> const& names, std::string Row::*key,
                            std::vector<Row> const& (*rows)(design::Report const&),
                            std::vector<RowFigure<Row>> const& figures) {
    for (std::string const& name : names)
        for (RowFigure<Row> const& figure : figures)
            add(prefix + kind + "." + name + "." + figure.figure, CellType::Float, figure.unit, from,
                [name, key, rows, value = figure.value](design::Report const& report) {
                    for (Row const& row : rows(report))
                        if (row.*key == name) return value(row);
                    return kMissing;
                });
}

DesignOutputs::DesignOutputs(design::Design const& design, std::vector<std::string> const& rails,
                             std::vector<std::string> const& groups,
                             std::vector<design::RailDecoupling> const& decoupling) {
    addReportFigures(design, rails, groups, decoupling, "", ReportOf::Point);
    add("thermal_iterations", CellType::Int, "count", ReportOf::Point,
        [](design::Report const& r) { return static_cast<double>(r.thermal.iterations); });
    if (design.board) {
        add("board.total_power", CellType::Float, "W", ReportOf::Point,
            [](design::Report const& r) { return r.board ? r.board->totalPower : kMissing; });
        add("board.unsupplied_power", CellType::Float, "W", ReportOf::Point,
            [](design::Report const& r) { return r.board ? r.board->unsuppliedPower : kMissing; });
    }
    // Blocks and loads by their place in the report: the blocks in file order, then the loads.
    for (std::size_t i = 0; i < design.blocks.size(); ++i)
        add("block." + design.blocks[i].name + ".power", CellType::Float, "W", ReportOf::Point,
            [i](design::Report const& r) { return r.blocks.at(i).power; });
    for (std::size_t i = 0; i < design.loads.size(); ++i) {
        std::size_t const at = design.blocks.size() + i;
        add("load." + design.loads[i].name + ".power", CellType::Float, "W", ReportOf::Point,
            [at](design::Report const& r) { return r.blocks.at(at).power; });
    }
    addReportFigures(design, rails, groups, decoupling, "corner.typical.", ReportOf::TypicalCorner);
    addReportFigures(design, rails, groups, decoupling, "corner.worst.", ReportOf::WorstCorner);
}

void DesignOutputs::add(std::string const& name, CellType type, std::string const& unit, ReportOf from,
                        std::function<double(design::Report const&)> read) {
    m_quantities.push_back({name, type, unit});
    m_outputs.emplace(name, DesignOutput{m_quantities.back(), from, std::move(read)});
}

void DesignOutputs::addReportFigures(design::Design const& design, std::vector<std::string> const& rails,
                                     std::vector<std::string> const& groups,
                                     std::vector<design::RailDecoupling> const& decoupling,
                                     std::string const& prefix, ReportOf from) {
    using design::RailResult;
    using design::RegionResult;
    using design::RegulatorLoad;
    using design::Report;
    using design::SupplyGroup;
    add(prefix + "total_power", CellType::Float, "W", from, [](Report const& r) { return r.totalPower; });
    add(prefix + "dynamic_power", CellType::Float, "W", from, [](Report const& r) { return r.dynamicPower; });
    add(prefix + "static_power", CellType::Float, "W", from, [](Report const& r) { return r.staticPower; });
    add(prefix + "junction_temperature", CellType::Float, "degC", from,
        [](Report const& r) { return r.thermal.junction; });
    if (from == ReportOf::Point) m_totals = m_quantities;

    addRows<RailResult>(prefix, from, "rail", rails, &RailResult::rail, railsOf,
                        {{"voltage", "V", [](RailResult const& r) { return r.voltage; }},
                         {"dynamic_current", "A", [](RailResult const& r) { return r.dynamicCurrent; }},
                         {"static_current", "A", [](RailResult const& r) { return r.staticCurrent; }},
                         {"current", "A", [](RailResult const& r) { return r.totalCurrent; }},
                         {"power", "W", [](RailResult const& r) { return r.power; }}});
    addRows<RegionResult>(
        prefix, from, "region", design::regionNames(), &RegionResult::region, regionsOf,
        {{"dynamic", "W", [](RegionResult const& r) { return r.dynamicPower; }},
         {"static", "W", [](RegionResult const& r) { return r.staticPower; }},
         {"total", "W", [](RegionResult const& r) { return r.dynamicPower + r.staticPower; }}});

    // The supplies: the declared regulators, and what the board draws for them.
    std::vector<std::string> regulators;
    for (design::Regulator const& regulator : design.regulators) regulators.push_back(regulator.name);
    addRows<RegulatorLoad>(
        prefix, from, "regulator", regulators, &RegulatorLoad::name, regulatorsOf,
        {{"load", "A", [](RegulatorLoad const& r) { return r.load; }},
         {"margin", "A", [](RegulatorLoad const& r) { return r.margin; }},
         {"loss", "W", [](RegulatorLoad const& r) { return r.loss; }},
         {"input_power", "W", [](RegulatorLoad const& r) { return r.inputPower; }},
         {"powerup_current", "A", [](RegulatorLoad const& r) { return r.powerupCurrent; }}});
    if (!regulators.empty()) {
        add(prefix + "supplies.input_power", CellType::Float, "W", from,
            [](Report const& r) { return r.supplyInputPower; });
        add(prefix + "supplies.unregulated_power", CellType::Float, "W", from,
            [](Report const& r) { return r.unregulatedPower; });
    }
    // The scheme's regulator groups: a group that feeds none of a point's rails reads NaN there.
    addRows<SupplyGroup>(prefix, from, "group", groups, &SupplyGroup::name, groupsOf,
                         {{"current", "A", [](SupplyGroup const& g) { return g.current; }},
                          {"power", "W", [](SupplyGroup const& g) { return g.power; }},
                          {"powerup_current", "A", [](SupplyGroup const& g) { return g.powerupCurrent; }}});

    addDecoupling(prefix, from, decoupling);
    addBudget(design.budget, prefix, from);
}

void DesignOutputs::addDecoupling(std::string const& prefix, ReportOf from,
                                  std::vector<design::RailDecoupling> const& decoupling) {
    for (design::RailDecoupling const& counted : decoupling) {
        std::string const rail = counted.rail;
        std::string const name = prefix + "decoupling." + rail + ".";
        add(name + "step_current", CellType::Float, "A", from, [rail](design::Report const& r) {
            design::RailDecoupling const* at = decouplingOf(r, rail);
            return at ? at->stepCurrent : kMissing;
        });
        for (auto const& stepPart : counted.stepParts) {
            std::string const part = stepPart.first;
            add(name + part + ".step_current", CellType::Float, "A", from,
                [rail, part](design::Report const& r) {
                    if (design::RailDecoupling const* at = decouplingOf(r, rail))
                        for (auto const& [label, step] : at->stepParts)
                            if (label == part) return step;
                    return kMissing;
                });
        }
        for (design::CapacitorCount const& capacitor : counted.capacitors) {
            std::string const value = capacitor.value;
            add(name + value + ".count", CellType::Float, "count", from,
                [rail, value](design::Report const& r) { return capacitorCount(r, rail, value); });
            // The capacitors to place; NaN where the sheet could not count them, so a float.
            add(name + value + ".whole_count", CellType::Float, "count", from,
                [rail, value](design::Report const& r) {
                    return design::wholeCapacitors(capacitorCount(r, rail, value));
                });
        }
    }
}

// Each limited figure as it is held against its limit, its headroom (negative past the limit) and the
// verdict, 1 when any figure exceeds its limit.
void DesignOutputs::addBudget(design::Budget const& budget, std::string const& prefix, ReportOf from) {
    if (budget.empty()) return;
    auto limited = [&](std::string const& name, std::string const& rail, std::string const& supply,
                       char const* unit) {
        add(prefix + name, CellType::Float, unit, from, [budget, rail, supply](design::Report const& r) {
            return budgetLine(budget, r, rail, supply).value;
        });
        add(prefix + name + ".headroom", CellType::Float, unit, from,
            [budget, rail, supply](design::Report const& r) {
                design::BudgetLine const line = budgetLine(budget, r, rail, supply);
                return line.limit - line.value;
            });
    };
    if (budget.totalPower) limited("budget.total_power", "", "", "W");
    for (auto const& entry : budget.railCurrents) limited("budget.rail." + entry.first, entry.first, "", "A");
    for (auto const& entry : budget.supplyCurrents)
        limited("budget.supply." + entry.first, "", entry.first, "A");
    // A float, so that a corner without figures reads NaN rather than "within".
    add(prefix + "budget.exceeded", CellType::Float, "", from, [budget](design::Report const& r) {
        return design::anyExceeded(design::checkBudget(budget, r)) ? 1.0 : 0.0;
    });
}

}  // namespace prsm::host
