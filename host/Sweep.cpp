#include <prsm/host/Failures.h>
#include <prsm/host/HostError.h>
#include <prsm/host/OutputPatterns.h>
#include <prsm/host/Sweep.h>
#include <prsm/host/Values.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cfloat>
#include <charconv>
#include <climits>
#include <cmath>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <mutex>
#include <thread>

namespace prsm::host {

namespace {

// More points than anyone means to ask for from one machine: a typo such as a step of 0.0001.
constexpr double kMaxPoints = 1e8;
constexpr std::size_t kChunk = 16;

std::string trim(std::string const& text) {
    std::size_t const first = text.find_first_not_of(" \t");
    if (first == std::string::npos) return "";
    return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

std::vector<std::string> split(std::string const& text, char separator) {
    std::vector<std::string> parts;
    std::size_t start = 0;
    for (std::size_t at; (at = text.find(separator, start)) != std::string::npos; start = at + 1)
        parts.push_back(text.substr(start, at - start));
    parts.push_back(text.substr(start));
    return parts;
}

// A number of the quantity's type, or HostError naming the quantity and the text.
double parseNumber(Quantity const& quantity, std::string const& raw) {
    std::string const text = trim(raw);
    char* end = nullptr;
    errno = 0;
    double const value = text.empty() ? 0.0 : std::strtod(text.c_str(), &end);
    bool const parsed = !text.empty() && *end == '\0' && std::isfinite(value);
    if (quantity.type == CellType::Int) {
        if (!parsed || value != std::floor(value) || value < INT_MIN || value > INT_MAX)
            throw HostError(kExitBadInput,
                            quantity.name + " takes a whole number, not \"" + raw + "\" (an int input)");
        return value;
    }
    if (!parsed || std::fabs(value) > FLT_MAX)
        throw HostError(kExitBadInput,
                        quantity.name + " takes a number, not \"" + raw + "\" (a float input)");
    return static_cast<double>(static_cast<float>(value));
}

Column emptyColumn(Quantity const& quantity) {
    Column column;
    column.quantity = quantity;
    return column;
}

void appendValue(Column& column, Column const& from, std::size_t point) {
    if (from.quantity.type == CellType::String)
        column.texts.push_back(from.texts[point]);
    else
        column.numbers.push_back(from.numbers[point]);
}

Column parseRange(Quantity const& quantity, std::string const& text) {
    std::vector<std::string> const parts = split(text, ':');
    if (parts.size() != 3)
        throw HostError(kExitBadInput, "the range of " + quantity.name + " is \"" + text +
                                           "\"; a range is START:STOP:STEP, a list a,b,c");
    // The bounds and the step are read as plain numbers; the values are then rounded to the cell's type.
    Quantity const exact{quantity.name, quantity.type == CellType::Int ? CellType::Int : CellType::Float, ""};
    auto number = [&](std::string const& part) {
        std::string const t = trim(part);
        char* end = nullptr;
        double const value = t.empty() ? 0.0 : std::strtod(t.c_str(), &end);
        if (t.empty() || *end != '\0' || !std::isfinite(value)) parseNumber(exact, part);  // throws
        if (quantity.type == CellType::Int) parseNumber(exact, part);                      // whole only
        return value;
    };
    double const start = number(parts[0]);
    double const stop = number(parts[1]);
    double const step = number(parts[2]);
    if (step == 0.0) throw HostError(kExitBadInput, "the step of " + quantity.name + "=" + text + " is zero");
    if ((stop - start) * step < 0.0)
        throw HostError(kExitBadInput, "the step of " + quantity.name + "=" + text + " goes away from " +
                                           trim(parts[1]) + "; use a " +
                                           (step > 0 ? "negative" : "positive") + " step");
    // Whole steps to STOP, rounding a fraction above one half up: the last value lies within half a step
    // of STOP, never half a step or more beyond it.
    double const steps = std::ceil((stop - start) / step - 0.5);
    if (steps + 1 > kMaxPoints)
        throw HostError(kExitBadInput, quantity.name + "=" + text + " makes more than 100000000 points");
    Column column = emptyColumn(quantity);
    auto const count = static_cast<std::size_t>(steps) + 1;
    column.numbers.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
        double const value = start + static_cast<double>(i) * step;
        column.numbers.push_back(
            quantity.type == CellType::Int ? value : static_cast<double>(static_cast<float>(value)));
    }
    return column;
}

Column parseList(Quantity const& quantity, std::string const& text) {
    std::vector<std::string> const items = split(text, ',');
    bool const allEmpty =
        std::all_of(items.begin(), items.end(), [](std::string const& item) { return trim(item).empty(); });
    if (allEmpty) throw HostError(kExitBadInput, "the list of values for " + quantity.name + " is empty");
    Column column = emptyColumn(quantity);
    for (std::string const& item : items) {
        if (trim(item).empty())
            throw HostError(kExitBadInput, "the list of values for " + quantity.name + " (\"" + text +
                                               "\") has an empty item");
        if (quantity.type == CellType::String)
            column.texts.push_back(trim(item));
        else
            column.numbers.push_back(parseNumber(quantity, item));
    }
    return column;
}

}  // namespace

std::string pointText(std::vector<Column> const& points, std::size_t point) {
    std::string text;
    for (Column const& column : points) {
        if (!text.empty()) text += ", ";
        text += column.quantity.name + "=" + column.displayText(point);
    }
    return text;
}

std::string Column::cellText(std::size_t point) const {
    switch (quantity.type) {
        case CellType::String:
            return texts[point];
        case CellType::Int:
            return std::to_string(static_cast<long long>(numbers[point]));
        case CellType::Float: {
            // The shortest text that reads back as the same float; far cheaper than printf's digits.
            char text[32];
            auto const end = std::to_chars(text, text + sizeof text, static_cast<float>(numbers[point])).ptr;
            return std::string(text, end);
        }
    }
    return "";
}

std::string Column::displayText(std::size_t point) const {
    if (quantity.type == CellType::Float) return shortestFloatText(static_cast<float>(numbers[point]));
    return cellText(point);
}

double numberFromText(CellType type, std::string const& text) {
    if (type == CellType::Int) return static_cast<double>(std::strtol(text.c_str(), nullptr, 10));
    float value = 0.0f;
    if (std::from_chars(text.data(), text.data() + text.size(), value).ec != std::errc())
        value = std::strtof(text.c_str(), nullptr);  // what from_chars leaves out ("+1", blanks)
    return static_cast<double>(value);
}

bool isSweptValue(Quantity const& quantity, std::string const& text) {
    if (text.find(',') != std::string::npos) return true;
    return quantity.type != CellType::String && text.find(':') != std::string::npos;
}

Column parseValues(Quantity const& quantity, std::string const& text) {
    if (quantity.type != CellType::String && text.find(':') != std::string::npos) {
        if (text.find(',') != std::string::npos)
            throw HostError(kExitBadInput, quantity.name + "=" + text +
                                               " mixes a range and a list; give START:STOP:STEP or a,b,c");
        return parseRange(quantity, text);
    }
    return parseList(quantity, text);
}

Column numberColumn(Quantity const& quantity, std::vector<double> const& values) {
    Column column = emptyColumn(quantity);
    column.numbers.reserve(values.size());
    for (double const value : values) {
        bool const whole =
            std::isfinite(value) && value == std::floor(value) && value >= INT_MIN && value <= INT_MAX;
        if (quantity.type == CellType::Int && !whole) {
            char text[32];
            std::snprintf(text, sizeof text, "%.17g", value);
            throw HostError(kExitBadInput,
                            quantity.name + " takes a whole number, not " + text + " (an int input)");
        }
        if (quantity.type == CellType::Float && !(std::fabs(value) <= FLT_MAX)) {
            char text[32];
            std::snprintf(text, sizeof text, "%.17g", value);
            throw HostError(kExitBadInput,
                            quantity.name + " takes a finite number, not " + text + " (a float input)");
        }
        if (quantity.type == CellType::String)
            throw HostError(kExitBadInput, quantity.name + " takes text, not numbers (a string input)");
        column.numbers.push_back(
            quantity.type == CellType::Int ? value : static_cast<double>(static_cast<float>(value)));
    }
    return column;
}

Column textColumn(Quantity const& quantity, std::vector<std::string> const& values) {
    if (quantity.type != CellType::String) {
        Column column = emptyColumn(quantity);
        for (std::string const& value : values) column.numbers.push_back(parseNumber(quantity, value));
        return column;
    }
    Column column = emptyColumn(quantity);
    column.texts = values;
    return column;
}

Column parseFixedValue(Quantity const& quantity, std::string const& text) {
    Column column = emptyColumn(quantity);
    if (quantity.type == CellType::String)
        column.texts.push_back(text);
    else
        column.numbers.push_back(parseNumber(quantity, text));
    return column;
}

std::vector<Column> gridPoints(std::vector<Column> const& axes) {
    if (axes.size() > 2)
        throw HostError(kExitBadInput,
                        "a sweep takes one or two variables, not " + std::to_string(axes.size()));
    std::vector<Column> points;
    for (Column const& axis : axes) points.push_back(emptyColumn(axis.quantity));
    if (axes.empty()) return points;
    std::size_t const inner = axes.size() == 2 ? axes[1].size() : 1;
    for (std::size_t i = 0; i < axes[0].size(); ++i)
        for (std::size_t j = 0; j < inner; ++j) {
            appendValue(points[0], axes[0], i);
            if (axes.size() == 2) appendValue(points[1], axes[1], j);
        }
    return points;
}

std::vector<Quantity> selectOutputs(SweepTarget const& target, std::string const& list) {
    std::vector<std::string> const patterns = parseOutputPatterns(list);
    if (patterns.empty()) return target.defaultOutputs();
    std::vector<Quantity> const& outputs = target.outputs();
    std::vector<std::string> names;
    for (Quantity const& output : outputs) names.push_back(output.name);
    std::vector<bool> const picked = pickOutputs(names, patterns, target.name(), target.outputsHint());
    std::vector<Quantity> selected;
    for (std::size_t i = 0; i < outputs.size(); ++i)
        if (picked[i]) selected.push_back(outputs[i]);
    return selected;
}

SweepResult runSweep(SweepTarget const& target, std::vector<Column> const& fixed,
                     std::vector<Column> const& points, std::vector<Quantity> const& outputs,
                     SweepOptions const& options) {
    if (points.empty())
        throw HostError(kExitBadInput, "a sweep needs a variable with a range or a list of values");
    std::size_t const total = points.front().size();
    for (Column const& column : points)
        if (column.size() != total)
            throw HostError(kExitBadInput, "the values of " + column.quantity.name + " number " +
                                               std::to_string(column.size()) + ", those of " +
                                               points.front().quantity.name + " " + std::to_string(total));
    if (total == 0) throw HostError(kExitBadInput, "no values for " + points.front().quantity.name);

    // Texts that set the cells, made once: the fixed inputs', and each point's.
    std::vector<std::pair<std::string, std::string>> fixedTexts;
    for (Column const& column : fixed) fixedTexts.emplace_back(column.quantity.name, column.cellText(0));

    SweepResult result;
    result.target = target.name();
    result.kind = target.kind();
    result.rest = target.restDescription();
    result.total = total;
    result.fixed = fixed;
    result.notes.resize(total);
    for (Quantity const& output : outputs) {
        Column column = emptyColumn(output);
        if (output.type == CellType::String)
            column.texts.resize(total);
        else
            column.numbers.resize(total);
        result.outputs.push_back(std::move(column));
    }

    unsigned const hardware = std::max(1u, std::thread::hardware_concurrency());
    unsigned const wanted = options.threads == 0 ? hardware : options.threads;
    auto const threads = static_cast<unsigned>(
        std::max<std::size_t>(1, std::min<std::size_t>(wanted, (total + kChunk - 1) / kChunk)));

    std::vector<unsigned char> done(total, 0);
    std::atomic<std::size_t> next{0};
    std::atomic<std::size_t> doneCount{0};
    std::atomic<bool> stop{false};
    std::mutex mutex;
    std::condition_variable finished;
    unsigned running = threads;
    bool failed = false;
    std::size_t failedPoint = total;
    std::string failure;

    auto worker = [&]() {
        std::unique_ptr<TargetEvaluation> evaluation;
        std::size_t point = total;
        try {
            evaluation = target.create();
            while (!stop.load(std::memory_order_relaxed)) {
                std::size_t const first = next.fetch_add(kChunk);
                if (first >= total) break;
                std::size_t const last = std::min(total, first + kChunk);
                for (point = first; point < last && !stop.load(std::memory_order_relaxed); ++point) {
                    evaluation->reset();
                    for (auto const& [name, text] : fixedTexts) evaluation->set(name, text);
                    for (Column const& column : points)
                        evaluation->set(column.quantity.name, column.cellText(point));
                    evaluation->evaluate();
                    std::string note = evaluation->note();
                    for (Column& column : result.outputs) {
                        if (!note.empty()) {
                            if (column.quantity.type != CellType::String)
                                column.numbers[point] = std::numeric_limits<double>::quiet_NaN();
                            continue;
                        }
                        std::string const text = evaluation->read(column.quantity.name);
                        if (column.quantity.type == CellType::String)
                            column.texts[point] = text;
                        else
                            column.numbers[point] = numberFromText(column.quantity.type, text);
                    }
                    result.notes[point] = std::move(note);
                    done[point] = 1;
                }
                doneCount.fetch_add(point - first, std::memory_order_relaxed);
            }
        } catch (...) {
            std::string const what = describeCurrentException();
            std::lock_guard<std::mutex> lock(mutex);
            if (!failed || point < failedPoint) {
                failedPoint = point;
                failure = what;
            }
            failed = true;
            stop = true;
        }
        std::lock_guard<std::mutex> lock(mutex);
        if (--running == 0) finished.notify_all();
    };

    std::vector<std::thread> pool;
    for (unsigned i = 0; i < threads; ++i) pool.emplace_back(worker);
    bool stopRequested = false;
    {
        std::unique_lock<std::mutex> lock(mutex);
        while (running > 0) {
            finished.wait_for(lock, options.pollInterval, [&] { return running == 0; });
            if (running == 0) break;
            lock.unlock();
            if (options.progress) options.progress(doneCount.load(), total);
            if (!stopRequested && options.stopRequested && options.stopRequested()) {
                stopRequested = true;
                stop = true;
            }
            lock.lock();
        }
    }
    for (std::thread& thread : pool) thread.join();
    if (options.progress) options.progress(doneCount.load(), total);

    if (failed && failedPoint >= total)
        throw HostError(kExitDataFailure, "calculating " + target.name() + " failed: " + failure);
    if (failed)
        throw HostError(kExitDataFailure, "calculating " + target.name() + " failed at point " +
                                              std::to_string(failedPoint + 1) + " of " +
                                              std::to_string(total) + " (" + pointText(points, failedPoint) +
                                              "): " + failure);

    std::size_t rows = 0;
    while (rows < total && done[rows] != 0) ++rows;
    result.rows = rows;
    result.stopped = rows < total;
    for (Column const& column : points) {
        Column cut = emptyColumn(column.quantity);
        for (std::size_t i = 0; i < rows; ++i) appendValue(cut, column, i);
        result.variables.push_back(std::move(cut));
    }
    for (Column& column : result.outputs) {
        if (column.quantity.type == CellType::String)
            column.texts.resize(rows);
        else
            column.numbers.resize(rows);
    }
    result.notes.resize(rows);
    return result;
}

}  // namespace prsm::host
