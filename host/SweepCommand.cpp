#include <prsm/host/Commands.h>
#include <prsm/host/DesignTarget.h>
#include <prsm/host/HostError.h>
#include <prsm/host/Inputs.h>
#include <prsm/host/Plot.h>
#include <prsm/host/SweepCommand.h>
#include <prsm/host/TextTable.h>
#include <prsm/host/Values.h>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <csignal>
#include <memory>
#include <ostream>
#include <set>

#include <unistd.h>

namespace prsm::host {

namespace {

std::atomic<bool> g_interrupted{false};

extern "C" void onInterrupt(int) {
    g_interrupted = true;
}

// Ctrl-C asks the sweep to stop for as long as this lives; the previous handler comes back after.
class InterruptGuard {
public:
    InterruptGuard() {
        g_interrupted = false;
        struct sigaction action {};
        action.sa_handler = onInterrupt;
        sigemptyset(&action.sa_mask);
        sigaction(SIGINT, &action, &m_previous);
        // A program started with Ctrl-C ignored (in the background of a script) keeps ignoring it.
        if (m_previous.sa_handler == SIG_IGN) sigaction(SIGINT, &m_previous, nullptr);
    }
    ~InterruptGuard() { sigaction(SIGINT, &m_previous, nullptr); }
    InterruptGuard(InterruptGuard const&) = delete;
    InterruptGuard& operator=(InterruptGuard const&) = delete;

private:
    struct sigaction m_previous {};
};

std::string csvField(std::string const& text) {
    if (text.find_first_of(",\"\n") == std::string::npos) return text;
    std::string out = "\"";
    for (char c : text) out += c == '"' ? std::string("\"\"") : std::string(1, c);
    return out + "\"";
}

// A point without figures (a thermal runaway) holds NaN in its numeric outputs.
bool missing(Column const& column, std::size_t row) {
    return column.quantity.type != CellType::String && std::isnan(column.numbers[row]);
}

bool anyNote(SweepResult const& result) {
    return std::any_of(result.notes.begin(), result.notes.end(), [](std::string const& n) { return !n.empty(); });
}

std::string outputText(Column const& column, std::size_t row) {
    switch (column.quantity.type) {
        case CellType::String:
            return column.texts[row];
        case CellType::Int:
            return column.cellText(row);
        case CellType::Float:
            return shortestFloatText(static_cast<float>(column.numbers[row]));
    }
    return "";
}

std::vector<Column const*> allColumns(SweepResult const& result) {
    std::vector<Column const*> columns;
    for (Column const& column : result.variables) columns.push_back(&column);
    for (Column const& column : result.outputs) columns.push_back(&column);
    return columns;
}

std::string header(Quantity const& quantity) {
    return quantity.unit.empty() ? quantity.name : quantity.name + " (" + quantity.unit + ")";
}

// Prints "done/total" once the sweep has run for a second: in place on a terminal, else every 5 s.
class Progress {
public:
    explicit Progress(std::ostream& err) : m_err(err), m_terminal(isatty(STDERR_FILENO) != 0) {}
    void operator()(std::size_t done, std::size_t total) {
        auto const now = std::chrono::steady_clock::now();
        if (now - m_start < std::chrono::seconds(1)) return;
        if (!m_terminal && m_shown && now - m_last < std::chrono::seconds(5)) return;
        m_last = now;
        m_shown = true;
        m_err << (m_terminal ? "\r" : "") << "prsm: sweep: " << done << " of " << total << " points ("
              << done * 100 / total << "%)" << (m_terminal ? "" : "\n") << std::flush;
    }
    void finish() {
        if (m_shown && m_terminal) m_err << "\n";
    }

private:
    std::ostream& m_err;
    bool m_terminal;
    bool m_shown = false;
    std::chrono::steady_clock::time_point const m_start = std::chrono::steady_clock::now();
    std::chrono::steady_clock::time_point m_last;
};

}  // namespace

CLI::App* addSweepSubcommand(CLI::App& app, Request& request) {
    CLI::App* sweep = app.add_subcommand(
        "sweep",
        "Calculate a model over one or two variables (a range or a list) and print or plot the rows");
    sweep->add_option("model", request.model, "Model name (see `prsm models`) or a design file (DESIGN.json)")
        ->required();
    sweep->add_option(
        "assignments", request.assignments,
        "VAR=START:STOP:STEP or VAR=a,b,c (one or two variables), NAME=VALUE (fixed inputs); for a "
        "design BLOCK.CELL, *.CELL, static.CELL, rail.RAIL, junction_temperature, "
        "ambient_temperature, theta_ja");
    sweep->add_option(
        "--outputs", request.sweep.outputs,
        "Outputs to keep: comma-separated names or patterns with * and ? (default: a model's every "
        "output, a design's totals)");
    CLI::Option* csv = sweep->add_flag("--csv", request.sweep.csv, "Print the rows as CSV");
    CLI::Option* json = sweep->add_flag("--json", request.sweep.json, "Print the rows as JSON");
    csv->excludes(json);
    sweep->add_option("--plot", request.sweep.plot,
                      "Also draw the rows into FILE.png or FILE.svg with gnuplot");
    sweep->add_option("--threads", request.sweep.threads, "Threads to calculate on (default: one per core)")
        ->check(CLI::NonNegativeNumber);
    return sweep;
}

std::string sweepCsv(SweepResult const& result) {
    std::vector<Column const*> const columns = allColumns(result);
    std::string text;
    for (std::size_t i = 0; i < columns.size(); ++i)
        text += (i ? "," : "") + csvField(columns[i]->quantity.name);
    bool const notes = anyNote(result);
    text += notes ? ",note\n" : "\n";
    for (std::size_t row = 0; row < result.rows; ++row) {
        for (std::size_t i = 0; i < result.variables.size(); ++i)
            text += (i ? "," : "") + csvField(result.variables[i].displayText(row));
        for (Column const& column : result.outputs)
            text += "," + (missing(column, row) ? std::string() : csvField(outputText(column, row)));
        if (notes) text += "," + csvField(result.notes[row]);
        text += "\n";
    }
    return text;
}

std::string sweepJson(SweepResult const& result) {
    nlohmann::ordered_json json;
    json[result.kind] = result.target;
    nlohmann::ordered_json fixed = nlohmann::ordered_json::object();
    for (Column const& column : result.fixed)
        fixed[column.quantity.name] = jsonValue(column.quantity.type, column.cellText(0));
    json["fixed"] = fixed;
    auto describe = [](std::vector<Column> const& columns) {
        nlohmann::ordered_json list = nlohmann::ordered_json::array();
        for (Column const& column : columns)
            list.push_back({{"name", column.quantity.name},
                            {"type", toString(column.quantity.type)},
                            {"unit", column.quantity.unit},
                            {"description", column.quantity.description}});
        return list;
    };
    json["variables"] = describe(result.variables);
    json["outputs"] = describe(result.outputs);
    nlohmann::ordered_json rows = nlohmann::ordered_json::array();
    for (std::size_t row = 0; row < result.rows; ++row) {
        nlohmann::ordered_json values;
        for (Column const* column : allColumns(result))
            values[column->quantity.name] =
                column->quantity.type == CellType::String ? nlohmann::ordered_json(column->texts[row])
                : missing(*column, row)                   ? nlohmann::ordered_json(nullptr)
                                                          : jsonValue(column->quantity.type, column->cellText(row));
        if (!result.notes[row].empty()) values["note"] = result.notes[row];
        rows.push_back(values);
    }
    json["rows"] = rows;
    json["complete"] = !result.stopped;
    return json.dump(2) + "\n";
}

std::string sweepTable(SweepResult const& result) {
    std::vector<Column const*> const columns = allColumns(result);
    TextRow head;
    for (Column const* column : columns) head.push_back(header(column->quantity));
    bool const notes = anyNote(result);
    if (notes) head.push_back("note");
    std::vector<TextRow> rows;
    for (std::size_t row = 0; row < result.rows; ++row) {
        TextRow cells;
        for (Column const& column : result.variables) cells.push_back(column.displayText(row));
        for (Column const& column : result.outputs)
            cells.push_back(missing(column, row) ? "-" : outputText(column, row));
        if (notes) cells.push_back(result.notes[row]);
        rows.push_back(std::move(cells));
    }
    return formatTable(head, rows);
}

int runSweepRequest(Request const& request, std::ostream& out, std::ostream& err) {
    std::unique_ptr<SweepTarget> const owned =
        namesDesignFile(request.model)
            ? std::unique_ptr<SweepTarget>(std::make_unique<DesignTarget>(request.model))
            : std::make_unique<SheetTarget>(findSheet(request.model));
    SweepTarget const& target = *owned;
    SweepSettings const& settings = request.sweep;

    // Everything is checked before anything is calculated; every problem is reported at once.
    std::vector<std::string> problems;
    std::vector<Column> axes;
    std::vector<Column> fixed;
    std::set<std::string> seen;
    for (std::string const& argument : request.assignments) {
        try {
            Assignment const assignment = parseAssignment(argument);
            Quantity const* variable = target.findVariable(assignment.name);
            if (variable == nullptr) throw HostError(kExitBadInput, target.notAVariable(assignment.name));
            if (!seen.insert(assignment.name).second)
                throw HostError(kExitBadInput, assignment.name + " is given twice");
            if (isSweptValue(*variable, assignment.text))
                axes.push_back(parseValues(*variable, assignment.text));
            else
                fixed.push_back(parseFixedValue(*variable, assignment.text));
        } catch (HostError const& e) {
            problems.push_back(e.what());
        }
    }
    std::vector<std::string> names;
    for (Column const& column : axes) names.push_back(column.quantity.name);
    for (Column const& column : fixed) names.push_back(column.quantity.name);
    if (std::string const why = target.conflict(names); !why.empty()) problems.push_back(why);
    if (axes.empty())
        problems.push_back("a sweep needs one or two variables given as VAR=START:STOP:STEP or VAR=a,b,c");
    if (axes.size() > 2)
        problems.push_back("a sweep takes one or two variables, not " + std::to_string(axes.size()));
    std::vector<Quantity> outputs;
    try {
        outputs = selectOutputs(target, settings.outputs);
        if (!settings.plot.empty()) {
            plotTerminal(settings.plot);
            checkPlottable(outputs);
        }
    } catch (HostError const& e) {
        problems.push_back(e.what());
    }
    if (!problems.empty()) {
        std::string message;
        for (std::string const& problem : problems) message += (message.empty() ? "" : "\n") + problem;
        throw HostError(kExitBadInput, message);
    }

    Progress progress(err);
    SweepOptions options;
    options.threads = settings.threads;
    options.progress = [&](std::size_t done, std::size_t total) { progress(done, total); };
    options.stopRequested = [] { return g_interrupted.load(); };
    SweepResult result;
    {
        InterruptGuard const guard;
        try {
            result = runSweep(target, fixed, gridPoints(axes), outputs, options);
        } catch (...) {
            progress.finish();
            throw;
        }
        progress.finish();
    }

    if (settings.csv)
        out << sweepCsv(result);
    else if (settings.json)
        out << sweepJson(result);
    else
        out << sweepTable(result);
    out.flush();
    if (!settings.plot.empty() && result.rows > 0) drawPlot(result, settings.plot, err);
    std::vector<std::string> noted;
    for (std::size_t row = 0; row < result.rows; ++row)
        if (!result.notes[row].empty()) noted.push_back(pointText(result.variables, row) + ": " + result.notes[row]);
    for (std::string const& line : noted) err << "prsm: warning: " << line << " (no figures in its row)\n";
    if (result.stopped) {
        err << "prsm: note: interrupted; the first " << result.rows << " of " << result.total
            << " points are written\n";
        return kExitInterrupted;
    }
    return kExitOk;
}

}  // namespace prsm::host
