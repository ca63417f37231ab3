#pragma once
// The sweep core shared by `prsm sweep` and the Python module: the values a variable takes (a range or
// a list), the points of a sweep, and their evaluation on several threads with progress, stopping and
// the failing point named. Every value is checked before anything is evaluated.

#include <prsm/host/SweepTarget.h>

#include <chrono>
#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace prsm::host {

// The values of one quantity, one per point: numbers for int and float quantities (an int is whole,
// a float already rounded to single precision, as the cell will hold it), texts for strings.
struct Column {
    Quantity quantity;
    std::vector<double> numbers;
    std::vector<std::string> texts;

    std::size_t size() const { return quantity.type == CellType::String ? texts.size() : numbers.size(); }
    // The text that sets the cell to the value exactly ("250", "0.1", "LUT_LOGIC").
    std::string cellText(std::size_t point) const;
    // The value as people read it: floats in their shortest exact form.
    std::string displayText(std::size_t point) const;
};

// True when `text` asks for several values of `quantity`: a range START:STOP:STEP (numbers only) or a
// list a,b,c. A single value is a fixed input.
bool isSweptValue(Quantity const& quantity, std::string const& text);

// The values of a range or a list. A range runs START, START + STEP, ... for as long as a value lies
// less than half a step beyond STOP, so STOP is included despite rounding (0:1:0.1 ends at 1) and
// 0:1:0.3 ends at 0.9. Throws HostError(kExitBadInput) for a zero or
// wrong-signed step, an empty list or item, a value that does not parse as the quantity's type.
Column parseValues(Quantity const& quantity, std::string const& text);

// Values handed over as numbers (int quantities take whole numbers, float ones any finite number, kept
// in single precision) or as texts (parsed for numeric quantities). Throws HostError(kExitBadInput).
Column numberColumn(Quantity const& quantity, std::vector<double> const& values);
Column textColumn(Quantity const& quantity, std::vector<std::string> const& values);

// One value for a fixed input, checked as above.
Column parseFixedValue(Quantity const& quantity, std::string const& text);

// Every combination of the axes' values, the first axis varying slowest. Throws
// HostError(kExitBadInput) when there are more than two axes.
std::vector<Column> gridPoints(std::vector<Column> const& axes);

// The outputs that an `--outputs` list picks (host/OutputPatterns.h), in the target's order; the
// target's default outputs for a blank list. Throws HostError(kExitBadInput) when a pattern matches
// nothing.
std::vector<Quantity> selectOutputs(SweepTarget const& target, std::string const& list);

struct SweepOptions {
    unsigned threads = 0;  // 0: one per hardware thread
    // Called on the calling thread about every `pollInterval` with points done and in all.
    std::function<void(std::size_t done, std::size_t total)> progress;
    // Called as often; returning true stops the sweep after the points under way.
    std::function<bool()> stopRequested;
    std::chrono::milliseconds pollInterval{50};
};

struct SweepResult {
    std::string target;
    std::vector<Column> variables;  // the points' values, as given (cut to `rows`)
    std::vector<Column> outputs;    // one value per row
    std::vector<Column> fixed;      // the fixed inputs, one value each
    std::vector<std::string> notes;  // per row: why it has no figures (its numbers NaN), else ""
    std::size_t rows = 0;           // the points evaluated: all of them unless stopped
    std::size_t total = 0;          // the points asked for
    bool stopped = false;

    std::string kind = "model";                             // the target's kind()
    std::string rest = "every other input at its default";  // the target's restDescription()
};

// Evaluates every point: a fresh evaluation per point (defaults re-derived), the fixed inputs, the
// point's values, evaluate, read the outputs. Columns of `points` have equal length. A stopped sweep
// keeps the first rows that were all done. A point that fails stops the sweep and throws
// HostError(kExitDataFailure) naming the first failing point and its values. A point the target notes
// as having no figures (a thermal runaway) is a row of its own: NaN numbers, empty texts, its note.
SweepResult runSweep(SweepTarget const& target, std::vector<Column> const& fixed,
                     std::vector<Column> const& points, std::vector<Quantity> const& outputs,
                     SweepOptions const& options = {});

// A point's values as people read them: "theta_ja=8, BLOCK.CELL=250".
std::string pointText(std::vector<Column> const& points, std::size_t point);

// Reads a library value text as a number of the quantity's type (floats through single precision).
double numberFromText(CellType type, std::string const& text);

}  // namespace prsm::host
