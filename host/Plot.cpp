#include <prsm/host/HostError.h>
#include <prsm/host/Plot.h>

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cmath>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <ostream>
#include <sstream>

namespace prsm::host {

namespace {

bool endsWith(std::string const& text, std::string const& suffix) {
    return text.size() >= suffix.size() &&
           text.compare(text.size() - suffix.size(), suffix.size(), suffix) == 0;
}

// A gnuplot string in double quotes: backslashes and quotes escaped; "_" and "^" are literal because
// the script turns enhanced text off.
std::string quoted(std::string const& text) {
    std::string out = "\"";
    for (char c : text) {
        if (c == '"' || c == '\\') out += '\\';
        out += c;
    }
    return out + "\"";
}

std::string withUnit(std::string const& label, std::string const& unit) {
    return unit.empty() ? label : label + " (" + unit + ")";
}

std::string yLabel(std::vector<Column const*> const& outputs) {
    std::string unit = outputs.front()->quantity.unit;
    for (Column const* output : outputs)
        if (output->quantity.unit != unit) unit.clear();
    if (outputs.size() == 1) return withUnit(outputs.front()->quantity.name, unit);
    if (outputs.size() == 2)
        return withUnit(outputs[0]->quantity.name + ", " + outputs[1]->quantity.name, unit);
    return withUnit("value", unit);
}

std::string valueText(Column const& column, std::size_t row) {
    return column.quantity.type == CellType::String ? column.texts[row] : column.displayText(row);
}

std::string dataValue(Column const& column, std::size_t row) {
    if (column.quantity.type == CellType::String) return quoted(column.texts[row]);
    return column.displayText(row);
}

}  // namespace

std::string plotTerminal(std::string const& picturePath) {
    if (endsWith(picturePath, ".png")) return "pngcairo size 960,600 noenhanced font \"sans,10\"";
    if (endsWith(picturePath, ".svg"))
        return "svg size 960,600 noenhanced font \"sans,10\" background \"white\"";
    throw HostError(kExitBadInput, "--plot " + picturePath + ": the picture's name ends in .png or .svg");
}

void checkPlottable(std::vector<Quantity> const& outputs) {
    for (Quantity const& output : outputs)
        if (output.type != CellType::String) return;
    throw HostError(kExitBadInput, "--plot draws numeric outputs, and none of the selected outputs is one");
}

std::string gnuplotScript(SweepResult const& result, std::string const& picturePath) {
    std::vector<Column const*> outputs;
    for (Column const& output : result.outputs)
        if (output.quantity.type != CellType::String) outputs.push_back(&output);
    Column const& x = result.variables.at(0);
    Column const* series = result.variables.size() > 1 ? &result.variables[1] : nullptr;
    bool const xText = x.quantity.type == CellType::String;

    // The rows of each line: all rows, or those of one value of the second variable.
    std::vector<std::string> seriesValues;
    std::vector<std::vector<std::size_t>> seriesRows;
    for (std::size_t row = 0; row < result.rows; ++row) {
        std::string const key = series ? valueText(*series, row) : "";
        std::size_t s = 0;
        while (s < seriesValues.size() && seriesValues[s] != key) ++s;
        if (s == seriesValues.size()) {
            seriesValues.push_back(key);
            seriesRows.emplace_back();
        }
        seriesRows[s].push_back(row);
    }

    std::ostringstream script;
    script << "# Drawn by prsm sweep; run `gnuplot "
           << "<this file>` to draw the picture again.\n";
    script << "set terminal " << plotTerminal(picturePath) << "\n";
    script << "set output " << quoted(picturePath) << "\n";

    std::string title = result.target + ": ";
    if (outputs.size() <= 3)
        for (std::size_t k = 0; k < outputs.size(); ++k)
            title += (k == 0 ? "" : k + 1 == outputs.size() ? " and " : ", ") + outputs[k]->quantity.name;
    else
        title += "outputs";
    title += " against " + x.quantity.name;
    if (series) title += " for each " + series->quantity.name;
    std::string fixed;
    for (Column const& column : result.fixed) {
        fixed += fixed.empty() ? "" : ", ";
        fixed += column.quantity.name + "=" + valueText(column, 0);
    }
    std::string const held = fixed.empty() ? result.rest : "held fixed: " + fixed + "; " + result.rest;
    script << "set title " << quoted(title) << " . \"\\n\" . " << quoted(held);
    if (result.stopped)
        script << " . \"\\n\" . "
               << quoted("stopped after " + std::to_string(result.rows) + " of " +
                         std::to_string(result.total) + " points");
    script << "\n";
    script << "set xlabel " << quoted(withUnit(x.quantity.name, x.quantity.unit)) << "\n";
    script << "set ylabel " << quoted(yLabel(outputs)) << "\n";
    script << "set grid\nset key outside right top\nset datafile missing \"NaN\"\n";
    // Colours that stay apart on white and for most colour-blind readers; pale yellow last.
    char const* const colours[] = {"#0072B2", "#D55E00", "#009E73", "#CC79A7", "#E69F00",
                                   "#56B4E9", "#000000", "#999999", "#F0E442"};
    for (std::size_t i = 0; i < std::size(colours); ++i)
        script << "set linetype " << i + 1 << " linecolor rgb \"" << colours[i] << "\" pointtype "
               << 5 + 2 * (i % 4) << "\n";
    script << "set linetype cycle " << std::size(colours) << "\n";
    if (xText) script << "set xtics rotate by -30\n";

    for (std::size_t s = 0; s < seriesRows.size(); ++s) {
        script << "$line" << s << " << EOD\n";
        for (std::size_t i = 0; i < seriesRows[s].size(); ++i) {
            std::size_t const row = seriesRows[s][i];
            script << (xText ? std::to_string(i) + " " + dataValue(x, row) : dataValue(x, row));
            for (Column const* output : outputs) {
                double const value = output->numbers[row];
                // The reserved "not computed" value would flatten every other line; a point without
                // figures (NaN: a thermal runaway) is a gap.
                bool const gap = std::isnan(value) || value >= 3.4028234e38 || value <= -3.4028234e38;
                script << " " << (gap ? "NaN" : output->displayText(row));
            }
            script << "\n";
        }
        script << "EOD\n";
    }

    script << "plot";
    bool first = true;
    for (std::size_t k = 0; k < outputs.size(); ++k)
        for (std::size_t s = 0; s < seriesRows.size(); ++s) {
            std::string label;
            if (outputs.size() > 1 || !series) label = outputs[k]->quantity.name;
            if (series) label += (label.empty() ? "" : ", ") + series->quantity.name + "=" + seriesValues[s];
            std::size_t const column = (xText ? 3 : 2) + k;
            script << (first ? " " : ", \\\n     ") << "$line" << s << " using "
                   << (xText ? "1:" + std::to_string(column) + ":xtic(2)" : "1:" + std::to_string(column))
                   << " with linespoints linewidth 1.5 pointsize 0.6 title " << quoted(label);
            first = false;
        }
    script << "\n";
    return script.str();
}

std::string findGnuplot() {
    if (char const* program = std::getenv("PRSM_GNUPLOT")) return access(program, X_OK) == 0 ? program : "";
    char const* path = std::getenv("PATH");
    std::istringstream dirs(path != nullptr ? path : "/usr/bin:/bin");
    for (std::string dir; std::getline(dirs, dir, ':');) {
        std::string const candidate = (dir.empty() ? "." : dir) + "/gnuplot";
        struct stat info {};
        if (stat(candidate.c_str(), &info) == 0 && S_ISREG(info.st_mode) &&
            access(candidate.c_str(), X_OK) == 0)
            return candidate;
    }
    return "";
}

void drawPlot(SweepResult const& result, std::string const& picturePath, std::ostream& err) {
    std::string const script = gnuplotScript(result, picturePath);
    std::string const gnuplot = findGnuplot();
    std::string const scriptPath = picturePath.substr(0, picturePath.size() - 4) + ".gp";
    if (gnuplot.empty()) {
        std::ofstream(scriptPath) << script;
        err << "prsm: note: gnuplot was not found, so no picture was drawn; the data and the plot are in "
            << scriptPath << "\n"
            << "prsm: note: install gnuplot (Debian: `apt-get install gnuplot-nox`, or "
               "scripts/install-deps.sh) and run "
            << "`gnuplot " << scriptPath << "` to draw " << picturePath << "\n";
        return;
    }

    char temporary[] = "/tmp/prsm-plot-XXXXXX";
    int const fd = mkstemp(temporary);
    if (fd < 0) throw HostError(kExitDataFailure, "cannot write a temporary plot script");
    close(fd);
    std::ofstream(temporary) << script;
    pid_t const child = fork();
    if (child == 0) {
        execl(gnuplot.c_str(), gnuplot.c_str(), temporary, static_cast<char*>(nullptr));
        _exit(127);
    }
    int status = 0;
    if (child > 0) waitpid(child, &status, 0);
    unlink(temporary);
    if (child < 0 || !WIFEXITED(status) || WEXITSTATUS(status) != 0)
        throw HostError(kExitDataFailure, "gnuplot (" + gnuplot + ") failed to draw " + picturePath);
}

}  // namespace prsm::host
