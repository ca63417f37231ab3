#pragma once
// One sheet of a design as the engine runs it: a block, the static sheet or the module board. Each is a
// parameter set of its sheet with the inputs the file gives it and those changed since, the rail
// voltages and other blocks' values wired into it, whether it must be calculated again, and the error
// and warnings its last calculation left. The roles differ only in what the engine writes into the
// parameter set before a calculation and reads out of it after; that is the `wire` and `read` of
// calculate().

#include <prsm/design/Estimate.h>
#include <prsm/design/References.h>
#include <prsm/framework/PRSMException.h>
#include <prsm/framework/PRSMSheetRegistry.h>

#include <cstddef>
#include <exception>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace prsm::design {

// Runs `body`; the message of what it threw (the library's exceptions or the standard ones), or "" when
// it returned.
template <typename Body>
std::string failureOf(Body&& body) {
    try {
        body();
    } catch (PRSMException const& e) {
        return e.what();
    } catch (std::exception const& e) {
        return e.what();
    }
    return {};
}

class SheetRunner {
public:
    // Creates the parameter set and writes the device's fields and the file's inputs into it. Throws
    // DesignError for an input the sheet refuses; device fields it does not know go to `deviceWarnings`.
    SheetRunner(Block const& given, Sheet const& sheet, Design const& design,
                std::vector<Warning>& deviceWarnings);

    Block const& given() const { return *m_given; }
    Sheet const& sheet() const { return *m_sheet; }
    SheetInstance& instance() const { return *m_instance; }

    // The input cells that take a rail's voltage, as (cell, rail) in the engine's rail numbering.
    void takeVoltage(std::size_t cell, std::size_t rail) { m_voltageCells.emplace_back(cell, rail); }
    std::vector<std::pair<std::size_t, std::size_t>> const& voltageCells() const { return m_voltageCells; }
    // The inputs it copies from blocks calculated before it.
    void takeLinks(std::vector<Link> links) { m_links = std::move(links); }
    std::vector<Link> const& links() const { return m_links; }

    // Changes one input as `name` (the runner as the caller named it) for messages; the next calculation
    // takes it. Throws DesignError for a cell that is no input, one the design or another block sets, or
    // text that does not parse.
    void setInput(std::string const& name, std::string const& cell, std::string const& text);
    // Undoes every setInput; true when there was one to undo.
    bool clearInputs();
    // Whether the file or a setInput gives the cell a value.
    bool isGiven(std::string const& cell) const;

    // To be calculated again; invalidate() also checks its inputs again.
    void markDirty() { m_dirty = true; }
    void invalidate() { m_dirty = m_validityDue = true; }
    bool dirty() const { return m_dirty; }
    void revalidate() { m_validityDue = true; }
    bool validityDue() const { return m_validityDue; }
    // Whether it was calculated since the report last described it.
    bool changed() const { return m_changed; }
    void markDescribed() { m_changed = false; }

    // Calculates a fresh parameter set: the sheet's defaults, the device, the file's inputs and those
    // changed since, the rail voltages, then `wire(instance)` (what the role feeds in), the values it
    // copies from `runners`, the calculation and `read(instance)` (what the role takes out). A fresh set,
    // because the generated getters store a computed default into its input cell: a set calculated before
    // would keep a default derived from an input that has changed since (a signal rate from an old clock).
    // False, with error() saying why, when any step throws.
    template <typename Wire, typename Read>
    bool calculate(std::vector<double> const& voltage, std::vector<SheetRunner> const& runners, Wire&& wire,
                   Read&& read) {
        restore(voltage);
        m_error = failureOf([&] {
            wire(*m_instance);
            copyLinks(runners);
            m_instance->calculate();
            read(*m_instance);
        });
        m_dirty = false;
        m_changed = true;
        return m_error.empty();
    }
    // As calculate(), but the sheet is not calculated as a whole: `read` evaluates the cells it needs
    // (a sheet of which the design wants a few figures, whose data may lack rows it never touches). An
    // evaluated cell keeps what it worked out, so each evaluation starts from a new parameter set, or,
    // with SameSet, from the last one with its inputs restored: `read` then clears each cell it
    // evaluates, which must be all the sheet worked out from the inputs that changed.
    enum class Start { NewSet, SameSet };
    template <typename Wire, typename Read>
    bool evaluate(std::vector<double> const& voltage, std::vector<SheetRunner> const& runners, Wire&& wire,
                  Read&& read, Start start = Start::NewSet) {
        if (start == Start::NewSet) m_instance = m_sheet->create();
        restore(voltage);
        m_error = failureOf([&] {
            wire(*m_instance);
            copyLinks(runners);
            read(*m_instance);
        });
        m_dirty = false;
        m_changed = true;
        return m_error.empty();
    }
    // Fails without calculating (a block it reads from failed).
    void fail(std::string why);
    std::string const& error() const { return m_error; }

    // A number cell as the last calculation left it, evaluated when the calculation did not reach it.
    double number(std::size_t cell) const;

    // Checks the inputs against their valid values and the table's declared warnings when due.
    void checkValidity(std::vector<double> const& power);
    std::vector<Warning> const& warnings() const { return m_warnings; }

private:
    void restore(std::vector<double> const& voltage);
    void copyLinks(std::vector<SheetRunner> const& runners);

    Block const* m_given;  // as the design file gives it
    Sheet const* m_sheet;
    std::unique_ptr<SheetInstance> m_instance;
    std::vector<std::pair<std::string, std::string>> m_device;   // device inputs in the sheet's spelling
    std::vector<std::pair<std::string, std::string>> m_changes;  // setInput's, cell -> text
    std::vector<std::pair<std::size_t, std::size_t>> m_voltageCells;
    std::vector<Link> m_links;
    bool m_dirty = true;
    bool m_changed = true;
    bool m_validityDue = true;
    std::string m_error;
    std::vector<Warning> m_warnings;
};

}  // namespace prsm::design
