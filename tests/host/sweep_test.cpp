// The sweep core and `prsm sweep`, on the test-only sheet: values of ranges and lists, rejected input,
// rows against single calculations, threads, a failing point, stopping, and the plot script.
#ifdef PRSM_HOST_CORE_LINKED

#include <prsm/host/Calculation.h>
#include <prsm/host/HostError.h>
#include <prsm/host/Inputs.h>
#include <prsm/host/OutputPatterns.h>
#include <prsm/host/Plot.h>
#include <prsm/host/Sweep.h>
#include <prsm/host/SweepCommand.h>

#include <gtest/gtest.h>

#include "HostCommand.h"
#include "HostFailure.h"

#include <cstdio>
#include <cstdlib>
#include <fstream>

namespace prsm::host {
namespace {

SheetTarget const& sampler() {
    static SheetTarget const target(*SheetRegistry::instance().find("TestSampler"));
    return target;
}

Quantity const& variable(std::string const& name) {
    return *sampler().findVariable(name);
}

SweepOptions threads(unsigned count) {
    SweepOptions options;
    options.threads = count;
    return options;
}

// The float a cell holds for `value`, as a double.
double f(double value) {
    return static_cast<double>(static_cast<float>(value));
}

TEST(SweepValues, RangesAndListsGiveTheValuesAsTheCellHoldsThem) {
    EXPECT_EQ(parseValues(variable("RATE"), "0:1:0.25").numbers,
              (std::vector<double>{0, 0.25, 0.5, 0.75, 1}));
    // 0.1 is not exact: ten steps still end at STOP; values are single precision as the cell holds them.
    Column const tenths = parseValues(variable("RATE"), "0:1:0.1");
    ASSERT_EQ(tenths.size(), 11u);
    EXPECT_EQ(tenths.numbers[3], f(0.3));
    EXPECT_EQ(tenths.numbers[10], 1.0);
    EXPECT_EQ(tenths.displayText(3), "0.3");
    // 0.9 + 0.3 = 1.2 lies more than half a step beyond 1; 0.8 + 0.4 = 1.2 exactly half: both left out.
    EXPECT_EQ(parseValues(variable("RATE"), "0:1:0.3").size(), 4u);
    EXPECT_EQ(parseValues(variable("RATE"), "0:1:0.4").numbers.back(), f(0.8));
    EXPECT_EQ(parseValues(variable("RATE"), "1:0:-0.5").numbers, (std::vector<double>{1, 0.5, 0}));
    EXPECT_EQ(parseValues(variable("RATE"), "0.5:0.5:1").numbers, (std::vector<double>{0.5}));
    EXPECT_EQ(parseValues(variable("COUNT"), "2:10:4").numbers, (std::vector<double>{2, 6, 10}));
    EXPECT_EQ(parseValues(variable("COUNT"), "7, 3,5").numbers, (std::vector<double>{7, 3, 5}));
    EXPECT_EQ(parseValues(variable("MODE"), "FAST,SLOW").texts, (std::vector<std::string>{"FAST", "SLOW"}));

    EXPECT_TRUE(isSweptValue(variable("RATE"), "0:1:0.5"));
    EXPECT_TRUE(isSweptValue(variable("MODE"), "A,B"));
    EXPECT_FALSE(isSweptValue(variable("MODE"), "A:B"));  // a colon is plain text in a string
    EXPECT_FALSE(isSweptValue(variable("RATE"), "0.5"));
    EXPECT_EQ(parseFixedValue(variable("MODE"), "A:B").texts, (std::vector<std::string>{"A:B"}));

    // Handed over as numbers (the Python module): floats kept in single precision, ints whole.
    EXPECT_EQ(numberColumn(variable("RATE"), {0.1}).numbers, (std::vector<double>{f(0.1)}));
    EXPECT_EQ(std::strtof(numberColumn(variable("RATE"), {0.1}).cellText(0).c_str(), nullptr), 0.1f);
    EXPECT_EQ(numberFromText(CellType::Float, "0.100000001"), f(0.1));
    EXPECT_EQ(numberFromText(CellType::Float, "3.40282347e+38"), 3.4028234663852886e38);
    EXPECT_EQ(numberColumn(variable("COUNT"), {3}).cellText(0), "3");
}

TEST(SweepValues, RejectsBadRangesListsAndValuesWithTheirName) {
    auto bad = [](std::string const& name, std::string const& text) {
        return hostFailure(kExitBadInput, [&] { parseValues(variable(name), text); });
    };
    EXPECT_EQ(bad("RATE", "0:1:0"), "the step of RATE=0:1:0 is zero");
    EXPECT_EQ(bad("RATE", "0:1:-0.1"), "the step of RATE=0:1:-0.1 goes away from 1; use a positive step");
    EXPECT_EQ(bad("RATE", "1:0:0.1"), "the step of RATE=1:0:0.1 goes away from 0; use a negative step");
    EXPECT_EQ(bad("RATE", "0:1"), "the range of RATE is \"0:1\"; a range is START:STOP:STEP, a list a,b,c");
    EXPECT_EQ(bad("RATE", ","), "the list of values for RATE is empty");
    EXPECT_EQ(bad("MODE", "FAST,,SLOW"), "the list of values for MODE (\"FAST,,SLOW\") has an empty item");
    EXPECT_EQ(bad("RATE", "0.1,x"), "RATE takes a number, not \"x\" (a float input)");
    EXPECT_EQ(bad("RATE", "0:x:1"), "RATE takes a number, not \"x\" (a float input)");
    EXPECT_EQ(bad("COUNT", "1,2.5"), "COUNT takes a whole number, not \"2.5\" (an int input)");
    EXPECT_EQ(bad("COUNT", "0:2:0.5"), "COUNT takes a whole number, not \"0.5\" (an int input)");
    EXPECT_EQ(bad("RATE", "0:1e9:1e-3"), "RATE=0:1e9:1e-3 makes more than 100000000 points");
    EXPECT_EQ(hostFailure(kExitBadInput, [] { numberColumn(variable("COUNT"), {1.5}); }),
              "COUNT takes a whole number, not 1.5 (an int input)");
    EXPECT_NE(hostFailure(kExitBadInput, [] { numberColumn(variable("MODE"), {1.0}); }).find("takes text"),
              std::string::npos);

    EXPECT_EQ(sampler().notAVariable("TOTAL"),
              "TOTAL is an output cell of TestSampler; only input cells can be set or swept");
    EXPECT_EQ(sampler().notAVariable("RAET"),
              "TestSampler has no cell RAET (did you mean RATE?); `prsm cells "
              "TestSampler --category input` lists the inputs");
    EXPECT_EQ(
        hostFailure(kExitBadInput, [] { selectOutputs(sampler(), "TOT*,NOPE"); }),
        "no output of TestSampler matches \"NOPE\"; `prsm cells TestSampler --category output` lists the "
        "outputs");
    std::vector<Quantity> const chosen = selectOutputs(sampler(), "LAB?L, COUNT_*");
    ASSERT_EQ(chosen.size(), 2u);  // in the sheet's order: int cells first
    EXPECT_EQ(chosen[0].name, "COUNT_OUT");
    EXPECT_EQ(chosen[1].name, "LABEL");
    EXPECT_EQ(selectOutputs(sampler(), "").size(), 3u);
}

// `calc --outputs` and `sweep --outputs` read the same list.
TEST(OutputPatterns, ListsOfNamesAndGlobs) {
    EXPECT_TRUE(globMatch("*", ""));
    EXPECT_TRUE(globMatch("A*B*C", "AxxBxBxC"));  // the second "*" must give back the first B
    EXPECT_FALSE(globMatch("A*B*C", "AxxBxBx"));
    EXPECT_FALSE(globMatch("?", ""));
    EXPECT_FALSE(globMatch("TOTAL", "TOTAL_POWER"));  // the whole name, not a prefix
    // Many stars and no match: exponential for a matcher that retries every star, quick here.
    EXPECT_FALSE(globMatch(std::string(40, '*') + "B", std::string(200, 'A')));

    EXPECT_TRUE(parseOutputPatterns(" \t").empty());
    EXPECT_EQ(parseOutputPatterns("A, B* ,C"), (std::vector<std::string>{"A", "B*", "C"}));
    EXPECT_EQ(hostFailure(kExitBadInput, [] { parseOutputPatterns("A,,B"); }),
              "the list of outputs (\"A,,B\") has an empty item");

    // Two patterns may pick the same name; one that picks none is refused (selectOutputs, above).
    std::vector<std::string> const names{"X_POWER", "Y_CURRENT", "Y_POWER", "Z"};
    EXPECT_EQ(pickOutputs(names, {"Y_*", "*_POWER"}, "M", "hint"),
              (std::vector<bool>{true, true, true, false}));
}

// With RATE = r and the other inputs at their defaults, SCALE = 2r and both lane loads are r, so
// TOTAL = r x capA x 2r + r x capB x 2r + 0.25 = 2r^2 (capA + capB) + 0.25: 11 r^2 + 0.25 in mode FAST
// (2 and 3.5), 3 r^2 + 0.25 in mode SLOW (0.5 and 1). COUNT_OUT = 2 x COUNT; LABEL = MODE:COUNT.
TEST(SweepRun, RowsMatchTheFormulaAndSingleCalculationsOnEveryThreadCount) {
    std::vector<Column> const axes{parseValues(variable("RATE"), "0:1:0.25"),
                                   parseValues(variable("MODE"), "FAST,SLOW")};
    std::vector<Column> const fixed{parseFixedValue(variable("COUNT"), "3")};
    std::vector<Column> const points = gridPoints(axes);
    ASSERT_EQ(points[0].size(), 10u);
    SweepResult const result = runSweep(sampler(), fixed, points, sampler().outputs(), threads(1));
    ASSERT_EQ(result.rows, 10u);
    EXPECT_FALSE(result.stopped);
    ASSERT_EQ(result.outputs.size(), 3u);  // COUNT_OUT, TOTAL, LABEL
    for (std::size_t row = 0; row < 10; ++row) {
        double const r = 0.25 * static_cast<double>(row / 2);  // the first variable varies slowest
        bool const fast = row % 2 == 0;
        EXPECT_EQ(result.variables[0].numbers[row], r);
        EXPECT_EQ(result.variables[1].texts[row], fast ? "FAST" : "SLOW");
        EXPECT_EQ(result.outputs[0].numbers[row], 6.0);
        EXPECT_DOUBLE_EQ(result.outputs[1].numbers[row], (fast ? 11.0 : 3.0) * r * r + 0.25) << "row " << row;
        EXPECT_EQ(result.outputs[2].texts[row], fast ? "FAST:3" : "SLOW:3");

        CalcResult const single = runCalculation(
            sampler().sheet(),
            resolveInputs(sampler().sheet(),
                          {parseAssignment("COUNT=3"), parseAssignment("RATE=" + points[0].cellText(row)),
                           parseAssignment("MODE=" + points[1].texts[row])}));
        EXPECT_EQ(single.outputs[1].name, "TOTAL");
        EXPECT_EQ(result.outputs[1].numbers[row], numberFromText(CellType::Float, single.outputs[1].text));
    }

    // Many points on two threads give the rows of one thread, bit for bit.
    std::vector<Column> const many{parseValues(variable("RATE"), "0:1:0.001")};
    SweepResult const one = runSweep(sampler(), {}, many, sampler().outputs(), threads(1));
    SweepResult const two = runSweep(sampler(), {}, many, sampler().outputs(), threads(2));
    ASSERT_EQ(one.rows, 1001u);
    EXPECT_EQ(two.rows, 1001u);
    EXPECT_EQ(one.outputs[1].numbers, two.outputs[1].numbers);
    EXPECT_EQ(one.outputs[2].texts, two.outputs[2].texts);
    // r = 0.5: 11 x 0.25 + 0.25 = 3, exact in single precision.
    EXPECT_EQ(one.outputs[1].numbers[500], 3.0);
}

TEST(SweepRun, AFailingPointIsNamedAndNothingIsReturned) {
    // MEDIUM has no row in the capacitance table: the second point fails.
    std::vector<Column> const points{parseValues(variable("MODE"), "FAST,MEDIUM,SLOW")};
    std::string const message = hostFailure(
        kExitDataFailure, [&] { runSweep(sampler(), {}, points, sampler().outputs(), threads(1)); });
    EXPECT_EQ(
        message.rfind("calculating TestSampler failed at point 2 of 3 (MODE=MEDIUM): PRS Exception: ", 0), 0u)
        << message;
    EXPECT_EQ(hostFailure(kExitBadInput, [] { runSweep(sampler(), {}, {}, sampler().outputs()); }),
              "a sweep needs a variable with a range or a list of values");
    EXPECT_EQ(hostFailure(kExitBadInput,
                          [] {
                              runSweep(
                                  sampler(), {},
                                  {numberColumn(variable("RATE"), {}), numberColumn(variable("SCALE"), {})},
                                  sampler().outputs());
                          }),
              "no values for RATE");
}

TEST(SweepRun, AStoppedSweepKeepsTheRowsDoneFirst) {
    std::vector<Column> const points{parseValues(variable("RATE"), "0:1:0.000002")};  // 500001 points
    SweepOptions options;
    options.threads = 2;
    options.pollInterval = std::chrono::milliseconds(1);
    std::size_t calls = 0;
    options.progress = [&](std::size_t done, std::size_t total) {
        EXPECT_LE(done, total);
        ++calls;
    };
    options.stopRequested = [] { return true; };
    SweepResult const stopped = runSweep(sampler(), {}, points, selectOutputs(sampler(), "TOTAL"), options);
    EXPECT_TRUE(stopped.stopped);
    EXPECT_LT(stopped.rows, stopped.total);
    EXPECT_GE(calls, 1u);
    ASSERT_EQ(stopped.outputs[0].numbers.size(), stopped.rows);
    ASSERT_EQ(stopped.variables[0].numbers.size(), stopped.rows);
    for (std::size_t row = 0; row < stopped.rows; row += 97) {
        double const r = stopped.variables[0].numbers[row];
        EXPECT_NEAR(stopped.outputs[0].numbers[row], 11 * r * r + 0.25, 1e-5);
    }
}

TEST(SweepCommand, PrintsRowsAndWritesThePlotScriptWithoutGnuplot) {
    std::string out, err;
    EXPECT_EQ(
        runCommandLine({"sweep", "TestSampler", "RATE=0:1:0.5", "MODE=SLOW", "--outputs", "TOTAL", "--csv"},
                       out, err),
        0);
    // 3 r^2 + 0.25 at r = 0, 0.5, 1.
    EXPECT_EQ(out, "RATE,TOTAL\n0,0.25\n0.5,1\n1,3.25\n");

    EXPECT_EQ(runCommandLine({"sweep", "TestSampler", "RATE=0:1:0", "TOTAL=1", "--plot", "x.pdf"}, out, err),
              2);
    EXPECT_EQ(out, "");
    EXPECT_NE(err.find("prsm: error: the step of RATE=0:1:0 is zero\n"), std::string::npos) << err;
    EXPECT_NE(err.find("prsm: error: TOTAL is an output cell"), std::string::npos);
    EXPECT_NE(err.find("prsm: error: --plot x.pdf: the picture's name ends in .png or .svg"),
              std::string::npos);
    EXPECT_EQ(runCommandLine({"sweep", "TestSampler", "RATE=0.5"}, out, err), 2);
    EXPECT_NE(err.find("a sweep needs one or two variables"), std::string::npos);
    EXPECT_EQ(runCommandLine({"sweep", "TestSampler", "RATE=0:1:1", "COUNT=1,2", "MODE=FAST,SLOW"}, out, err),
              2);
    EXPECT_NE(err.find("a sweep takes one or two variables, not 3"), std::string::npos);

    EXPECT_EQ(runCommandLine({"sweep", "TestSampler", "MODE=FAST,MEDIUM", "--json"}, out, err), 3);
    EXPECT_EQ(out, "");
    EXPECT_NE(err.find("failed at point 2 of 2 (MODE=MEDIUM)"), std::string::npos);

    std::string const picture = testing::TempDir() + "prsm_sweep_plot.svg";
    std::string const script = testing::TempDir() + "prsm_sweep_plot.gp";
    std::remove(script.c_str());
    ::setenv("PRSM_GNUPLOT", "/nonexistent/gnuplot", 1);
    EXPECT_EQ(runCommandLine({"sweep", "TestSampler", "RATE=0:1:0.5", "MODE=FAST,SLOW", "COUNT=4",
                              "--outputs", "TOTAL", "--plot", picture.c_str(), "--json"},
                             out, err),
              0);
    ::unsetenv("PRSM_GNUPLOT");
    EXPECT_NE(out.find("\"complete\": true"), std::string::npos);
    EXPECT_NE(err.find("gnuplot was not found"), std::string::npos);
    std::ifstream file(script);
    std::string const text((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    EXPECT_NE(text.find("TestSampler: TOTAL against RATE for each MODE\" . \"\\n\" . \"held fixed: COUNT=4;"),
              std::string::npos)
        << text;
    // One line per mode: FAST at 0, 0.5 and 1 gives 0.25, 3 and 11.25.
    EXPECT_NE(text.find("$line0 << EOD\n0 0.25\n0.5 3\n1 11.25\nEOD\n"), std::string::npos) << text;
    EXPECT_NE(text.find("title \"MODE=SLOW\""), std::string::npos);
    EXPECT_NE(text.find("set output \"" + picture + "\""), std::string::npos);
}

}  // namespace
}  // namespace prsm::host

#endif
