#pragma once
// Text placed in an HTML page or an SVG picture: escaped, and numbers written the same way everywhere.

#include <string>

namespace prsm::design {

// `text` with &, <, >, " and ' replaced by their entities, safe in element text and quoted attributes.
std::string escapeHtml(std::string const& text);

// `value` with `decimals` digits after the point; "-" for NaN, since a figure the sheet lacks is no number.
std::string fixedText(double value, int decimals);

}  // namespace prsm::design
