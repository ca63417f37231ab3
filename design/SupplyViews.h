#pragma once
// The engine's supply views: the regulator groups of the design's rail-grouping sheet and the
// decoupling sheet's capacitor counts. Both sheets run as SheetRunners beside the blocks; these steps
// wire them in. Private to libprsm-design.

#include <prsm/design/EstimateState.h>

namespace prsm::design {

// Resolves both sheets' cells, calculates the grouping sheet and checks the budget's supplies against
// the declared regulators and the scheme's groups. Throws DesignError for a supply it does not know.
void setupSupplyViews(EstimateState& s);

// After an estimate: the grouping sheet again when its inputs changed; the decoupling sheet when its
// inputs or the rails' load steps changed and the blocks calculated.
void calculateSupplyViews(EstimateState& s);

// The groups (from report.rails, which must be described first) and the capacitor counts.
void describeSupplyViews(EstimateState const& s, Report& out);

}  // namespace prsm::design
