#include <prsm/design/Supplies.h>

#include <algorithm>
#include <cmath>

namespace prsm::design {

namespace {

constexpr std::size_t kNoCell = static_cast<std::size_t>(-1);
constexpr double kNoFigure = 1e30;  // an unset float cell holds a sentinel near 3.4e38

}  // namespace

std::vector<double> supplyShares(std::vector<RailResult> const& rails,
                                 std::vector<std::size_t> const& supply) {
    std::vector<double> share(rails.size());
    for (std::size_t i = 0; i < rails.size(); ++i) share[i] = rails[i].totalCurrent;
    for (std::size_t i = 0; i < rails.size(); ++i) {
        RailResult const& held = rails[i];
        if (held.countedIn.empty()) continue;
        auto const holder = std::find_if(rails.begin(), rails.end(),
                                         [&](RailResult const& r) { return r.rail == held.countedIn; });
        if (holder == rails.end()) continue;
        std::size_t const h = static_cast<std::size_t>(holder - rails.begin());
        share[supply[i] == supply[h] ? i : h] -= held.staticCurrent;
    }
    return share;
}

StaticSupplyCells::StaticSupplyCells(Sheet const& staticSheet, std::vector<std::string> const& rails)
    : m_rails(rails), m_powerupCell(rails.size(), kNoCell), m_countedIn(staticSheet.design().countedIn) {
    std::string const& pattern = staticSheet.design().powerupCurrent;
    if (pattern.empty()) return;
    std::vector<CellInfo> const& cells = staticSheet.cells();
    for (std::size_t r = 0; r < rails.size(); ++r) {
        std::string name = pattern;
        name.replace(name.find("{}"), 2, rails[r]);
        auto const it =
            std::find_if(cells.begin(), cells.end(), [&](CellInfo const& c) { return c.name == name; });
        if (it != cells.end()) m_powerupCell[r] = static_cast<std::size_t>(it - cells.begin());
    }
}

void StaticSupplyCells::describe(SheetInstance const& statics, std::vector<RailResult>& rails) const {
    // The report's rails are some of the engine's, in its order: one pass matches them.
    std::size_t r = 0;
    for (RailResult& rail : rails) {
        while (r < m_rails.size() && m_rails[r] != rail.rail) ++r;
        if (r == m_rails.size()) break;
        if (m_powerupCell[r] != kNoCell) {
            double const current = statics.storedNumber(m_powerupCell[r]);
            if (std::isfinite(current) && std::abs(current) < kNoFigure) rail.powerupCurrent = current;
        }
        for (auto const& [held, holder] : m_countedIn)
            if (held == rail.rail) rail.countedIn = holder;
    }
}

}  // namespace prsm::design
