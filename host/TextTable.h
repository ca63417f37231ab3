#pragma once
// Aligned plain-text tables: a header, a rule of dashes, then the rows, columns two spaces apart.

#include <string>
#include <vector>

namespace prsm::host {

using TextRow = std::vector<std::string>;

// Every row has the header's number of columns; lines carry no trailing blanks.
std::string formatTable(TextRow const& header, std::vector<TextRow> const& rows);

// A table's figure: `value` with `decimals` digits after the point, or "-" when it is no number (a
// figure the sheet lacks) or infinite.
std::string fixed(double value, int decimals);

}  // namespace prsm::host
