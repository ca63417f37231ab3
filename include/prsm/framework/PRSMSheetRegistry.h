#pragma once
// Every generated sheet registers itself here under a short name ("TalvexCleLogic"), behind one
// type-erased interface: the command-line host, the sweeping tests and the benchmarks drive any sheet
// by name through it without knowing its classes.

#include <prsm/framework/PRSMSheetDesign.h>

#include <cstddef>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace prsm {

enum class CellType { Int, Float, String };
enum class CellCategory { UserInput, ModelOutput, IntermediateCalculation };

char const* toString(CellType type);
char const* toString(CellCategory category);

// A range a cell's value is expected in ([warnings.outside] of the sheet's table). Each bound is a
// number's text ("0.0") or the name of the sheet's cell that holds it ("VCCINT_VALID_MIN"); `message`
// is empty when the cell has no range.
struct ExpectedRange {
    std::string low;
    std::string high;
    std::string message;
};

struct CellInfo {
    std::string name;
    CellType type;
    CellCategory category;
    std::string declaredDefault;  // a constant's text, or a description of the computed default
    std::string rule;             // the validity rule in words, empty when the input is not checked
    std::string validityKey;      // the int-dispatch name that evaluates the rule, empty when none
    bool hasValidValues = false;  // a string input with a closed list of choices
    std::string unit;             // "V", "mW", "MHz", "%", "count", ...; empty when the cell has none
    // What the sheet's table asks a host to warn about once the cell is calculated (its [warnings]):
    // the message for a value below 0, above 0, holding the reserved "no value" (a result that did not
    // fit the cell) and outside its expected range; empty when none. Hosts fill in the "{value}",
    // "{unit}", "{low}" and "{high}" the messages hold; nothing is clamped.
    std::string belowZeroWarning;
    std::string aboveZeroWarning;
    std::string noValueWarning;
    ExpectedRange outside;
    std::string description{};  // one line in a user's words: what the cell is
};

// A list input's valid choices (the comma-separated text of SheetInstance::validValues) for a message:
// "one of A, B, C"; of a longer list the first `shown`, then "... (N more)".
std::string describeChoices(std::string const& validValues, std::size_t shown = 8);

// A table whose rows are keyed by a string input's value (one of the table's keys is named like the
// input: "device" for DEVICE) and that has no row for the value the input holds. The formulas then
// fall back to a default row or value, or fail when they have none.
struct MissingRow {
    std::string table;                // the table's setting name
    std::vector<std::string> values;  // the values its rows do have at that key, sorted
};

// A data file that a sheet needs could not be found, read or parsed. A sheet instance throws it in
// place of the configuration library's exceptions, which name no file: what() is the loader's one-line
// account (PRSMData::lastLoadFailure()), taken on the thread that failed. The library has already
// printed its own one-line report on standard error.
class DataFileError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// One parameter set of a sheet, driven by cell names and text values. Every call that evaluates
// something loads the sheet's data on first use, and throws DataFileError when it cannot.
class SheetInstance {
public:
    virtual ~SheetInstance() = default;

    // Writes a cell from text. Throws std::invalid_argument for an unknown cell or a text that does not
    // parse as the cell's type.
    virtual void set(std::string const& name, std::string const& text) = 0;
    // The stored value of a cell as text (sentinels included), without evaluating anything.
    virtual std::string get(std::string const& name) const = 0;
    // Evaluates a cell through the model's dispatch tables (applying an input's default) as text.
    virtual std::string evaluate(std::string const& name) = 0;
    // Evaluates the validity rule of an input: 1 valid, 0 invalid.
    virtual int isValid(std::string const& input) = 0;
    // The valid choices of a string input, comma-separated.
    virtual std::string validValues(std::string const& input) = 0;
    virtual void calculate() = 0;
    virtual void resetUserInputs() = 0;
    virtual std::string reflect() const = 0;
    // For a string input that selects rows of the sheet's tables: the tables without a row for the
    // value it holds (none while it holds no value). Loads the data on first use.
    virtual std::vector<MissingRow> tablesWithoutRow(std::string const& /*input*/) { return {}; }

    // Typed access by a cell's position in Sheet::cells(), without a name lookup or text: for hosts that
    // drive many instances. `storedNumber` is the stored value of an int or float cell (sentinels
    // included, 0 for a string cell); `setNumber` writes an int (truncated) or float cell.
    virtual double storedNumber(std::size_t cell) const = 0;
    virtual void setNumber(std::size_t cell, double value) = 0;
    // Evaluates an int or float cell as evaluate() does, as the number its text reads back as: a float's
    // nine significant digits, not the float widened. 0 for a string cell.
    virtual double evaluateNumber(std::size_t cell) = 0;
};

class Sheet {
public:
    virtual ~Sheet() = default;
    virtual std::string const& name() const = 0;
    virtual std::string const& description() const = 0;
    virtual std::vector<CellInfo> const& cells() const = 0;
    virtual std::unique_ptr<SheetInstance> create() const = 0;
    // The sheet's declarations for whole-design estimates; empty when the table declares none.
    virtual SheetDesign const& design() const;

    CellInfo const* findCell(std::string const& name) const;
};

class SheetRegistry {
public:
    static SheetRegistry& instance();

    void add(Sheet const& sheet);
    Sheet const* find(std::string const& name) const;
    // Every sheet, sorted by name.
    std::vector<Sheet const*> sheets() const;

private:
    std::vector<Sheet const*> m_sheets;
};

}  // namespace prsm
