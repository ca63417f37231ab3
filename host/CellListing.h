#pragma once
// The rows of `prsm cells`: each cell with its type, category, unit, default, valid values and
// description.

#include <prsm/framework/PRSMSheetRegistry.h>

#include <string>
#include <vector>

namespace prsm::host {

struct CellRow {
    std::string name;
    std::string type;
    std::string category;
    std::string unit;
    std::string defaultValue;  // inputs only
    std::string validValues;   // inputs only: the list of choices, or the rule in words
    std::string description;   // one line from the sheet's table; empty when it gives none
};

struct CellListing {
    std::vector<CellRow> rows;
    std::string note;  // non-empty when the data could not be loaded and declared defaults are shown
};

// `category` is "input", "output", "intermediate" or empty for all. Defaults and lists are evaluated on
// a fresh parameter set; when the data cannot be loaded, the declared defaults and rules are shown.
CellListing listCells(Sheet const& sheet, std::string const& category);

}  // namespace prsm::host
