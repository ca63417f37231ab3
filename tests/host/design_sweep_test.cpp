// A design as a sweep target: rows against single estimates of the same design with the point's values
// written into it, figures by hand on the test-only design, refused variables and outputs, and the
// failing point named.
#ifdef PRSM_HOST_CORE_LINKED

#include <prsm/design/Estimate.h>
#include <prsm/host/DesignTarget.h>
#include <prsm/host/HostError.h>
#include <prsm/host/Sweep.h>

#include "HostCommand.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <sstream>

namespace prsm::host {
namespace {

std::string testDesign(std::string const& name) {
    return std::string(PRSM_TEST_DESIGNDIR) + "/" + name;
}

// The float a row holds for `value`, as a double.
double f(double value) {
    return static_cast<double>(static_cast<float>(value));
}

// The value of `output` in a single estimate, as a sweep row holds it (a float).
double single(design::Design const& design, std::string const& output) {
    design::Estimator estimator(design);
    design::Report const& report = estimator.estimate();
    EXPECT_TRUE(report.complete);
    for (design::RailResult const& rail : report.rails)
        if (output == "rail." + rail.rail + ".power") return f(rail.power);
    for (std::size_t i = 0; i < design.blocks.size(); ++i)
        if (output == "block." + design.blocks[i].name + ".power") return f(report.blocks[i].power);
    for (std::size_t i = 0; i < design.loads.size(); ++i)
        if (output == "load." + design.loads[i].name + ".power")
            return f(report.blocks[design.blocks.size() + i].power);
    if (output == "total_power") return f(report.totalPower);
    if (output == "static_power") return f(report.staticPower);
    if (output == "junction_temperature") return f(report.thermal.junction);
    ADD_FAILURE() << "no figure " << output;
    return 0;
}

void setInput(design::Design& design, std::string const& block, std::string const& cell,
              std::string const& text) {
    for (design::Block& b : design.blocks)
        if (b.name == block) {
            for (design::Input& input : b.inputs)
                if (input.cell == cell) {
                    input.text = text;
                    return;
                }
            b.inputs.push_back({cell, text, ""});
        }
}

void setRail(design::Design& design, std::string const& rail, double volts) {
    for (auto& entry : design.rails)
        if (entry.first == rail) entry.second = volts;
}

double column(SweepResult const& result, std::string const& name, std::size_t row) {
    for (Column const& c : result.outputs)
        if (c.quantity.name == name) return c.numbers.at(row);
    ADD_FAILURE() << "no column " << name;
    return 0;
}

std::vector<Quantity> pick(SweepTarget const& target, std::string const& patterns) {
    return selectOutputs(target, patterns);
}

TEST(DesignSweep, RowsMatchSingleEstimatesAndTheFiguresByHand) {
    design::Design const base = design::readDesignFile(testDesign("small.json"));
    DesignTarget const target(base);
    // A block's clock against a rail's voltage, on one thread and on two.
    std::vector<Column> const points =
        gridPoints({parseValues(*target.findVariable("slow.CLOCK_FREQ"), "50:150:50"),
                    parseValues(*target.findVariable("rail.VCCINT"), "0.8,0.9")});
    std::vector<Quantity> const outputs =
        pick(target, "total_power,static_power,junction_temperature,rail.VCCINT.power,block.*.power,load.*");
    for (unsigned threads : {1u, 2u}) {
        SweepOptions options;
        options.threads = threads;
        SweepResult const result = runSweep(target, {}, points, outputs, options);
        ASSERT_EQ(result.rows, 6u);
        for (std::size_t row = 0; row < result.rows; ++row) {
            design::Design point = base;
            setInput(point, "slow", "CLOCK_FREQ", points[0].cellText(row));
            setRail(point, "VCCINT", std::stod(points[1].cellText(row)));  // 0.9, as a file gives it
            for (Quantity const& output : outputs)
                EXPECT_EQ(column(result, output.name, row), single(point, output.name))
                    << output.name << " at row " << row;
        }
        // Row 6: 150 MHz at 0.9 V. "slow" is 500 pF: 500e-12 * 0.81 * 150e6 = 0.06075 W; "core" (two of
        // 1000 pF at 100 MHz, 10 mA on VCCAUX at 1.5 V) 2 * (1000e-12 * 0.81 * 100e6 + 0.015) = 0.192 W.
        EXPECT_NEAR(column(result, "block.slow.power", 5), 0.06075, 1e-7);
        EXPECT_NEAR(column(result, "block.core.power", 5), 0.192, 1e-7);
        // The loads do not follow VCCINT: 0.2 W, and 0.1 A at 1.8 V.
        EXPECT_NEAR(column(result, "load.kernels.power", 5), 0.2, 1e-7);
        EXPECT_NEAR(column(result, "load.ddr phy.power", 5), 0.18, 1e-7);
    }
}

TEST(DesignSweep, ThermalSettingsAndRailsOfLoadsMatchSingleEstimates) {
    design::Design const base = design::readDesignFile(testDesign("small.json"));
    DesignTarget const target(base);
    std::vector<Quantity> const outputs =
        pick(target, "static_power,junction_temperature,load.ddr phy.power");

    // A given junction temperature: at 40 degC the test leakage is 0.8 * 0.64652 + 1.5 * 0.129304 W
    // (t = 40 - 2 degC/W * 0.174 W of logic dynamic power = 39.652: 0.5 + 0.01 (t - 25) A and
    // 0.1 + 0.002 (t - 25) A).
    SweepResult const given =
        runSweep(target, {}, {parseValues(*target.findVariable("junction_temperature"), "40,60")}, outputs);
    EXPECT_NEAR(given.outputs[0].numbers[0], 0.8 * 0.64652 + 1.5 * 0.129304, 1e-6);
    design::Design at60 = base;
    at60.thermal.junction = 60.0;
    EXPECT_EQ(given.outputs[0].numbers[1], single(at60, "static_power"));

    // The ambient, with theta_ja held fixed; and a load given as a current follows its rail.
    SweepResult const solved = runSweep(target, {parseFixedValue(*target.findVariable("theta_ja"), "3")},
                                        {parseValues(*target.findVariable("ambient_temperature"), "0:50:50"),
                                         parseValues(*target.findVariable("rail.VCCO18"), "1.8,2")},
                                        outputs);
    ASSERT_EQ(solved.rows, 2u);
    for (std::size_t row = 0; row < solved.rows; ++row) {
        design::Design point = base;
        point.thermal.ambient = std::stod(solved.variables[0].cellText(row));
        point.thermal.thetaJa = 3.0;
        setRail(point, "VCCO18", std::stod(solved.variables[1].cellText(row)));
        EXPECT_EQ(solved.outputs[1].numbers[row], single(point, "junction_temperature")) << row;
        EXPECT_EQ(solved.outputs[0].numbers[row], single(point, "static_power")) << row;
        EXPECT_EQ(solved.outputs[2].numbers[row], single(point, "load.ddr phy.power")) << row;
    }
}

// The `prsm` executable on the shipped data: its standard output, "" when it fails.
std::string runHost(std::string const& arguments) {
    std::string const command = std::string("QDI_DATADIR='") + PRSM_SHIPPED_DATADIR + "' '" +
                                PRSM_HOST_BINARY + "' " + arguments + " 2>/dev/null";
    FILE* pipe = ::popen(command.c_str(), "r");
    if (pipe == nullptr) return "";
    std::string out;
    char buffer[4096];
    for (std::size_t n; (n = std::fread(buffer, 1, sizeof buffer, pipe)) > 0;) out.append(buffer, n);
    return ::pclose(pipe) == 0 ? out : "";
}

// `prsm estimate --json` of the example with some blocks' inputs changed.
nlohmann::json estimateExample(std::vector<std::pair<std::string, double>> const& clocks) {
    std::ifstream in(std::string(PRSM_EXAMPLESDIR) + "/accelerator.json");
    nlohmann::json design = nlohmann::json::parse(in);
    for (auto& block : design["blocks"])
        for (auto const& [name, clock] : clocks)
            if (block["name"] == name) block["inputs"]["CLOCK_FREQ"] = clock;
    std::string const path = testing::TempDir() + "prsm_design_sweep_point.json";
    std::ofstream(path) << design.dump();
    std::string const out = runHost("estimate '" + path + "' --json");
    return out.empty() ? nlohmann::json() : nlohmann::json::parse(out);
}

TEST(DesignSweep, ComputedDefaultsFollowTheSweptInputOnTheExample) {
    // The logic sheet's signal rate defaults to CLOCK_FREQ * TOGGLE_RATE: each point's rate follows
    // its own clock, on either thread, as a fresh estimate of the design with that clock gives.
    std::string const out =
        runHost(std::string("sweep '") + PRSM_EXAMPLESDIR +
                "/accelerator.json' 'front end LUTs.CLOCK_FREQ=500,100,350,200' --threads 2 "
                "--outputs 'total_power,block.front end LUTs.power' --json");
    ASSERT_FALSE(out.empty());
    nlohmann::json const rows = nlohmann::json::parse(out)["rows"];
    ASSERT_EQ(rows.size(), 4u);
    for (auto const& row : rows) {
        double const clock = row["front end LUTs.CLOCK_FREQ"].get<double>();
        nlohmann::json const report = estimateExample({{"front end LUTs", clock}});
        ASSERT_TRUE(report.is_object()) << clock;
        EXPECT_EQ(f(row["total_power"].get<double>()), f(report["totals"]["total_power"].get<double>()))
            << clock;
        EXPECT_EQ(f(row["block.front end LUTs.power"].get<double>()),
                  f(report["blocks"][0]["power"].get<double>()))
            << clock;
    }
    // Logic power is proportional to the clock: 500 MHz draws five times what 100 MHz does.
    EXPECT_NEAR(rows[0]["block.front end LUTs.power"].get<double>() /
                    rows[1]["block.front end LUTs.power"].get<double>(),
                5.0, 1e-4);

    // `*.CELL` sets the cell in every block that has it; a block's own setting wins over it.
    std::string const every =
        runHost(std::string("sweep '") + PRSM_EXAMPLESDIR +
                "/accelerator.json' '*.CLOCK_FREQ=200,300' 'checksum carry chains.CLOCK_FREQ=350' "
                "--outputs total_power --json");
    ASSERT_FALSE(every.empty());
    nlohmann::json const report = estimateExample(
        {{"front end LUTs", 300}, {"front end registers", 300}, {"packet buffers (LUT RAM)", 300},
         {"packet buffers", 300}, {"reserved frame buffers (asleep)", 300}, {"weight cache", 300},
         {"checksum and scaling DSPs", 300}, {"front-end clock", 300}});
    ASSERT_TRUE(report.is_object());
    EXPECT_EQ(f(nlohmann::json::parse(every)["rows"][1]["total_power"].get<double>()),
              f(report["totals"]["total_power"].get<double>()));
}

TEST(DesignSweep, BadVariablesAndOutputsAreRefusedAndAFailingPointIsNamed) {
    std::string const file = testDesign("small.json");
    std::string out, err;
    EXPECT_EQ(runCommandLine({"sweep", file.c_str(), "slow.CLOCK_FREQ=50:100:50", "--csv", "--outputs",
                              "total_power,block.slow.power"},
                             out, err),
              0)
        << err;
    EXPECT_EQ(out.substr(0, out.find('\n')), "slow.CLOCK_FREQ,total_power,block.slow.power");
    EXPECT_EQ(std::count(out.begin(), out.end(), '\n'), 3);

    EXPECT_EQ(runCommandLine({"sweep", file.c_str(), "slow.CLOCK_FREQQ=1,2", "slow.CORE_POWER=1",
                              "core.VCCINT=0.7", "rail.VCCX=1,2", "nothing=1", "junction_temperature=50",
                              "ambient_temperature=20,30", "--outputs", "total_power,rail.*.nope"},
                             out, err),
              2);
    EXPECT_EQ(out, "");
    for (char const* expected : {
             "prsm: error: block \"slow\" (TestLoad) has no input CLOCK_FREQQ (did you mean CLOCK_FREQ?)",
             "prsm: error: block \"slow\": CORE_POWER is an output cell of TestLoad",
             "prsm: error: block \"core\": cell VCCINT is the voltage of rail VCCINT: sweep rail.VCCINT",
             "prsm: error: no block or load of ",
             "uses rail VCCX (rails in use: ",
             "has no variable nothing",
             "junction_temperature is used as it is given, so it cannot be set together with "
             "ambient_temperature",
             "matches \"rail.*.nope\"; a design's outputs are total_power",
         })
        EXPECT_NE(err.find(expected), std::string::npos) << expected << "\n" << err;

    // MODE=BROKEN makes the test block throw: the point is named, nothing is printed.
    EXPECT_EQ(runCommandLine({"sweep", file.c_str(), "slow.MODE=ON,BROKEN", "--json"}, out, err), 3);
    EXPECT_EQ(out, "");
    EXPECT_NE(err.find("no characterisation for mode BROKEN"), std::string::npos) << err;
    EXPECT_NE(err.find("failed at point 2 of 2 (slow.MODE=BROKEN): block \"slow\" (TestLoad): "),
              std::string::npos)
        << err;
    // A thermal runaway is a row without figures, not a failure. The test leakage grows by
    // 0.8 V * 0.01 A/K + 1.5 V * 0.002 A/K = 0.011 W/K, so theta_ja 3 degC/W settles (3 * 0.011 < 1) and
    // 200 degC/W cannot (200 * 0.011 = 2.2).
    EXPECT_EQ(runCommandLine({"sweep", file.c_str(), "theta_ja=3,200", "--csv", "--outputs",
                              "total_power,junction_temperature"},
                             out, err),
              0)
        << err;
    std::istringstream rows(out);
    std::string head, settled, runaway;
    std::getline(rows, head);
    std::getline(rows, settled);
    std::getline(rows, runaway);
    EXPECT_EQ(head, "theta_ja,total_power,junction_temperature,note");
    EXPECT_EQ(settled.substr(0, 2), "3,");
    EXPECT_EQ(settled.back(), ',');  // figures, no note
    EXPECT_EQ(runaway, "200,,,thermal runaway");
    EXPECT_NE(err.find("prsm: warning: theta_ja=200: thermal runaway"), std::string::npos) << err;

    // A design file that is refused is refused before anything is swept.
    EXPECT_EQ(
        runCommandLine({"sweep", testDesign("malformed.json").c_str(), "slow.CLOCK_FREQ=1,2"}, out, err), 2);
}

TEST(DesignSweep, DeviceProcessIsAVariableWhoseRowsMatchTheFileAtThatProcess) {
    std::string const file = std::string(PRSM_EXAMPLESDIR) + "/accelerator.json";
    // Back and forth on one thread, so that each process's engine is taken up again after the other's.
    std::string const out = runHost("sweep '" + file +
                                    "' device.process=max,typical,max --threads 1 "
                                    "--outputs total_power,static_power --json");
    ASSERT_FALSE(out.empty());
    nlohmann::json const rows = nlohmann::json::parse(out)["rows"];
    ASSERT_EQ(rows.size(), 3u);
    std::ifstream in(file);
    nlohmann::json design = nlohmann::json::parse(in);
    for (auto const& row : rows) {
        design["device"]["process"] = row["device.process"];
        std::string const path = testing::TempDir() + "prsm_design_sweep_process.json";
        std::ofstream(path) << design.dump();
        nlohmann::json const report = nlohmann::json::parse(runHost("estimate '" + path + "' --json"));
        EXPECT_EQ(f(row["static_power"].get<double>()), f(report["totals"]["static_power"].get<double>()))
            << row["device.process"];
    }
    // The maximum process leaks more than the typical one.
    EXPECT_GT(rows[0]["static_power"].get<double>(), rows[1]["static_power"].get<double>());
    EXPECT_EQ(rows[0]["static_power"], rows[2]["static_power"]);

    std::string err, sink;
    std::string const small = testDesign("small.json");
    EXPECT_NE(runCommandLine({"sweep", small.c_str(), "device.process=typical,slow"}, sink, err), 0);
    EXPECT_NE(err.find("device.process: unknown process \"slow\"; one of typical, max"), std::string::npos) << err;
}

TEST(DesignSweep, BoardInputsAreVariablesAndBudgetHeadroomsAreOutputs) {
    // board.json at Tj 35 degC: the regulators carry 1.6 A at 0.8 V and 0.32 A at 1.5 V, losing 0.32 W
    // and 0.576 W, and the 3.3 V buck feeding the second loses 0.32 * 3.3 / 9 = 0.11733 W
    // (design_board_test.cpp); with the board's other parts at OTHER_POWER the board draws
    // 1.28 + 0.48 + 0.32 + 0.576 + 0.11733 + OTHER_POWER = 2.77333 W + OTHER_POWER.
    DesignTarget const board(design::readDesignFile(testDesign("board.json")));
    SweepResult const boards =
        runSweep(board, {}, gridPoints({parseValues(*board.findVariable("board.OTHER_POWER"), "0.5,1.5")}),
                 pick(board, "board.total_power"), SweepOptions{});
    EXPECT_NEAR(column(boards, "board.total_power", 0), 2.656 + 0.32 * 3.3 / 9 + 0.5, 1e-5);
    EXPECT_NEAR(column(boards, "board.total_power", 1), 2.656 + 0.32 * 3.3 / 9 + 1.5, 1e-5);
    EXPECT_FALSE(board.findVariable("board.CORE_CURRENT"));  // fed from the design's VCCINT
    EXPECT_NE(board.notAVariable("board.CORE_CURRENT").find("block \"board\": cell CORE_CURRENT is"),
              std::string::npos);

    // corners.json as the file gives it (VCCINT 0.75 V, 1 W and 0.7 A budgets): the junction and the
    // VCCINT current as design_corners_test.cpp derives them, at ambients of 25 and 45 degC:
    //   Tj = 25 + (Ta - 25 + 2 (0.07225 + 0.535) - 2 * 0.0107 * 0.1445) / (1 - 2 * 0.0107),
    //   I_VCCINT = 0.075 + 0.5 + 0.01 (Tj - 0.1445 - 25), P = 0.07225 + 0.535 + 0.0107 (Tj - 25.1445).
    DesignTarget const budgeted(design::readDesignFile(testDesign("corners.json")));
    SweepResult const rows = runSweep(
        budgeted, {}, gridPoints({parseValues(*budgeted.findVariable("ambient_temperature"), "25,45")}),
        pick(budgeted, "budget.*"), SweepOptions{});
    for (std::size_t row = 0; row < 2; ++row) {
        double const ta = row == 0 ? 25 : 45;
        double const tj = 25 + (ta - 25 + 2 * (0.07225 + 0.535) - 2 * 0.0107 * 0.1445) / (1 - 2 * 0.0107);
        EXPECT_NEAR(column(rows, "budget.total_power.headroom", row),
                    1.0 - (0.07225 + 0.535 + 0.0107 * (tj - 25.1445)), 1e-5);
        EXPECT_NEAR(column(rows, "budget.rail.VCCINT.headroom", row), 0.7 - (0.575 + 0.01 * (tj - 25.1445)),
                    1e-5);
    }
}

}  // namespace
}  // namespace prsm::host

#endif
