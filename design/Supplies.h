#pragma once
// What the static-power sheet tells about each rail as a supply: the current it draws while the device
// powers up, and whether its static current is already held in another rail's (its table's
// [design] powerup_current and counted_in).

#include <prsm/design/Estimate.h>
#include <prsm/framework/PRSMSheetRegistry.h>

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace prsm::design {

// A rail's supply (a regulator, a regulator group) by index; kNoSupply for a rail no supply feeds.
constexpr std::size_t kNoSupply = static_cast<std::size_t>(-1);

// Each rail's share of the supply that feeds it (`supply[i]` feeds `rails[i]`): its total current, less
// a held rail's static current counted once. When the held rail and its holder share a supply, the
// holder keeps the leakage and the held rail brings only its dynamic current; otherwise the held rail
// keeps it and the holder's supply is relieved of it. Either way the shares add up to the rails'
// currents less the held leakage, once.
std::vector<double> supplyShares(std::vector<RailResult> const& rails,
                                 std::vector<std::size_t> const& supply);

class StaticSupplyCells {
public:
    // Resolves the sheet's power-up cells of `rails` (the engine's rails, in its order) once.
    StaticSupplyCells(Sheet const& staticSheet, std::vector<std::string> const& rails);

    // Sets each report rail's powerupCurrent and countedIn from a calculated static sheet.
    void describe(SheetInstance const& statics, std::vector<RailResult>& rails) const;

private:
    std::vector<std::string> m_rails;
    std::vector<std::size_t> m_powerupCell;  // per rail of m_rails
    std::vector<std::pair<std::string, std::string>> m_countedIn;
};

}  // namespace prsm::design
