#include <prsm/design/Diff.h>

#include <map>

namespace prsm::design {

namespace {

using Named = std::vector<std::pair<std::string, double>>;

// One row per name of either list, A's names in A's order, then B's own.
void pair(std::vector<DiffRow>& rows, char const* section, char const* quantity, char const* unit,
          Named const& a, Named const& b) {
    double const missing = std::nan("");
    std::map<std::string, double> inB(b.begin(), b.end());
    std::map<std::string, double> inA(a.begin(), a.end());
    for (auto const& [name, value] : a) {
        auto const found = inB.find(name);
        rows.push_back({section, name, quantity, unit, value, found == inB.end() ? missing : found->second});
    }
    for (auto const& [name, value] : b)
        if (inA.count(name) == 0) rows.push_back({section, name, quantity, unit, missing, value});
}

template <typename Row, typename Figure>
Named figures(std::vector<Row> const& rows, Figure figure) {
    Named out;
    for (Row const& row : rows) out.push_back(figure(row));
    return out;
}

}  // namespace

std::vector<DiffRow> compareReports(Report const& a, Report const& b) {
    std::vector<DiffRow> rows;
    if (a.complete && b.complete) {
        rows.push_back({"total", "dynamic", "power", "W", a.dynamicPower, b.dynamicPower});
        rows.push_back({"total", "static", "power", "W", a.staticPower, b.staticPower});
        rows.push_back({"total", "total", "power", "W", a.totalPower, b.totalPower});
    }
    auto current = [](RailResult const& r) { return std::make_pair(r.rail, r.totalCurrent); };
    auto power = [](RailResult const& r) { return std::make_pair(r.rail, r.power); };
    pair(rows, "rail", "current", "A", figures(a.rails, current), figures(b.rails, current));
    pair(rows, "rail", "power", "W", figures(a.rails, power), figures(b.rails, power));
    auto region = [](RegionResult const& r) { return std::make_pair(r.region, r.dynamicPower + r.staticPower); };
    pair(rows, "region", "power", "W", figures(a.regions, region), figures(b.regions, region));
    // A failed block has no power to compare.
    auto block = [](BlockResult const& r) {
        return std::make_pair(r.name, r.error.empty() ? r.power : std::nan(""));
    };
    pair(rows, "block", "power", "W", figures(a.blocks, block), figures(b.blocks, block));
    return rows;
}

}  // namespace prsm::design
