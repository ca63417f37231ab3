#pragma once
// A design states its device's grades once, in its own words ("-S2M-E", or "2", "M", "E"); each sheet
// takes them in the vocabulary of its own valid-value lists ("2", "MP", "EXTENDED"). This unit
// translates between the two, driven by those lists, so that no sheet is known by name.

#include <prsm/design/Design.h>
#include <prsm/design/Estimate.h>
#include <prsm/framework/PRSMSheetRegistry.h>

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace prsm::design {

// The device fields that a sheet takes in its own spelling: speed_grade, temperature_grade,
// voltage_grade, power_screen, process and voltage_corner.
bool isGradeField(std::string const& field);

// The voltage corners a design may state, the one a design that states none gets first: nominal,
// max, min.
std::vector<std::string> const& voltageCorners();

// The catalogue's combined grade split into its parts: "-S2M-E" is speed 2, voltage M, temperature E;
// "-2-E" (an architecture without voltage grades) speed 2 and temperature E. Nullopt when the text is
// of neither form.
struct GradeParts {
    std::string speed;
    std::string voltage;  // empty when the grade has none
    std::string temperature;
};
std::optional<GradeParts> splitGrade(std::string const& grade);

// The entries of `accepted` that a design's `stated` value stands for. Both are compared without regard
// to case, with blanks and '-' read as '_' and a leading one dropped ("-2" is "2"). An entry equal to it
// is the one answer; otherwise every entry that starts with it or that it starts with, where the longer
// does not go on with a digit: "E" is "EXTENDED", "M" is "MP", "nominal" is "NOM", "MP" is "M", but
// "12" is not "1". One entry is the answer; none or several mean the value cannot be mapped.
std::vector<std::string> sheetSpellings(std::string const& stated, std::vector<std::string> const& accepted);

// The design's device fields as a sheet's declared device inputs take them, input cell -> text: grade
// fields in the spelling of the input's valid-value list, other fields as stated. A grade that has no
// single counterpart is left out, so the sheet keeps its default, and is reported in `warnings`, naming
// `block`, the cell and the accepted values.
std::vector<std::pair<std::string, std::string>> deviceInputs(Device const& device, Sheet const& sheet,
                                                              SheetInstance& instance,
                                                              std::string const& block,
                                                              std::vector<Warning>& warnings);

}  // namespace prsm::design
