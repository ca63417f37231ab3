#include <prsm/design/Rails.h>
#include <prsm/host/EstimateViews.h>
#include <prsm/host/TextTable.h>

#include <cmath>
#include <cstdio>

namespace prsm::host {

namespace {

std::string ratio(design::CornerFigure const& f) {
    return f.typical > 0 ? fixed(f.worst / f.typical, 3) : "-";
}

// The figure at both corners; the worse of the two carries a `*`.
TextRow cornerRow(std::string const& name, design::CornerFigure const& f, int decimals) {
    bool const worst = f.worstIsHigher();
    return {name, fixed(f.typical, decimals) + (worst ? "" : " *"), fixed(f.worst, decimals) + (worst ? " *" : ""),
            ratio(f)};
}

}  // namespace

std::string renderCornersTable(design::CornerReports const& c) {
    std::string text = "\nCorners: typical (process typical, nominal voltages, junction " +
                       fixed(c.typical.thermal.junction, 2) + " degC) and worst (process max, " +
                       c.worst.voltageCorner + " voltages, junction " + fixed(c.worst.thermal.junction, 2) +
                       " degC, " + design::toString(c.hotJunction) + "); * marks the higher\n";
    std::vector<TextRow> rails;
    for (std::size_t i = 0; i < c.railCurrents.size(); ++i) {
        TextRow row = cornerRow(c.railCurrents[i].name, c.railCurrents[i], 4);
        TextRow const power = cornerRow("", c.railPowers[i], 4);
        row.insert(row.end(), power.begin() + 1, power.end());
        rails.push_back(row);
    }
    text += formatTable({"rail", "typical (A)", "worst (A)", "ratio", "typical (W)", "worst (W)", "ratio"}, rails);
    std::vector<TextRow> regions;
    for (design::CornerFigure const& f : c.regionPowers)
        regions.push_back(cornerRow(design::regionTitle(f.name), f, 4));
    if (c.typical.complete && c.worst.complete) regions.push_back(cornerRow("total", c.totalPower, 4));
    text += "\n" + formatTable({"region", "typical (W)", "worst (W)", "ratio"}, regions);
    // The supplies: a declared regulator's load, then each regulator group's current and power.
    std::vector<TextRow> supplies;
    for (design::CornerFigure const& f : c.regulatorLoads) {
        TextRow row = cornerRow("regulator " + f.name, f, 4);
        row.insert(row.end(), {"-", "-", "-"});
        supplies.push_back(row);
    }
    for (std::size_t i = 0; i < c.groupCurrents.size() && i < c.groupPowers.size(); ++i) {
        TextRow row = cornerRow("group " + c.groupCurrents[i].name, c.groupCurrents[i], 4);
        TextRow const power = cornerRow("", c.groupPowers[i], 4);
        row.insert(row.end(), power.begin() + 1, power.end());
        supplies.push_back(row);
    }
    if (!supplies.empty())
        text += "\n" + formatTable({"supply", "typical (A)", "worst (A)", "ratio", "typical (W)", "worst (W)",
                                    "ratio"},
                                   supplies);
    return text;
}

std::string renderBudgetTable(std::vector<design::BudgetLine> const& lines) {
    std::vector<TextRow> rows;
    for (design::BudgetLine const& l : lines) {
        std::string const unit = l.unit();
        rows.push_back({l.title(), fixed(l.limit, 4) + " " + unit, fixed(l.value, 4) + " " + unit,
                        l.exceeded ? "EXCEEDED" : "within"});
    }
    return "\n" + formatTable({"budget", "limit", "estimate", "verdict"}, rows);
}

std::string renderJunctionLimit(design::JunctionLimit const& l) {
    std::string text = "\nJunction at most " + fixed(l.junction, 2) + " degC (" + fixed(l.power, 4) +
                       " W there): theta_ja at most " + fixed(l.maxThetaJa, 3) + " degC/W at the design's ambient, "
                       "ambient at most " + fixed(l.maxAmbient, 2) + " degC at the design's theta_ja\n";
    if (!l.missing.empty()) text += "  (" + l.missing + ")\n";
    return text;
}

}  // namespace prsm::host
