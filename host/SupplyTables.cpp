#include <prsm/design/SupplyFormat.h>
#include <prsm/host/SupplyTables.h>
#include <prsm/host/TextTable.h>

#include <cmath>
#include <cstdio>

namespace prsm::host {

std::string renderSupplyGroups(design::Report const& report) {
    if (report.supplyModel.empty() || report.supplyGroups.empty()) return {};
    std::vector<TextRow> rows;
    for (design::SupplyGroup const& g : report.supplyGroups) {
        std::string rails;
        for (design::GroupRail const& r : g.rails) {
            rails += (rails.empty() ? "" : ", ") + r.rail;
            std::string held;
            for (design::GroupRail const& h : r.held) held += (held.empty() ? "" : ", ") + h.rail;
            if (!held.empty()) rails += " (holds " + held + ")";
        }
        rows.push_back({g.name, g.label, g.sequence, g.dcTolerance, g.acRipple, rails, fixed(g.voltage, 3),
                        fixed(g.current, 4), fixed(g.power, 4), fixed(g.powerupCurrent, 4)});
    }
    return "\n" + formatTable({"group", "regulator", "step", "DC", "AC ripple", "rails", "voltage (V)",
                               "current (A)", "power (W)", "power-up (A)"},
                              rows);
}

std::string renderDecoupling(design::Report const& report) {
    if (report.decouplingModel.empty() || report.decoupling.empty()) return {};
    TextRow header{"rail", "step (A)"};
    std::vector<std::string> values;
    for (design::CapacitorCount const& c : report.decoupling.front().capacitors) {
        values.push_back(c.value);
        std::string shown = c.value;  // "0p47uF" is 0.47 uF
        for (char& ch : shown) ch = ch == 'p' ? '.' : ch;
        header.push_back(shown.insert(shown.size() - 2, " "));
    }
    std::vector<TextRow> rows;
    for (design::RailDecoupling const& r : report.decoupling) {
        TextRow row{r.rail, fixed(r.stepCurrent, 4)};
        for (std::string const& value : values) {
            std::string whole = "-";
            for (design::CapacitorCount const& c : r.capacitors)
                if (c.value == value) whole = fixed(design::wholeCapacitors(c.count), 0);
            row.push_back(whole);
        }
        rows.push_back(std::move(row));
    }
    return "\n" + formatTable(header, rows);
}

}  // namespace prsm::host
