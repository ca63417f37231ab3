#pragma once
// A design's regulator groups: the rail-grouping sheet names the group of every rail
// (<RAIL>_POWER_RAIL_GROUP) and, for each regulator group G of its scheme, the label of the rails it
// feeds (G_POWER_RAIL_GROUP, blank when the scheme leaves G unused), its DC tolerance (G_DC), AC ripple
// limit (G_AC_RIPPLE) and power-up step (G_SEQUENCE). This unit reads those cells and loads each group
// with the design's rail currents.

#include <prsm/design/Estimate.h>
#include <prsm/framework/PRSMSheetRegistry.h>

#include <unordered_map>
#include <string>
#include <vector>

namespace prsm::design {

// What the calculated grouping sheet says of the design's rails.
struct SupplyScheme {
    struct Group {
        std::string name, label, sequence, dcTolerance, acRipple;
    };
    // The groups with a label, in the sheet's order; of two groups with one label (one regulator listed
    // under two domains) only the first, so that no rail is counted twice.
    std::vector<Group> groups;
    // rail -> its group in `groups`, for the rails whose label names one of them (resolved once, when
    // the sheet is read: the report's groups are loaded again at each update).
    std::unordered_map<std::string, std::size_t> railGroup;
};

class RailGrouping {
public:
    // Whether `sheet` is laid out as a rail-grouping sheet: it has at least one regulator group.
    static bool fits(Sheet const& sheet);
    // The regulator groups of `sheet`, in its order ("PL_1A", ...).
    static std::vector<std::string> groupNames(Sheet const& sheet);

    explicit RailGrouping(Sheet const& sheet);

    // Evaluates the groups' cells and those of `rails`; a cell that cannot be evaluated (a row the data
    // lacks) counts as blank, with a line in `problems`.
    SupplyScheme read(SheetInstance& instance, std::vector<std::string> const& rails,
                      std::vector<std::string>& problems) const;

private:
    Sheet const* m_sheet;
    std::vector<std::string> m_groups;
};

// Fills report.supplyGroups from report.rails: per group of `scheme` that feeds at least one rail, its
// rails (a held rail that the sheet does not group goes with its holder, under it) and their sums.
void groupSupplies(SupplyScheme const& scheme, Report& report);

}  // namespace prsm::design
