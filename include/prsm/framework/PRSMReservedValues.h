#pragma once
// Values with a reserved meaning, shared by the cells of every sheet and by the spreadsheet functions.

#include <cfloat>
#include <climits>

namespace prsm {

// A float cell not set or not yet computed; also the float error value of the spreadsheet functions.
inline constexpr float kFloatNotSet = FLT_MAX;
// An argument left out of MAX and AVERAGE.
inline constexpr float kFloatAbsent = -FLT_MAX;
// An int cell not set or not yet computed; also the int error value of IFERROR and ISERROR.
inline constexpr int kIntNotSet = INT_MAX;
// The int "not set" that the spreadsheet functions skip or return. Deliberately not kIntNotSet.
inline constexpr int kIntUnset = INT_MAX - 1;
// A string cell not set; also the string error value.
inline constexpr char const kStringNotSet[] = "UninitializedString";
// A deliberately empty string output.
inline constexpr char const kBlankLiteral[] = "__BLANK_LITERAL__";

}  // namespace prsm
