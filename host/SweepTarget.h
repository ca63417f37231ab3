#pragma once
// What a sweep evaluates, behind one small interface: quantities that can be set by name, one
// evaluation, and named results with their units. A single sheet is one kind of target; a whole design
// plugs in as another by implementing the same two classes (its variables are `block.CELL` names and
// design-level settings, its outputs the report's figures), and the sweep, its command and the Python
// module then work on it unchanged.

#include <prsm/framework/PRSMSheetRegistry.h>

#include <memory>
#include <string>
#include <vector>

namespace prsm::host {

// A named value of a target: its type decides how sweep values are parsed and written.
struct Quantity {
    std::string name;
    CellType type = CellType::Float;
    std::string unit;           // "" when the quantity has none (or none is known)
    std::string description{};  // a sheet cell's one line; "" for the design's own quantities
};

// One evaluation context of a target, used by one thread at a time.
class TargetEvaluation {
public:
    virtual ~TargetEvaluation() = default;
    // Back to the state of a fresh evaluation: every variable at its default.
    virtual void reset() = 0;
    // Sets a variable from text already checked against the quantity's type.
    virtual void set(std::string const& name, std::string const& text) = 0;
    // Evaluates everything; throws whatever the library throws.
    virtual void evaluate() = 0;
    // The text of an output after evaluate(), as the library writes it.
    virtual std::string read(std::string const& name) = 0;
    // After evaluate(): why this point has no figures although nothing failed (a design whose
    // junction temperature has no steady state: "thermal runaway"), or "" when it has them.
    virtual std::string note() const { return {}; }
};

class SweepTarget {
public:
    virtual ~SweepTarget() = default;
    virtual std::string const& name() const = 0;
    // The quantities that can be set, and the results that can be read.
    virtual std::vector<Quantity> const& variables() const = 0;
    virtual std::vector<Quantity> const& outputs() const = 0;
    // Why `name` cannot be set, with close names: called for a name that is not among variables().
    virtual std::string notAVariable(std::string const& name) const = 0;
    virtual std::unique_ptr<TargetEvaluation> create() const = 0;

    // "model" or "design": the key that names the target in JSON rows.
    virtual char const* kind() const { return "model"; }
    // The results kept when no output is asked for.
    virtual std::vector<Quantity> const& defaultOutputs() const { return outputs(); }
    // Where the outputs are listed, for a pattern that matches none.
    virtual std::string outputsHint() const;
    // Why these variables cannot be set together, or "" when they can.
    virtual std::string conflict(std::vector<std::string> const& /*names*/) const { return {}; }
    // What the quantities neither swept nor fixed hold, for a picture's title.
    virtual std::string restDescription() const { return "every other input at its default"; }

    Quantity const* findVariable(std::string const& name) const;
    Quantity const* findOutput(std::string const& name) const;
};

// The unit of a cell. Every unit the host shows goes through here.
std::string cellUnit(CellInfo const& cell);

// One registered sheet as a target: its user inputs are the variables, its model outputs the results.
class SheetTarget final : public SweepTarget {
public:
    explicit SheetTarget(Sheet const& sheet);

    std::string const& name() const override { return m_sheet.name(); }
    std::vector<Quantity> const& variables() const override { return m_variables; }
    std::vector<Quantity> const& outputs() const override { return m_outputs; }
    std::string notAVariable(std::string const& name) const override;
    std::unique_ptr<TargetEvaluation> create() const override;

    Sheet const& sheet() const { return m_sheet; }

private:
    Sheet const& m_sheet;
    std::vector<Quantity> m_variables;
    std::vector<Quantity> m_outputs;
};

}  // namespace prsm::host
