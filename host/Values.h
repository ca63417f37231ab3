#pragma once
// Cell values as the host shows them: the library hands out text; the host prints floats in their
// shortest exact form and turns values into JSON of the cell's type.

#include <prsm/framework/PRSMNumberText.h>
#include <prsm/framework/PRSMSheetRegistry.h>

#include <nlohmann/json.hpp>

#include <string>

namespace prsm::host {

using prsm::shortestFloatText;  // "0.1", not "0.100000001"

// Shown in tables in place of one of the library's reserved "no value" values.
inline constexpr char const kNoValueText[] = "(no value)";

// Whether the text is one of the library's reserved values: int 2147483647 and 2147483646, float
// +/-3.4028235e38, string "UninitializedString". No output shows them as if they were values.
bool isReservedValue(CellType type, std::string const& text);

// A cell's text for display: floats shortened as above, strings and ints unchanged, a reserved value
// as kNoValueText.
std::string displayValue(CellType type, std::string const& text);

// A cell's text as JSON: ints as integers, floats as floating-point numbers, strings as strings; null
// for a reserved value or a float that is not finite.
nlohmann::ordered_json jsonValue(CellType type, std::string const& text);

}  // namespace prsm::host
