// The sweep picture's script: no y axis mixes units, the title is wrapped rather than cut, and the key
// and colours are laid out so that every line can be told apart.
#include <prsm/host/Plot.h>

#include <gtest/gtest.h>

#include <string>

namespace prsm::host {
namespace {

Column column(std::string const& name, std::string const& unit, std::vector<double> const& values) {
    Column c;
    c.quantity.name = name;
    c.quantity.unit = unit;
    c.numbers = values;
    return c;
}

// One variable, three points, and outputs with the given (name, unit) pairs.
SweepResult result(std::vector<std::pair<std::string, std::string>> const& outputs) {
    SweepResult r;
    r.target = "TestModel";
    r.variables.push_back(column("CLOCK_FREQ", "MHz", {100, 200, 300}));
    for (auto const& [name, unit] : outputs) r.outputs.push_back(column(name, unit, {1, 2, 3}));
    r.rows = r.total = 3;
    return r;
}

std::size_t count(std::string const& text, std::string const& part) {
    std::size_t n = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) ++n;
    return n;
}

TEST(PlotScript, TwoUnitsTakeTwoAxesAndMoreTakeAPanelEach) {
    std::string const one =
        gnuplotScript(result({{"A_POWER", "W"}, {"B_POWER", "W"}, {"C_POWER", "W"}}), "p.svg");
    EXPECT_NE(one.find("set ylabel \"power (W)\""), std::string::npos) << one;
    EXPECT_EQ(one.find("y2"), std::string::npos);
    EXPECT_EQ(one.find("multiplot"), std::string::npos);

    std::string const two = gnuplotScript(result({{"POWER", "W"}, {"CURRENT", "A"}, {"LOSS", "W"}}), "p.svg");
    EXPECT_NE(two.find("set ylabel \"POWER, LOSS (W)\""), std::string::npos) << two;
    EXPECT_NE(two.find("set y2label \"CURRENT (A)\""), std::string::npos);
    EXPECT_EQ(count(two, "axes x1y2"), 1u) << "only the current goes on the right";
    EXPECT_NE(two.find("title \"CURRENT (A)\""), std::string::npos) << "the key says which axis";

    std::string const three =
        gnuplotScript(result({{"POWER", "W"}, {"CURRENT", "A"}, {"VOLTAGE", "V"}}), "p.png");
    EXPECT_NE(three.find("set multiplot layout 3,1 title"), std::string::npos) << three;
    EXPECT_EQ(count(three, "\nplot "), 3u);
    EXPECT_EQ(three.find("y2"), std::string::npos);
    // The picture grows by 400 px for each panel past the first: 600 + 2 * 400.
    EXPECT_NE(three.find("size 960,1400"), std::string::npos);
}

TEST(PlotScript, LongTitlesWrapAndTheKeyStaysOffThePlot) {
    SweepResult r = result({{"POWER", "W"}});
    for (int i = 0; i < 12; ++i) r.fixed.push_back(column("FIXED_INPUT_" + std::to_string(i), "", {1.5}));
    std::string const script = gnuplotScript(r, "p.svg");
    // Twelve "FIXED_INPUT_n=1.5" of 17 or 18 characters cannot share one line of 110: the held inputs
    // take at least three lines, each complete.
    std::size_t const start = script.find("set title ");
    std::string const title = script.substr(start, script.find('\n', start) - start);
    EXPECT_GE(count(title, " . \"\\n\" . "), 3u) << title;
    EXPECT_NE(title.find("FIXED_INPUT_11=1.5"), std::string::npos) << "nothing is cut";
    EXPECT_NE(script.find("set key outside below center horizontal"), std::string::npos);

    // Six outputs of one unit: six different colours.
    std::string const six = gnuplotScript(
        result({{"A", "W"}, {"B", "W"}, {"C", "W"}, {"D", "W"}, {"E", "W"}, {"F", "W"}}), "p.svg");
    for (char const* colour : {"#0072B2", "#D55E00", "#009E73", "#CC79A7", "#E69F00", "#56B4E9"})
        EXPECT_EQ(count(six, colour), 1u) << colour;
}

}  // namespace
}  // namespace prsm::host
