// The design engine on the test-only sheets (TestLoad, TestLeakage and its data file), whose figures
// follow by hand: rail totals, the dynamic power fed into the static sheet and the junction temperature.
#include <prsm/design/Estimate.h>
#include <prsm/design/ReportFormat.h>
#include <prsm/framework/PRSMSheetRegistry.h>

#include "ReportLookup.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>

namespace {

using namespace prsm::design;
using prsm::test::rail;
using prsm::Sheet;
using prsm::SheetRegistry;

std::string designFile(std::string const& name) {
    return std::string(PRSM_TEST_DESIGNDIR) + "/" + name;
}

double fed(Report const& report, std::string const& cell) {
    for (auto const& [name, value] : report.staticInputs)
        if (name == cell) return value;
    throw std::runtime_error("no static input " + cell);
}

double regionStatic(Report const& report, std::string const& region) {
    for (RegionResult const& r : report.regions)
        if (r.region == region) return r.staticPower;
    throw std::runtime_error("no region " + region);
}

// Per TestLoad instance: C * V^2 * f = C[pF] * 1e-12 * V^2 * f[MHz] * 1e6 W.
constexpr double kCore = 1000e-12 * 0.8 * 0.8 * 100e6;                         // 0.064 W on VCCINT
constexpr double kCoreAux = 0.010 * 1.5;                                       // 10 mA on VCCAUX: 0.015 W
constexpr double kSlow = 500e-12 * 0.8 * 0.8 * 50e6;                           // 0.016 W
constexpr double kKernels = 0.2;                                               // AI-engine load on VCCINT, W
constexpr double kPhy = 0.1 * 1.8;                                             // 0.1 A on VCCO18: 0.18 W
constexpr double kDynamic = 2 * (kCore + kCoreAux) + kSlow + kKernels + kPhy;  // 0.554 W
constexpr double kLogic = 2 * (kCore + kCoreAux) + kSlow;                      // 0.174 W

// Leakage of the test data at junction u + 25 degC, with t = Tj - 2 degC/W * logic dynamic power:
// VCCINT 0.5 + 0.01 (t - 25) A, VCCAUX 0.1 + 0.002 (t - 25) A.
double vccintLeak(double u) {
    return 0.5 + 0.01 * (u - 2.0 * kLogic);
}
double vccauxLeak(double u) {
    return 0.1 + 0.002 * (u - 2.0 * kLogic);
}

TEST(DesignEstimate, SmallDesignRailsFeedsAndThermalByHand) {
    Estimator estimator(readDesignFile(designFile("small.json")));
    Report const& report = estimator.estimate();
    ASSERT_TRUE(report.complete) << (report.failures.empty() ? "" : report.failures[0]);

    // The static sheet's inputs: the design's dynamic power, selected by region, rail and tag.
    EXPECT_NEAR(fed(report, "LOGIC_DYN_POWER"), kLogic, 1e-6);
    EXPECT_NEAR(fed(report, "VCCINT_DYN_POWER_MINUS_AIE"), 2 * kCore + kSlow, 1e-6);  // 0.144 W
    EXPECT_NEAR(fed(report, "IO_DYN_POWER"), kPhy, 1e-6);
    EXPECT_NEAR(fed(report, "IO_IP_DYN_POWER"), kPhy, 1e-6);

    // Tj = 25 + 2 (P_dyn + 0.55 + 0.011 (u - 0.348)), u = Tj - 25:
    // u (1 - 0.022) = 2 (0.554 + 0.55) - 0.022 * 0.348 = 2.200344.
    double const u = (2.0 * (kDynamic + 0.55) - 0.022 * 2.0 * kLogic) / (1.0 - 0.022);
    EXPECT_TRUE(report.thermal.solved);
    EXPECT_FALSE(report.thermal.runaway);
    // 27.249841 degC is 446461.4 grid steps: the junction is step 446462, the first above the root.
    EXPECT_EQ(report.thermal.junction, std::ceil((25.0 + u) / kThermalGrid) * kThermalGrid);
    EXPECT_LT(report.thermal.junction - (25.0 + u), kThermalGrid);
    // Static calculations: at 25 degC, at the plain step 25 + 2 P(25), then, the leakage being linear,
    // the secant's exact root bracketed by its two grid points.
    EXPECT_EQ(report.thermal.iterations, 4);

    RailResult const& vccint = rail(report, "VCCINT");
    EXPECT_DOUBLE_EQ(vccint.voltage, 0.8);
    EXPECT_NEAR(vccint.dynamicCurrent, (2 * kCore + kSlow + kKernels) / 0.8, 1e-6);  // 0.43 A
    EXPECT_NEAR(vccint.staticCurrent, vccintLeak(u), 1e-5);
    EXPECT_NEAR(vccint.totalCurrent, 0.43 + vccintLeak(u), 1e-5);
    EXPECT_NEAR(vccint.power, 0.8 * (0.43 + vccintLeak(u)), 1e-5);
    EXPECT_DOUBLE_EQ(vccint.maxCurrent, 1.0);  // MAX_CURRENT of the test data
    EXPECT_FALSE(vccint.overLimit);            // 0.43 + 0.519 A
    RailResult const& vccaux = rail(report, "VCCAUX");
    EXPECT_NEAR(vccaux.dynamicCurrent, 0.020, 1e-7);
    EXPECT_NEAR(vccaux.staticCurrent, vccauxLeak(u), 1e-5);
    RailResult const& vcco18 = rail(report, "VCCO18");
    EXPECT_NEAR(vcco18.dynamicCurrent, 0.1, 1e-9);
    EXPECT_EQ(vcco18.staticCurrent, 0.0);  // the test sheet knows no VCCO18 leakage

    double const staticPower = 0.8 * vccintLeak(u) + 1.5 * vccauxLeak(u);
    EXPECT_NEAR(report.dynamicPower, kDynamic, 1e-6);
    EXPECT_NEAR(report.staticPower, staticPower, 1e-5);
    EXPECT_NEAR(report.totalPower, kDynamic + staticPower, 1e-5);
    EXPECT_NEAR(report.thermal.junction, 25.0 + 2.0 * report.totalPower, 1e-3);
    EXPECT_NEAR(regionStatic(report, "logic"), staticPower, 1e-5);

    // Blocks: all instances, per rail; loads appear as blocks of their own.
    ASSERT_EQ(report.blocks.size(), 4u);
    EXPECT_EQ(report.blocks[0].name, "core");
    EXPECT_EQ(report.blocks[0].count, 2);
    EXPECT_NEAR(report.blocks[0].power, 2 * (kCore + kCoreAux), 1e-7);  // 0.158 W
    ASSERT_EQ(report.blocks[0].rails.size(), 2u);
    EXPECT_EQ(report.blocks[0].rails[0].first, "VCCINT");
    EXPECT_NEAR(report.blocks[0].rails[1].second, 2 * kCoreAux, 1e-7);
    EXPECT_NEAR(report.blocks[3].power, kPhy, 1e-9);
    EXPECT_TRUE(report.warnings.empty());

    // One block's input changes: update() recalculates it and the static sheet only, with the same
    // result as estimating everything again.
    estimator.setInput("slow", "CLOCK_FREQ", "150");  // 500 pF * 0.64 * 150 MHz = 0.048 W
    double const updated = estimator.update().dynamicPower;
    EXPECT_NEAR(updated, kDynamic - kSlow + 500e-12 * 0.64 * 150e6, 1e-6);
    EXPECT_NEAR(estimator.estimate().dynamicPower, updated, 1e-12);

    // The junction is solved from the last solution, and lands on the grid point a fresh estimate of the
    // changed design lands on. The test leakage falls by 0.022 W per watt of logic dynamic power (it is
    // taken 2 degC/W below the junction), which the first change teaches the solve: after it, a
    // change costs two static calculations, the grid points either side of the root.
    auto fresh = [&](char const* clock) {
        Design design = readDesignFile(designFile("small.json"));
        for (Block& block : design.blocks)
            if (block.name == "slow") block.inputs.push_back({"CLOCK_FREQ", clock, ""});
        return Estimator(design).estimate().thermal;
    };
    EXPECT_EQ(estimator.update().thermal.junction, fresh("150").junction);
    EXPECT_EQ(fresh("150").iterations, 4);
    estimator.setInput("slow", "CLOCK_FREQ", "100");
    ThermalResult const warm = estimator.update().thermal;
    EXPECT_EQ(warm.junction, fresh("100").junction);
    EXPECT_EQ(warm.iterations, 2);
    estimator.setThermalStart(Estimator::ThermalStartFrom::Ambient);
    estimator.setInput("slow", "CLOCK_FREQ", "150");
    EXPECT_EQ(estimator.update().thermal.iterations, 4);  // as a fresh estimate, whatever came before
    // The design owns rail voltages; unknown blocks and text that is no number are refused.
    EXPECT_THROW(estimator.setInput("core", "VCCINT", "0.7"), DesignError);
    EXPECT_THROW(estimator.setInput("nobody", "CLOCK_FREQ", "1"), DesignError);
    EXPECT_THROW(estimator.setInput("core", "CLOCK_FREQ", "fast"), DesignError);
}

TEST(DesignEstimate, ClearInputsGivesWhatAFreshEstimateGives) {
    // A block's clock, and the static sheet's share of LUTs used, which sets its VCCAUX leakage.
    Design const design =
        parseDesign(R"({"schema_version": 1, "device": {"part": "ZQVP1502", "grade": "-S2L-E"},
      "thermal": {"junction_temperature": 25}, "static": {"model": "TalvexStatic"},
      "blocks": [{"name": "core", "model": "TestLoad"}]})",
                    "clear.json");
    Report const fresh = Estimator(design).estimate();
    Estimator estimator(design);
    estimator.estimate();
    estimator.setInput("core", "CLOCK_FREQ", "300");
    estimator.setInput("static", "LUT_USED_PCT", "80");
    Report const changed = estimator.update();
    EXPECT_NE(changed.dynamicPower, fresh.dynamicPower);
    EXPECT_NE(changed.staticPower, fresh.staticPower);
    estimator.clearInputs();
    Report const cleared = estimator.update();
    EXPECT_EQ(cleared.dynamicPower, fresh.dynamicPower);
    EXPECT_EQ(cleared.staticPower, fresh.staticPower);

    // The board's own OTHER_POWER, 0.5 W by default, enters its total as it is: 2.5 W adds 2 W.
    Estimator board(readDesignFile(designFile("board.json")));
    double const total = board.estimate().board->totalPower;
    board.setInput("board", "OTHER_POWER", "2.5");
    EXPECT_NEAR(board.update().board->totalPower, total + 2.0, 1e-5);
    board.clearInputs();
    EXPECT_EQ(board.update().board->totalPower, total);
}

// A count input the static sheet is given keeps the given value; clearInputs() gives it back to the
// blocks' count, whichever runner the change was made on.
TEST(DesignEstimate, ClearInputsHandsAGivenCountBackToTheBlocks) {
    auto held = [](Report const& report, std::string const& cell) {
        for (auto const& [name, value] : report.staticCounts)
            if (name == cell) return value;
        return -1.0;  // not reported
    };
    Estimator estimator(readDesignFile(designFile("small.json")));
    double const fed = held(estimator.estimate(), "LUT_USED_PCT");
    estimator.setInput("static", "LUT_USED_PCT", "40");
    estimator.setInput("core", "CLOCK_FREQ", "200");
    Report const& changed = estimator.update();
    EXPECT_EQ(held(changed, "LUT_USED_PCT"), 40.0);
    EXPECT_NEAR(changed.blocks[0].power, 2 * (2 * kCore + kCoreAux), 1e-7);  // twice the clock: 0.286 W
    estimator.clearInputs();
    Report const& cleared = estimator.update();
    EXPECT_EQ(held(cleared, "LUT_USED_PCT"), fed);
    EXPECT_NEAR(cleared.blocks[0].power, 2 * (kCore + kCoreAux), 1e-7);  // 0.158 W
    estimator.clearInputs();  // nothing left to undo: the same figures again
    EXPECT_EQ(estimator.update().totalPower, cleared.totalPower);
}

// The inputs a design sets, each with what it is to the design; a block's own input is none of them.
TEST(DesignEstimate, DesignOwnedInputsSayWhatTheyAre) {
    Sheet const& leakage = *SheetRegistry::instance().find("TestLeakage");
    Sheet const& board = *SheetRegistry::instance().find("TestBoard");
    struct Case {
        Sheet const* sheet;
        char const* cell;
        DesignOwned::Kind kind;
        char const* subject;
    } const cases[] = {
        {&leakage, "VCCAUX", DesignOwned::RailVoltage, "VCCAUX"},
        {&leakage, "DEVICE_NAME", DesignOwned::DeviceField, "part"},
        {&leakage, "JUNCTION_TEMPERATURE", DesignOwned::JunctionTemperature, ""},
        {&leakage, "IO_IP_DYN_POWER", DesignOwned::FedPower, "region:io tag:ip"},
        {&board, "AUX_CURRENT", DesignOwned::BoardCurrent, "VCCAUX"},
        {&board, "OTHER_POWER", DesignOwned::None, ""},
    };
    for (Case const& c : cases) {
        DesignOwned const owned = designOwned(c.sheet->design(), c.cell);
        EXPECT_EQ(owned.kind, c.kind) << c.cell;
        EXPECT_EQ(owned.subject, c.subject) << c.cell;
    }
    EXPECT_EQ(describe(designOwned(board.design(), "IO_CURRENT")),
              "the device's total current on rail VCCO33, which the design sets");
    EXPECT_EQ(describe(DesignOwned{}), "");
}

TEST(DesignEstimate, GivenJunctionTemperature) {
    Design design = readDesignFile(designFile("small.json"));
    design.thermal.junction = 40.0;
    Report const report = Estimator(design).estimate();
    ASSERT_TRUE(report.complete);
    EXPECT_FALSE(report.thermal.solved);
    EXPECT_DOUBLE_EQ(report.thermal.junction, 40.0);
    // t = 40 - 0.348 = 39.652: VCCINT 0.5 + 0.01 * 14.652 = 0.64652 A, VCCAUX 0.1 + 0.002 * 14.652.
    EXPECT_NEAR(rail(report, "VCCINT").staticCurrent, 0.64652, 1e-5);
    EXPECT_NEAR(rail(report, "VCCAUX").staticCurrent, 0.129304, 1e-5);
    EXPECT_NEAR(report.staticPower, 0.8 * 0.64652 + 1.5 * 0.129304, 1e-5);  // 0.711172 W
    // VCCINT now draws 0.43 + 0.64652 = 1.07652 A, over its 1 A limit; VCCAUX has no limit.
    EXPECT_TRUE(rail(report, "VCCINT").overLimit);
    EXPECT_EQ(rail(report, "VCCAUX").maxCurrent, 0.0);
    ASSERT_EQ(report.warnings.size(), 1u);
    EXPECT_EQ(report.warnings[0].cell, "/rails/VCCINT");
}

TEST(DesignEstimate, ThermalRunawayIsReportedNotLooped) {
    // HOTDEV leaks 1 A more per degree on VCCINT: 0.8 W/degC, times 2 degC/W, so every degree of
    // rise brings 1.6 more and no steady state exists.
    Report const report = estimateFile(designFile("runaway.json"));
    EXPECT_TRUE(report.thermal.runaway);
    EXPECT_FALSE(report.complete);
    EXPECT_GT(report.thermal.junction, kRunawayTemperature);
    EXPECT_LT(report.thermal.iterations, kMaxThermalCalculations);
    ASSERT_EQ(report.failures.size(), 1u);
    EXPECT_NE(report.failures[0].find("thermal runaway"), std::string::npos);
    // Nothing partial is printed as a total.
    EXPECT_NE(toJson(report).find("\"total_power\": null"), std::string::npos);
    EXPECT_EQ(toCsv(report).find("\ntotal,"), std::string::npos);
}

TEST(DesignEstimate, FailedBlockAndInvalidInputsAreNamed) {
    Design design = parseDesign(R"({
      "schema_version": 1, "device": {"part": "TESTDEV", "internal_part": "TESTDEV"},
      "thermal": {"junction_temperature": 25},
      "blocks": [
        {"name": "fine", "model": "TestLoad", "inputs": {"CLOCK_FREQ": -5, "MODE": "FAST"}},
        {"name": "broken", "model": "TestLoad", "inputs": {"MODE": "BROKEN"}}
      ]})",
                                "inline.json");
    Report const report = Estimator(design).estimate();
    EXPECT_FALSE(report.complete);
    ASSERT_EQ(report.failures.size(), 1u);
    EXPECT_NE(report.failures[0].find("\"broken\""), std::string::npos);
    EXPECT_NE(report.failures[0].find("no characterisation for mode BROKEN"), std::string::npos);
    EXPECT_FALSE(report.blocks[1].error.empty());
    ASSERT_EQ(report.warnings.size(), 2u);
    EXPECT_EQ(report.warnings[0].block, "fine");
    EXPECT_EQ(report.warnings[0].cell, "CLOCK_FREQ");
    EXPECT_EQ(report.warnings[1].cell, "MODE");
}

// An input outside its list names the list it should come from (the test data's INSTANCE_TYPE_LIST),
// and says that the block, which then draws nothing, is missing from the totals.
TEST(DesignEstimate, AnInputOutsideItsListNamesTheChoices) {
    auto warningsOn = [](std::string const& type) {
        Design const design = parseDesign(R"({"schema_version": 1, "device": {"part": "ZQVC1902"},
          "thermal": {"junction_temperature": 50}, "blocks": [{"name": "l", "model": "TalvexCleLogic",
          "inputs": {"INSTANCE_COUNT": 1000, "INSTANCE_TYPE": ")" +
                                              type + R"("}}]})",
                                          "inline.json");
        Report const report = Estimator(design).estimate();
        EXPECT_TRUE(report.complete);
        std::vector<std::string> messages;
        for (Warning const& w : report.warnings)
            if (w.cell == "INSTANCE_TYPE") messages.push_back(w.message);
        return messages;
    };
    EXPECT_EQ(warningsOn("NOPE"), std::vector<std::string>{
                                      "value NOPE is not valid (one of LUT_LOGIC, LUT_DRAM, LUT_SRL, REG_FF, "
                                      "REG_X, OFMUX, BYP, LOOKAHEAD8); the block gives 0 W and contributes "
                                      "nothing"});
    EXPECT_TRUE(warningsOn("REG_X").empty());
}

TEST(DesignEstimate, TheDesignsRailVoltageReachesAShippedBlock) {
    prsm::Sheet const* logic = prsm::SheetRegistry::instance().find("TalvexCleLogic");
    ASSERT_NE(logic, nullptr);
    // A design's rail voltage reaches the block: the logic sheet's power scales with VCCINT, so the
    // engine's VCCINT figure is the sheet's own LOGIC_POWER at the design's 0.7 V, not its 0.72 V default.
    Design design = parseDesign(R"({"schema_version": 1, "device": {"part": "ZQVC1902"},
      "thermal": {"junction_temperature": 50}, "rails": {"VCCINT": 0.7},
      "blocks": [{"name": "l", "model": "TalvexCleLogic", "count": 3, "inputs": {"INSTANCE_COUNT": 1000}}]})",
                                "inline.json");
    Report const report = Estimator(design).estimate();
    ASSERT_TRUE(report.complete);
    auto sheet = logic->create();
    sheet->set("INSTANCE_COUNT", "1000");
    sheet->set("VCCINT", "0.7");
    sheet->calculate();
    double const own = std::stod(sheet->evaluate("LOGIC_POWER"));
    EXPECT_GT(own, 0.0);
    EXPECT_NEAR(rail(report, "VCCINT").dynamicCurrent, 3 * own / 0.7, 1e-6 * own);
    EXPECT_TRUE(report.warnings.empty());

    // A part the device catalogue does not list is estimated, with a warning on /device/part.
    design.device.fields[0].second = "ZQVX9999";
    Report const unknown = Estimator(design).estimate();
    ASSERT_FALSE(unknown.warnings.empty());
    EXPECT_EQ(unknown.warnings[0].cell, "/device/part");
}

}  // namespace
