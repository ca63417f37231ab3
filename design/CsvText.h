#pragma once
// Fields of the long-form CSV reports (RFC 4180), written the same way by every report and comparison.

#include <string>

namespace prsm::design {

// `text` as it stands, or quoted with its quotes doubled when it holds a comma, a quote or a line break.
std::string csvField(std::string const& text);

// `value` to nine significant digits, enough to read a float back exactly.
std::string csvNumber(double value);

// The same, or an empty field for a figure that does not exist (NaN or infinite).
std::string csvFigure(double value);

}  // namespace prsm::design
