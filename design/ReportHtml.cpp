#include <prsm/design/HtmlText.h>
#include <prsm/design/ReportHtml.h>
#include <prsm/design/SupplyFormat.h>
#include <prsm/design/SvgChart.h>

#include <algorithm>
#include <cmath>
#include <sstream>

namespace prsm::design {

namespace {

// Screen and print: tables keep their rows together and charts shrink to the page.
char const* const kStyle = R"(
body { font-family: sans-serif; font-size: 14px; color: #111; margin: 2em auto; max-width: 60em; }
h1 { font-size: 1.5em; } h2 { font-size: 1.2em; margin-top: 1.6em; border-bottom: 1px solid #999; }
table { border-collapse: collapse; margin: 0.5em 0; }
th, td { border: 1px solid #bbb; padding: 0.2em 0.6em; text-align: left; }
th { background: #eee; } td.num { text-align: right; font-variant-numeric: tabular-nums; }
tr.over td { background: #fde0dc; }
.failures, .warnings li { color: #a00; }
svg.chart { max-width: 100%; height: auto; font-size: 12px; }
svg .chart-title { font-weight: bold; font-size: 14px; }
svg .grid { stroke: #ddd; }
@media print {
  body { margin: 0; max-width: none; font-size: 10pt; }
  section { break-inside: avoid; }
  th { background: none; }
}
)";

struct Cell {
    std::string text;
    bool number = false;
};

Cell num(double value, int decimals) {
    return {fixedText(value, decimals), true};
}

std::string table(std::vector<std::string> const& headers, std::vector<std::vector<Cell>> const& rows,
                  std::vector<bool> const& highlighted = {}) {
    std::ostringstream out;
    out << "<table>\n";
    bool const named =
        std::any_of(headers.begin(), headers.end(), [](std::string const& h) { return !h.empty(); });
    if (named) {
        out << "<tr>";
        for (std::string const& header : headers) out << "<th>" << escapeHtml(header) << "</th>";
        out << "</tr>\n";
    }
    for (std::size_t r = 0; r < rows.size(); ++r) {
        out << (r < highlighted.size() && highlighted[r] ? "<tr class=\"over\">" : "<tr>");
        for (Cell const& cell : rows[r])
            out << (cell.number ? "<td class=\"num\">" : "<td>") << escapeHtml(cell.text) << "</td>";
        out << "</tr>\n";
    }
    out << "</table>\n";
    return out.str();
}

void summary(std::ostream& out, Report const& report, Design const& design) {
    out << "<section id=\"summary\">\n<h2>Summary</h2>\n";
    if (!report.complete) {
        out << "<p class=\"failures\">The estimate is not complete; its totals are not a result:</p>\n<ul "
               "class=\"failures\">\n";
        for (std::string const& failure : report.failures) out << "<li>" << escapeHtml(failure) << "</li>\n";
        out << "</ul>\n";
    }
    std::vector<std::vector<Cell>> rows;
    for (auto const& [field, value] : design.device.fields) rows.push_back({{"device " + field}, {value}});
    if (!report.staticModel.empty()) rows.push_back({{"leakage sheet"}, {report.staticModel}});
    rows.push_back({{"voltage corner"}, {report.voltageCorner}});
    rows.push_back({{"junction temperature (degC)"}, num(report.thermal.junction, 1)});
    if (report.complete) {
        rows.push_back({{"dynamic power (W)"}, num(report.dynamicPower, 4)});
        rows.push_back({{"static power (W)"}, num(report.staticPower, 4)});
        rows.push_back({{"total power (W)"}, num(report.totalPower, 4)});
    }
    if (report.board)
        rows.push_back({{report.board->model + " total (W)"}, num(report.board->totalPower, 4)});
    out << table({"", ""}, rows) << "</section>\n";
}

void warnings(std::ostream& out, Report const& report) {
    if (report.warnings.empty()) return;
    out << "<section id=\"warnings\">\n<h2>Warnings</h2>\n<ul class=\"warnings\">\n";
    for (Warning const& w : report.warnings) {
        std::string where = w.block.empty() ? w.cell : "block \"" + w.block + "\"";
        if (!w.block.empty() && !w.cell.empty()) where += ", cell " + w.cell;
        out << "<li>" << escapeHtml(where.empty() ? w.message : where + ": " + w.message) << "</li>\n";
    }
    out << "</ul>\n</section>\n";
}

void charts(std::ostream& out, Report const& report,
            std::vector<std::pair<double, double>> const& staticCurve) {
    out << "<section id=\"charts\">\n<h2>Charts</h2>\n";
    std::vector<Bar> regions;
    for (RegionResult const& r : report.regions)
        regions.push_back({r.region, {r.dynamicPower, r.staticPower}});
    if (!regions.empty()) out << barChartSvg("Power by region", "W", {"dynamic", "static"}, regions);
    std::vector<Bar> rails;
    for (RailResult const& r : report.rails)
        rails.push_back({r.rail, {r.voltage * r.dynamicCurrent, r.voltage * r.staticCurrent}});
    if (!rails.empty()) out << barChartSvg("Power by rail", "W", {"dynamic", "static"}, rails);
    if (!staticCurve.empty())
        out << lineChartSvg("Static power against junction temperature", "junction temperature (degC)",
                            "static power (W)", staticCurve);
    out << "</section>\n";
}

void rails(std::ostream& out, Report const& report) {
    std::vector<std::vector<Cell>> rows;
    std::vector<bool> over;
    for (RailResult const& r : report.rails) {
        rows.push_back({{r.rail},
                        num(r.voltage, 3),
                        {toString(r.voltageSource)},
                        num(r.dynamicCurrent, 4),
                        num(r.staticCurrent, 4),
                        num(r.totalCurrent, 4),
                        num(r.power, 4),
                        r.maxCurrent > 0 ? num(r.maxCurrent, 3) : Cell{"-", true}});
        over.push_back(r.overLimit);
    }
    out << "<section id=\"rails\">\n<h2>Rails</h2>\n"
        << table({"rail", "voltage (V)", "voltage from", "dynamic (A)", "static (A)", "total (A)",
                  "power (W)", "limit (A)"},
                 rows, over)
        << "</section>\n";
}

Cell figure(double value, int decimals) {
    return std::isnan(value) ? Cell{"-", true} : num(value, decimals);
}

// The regulator groups of the design's scheme, a held rail under its holder.
void supplyGroups(std::ostream& out, Report const& report) {
    std::vector<std::vector<Cell>> rows;
    for (SupplyGroup const& g : report.supplyGroups) {
        std::string rails;
        for (GroupRail const& r : g.rails) {
            rails += (rails.empty() ? "" : ", ") + r.rail;
            std::string held;
            for (GroupRail const& h : r.held) held += (held.empty() ? "" : ", ") + h.rail;
            if (!held.empty()) rails += " (holds " + held + ")";
        }
        rows.push_back({{g.name},
                        {g.label},
                        {g.sequence},
                        {g.dcTolerance},
                        {g.acRipple},
                        {rails},
                        figure(g.voltage, 3),
                        num(g.current, 4),
                        num(g.power, 4),
                        figure(g.powerupCurrent, 4)});
    }
    out << "<h3>Regulator groups (" << escapeHtml(report.supplyModel) << ")</h3>\n"
        << table({"group", "regulator", "step", "DC", "AC ripple", "rails", "voltage (V)", "current (A)",
                  "power (W)", "power-up (A)"},
                 rows);
}

// Whole capacitors of each value per rail.
void decoupling(std::ostream& out, Report const& report) {
    std::vector<std::string> headers{"rail", "step (A)"};
    for (CapacitorCount const& c : report.decoupling.front().capacitors) headers.push_back(c.value);
    std::vector<std::vector<Cell>> rows;
    for (RailDecoupling const& r : report.decoupling) {
        std::vector<Cell> row{{r.rail}, num(r.stepCurrent, 4)};
        for (std::size_t i = 2; i < headers.size(); ++i) {
            Cell whole{"-", true};
            for (CapacitorCount const& c : r.capacitors)
                if (c.value == headers[i]) whole = num(wholeCapacitors(c.count), 0);
            row.push_back(whole);
        }
        rows.push_back(std::move(row));
    }
    out << "<h3>Decoupling capacitors (" << escapeHtml(report.decouplingModel) << ")</h3>\n"
        << table(headers, rows);
}

// The supplies the device sits on, after the rails they feed: the module board's regulators, the
// regulators the design declares, its scheme's regulator groups and the decoupling capacitors.
void supplies(std::ostream& out, Report const& report) {
    if (!report.board && report.regulators.empty() && report.supplyGroups.empty() &&
        report.decoupling.empty())
        return;
    out << "<section id=\"supplies\">\n";
    if (report.board) {
        BoardResult const& board = *report.board;
        std::vector<std::vector<Cell>> rows;
        std::vector<bool> over;
        for (RegulatorResult const& r : board.regulators) {
            rows.push_back({{r.label.empty() ? r.name : r.label}, {r.kind.empty() ? "-" : r.kind}, num(r.voltage, 3),
                            {r.input.empty() ? "-" : r.input}, num(r.rating, 3), num(r.load, 4),
                            num(r.margin, 4), num(r.efficiency, 3), num(r.loss, 4), num(r.overLimit, 1)});
            over.push_back(r.overLimit > 0 || r.margin < 0);
        }
        out << "<h2>Regulators of " << escapeHtml(board.model) << "</h2>\n"
            << table({"regulator", "kind", "voltage (V)", "input", "rating (A)", "load (A)", "margin (A)",
                      "efficiency", "dissipation (W)", "over limit (mW)"},
                     rows, over);
        std::vector<std::vector<Cell>> fed;
        for (auto const& [cell, value] : board.currents) fed.push_back({{cell}, num(value, 4)});
        if (!fed.empty()) out << table({"board input", "current (A)"}, fed);
        std::vector<std::vector<Cell>> unsupplied;
        for (UnsuppliedRail const& r : board.unsupplied)
            unsupplied.push_back({{r.rail}, num(r.current, 4), num(r.power, 4)});
        if (!unsupplied.empty())
            out << table({"not supplied by the board", "current (A)", "power (W)"}, unsupplied);
    } else {
        out << "<h2>Supplies</h2>\n";
    }
    if (!report.regulators.empty()) {
        std::vector<std::vector<Cell>> rows;
        std::vector<bool> over;
        for (RegulatorLoad const& r : report.regulators) {
            std::string fed;
            for (std::string const& rail : r.rails) fed += (fed.empty() ? "" : ", ") + rail;
            rows.push_back({{r.name},
                            {fed},
                            num(r.rating, 3),
                            num(r.load, 4),
                            num(r.margin, 4),
                            figure(r.powerupCurrent, 4),
                            num(r.efficiency, 3),
                            num(r.inputPower, 4),
                            num(r.loss, 4)});
            over.push_back(r.margin < 0);
        }
        out << "<h3>Declared regulators</h3>\n"
            << table({"regulator", "rails", "rating (A)", "load (A)", "margin (A)", "power-up (A)",
                      "efficiency", "input (W)", "loss (W)"},
                     rows, over);
    }
    if (!report.supplyGroups.empty()) supplyGroups(out, report);
    if (!report.decoupling.empty()) decoupling(out, report);
    out << "</section>\n";
}

void regions(std::ostream& out, Report const& report) {
    std::vector<std::vector<Cell>> rows;
    for (RegionResult const& r : report.regions)
        rows.push_back({{r.region},
                        num(r.dynamicPower, 4),
                        num(r.staticPower, 4),
                        num(r.dynamicPower + r.staticPower, 4)});
    out << "<section id=\"regions\">\n<h2>Regions</h2>\n"
        << table({"region", "dynamic (W)", "static (W)", "total (W)"}, rows) << "</section>\n";
}

void blocks(std::ostream& out, Report const& report) {
    std::vector<std::vector<Cell>> rows;
    std::vector<bool> failed;
    for (BlockResult const& b : report.blocks) {
        std::string perRail;
        for (auto const& [rail, power] : b.rails)
            perRail += (perRail.empty() ? "" : ", ") + rail + " " + fixedText(power, 4);
        rows.push_back({{b.name},
                        {b.model},
                        {b.region},
                        {std::to_string(b.count), true},
                        b.error.empty() ? num(b.power, 4) : Cell{"-", true},
                        {b.error.empty() ? perRail : b.error}});
        failed.push_back(!b.error.empty());
    }
    out << "<section id=\"blocks\">\n<h2>Blocks</h2>\n"
        << table({"block", "model", "region", "count", "power (W)", "per rail (W)"}, rows, failed)
        << "</section>\n";
}

void resources(std::ostream& out, Report const& report) {
    if (report.resources.empty()) return;
    std::vector<std::vector<Cell>> rows;
    std::vector<bool> over;
    for (ResourceUse const& r : report.resources) {
        bool const counted = r.known && r.available > 0;
        rows.push_back({{r.resource},
                        num(r.used, 0),
                        r.known ? num(r.available, 0) : Cell{"-", true},
                        counted ? num(r.used / r.available * 100, 1) : Cell{"-", true}});
        over.push_back(r.known && r.used > r.available);
    }
    out << "<section id=\"resources\">\n<h2>Resources</h2>\n"
        << table({"resource", "used", "device", "utilisation (%)"}, rows, over) << "</section>\n";
}

void thermal(std::ostream& out, Report const& report) {
    ThermalResult const& t = report.thermal;
    std::vector<std::vector<Cell>> rows{{{"junction temperature (degC)"}, num(t.junction, 1)}};
    if (t.solved) {
        rows.push_back({{"ambient temperature (degC)"}, num(t.ambient, 1)});
        rows.push_back({{"theta JA (degC/W)"}, num(t.thetaJa, 3)});
        rows.push_back({{"static calculations"}, {std::to_string(t.iterations), true}});
        if (t.runaway) rows.push_back({{"thermal runaway"}, {"no steady state"}});
    } else {
        rows.push_back({{"junction temperature"}, {"given by the design"}});
    }
    out << "<section id=\"thermal\">\n<h2>Thermal</h2>\n" << table({"", ""}, rows);
    std::vector<std::vector<Cell>> fed;
    for (auto const& [cell, value] : report.staticInputs) fed.push_back({{cell}, num(value, 4)});
    if (!fed.empty()) out << table({"leakage-sheet input", "value (W)"}, fed);
    std::vector<std::vector<Cell>> counts;
    for (auto const& [cell, value] : report.staticCounts) counts.push_back({{cell}, num(value, 2)});
    if (!counts.empty()) out << table({"leakage-sheet count", "value"}, counts);
    out << "</section>\n";
}

}  // namespace

std::vector<double> reportJunctions() {
    return {0, 10, 20, 30, 40, 50, 60, 70, 80, 90, 100};
}

std::string toHtml(Report const& report, Design const& design,
                   std::vector<std::pair<double, double>> const& staticCurve) {
    std::ostringstream out;
    out << "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n<title>Power estimate: "
        << escapeHtml(report.source) << "</title>\n<style>" << kStyle << "</style>\n</head>\n<body>\n"
        << "<h1>Power estimate: " << escapeHtml(report.source) << "</h1>\n";
    if (!design.description.empty())
        out << "<p class=\"description\">" << escapeHtml(design.description) << "</p>\n";
    summary(out, report, design);
    warnings(out, report);
    charts(out, report, staticCurve);
    rails(out, report);
    supplies(out, report);
    regions(out, report);
    blocks(out, report);
    resources(out, report);
    thermal(out, report);
    out << "</body>\n</html>\n";
    return out.str();
}

}  // namespace prsm::design
