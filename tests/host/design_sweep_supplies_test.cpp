// A design sweep over its extra loads, read through the supplies, the budget and the corners, every
// figure by hand on the test-only sheets. TestLeakage (TESTDEV): I_VCCINT = 0.5 + 0.01 (t - 25) A,
// I_VCCAUX = 0.1 + 0.002 (t - 25) A, t = Tj - 2 degC/W * P_logic; TestLoad: C V^2 f on VCCINT,
// AUX_MILLIAMPS on VCCAUX.
#ifdef PRSM_HOST_CORE_LINKED

#include <prsm/design/Design.h>
#include <prsm/host/DesignTarget.h>
#include <prsm/host/HostError.h>
#include <prsm/host/Sweep.h>

#include "DesignText.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <string>

namespace prsm::host {
namespace {

DesignTarget target(char const* file) {
    return DesignTarget(design::readDesignFile(std::string(PRSM_TEST_DESIGNDIR) + "/" + file));
}

double column(SweepResult const& result, std::string const& name, std::size_t row) {
    for (Column const& c : result.outputs)
        if (c.quantity.name == name) return c.numbers.at(row);
    ADD_FAILURE() << "no column " << name;
    return 0;
}

// supplies.json at Tj 35 degC, its loads in the noc region (no logic heating): VCCINT leaks
// 0.5 + 0.01 * 10 = 0.6 A, VCCAUX 0.1 + 0.002 * 10 = 0.12 A; static power 0.8 * 0.6 + 1.5 * 0.12 = 0.66 W.
TEST(DesignSweepSupplies, ALoadsPowerMovesItsRegulatorAndTheBudgetByHand) {
    DesignTarget const supplies = target("supplies.json");
    SweepResult const rows = runSweep(
        supplies, {}, gridPoints({parseValues(*supplies.findVariable("load.fabric.power"), "0.4,0.8,1.2")}),
        selectOutputs(
            supplies,
            "rail.VCCINT.current,regulator.*,supplies.*,budget.*,corner.typical.regulator.CORE.load"));
    ASSERT_EQ(rows.rows, 3u);
    // CORE carries I = 0.6 + P / 0.8 A at efficiency 0.8 + 0.1 * I / 2 up to 2 A and 0.9 beyond (the
    // curve is flat past its last point), out 0.8 I W:
    //   P 0.4: I 1.1, eff 0.855, out 0.88, in 0.88 / 0.855 = 1.0292398
    //   P 0.8: I 1.6, eff 0.88,  out 1.28, in 1.28 / 0.88  = 1.4545455
    //   P 1.2: I 2.1, eff 0.9,   out 1.68, in 1.68 / 0.9   = 1.8666667
    double const current[] = {1.1, 1.6, 2.1}, input[] = {1.0292398, 1.4545455, 1.8666667};
    // AUX is not moved: 0.12 + 0.2 = 0.32 A at 1.5 V is 0.48 W out, 0.48 / 0.75 = 0.64 W in.
    for (std::size_t row = 0; row < 3; ++row) {
        double const power = 0.4 * static_cast<double>(row + 1);
        EXPECT_NEAR(column(rows, "rail.VCCINT.current", row), current[row], 1e-6) << row;
        EXPECT_NEAR(column(rows, "regulator.CORE.load", row), current[row], 1e-6) << row;
        // The file is at the typical corner (its rails given, its junction given): the same load there.
        EXPECT_NEAR(column(rows, "corner.typical.regulator.CORE.load", row), current[row], 1e-6) << row;
        EXPECT_NEAR(column(rows, "regulator.CORE.margin", row), 2.0 - current[row], 1e-6) << row;
        EXPECT_NEAR(column(rows, "regulator.CORE.input_power", row), input[row], 1e-6) << row;
        EXPECT_NEAR(column(rows, "regulator.CORE.loss", row), input[row] - 0.8 * current[row], 1e-6) << row;
        EXPECT_NEAR(column(rows, "regulator.AUX.input_power", row), 0.64, 1e-6) << row;
        EXPECT_NEAR(column(rows, "supplies.input_power", row), input[row] + 0.64, 1e-6) << row;
        EXPECT_EQ(column(rows, "supplies.unregulated_power", row), 0.0) << row;
        // The total: the load, VCCAUX's 0.2 A * 1.5 V, and 0.66 W of leakage; held against 1.9 W.
        EXPECT_NEAR(column(rows, "budget.total_power", row), power + 0.3 + 0.66, 1e-6) << row;
        EXPECT_NEAR(column(rows, "budget.total_power.headroom", row), 1.9 - (power + 0.96), 1e-6) << row;
        EXPECT_NEAR(column(rows, "budget.rail.VCCINT.headroom", row), 2.2 - current[row], 1e-6) << row;
    }
    // VCCAUX powers up on twice its 0.1 A leakage at 25 degC; VCCINT has no such figure.
    EXPECT_NEAR(column(rows, "regulator.AUX.powerup_current", 0), 0.2, 1e-6);
    EXPECT_TRUE(std::isnan(column(rows, "regulator.CORE.powerup_current", 0)));
    // 1.36 and 1.76 W are within 1.9 W, 2.16 W is not.
    EXPECT_EQ(column(rows, "budget.exceeded", 0), 0.0);
    EXPECT_EQ(column(rows, "budget.exceeded", 1), 0.0);
    EXPECT_EQ(column(rows, "budget.exceeded", 2), 1.0);
}

TEST(DesignSweepSupplies, ALoadGivenAsACurrentFollowsItsRailAndFallsBackToTheFile) {
    DesignTarget const supplies = target("supplies.json");
    auto const evaluation = supplies.createDesign();
    auto auxInput = [&] {
        evaluation->evaluate();
        return std::strtod(evaluation->read("regulator.AUX.input_power").c_str(), nullptr);
    };
    // 0.12 + 0.3 = 0.42 A at 1.5 V: 0.63 W out, 0.84 W in at 0.75.
    evaluation->set("load.aux.current", "0.3");
    EXPECT_NEAR(auxInput(), 0.84, 1e-6);
    // At 2 V the same 0.42 A (the leakage is a current): 0.84 W out, 1.12 W in; the load draws 0.6 W.
    evaluation->set("rail.VCCAUX", "2");
    EXPECT_NEAR(auxInput(), 1.12, 1e-6);
    // The typical corner keeps the rail the point gives and the file's junction: the same 1.12 W.
    EXPECT_NEAR(std::strtod(evaluation->read("corner.typical.regulator.AUX.input_power").c_str(), nullptr),
                1.12, 1e-6);
    EXPECT_NEAR(std::strtod(evaluation->read("load.aux.power").c_str(), nullptr), 0.6, 1e-6);
    // Dropped from the point, the load is the file's 0.2 A again: 0.64 W in.
    evaluation->reset();
    EXPECT_NEAR(auxInput(), 0.64, 1e-6);

    // A figure the load is not given as, a misspelt load, a load without its figure.
    EXPECT_FALSE(supplies.findVariable("load.aux.power"));
    EXPECT_MENTIONS(supplies.notAVariable("load.aux.power"),
                    "load \"aux\": it is given as a current in " + std::string(PRSM_TEST_DESIGNDIR));
    EXPECT_MENTIONS(supplies.notAVariable("load.aux.power"), "; sweep load.aux.current");
    EXPECT_MENTIONS(supplies.notAVariable("load.fabrik.power"),
                    "has no load \"fabrik\" (did you mean fabric?) (loads: fabric, aux)");
    EXPECT_MENTIONS(supplies.notAVariable("load.fabric"),
                    "load \"fabric\": a load's variable names its figure");
    EXPECT_MENTIONS(supplies.outputsHint(), "(regulators: CORE, AUX)");
    EXPECT_MENTIONS(supplies.outputsHint(), "budget.total_power, budget.rail.VCCINT, each with .headroom");
}

// A design that names its scheme, at Tj 35 degC: the test data labels each rail after itself, so PL_2
// carries VCCINT alone (0.6 A leakage + P / 0.8 V), SYSTEM_3 VCCAUX (0.12 + 0.2 = 0.32 A at 1.5 V) and
// PL_1F VCCO12 (0.5 A).
TEST(DesignSweepSupplies, GroupFiguresFollowTheSweptLoadByHand) {
    DesignTarget const grouped(design::parseDesign(
        R"({"schema_version": 1, "device": {"part": "TESTDEV", "family": "FAM_A"},
            "thermal": {"junction_temperature": 35}, "rails": {"VCCINT": 0.8, "VCCAUX": 1.5, "VCCO12": 1.2},
            "static": {"model": "TestLeakage"}, "blocks": [],
            "loads": [{"name": "fabric", "rail": "VCCINT", "power": 0.8, "region": "noc"},
                      {"name": "aux", "rail": "VCCAUX", "current": 0.2, "region": "noc"},
                      {"name": "ddr", "rail": "VCCO12", "current": 0.5, "region": "io"}],
            "supplies": {}})",
        "grouped.json"));
    SweepResult const rows = runSweep(
        grouped, {}, gridPoints({parseValues(*grouped.findVariable("load.fabric.power"), "0.4,1.2")}),
        selectOutputs(grouped, "group.*,corner.typical.group.PL_2.current"));
    ASSERT_EQ(rows.rows, 2u);
    // P 0.4: 0.6 + 0.5 = 1.1 A, 0.88 W; P 1.2: 0.6 + 1.5 = 2.1 A, 1.68 W.
    double const current[] = {1.1, 2.1};
    for (std::size_t row = 0; row < 2; ++row) {
        EXPECT_NEAR(column(rows, "group.PL_2.current", row), current[row], 1e-6) << row;
        EXPECT_NEAR(column(rows, "group.PL_2.power", row), 0.8 * current[row], 1e-6) << row;
        // The file is at the typical corner (its rails and junction given): the same current there.
        EXPECT_NEAR(column(rows, "corner.typical.group.PL_2.current", row), current[row], 1e-6) << row;
        EXPECT_NEAR(column(rows, "group.SYSTEM_3.current", row), 0.32, 1e-6) << row;
        EXPECT_NEAR(column(rows, "group.SYSTEM_3.power", row), 0.48, 1e-6) << row;
        EXPECT_NEAR(column(rows, "group.PL_1F.power", row), 0.6, 1e-6) << row;  // 1.2 V * 0.5 A
    }
    // VCCAUX powers up on twice its 0.1 A leakage at 25 degC; the test sheet gives VCCINT none.
    EXPECT_NEAR(column(rows, "group.SYSTEM_3.powerup_current", 0), 0.2, 1e-6);
    EXPECT_TRUE(std::isnan(column(rows, "group.PL_2.powerup_current", 0)));

    // A group the scheme does not feed here is no output; the refusal lists those there are.
    EXPECT_MENTIONS(grouped.outputsHint(), "(groups: PL_1F, PL_2, SYSTEM_3)");
    try {
        (void)selectOutputs(grouped, "group.PL_3.current");
        ADD_FAILURE() << "group.PL_3 accepted";
    } catch (HostError const& e) {
        EXPECT_MENTIONS(std::string(e.what()), "(groups: PL_1F, PL_2, SYSTEM_3)");
    }
}

// A design that counts its decoupling and budgets a supply, at Tj 35 degC. The block draws
// 1000 pF * 0.8^2 V^2 * f = 0.00064 f W (f in MHz) on VCCINT, all of it logic, so that the test sheet
// takes t = 35 - 2 * P off the junction: VCCINT leaks 0.5 + 0.01 (t - 25) A.
TEST(DesignSweepSupplies, DecouplingCountsAndASupplysBudgetFollowTheSweptClockByHand) {
    DesignTarget const decoupled(design::parseDesign(
        R"({"schema_version": 1, "device": {"part": "TESTDEV", "family": "FAM_A", "package": "PKG_A"},
            "thermal": {"junction_temperature": 35}, "rails": {"VCCINT": 0.8, "VCCAUX": 1.5},
            "static": {"model": "TestLeakage"},
            "blocks": [{"name": "core", "model": "TestLoad", "inputs": {"CAPACITANCE": 1000}}],
            "supplies": {}, "decoupling": {}, "budget": {"supplies": {"PL_2": 2.0}}})",
        "decoupled.json"));
    SweepResult const rows = runSweep(
        decoupled, {}, gridPoints({parseValues(*decoupled.findVariable("core.CLOCK_FREQ"), "100,1000,2000")}),
        selectOutputs(decoupled, "decoupling.*,budget.*"));
    ASSERT_EQ(rows.rows, 3u);
    //   f     P (W)  dynamic = P / 0.8  t = 35 - 2P  leakage          PL_2 = VCCINT total
    //   100   0.064  0.08 A             34.872       0.59872 A        0.67872 A
    //   1000  0.64   0.8 A              33.72        0.5872 A         1.3872 A
    //   2000  1.28   1.6 A              32.44        0.5744 A         2.1744 A
    // The whole dynamic current is VCCINT's load step, all of it the logic's part (no AI engines). The
    // 22 uF count is the AI-engine line at no load, 2 * 0 + 1, plus the logic's line on PKG_A,
    // 0.5 * step + 1.5: 2.54, 2.9 and 3.3, so 3, 3 and 4 capacitors.
    double const step[] = {0.08, 0.8, 1.6}, supply[] = {0.67872, 1.3872, 2.1744}, count[] = {2.54, 2.9, 3.3};
    double const whole[] = {3, 3, 4};
    for (std::size_t row = 0; row < 3; ++row) {
        EXPECT_NEAR(column(rows, "decoupling.VCCINT.step_current", row), step[row], 1e-6) << row;
        EXPECT_NEAR(column(rows, "decoupling.VCCINT.pl.step_current", row), step[row], 1e-6) << row;
        EXPECT_EQ(column(rows, "decoupling.VCCINT.aie.step_current", row), 0.0) << row;
        EXPECT_NEAR(column(rows, "decoupling.VCCINT.22uF.count", row), count[row], 1e-5) << row;
        EXPECT_EQ(column(rows, "decoupling.VCCINT.22uF.whole_count", row), whole[row]) << row;
        // VCCAUX draws no dynamic current, so no step: 7 * 0 + 8 capacitors of 22 uF at every clock.
        EXPECT_NEAR(column(rows, "decoupling.VCCAUX.22uF.count", row), 8.0, 1e-5) << row;
        // The test data has no 0.1 uF row for VCCINT: no count, so no whole count either.
        EXPECT_TRUE(std::isnan(column(rows, "decoupling.VCCINT.0p1uF.whole_count", row))) << row;
        // PL_2 carries VCCINT alone; held against its 2 A.
        EXPECT_NEAR(column(rows, "budget.supply.PL_2", row), supply[row], 1e-5) << row;
        EXPECT_NEAR(column(rows, "budget.supply.PL_2.headroom", row), 2.0 - supply[row], 1e-5) << row;
        EXPECT_EQ(column(rows, "budget.exceeded", row), row == 2 ? 1.0 : 0.0) << row;
    }

    // A rail or a supply that is not there is refused, listing those that are.
    EXPECT_MENTIONS(decoupled.outputsHint(), "(rails: VCCINT (parts: aie, pl), VCCAUX; values: ");
    EXPECT_MENTIONS(decoupled.outputsHint(), "budget.supply.PL_2, each with .headroom");
    for (char const* unknown : {"decoupling.VCCO12.22uF.count", "budget.supply.PL_3"}) {
        try {
            (void)selectOutputs(decoupled, unknown);
            ADD_FAILURE() << unknown << " accepted";
        } catch (HostError const& e) {
            EXPECT_MENTIONS(std::string(e.what()), "budget.supply.PL_2");
            EXPECT_MENTIONS(std::string(e.what()), "(rails: VCCINT (parts: aie, pl), VCCAUX;");
        }
    }
}

// The solved junction u = Tj - 25 = (Ta - 25 + 2 (P_dyn + p25) - 2 s heat) / (1 - 2 s), heat = 2 P_dyn
// (the test block is logic), and the total P_dyn + p25 + s (Tj - 25 - heat).
double solvedTotal(double ambient, double dynamic, double p25, double slope) {
    double const heat = 2 * dynamic;
    double const tj = 25 + (ambient - 25 + 2 * (dynamic + p25) - 2 * slope * heat) / (1 - 2 * slope);
    return dynamic + p25 + slope * (tj - 25 - heat);
}

TEST(DesignSweepSupplies, CornerFiguresFollowTheSweptClockByHand) {
    // corners.json: typical at the file's 0.75 V, 1.6 V and 25 degC ambient, so that leakage is
    // 0.75 (0.5 + 0.01 dt) + 1.6 (0.1 + 0.002 dt) = 0.535 + 0.0107 dt W; worst at the sheet's 0.8 V, the
    // file's higher 1.6 V and the 45 degC hottest ambient: 0.56 + 0.0112 dt W. The block draws
    // 1000 pF V^2 f on VCCINT and 10 mA * 1.6 V = 0.016 W on VCCAUX.
    DesignTarget const corners = target("corners.json");
    SweepResult const rows =
        runSweep(corners, {}, gridPoints({parseValues(*corners.findVariable("core.CLOCK_FREQ"), "100,200")}),
                 selectOutputs(corners, "total_power,corner.*.total_power,corner.worst.budget.exceeded"));
    // 100 MHz: typical P_dyn = 1e-9 * 0.5625 * 1e8 + 0.016 = 0.07225 W, worst 1e-9 * 0.64 * 1e8 + 0.016 =
    // 0.08 W. 200 MHz: 0.1125 + 0.016 = 0.1285 W and 0.128 + 0.016 = 0.144 W.
    double const typical[] = {solvedTotal(25, 0.07225, 0.535, 0.0107),
                              solvedTotal(25, 0.1285, 0.535, 0.0107)};
    double const worst[] = {solvedTotal(45, 0.08, 0.56, 0.0112), solvedTotal(45, 0.144, 0.56, 0.0112)};
    for (std::size_t row = 0; row < 2; ++row) {
        // Within the solve's grid step of 1/16384 degC, times the leakage slope.
        EXPECT_NEAR(column(rows, "corner.typical.total_power", row), typical[row], 1e-5) << row;
        EXPECT_NEAR(column(rows, "corner.worst.total_power", row), worst[row], 1e-5) << row;
        // The file is at the typical corner already.
        EXPECT_NEAR(column(rows, "total_power", row), typical[row], 1e-5) << row;
        // At worst VCCINT carries more than its 0.7 A budget: 0.08 + 0.5 + 0.01 * 21.6 = 0.796 A at 100 MHz.
        EXPECT_EQ(column(rows, "corner.worst.budget.exceeded", row), 1.0) << row;
    }
}

}  // namespace
}  // namespace prsm::host

#endif
