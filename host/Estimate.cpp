#include <prsm/design/Rails.h>
#include <prsm/design/ReportFormat.h>
#include <prsm/design/ReportHtml.h>
#include <prsm/design/StaticCurve.h>
#include <prsm/design/ViewFormat.h>
#include <prsm/host/Estimate.h>
#include <prsm/host/EstimateViews.h>
#include <prsm/host/Failures.h>
#include <prsm/host/HostError.h>
#include <prsm/host/SupplyTables.h>
#include <prsm/host/TextTable.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <optional>
#include <ostream>
#include <sstream>

namespace prsm::host {

namespace {

// The report's page, with the leakage chart when the design has a static sheet.
void writeHtml(design::Report const& report, design::Design const& design, std::string const& path) {
    std::vector<std::pair<double, double>> const curve =
        report.complete ? design::staticAgainstJunction(design, design::reportJunctions())
                        : std::vector<std::pair<double, double>>{};
    std::ofstream file(path, std::ios::binary);
    file << design::toHtml(report, design, curve);
    if (!file.flush()) throw HostError(kExitBadInput, "--html " + path + ": cannot write the file");
}

// Supplies: the rails' power-up currents and held leakage, then the declared regulators.
std::string renderSupplies(design::Report const& report) {
    std::ostringstream text;
    std::vector<TextRow> rails;
    for (design::RailResult const& r : report.rails)  // a zero power-up current (typical process) is noise
        if ((!std::isnan(r.powerupCurrent) && r.powerupCurrent != 0) || !r.countedIn.empty())
            rails.push_back(
                {r.rail, fixed(r.powerupCurrent, 4), r.countedIn.empty() ? "-" : "in " + r.countedIn});
    if (!rails.empty()) text << "\n" << formatTable({"rail", "power-up (A)", "static current held"}, rails);
    text << renderSupplyGroups(report) << renderDecoupling(report);
    if (report.regulators.empty()) return text.str();
    std::vector<TextRow> regulators;
    for (design::RegulatorLoad const& r : report.regulators) {
        std::string fed;
        for (std::string const& rail : r.rails) fed += (fed.empty() ? "" : ", ") + rail;
        regulators.push_back({r.name, fed, fixed(r.rating, 3), fixed(r.load, 4),
                              fixed(r.margin, 4) + (r.margin < 0 ? " OVER" : ""), fixed(r.powerupCurrent, 4),
                              fixed(r.efficiency, 3), fixed(r.outputPower, 4), fixed(r.inputPower, 4),
                              fixed(r.loss, 4)});
    }
    text << "\n"
         << formatTable({"regulator", "rails", "rating (A)", "load (A)", "margin (A)", "power-up (A)",
                         "efficiency", "output (W)", "input (W)", "loss (W)"},
                        regulators)
         << "\n"
         << formatTable({"supplies", "power (W)"},
                        {{"regulators' input", fixed(report.supplyInputPower, 4)},
                         {"rails no regulator feeds", fixed(report.unregulatedPower, 4)}});
    return text.str();
}

}  // namespace

std::string renderEstimateTable(design::Report const& report) {
    std::ostringstream text;
    design::ThermalResult const& t = report.thermal;
    text << "Design: " << report.source << "\n";
    if (t.solved)
        text << "Junction temperature: " << fixed(t.junction, 2) << " degC (ambient " << fixed(t.ambient, 1)
             << " degC, theta_ja " << fixed(t.thetaJa, 3) << " degC/W, " << t.iterations
             << (t.iterations == 1 ? " iteration" : " iterations") << (t.runaway ? ", thermal runaway" : "")
             << ")\n";
    else
        text << "Junction temperature: " << fixed(t.junction, 2) << " degC (given)\n";
    if (!report.staticModel.empty())
        text << "Leakage: " << report.staticModel << "\n";
    else
        text << "Leakage: not estimated (the design names no static-power sheet)\n";
    text << "Voltage corner: " << report.voltageCorner << " (of the rails the design leaves out)\n";

    std::vector<TextRow> rails;
    for (design::RailResult const& r : report.rails)
        rails.push_back({r.rail, fixed(r.voltage, 3), design::toString(r.voltageSource),
                         fixed(r.dynamicCurrent, 4), fixed(r.staticCurrent, 4), fixed(r.totalCurrent, 4),
                         fixed(r.power, 4),
                         r.maxCurrent > 0 ? fixed(r.maxCurrent, 3) + (r.overLimit ? " EXCEEDED" : "") : "-"});
    text << "\n"
         << formatTable({"rail", "voltage (V)", "voltage from", "dynamic (A)", "static (A)", "total (A)",
                         "power (W)", "max (A)"},
                        rails);

    std::vector<TextRow> blocks;
    for (design::BlockResult const& b : report.blocks) {
        // A sheet declares every rail it can draw on; the rails this configuration leaves at 0 are noise.
        std::string perRail;
        for (auto const& [rail, power] : b.rails)
            if (power != 0) perRail += (perRail.empty() ? "" : ", ") + rail + " " + fixed(power, 4);
        blocks.push_back({b.name, b.model, b.region, std::to_string(b.count),
                          b.error.empty() ? fixed(b.power, 4) : "FAILED",
                          b.error.empty() ? perRail : b.error});
    }
    text << "\n" << formatTable({"block", "model", "region", "count", "power (W)", "per rail (W)"}, blocks);

    std::vector<TextRow> regions;
    for (design::RegionResult const& r : report.regions)
        regions.push_back({design::regionTitle(r.region), fixed(r.dynamicPower, 4), fixed(r.staticPower, 4),
                           fixed(r.dynamicPower + r.staticPower, 4)});
    text << "\n" << formatTable({"region", "dynamic (W)", "static (W)", "total (W)"}, regions);

    if (!report.staticInputs.empty()) {
        std::vector<TextRow> fed;
        for (auto const& [cell, value] : report.staticInputs) fed.push_back({cell, fixed(value, 4)});
        text << "\n" << formatTable({"static-sheet input", "value (W)"}, fed);
    }
    if (!report.staticCounts.empty()) {
        std::vector<TextRow> fed;
        for (auto const& [cell, value] : report.staticCounts) fed.push_back({cell, fixed(value, 2)});
        text << "\n" << formatTable({"static-sheet count", "value"}, fed);
    }
    if (!report.resources.empty()) {
        std::vector<TextRow> used;
        for (design::ResourceUse const& r : report.resources) {
            std::string utilisation = "-";
            if (r.known && r.available > 0) {
                double const pct = r.used / r.available * 100;
                utilisation = fixed(pct, 1) + (pct > 100 ? " OVER" : "");
            } else if (r.known && r.used > 0) {
                utilisation = "OVER";
            }
            used.push_back({r.resource, fixed(r.used, 0), r.known ? fixed(r.available, 0) : "-", utilisation});
        }
        text << "\n" << formatTable({"resource", "used", "device", "utilisation (%)"}, used);
    }

    if (report.board) {
        design::BoardResult const& b = *report.board;
        std::vector<TextRow> regulators;
        for (design::RegulatorResult const& r : b.regulators)
            regulators.push_back({r.label.empty() ? r.name : r.label, r.kind.empty() ? "-" : r.kind,
                                  fixed(r.voltage, 3), r.input.empty() ? "-" : r.input, fixed(r.rating, 3),
                                  fixed(r.load, 4), fixed(r.margin, 4) + (r.margin < 0 ? " OVER" : ""),
                                  fixed(r.efficiency, 3), fixed(r.loss, 4),
                                  std::isnan(r.overLimit) ? "-"
                                  : r.overLimit > 0       ? fixed(r.overLimit, 1) + " OVER"
                                                          : "0"});
        text << "\nBoard: " << b.model << "\n"
             << formatTable({"regulator", "kind", "voltage (V)", "input", "rating (A)", "load (A)", "margin (A)",
                             "efficiency", "dissipation (W)", "over limit (mW)"},
                            regulators);
        std::vector<TextRow> fed;
        for (auto const& [cell, value] : b.currents)
            if (value != 0) fed.push_back({cell, fixed(value, 4)});
        if (!fed.empty()) text << "\n" << formatTable({"board input", "current (A)"}, fed);
        std::vector<TextRow> unsupplied;
        for (design::UnsuppliedRail const& r : b.unsupplied)
            unsupplied.push_back({r.rail, fixed(r.current, 4), fixed(r.power, 4)});
        if (!unsupplied.empty())
            text << "\n" << formatTable({"not supplied by the board", "current (A)", "power (W)"}, unsupplied);
    }

    text << renderSupplies(report);

    text << "\n";
    if (!report.complete) {
        text << "No totals: the estimate is incomplete (see the errors).\n";
        return text.str();
    }
    text << formatTable({"total", "power (W)"}, {{"dynamic", fixed(report.dynamicPower, 4)},
                                                 {"static", fixed(report.staticPower, 4)},
                                                 {"total", fixed(report.totalPower, 4)}});
    if (report.board)
        text << "\n"
             << formatTable({"board", "power (W)"},
                            {{report.board->model + " total",
                              fixed(report.board->totalPower, 4)}});
    return text.str();
}

std::string warningText(design::Warning const& w) {
    if (w.block.empty()) return w.cell + ": " + w.message;  // the design itself: the cell is a JSON pointer
    return "block \"" + w.block + "\": " + (w.cell.empty() ? "" : "cell " + w.cell + ": ") + w.message;
}

int runEstimate(Request const& request, std::string const& dataHint, std::ostream& out, std::ostream& err) {
    design::Report report;
    // The optional views (corners, budget, junction limit), each from the design and its estimates.
    std::optional<design::CornerReports> corners;
    std::vector<design::BudgetLine> budget;
    bool hasBudget = false;
    std::optional<design::JunctionLimit> junctionLimit;
    try {
        design::Design design = design::readDesignFile(request.designFile);
        design::Budget const limits = design.budget;
        hasBudget = !limits.empty();
        if (request.maxJunction) junctionLimit = design::solveJunctionLimit(design, *request.maxJunction);
        if (request.corners) {
            corners = design::estimateCorners(design);
            report = corners->typical;
        } else {
            report = design::Estimator(design).estimate();
        }
        if (!request.htmlFile.empty()) writeHtml(report, design, request.htmlFile);
        // A budget must hold at the worst corner when there is one.
        budget = design::checkBudget(limits, corners ? corners->worst : report);
    } catch (...) {
        rethrowAsHostError();
    }
    auto warn = [&err](design::Warning const& w, char const* corner) {
        err << "prsm: warning: " << corner << warningText(w) << "\n";
    };
    for (design::Warning const& w : report.warnings) warn(w, "");
    if (corners)  // the worst corner's own warnings, those the typical corner does not have too
        for (design::Warning const& w : corners->worst.warnings)
            if (std::none_of(report.warnings.begin(), report.warnings.end(), [&](design::Warning const& t) {
                    return t.block == w.block && t.cell == w.cell && t.message == w.message;
                }))
                warn(w, "worst corner: ");
    design::ReportViews const views{corners ? &*corners : nullptr, hasBudget ? &budget : nullptr,
                                    junctionLimit ? &*junctionLimit : nullptr};
    switch (request.format) {
        case OutputFormat::Json:
            out << design::toJson(report, views);
            break;
        case OutputFormat::Csv:
            out << design::toCsv(report, views);
            break;
        case OutputFormat::Table:
        case OutputFormat::Reflect:
            out << renderEstimateTable(report);
            if (corners) out << renderCornersTable(*corners);
            if (hasBudget) out << renderBudgetTable(budget);
            if (junctionLimit) out << renderJunctionLimit(*junctionLimit);
            break;
    }
    for (std::string const& failure : report.failures) err << "prsm: error: " << failure << "\n";
    if (corners)
        for (std::string const& failure : corners->worst.failures)
            err << "prsm: error: worst corner: " << failure << "\n";
    bool const blockFailed = std::any_of(report.blocks.begin(), report.blocks.end(),
                                         [](design::BlockResult const& b) { return !b.error.empty(); });
    if (blockFailed && !dataHint.empty()) err << "prsm: hint: " << dataHint << "\n";
    if (!report.complete || (corners && !corners->worst.complete)) return kExitDataFailure;
    for (design::BudgetLine const& line : budget)
        if (line.exceeded)
            err << "prsm: error: over budget: " << line.title() << " " << line.value << " " << line.unit()
                << " > " << line.limit << " " << line.unit() << "\n";
    return design::anyExceeded(budget) ? kExitOverBudget : kExitOk;
}

}  // namespace prsm::host
