#pragma once
// The warnings a sheet's table declares for its cells ([warnings]: below zero, above zero, no value,
// outside a range), checked against a calculated parameter set. The library never looks at them; the
// `prsm` host and the design engine give them as warnings and change nothing.

#include <prsm/framework/PRSMSheetRegistry.h>

#include <string>
#include <utility>
#include <vector>

namespace prsm::design {

// Whether the table declares any warning for the cell.
bool hasDeclaredWarnings(CellInfo const& cell);

// The declared warnings that the value `text` of `cell` (the library's text of it, as `instance`
// evaluates it) calls for, with "{value}", "{unit}", "{low}" and "{high}" filled in. A range bound that
// names a cell is evaluated on `instance`; a bound without a value skips that side. The no-value message
// is for a reserved "no value" result; the other checks pass over it, over strings and over text that
// is not a number.
std::vector<std::string> declaredWarnings(CellInfo const& cell, std::string const& text,
                                          SheetInstance& instance);

// Every declared warning of a calculated parameter set of the sheet, as (cell, message), in cell order.
std::vector<std::pair<std::string, std::string>> declaredWarnings(Sheet const& sheet,
                                                                  SheetInstance& instance);

}  // namespace prsm::design
