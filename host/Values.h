#pragma once
// Cell values as the host shows them: the library hands out text; the host prints floats in their
// shortest exact form and turns values into JSON of the cell's type.

#include <prsm/framework/PRSMSheetRegistry.h>

#include <nlohmann/json.hpp>

#include <string>

namespace prsm::host {

// The shortest decimal text that reads back as the same float ("0.1", not "0.100000001").
std::string shortestFloatText(float value);

// A cell's text for display: floats shortened as above, strings and ints unchanged.
std::string displayValue(CellType type, std::string const& text);

// A cell's text as JSON: ints as integers, floats as floating-point numbers (null when not finite),
// strings as strings.
nlohmann::ordered_json jsonValue(CellType type, std::string const& text);

}  // namespace prsm::host
