#pragma once
// One calculation of a sheet: set the inputs, calculate, read back every input (defaults applied),
// every output and every checked input's validity. Nothing is printed here.

#include <prsm/framework/PRSMSheetRegistry.h>
#include <prsm/host/Inputs.h>

#include <string>
#include <vector>

namespace prsm::host {

struct CellValue {
    std::string name;
    CellType type;
    std::string text;           // the library's text of the value
    std::string unit;           // empty when the cell has none
    std::string description{};  // the sheet's line for the cell
};

struct InputCheck {
    std::string name;
    CellType type;
    std::string value;    // the library's text of the value used
    std::string rule;     // the rule in words
    std::string choices;  // for an invalid input with a list: its valid values, comma-separated
    bool valid;
    std::string unit;
};

struct CalcResult {
    std::string model;
    std::vector<CellValue> inputs;      // every user input, in the sheet's order
    std::vector<CellValue> outputs;     // every model output, in the sheet's order
    std::vector<InputCheck> checks;     // every input that has a validity rule
    std::string dump;                   // the parameter set's reflect() text after all of the above
    std::vector<std::string> warnings;  // e.g. a device that has no row of its own in a table, or a
                                        // value the sheet's table asks to warn about (in cell order,
                                        // prsm::design::declaredWarnings)
    bool drawsNothing = false;          // the sheet declares power or current outputs, and all are 0
};

// The warning for a string input whose value has no row in tables that its default has rows in; empty
// when `missing` is.
std::string missingRowWarning(std::string const& input, std::string const& value,
                              std::vector<MissingRow> const& missing);

// Throws HostError(kExitDataFailure) when the data cannot be loaded or the calculation throws.
CalcResult runCalculation(Sheet const& sheet, std::vector<ResolvedInput> const& inputs);

// Everything above but the dump, read from an instance that `inputs` were set on and that has been
// calculated. Throws what the instance throws.
CalcResult readCalculation(Sheet const& sheet, SheetInstance& instance,
                           std::vector<ResolvedInput> const& inputs);

}  // namespace prsm::host
