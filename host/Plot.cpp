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
std::string gnuplotString(std::string const& text) {
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

// What an axis of `unit` measures, for an axis holding more than two outputs.
std::string quantityOf(std::string const& unit) {
    if (unit == "W" || unit == "mW") return "power";
    if (unit == "A" || unit == "mA") return "current";
    if (unit == "V" || unit == "mV") return "voltage";
    if (unit == "degC") return "temperature";
    if (unit == "MHz" || unit == "GHz" || unit == "Hz") return "frequency";
    return "value";
}

// One y axis: the outputs of one unit, as indices into the plotted outputs.
struct Axis {
    std::string unit;
    std::vector<std::size_t> outputs;
};

// Outputs of one unit share an axis. Two units make one panel with a second y axis on the right;
// more units make one panel per unit, stacked, so that no axis mixes units.
std::vector<std::vector<Axis>> panelsByUnit(std::vector<Column const*> const& outputs) {
    std::vector<Axis> axes;
    for (std::size_t k = 0; k < outputs.size(); ++k) {
        std::string const& unit = outputs[k]->quantity.unit;
        std::size_t a = 0;
        while (a < axes.size() && axes[a].unit != unit) ++a;
        if (a == axes.size()) axes.push_back({unit, {}});
        axes[a].outputs.push_back(k);
    }
    if (axes.size() <= 2) return {axes};
    std::vector<std::vector<Axis>> panels;
    for (Axis const& axis : axes) panels.push_back({axis});
    return panels;
}

std::string axisLabel(Axis const& axis, std::vector<Column const*> const& outputs) {
    if (axis.outputs.size() == 1) return withUnit(outputs[axis.outputs[0]]->quantity.name, axis.unit);
    if (axis.outputs.size() == 2)
        return withUnit(
            outputs[axis.outputs[0]]->quantity.name + ", " + outputs[axis.outputs[1]]->quantity.name,
            axis.unit);
    return withUnit(quantityOf(axis.unit), axis.unit);
}

// `text` cut at spaces into lines of at most `width` characters (a longer word keeps its own line).
std::vector<std::string> wrapped(std::string const& text, std::size_t width) {
    std::vector<std::string> lines;
    std::istringstream words(text);
    std::string line;
    for (std::string word; words >> word;) {
        if (!line.empty() && line.size() + 1 + word.size() > width) {
            lines.push_back(line);
            line.clear();
        }
        line += (line.empty() ? "" : " ") + word;
    }
    if (!line.empty()) lines.push_back(line);
    return lines;
}

std::string valueText(Column const& column, std::size_t row) {
    return column.quantity.type == CellType::String ? column.texts[row] : column.displayText(row);
}

std::string dataValue(Column const& column, std::size_t row) {
    if (column.quantity.type == CellType::String) return gnuplotString(column.texts[row]);
    return column.displayText(row);
}

// Colours that stay apart on white and for most colour-blind readers; pale yellow last.
char const* const kColours[] = {"#0072B2", "#D55E00", "#009E73", "#CC79A7", "#E69F00",
                                "#56B4E9", "#000000", "#999999", "#F0E442"};

// Title lines of about this many characters fit the picture's width in its font.
constexpr std::size_t kTitleWidth = 110;

}  // namespace

std::string plotTerminal(std::string const& picturePath, std::size_t panels) {
    std::string const size = "size 960," + std::to_string(600 + 400 * (panels > 0 ? panels - 1 : 0));
    if (endsWith(picturePath, ".png")) return "pngcairo " + size + " noenhanced font \"sans,10\"";
    if (endsWith(picturePath, ".svg"))
        return "svg " + size + " noenhanced font \"sans,10\" background \"white\"";
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
    std::vector<std::vector<Axis>> const panels = panelsByUnit(outputs);

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
    script << "set terminal " << plotTerminal(picturePath, panels.size()) << "\n";
    script << "set output " << gnuplotString(picturePath) << "\n";

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
    std::vector<std::string> titleLines = wrapped(title, kTitleWidth);
    for (std::string const& line : wrapped(held, kTitleWidth)) titleLines.push_back(line);
    if (result.stopped)
        titleLines.push_back("stopped after " + std::to_string(result.rows) + " of " +
                             std::to_string(result.total) + " points");
    std::string titleText;
    for (std::size_t i = 0; i < titleLines.size(); ++i)
        titleText += (i == 0 ? "" : " . \"\\n\" . ") + gnuplotString(titleLines[i]);

    // The key goes under the plot, in rows, so it neither covers the lines nor narrows the plot.
    script << "set grid\nset key outside below center horizontal\nset datafile missing \"NaN\"\n";
    if (xText) script << "set xtics rotate by -30\n";
    script << "set xlabel " << gnuplotString(withUnit(x.quantity.name, x.quantity.unit)) << "\n";
    if (panels.size() > 1)
        script << "set multiplot layout " << panels.size() << ",1 title " << titleText << "\n";
    else
        script << "set title " << titleText << "\n";

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

    for (std::vector<Axis> const& panel : panels) {
        bool const twoAxes = panel.size() == 2;
        script << "set ylabel " << gnuplotString(axisLabel(panel[0], outputs)) << "\n";
        if (twoAxes)
            script << "set ytics nomirror\nset y2tics\nset y2label "
                   << gnuplotString(axisLabel(panel[1], outputs)) << "\n";
        script << "plot";
        // Colour tells the second variable's values apart, or else the outputs; with both, the
        // outputs differ in their dashes.
        std::size_t line = 0;
        for (std::size_t a = 0; a < panel.size(); ++a)
            for (std::size_t k : panel[a].outputs) {
                for (std::size_t s = 0; s < seriesRows.size(); ++s) {
                    std::string label;
                    if (outputs.size() > 1 || !series)
                        label = twoAxes ? withUnit(outputs[k]->quantity.name, panel[a].unit)
                                        : outputs[k]->quantity.name;
                    if (series)
                        label += (label.empty() ? "" : ", ") + series->quantity.name + "=" + seriesValues[s];
                    std::size_t const colour = series ? s : line;
                    std::size_t const dashes = series ? line : 0;
                    std::size_t const column = (xText ? 3 : 2) + k;
                    script << (line == 0 && s == 0 ? " " : ", \\\n     ") << "$line" << s << " using "
                           << (xText ? "1:" + std::to_string(column) + ":xtic(2)"
                                     : "1:" + std::to_string(column))
                           << (a == 1 ? " axes x1y2" : "") << " with linespoints linewidth 1.5 pointsize 0.6"
                           << " linecolor rgb \"" << kColours[colour % std::size(kColours)] << "\" dashtype "
                           << dashes % 5 + 1 << " pointtype " << 5 + 2 * (colour % 4) << " title "
                           << gnuplotString(label);
                }
                ++line;
            }
        script << "\n";
        if (twoAxes) script << "unset y2tics\nunset y2label\nset ytics mirror\n";
    }
    if (panels.size() > 1) script << "unset multiplot\n";
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
