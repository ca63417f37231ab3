// Corners and budgets on the test-only sheets, every figure by hand. TestLeakage (data of TESTDEV):
// I_VCCINT = 0.5 + 0.01 (t - 25) A, I_VCCAUX = 0.1 + 0.002 (t - 25) A, t = Tj - 2 degC/W * P_logic;
// its voltage inputs default to 0.8 V and 1.5 V, the figures a design that leaves the rails out gets.
// TestLoad: C V^2 f on VCCINT, AUX_MILLIAMPS on VCCAUX.
#include <prsm/design/Budget.h>
#include <prsm/design/Corners.h>
#include <prsm/design/Design.h>
#include <prsm/design/JunctionLimit.h>
#include <prsm/design/ViewFormat.h>

#include "DesignText.h"
#include "ReportLookup.h"

#include <nlohmann/json.hpp>

#include <gtest/gtest.h>

#include <cmath>
#include <string>

namespace {

using namespace prsm::design;
using prsm::test::rail;

Design cornersDesign() {
    return readDesignFile(std::string(PRSM_TEST_DESIGNDIR) + "/corners.json");
}

// The junction solved from Tj = Ta + 2 (P_dyn + P_static(Tj)) with P_static = p25 + s (Tj - heat - 25):
// u = Tj - 25 = (Ta - 25 + 2 (P_dyn + p25) - 2 s heat) / (1 - 2 s). Within one solve grid step above.
double junction(double ambient, double dynamic, double p25, double slope, double heat) {
    return 25 + (ambient - 25 + 2 * (dynamic + p25) - 2 * slope * heat) / (1 - 2 * slope);
}

// Typical: the file's 0.75 V and 1.6 V at the file's 25 degC ambient.
//   VCCINT dynamic 1000 pF * 0.75^2 * 100 MHz = 0.05625 W = 0.075 A; VCCAUX 10 mA = 0.016 W.
//   P_dyn = 0.07225 W, heat = 2 * 0.07225 = 0.1445 degC.
//   P_static = 0.75 (0.5 + 0.01 dt) + 1.6 (0.1 + 0.002 dt) = 0.535 + 0.0107 dt.
// Worst: VCCINT rises to the sheet's 0.8 V, VCCAUX keeps its higher 1.6 V, the ambient is 45 degC.
//   VCCINT dynamic 1000 pF * 0.8^2 * 100 MHz = 0.064 W = 0.08 A; P_dyn = 0.08 W, heat = 0.16 degC.
//   P_static = 0.8 (0.5 + 0.01 dt) + 1.6 (0.1 + 0.002 dt) = 0.56 + 0.0112 dt.
TEST(DesignCorners, TypicalAndWorstByHand) {
    CornerReports const c = estimateCorners(cornersDesign());
    ASSERT_TRUE(c.typical.complete);
    ASSERT_TRUE(c.worst.complete);
    double const grid = 1.0 / 16384;

    double const tjTypical = junction(25, 0.07225, 0.535, 0.0107, 0.1445);  // 26.2379 degC
    EXPECT_NEAR(c.typical.thermal.junction, tjTypical, grid);
    EXPECT_DOUBLE_EQ(rail(c.typical, "VCCINT").voltage, 0.75);
    // 0.075 + 0.5 + 0.01 (26.2379 - 0.1445 - 25) = 0.58593 A
    EXPECT_NEAR(rail(c.typical, "VCCINT").totalCurrent, 0.075 + 0.5 + 0.01 * (tjTypical - 0.1445 - 25), 1e-6);

    EXPECT_EQ(c.hotJunction, HotJunction::MaxAmbient);
    double const tjWorst = junction(45, 0.08, 0.56, 0.0112, 0.16);  // 46.7639 degC
    EXPECT_NEAR(c.worst.thermal.junction, tjWorst, grid);
    EXPECT_DOUBLE_EQ(rail(c.worst, "VCCINT").voltage, 0.8);
    EXPECT_DOUBLE_EQ(rail(c.worst, "VCCAUX").voltage, 1.6);
    double const intWorst = 0.08 + 0.5 + 0.01 * (tjWorst - 0.16 - 25);  // 0.79604 A
    double const auxWorst = 0.01 + 0.1 + 0.002 * (tjWorst - 0.16 - 25);  // 0.15321 A
    EXPECT_NEAR(rail(c.worst, "VCCINT").totalCurrent, intWorst, 1e-6);
    EXPECT_NEAR(rail(c.worst, "VCCAUX").totalCurrent, auxWorst, 1e-6);

    // The comparison pairs the same figures, and the worst corner brackets the typical one.
    ASSERT_EQ(c.railCurrents.size(), 2u);
    for (CornerFigure const& f : c.railCurrents) EXPECT_TRUE(f.worstIsHigher()) << f.name;
    // 0.07225 + 0.535 + 0.0107 (26.2379 - 25.1445) = 0.61895 W; 0.08 + 0.56 + 0.0112 * 21.6039 = 0.88197 W
    EXPECT_NEAR(c.totalPower.typical, 0.07225 + 0.535 + 0.0107 * (tjTypical - 25.1445), 1e-6);
    EXPECT_NEAR(c.totalPower.worst, 0.08 + 0.56 + 0.0112 * (tjWorst - 25.16), 1e-6);
}

// corners.json with a declared regulator on VCCINT and the grouping sheet's scheme: the test data labels
// each rail after itself, so PL_2 carries VCCINT alone and SYSTEM_3 VCCAUX alone. The corners are those
// of TypicalAndWorstByHand: a supply's current is its rail's at each corner.
TEST(DesignCorners, SuppliesSideBySideAtBothCorners) {
    Design const design = parseDesign(R"({"schema_version": 1,
        "device": {"part": "TESTDEV", "internal_part": "TESTDEV", "family": "FAM_A"},
        "thermal": {"ambient_temperature": 25, "theta_ja": 2.0, "max_ambient_temperature": 45},
        "rails": {"VCCINT": 0.75, "VCCAUX": 1.6}, "static": {"model": "TestLeakage"},
        "blocks": [{"name": "core", "model": "TestLoad",
                    "inputs": {"CAPACITANCE": 1000, "CLOCK_FREQ": 100, "AUX_MILLIAMPS": 10}}],
        "regulators": [{"name": "CORE", "rails": ["VCCINT"], "rating": 1.0, "efficiency": 0.9}],
        "supplies": {}})",
                                      "supplied.json");
    CornerReports const c = estimateCorners(design);
    ASSERT_TRUE(c.typical.complete && c.worst.complete);
    double const tjTypical = junction(25, 0.07225, 0.535, 0.0107, 0.1445);
    double const tjWorst = junction(45, 0.08, 0.56, 0.0112, 0.16);
    double const intTypical = 0.075 + 0.5 + 0.01 * (tjTypical - 0.1445 - 25);  // 0.58593 A
    double const auxTypical = 0.01 + 0.1 + 0.002 * (tjTypical - 0.1445 - 25);  // 0.11219 A
    double const intWorst = 0.08 + 0.5 + 0.01 * (tjWorst - 0.16 - 25);         // 0.79604 A
    double const auxWorst = 0.01 + 0.1 + 0.002 * (tjWorst - 0.16 - 25);        // 0.15321 A

    ASSERT_EQ(c.regulatorLoads.size(), 1u);
    EXPECT_EQ(c.regulatorLoads[0].name, "CORE");
    EXPECT_NEAR(c.regulatorLoads[0].typical, intTypical, 1e-6);
    EXPECT_NEAR(c.regulatorLoads[0].worst, intWorst, 1e-6);

    auto group = [](std::vector<CornerFigure> const& figures, std::string const& name) {
        for (CornerFigure const& f : figures)
            if (f.name == name) return f;
        ADD_FAILURE() << "no group " << name;
        return CornerFigure{};
    };
    EXPECT_NEAR(group(c.groupCurrents, "PL_2").typical, intTypical, 1e-6);
    EXPECT_NEAR(group(c.groupCurrents, "PL_2").worst, intWorst, 1e-6);
    // 0.75 V and 0.8 V times VCCINT's current; 1.6 V at both corners times VCCAUX's.
    EXPECT_NEAR(group(c.groupPowers, "PL_2").typical, 0.75 * intTypical, 1e-6);
    EXPECT_NEAR(group(c.groupPowers, "PL_2").worst, 0.8 * intWorst, 1e-6);
    EXPECT_NEAR(group(c.groupCurrents, "SYSTEM_3").typical, auxTypical, 1e-6);
    EXPECT_NEAR(group(c.groupPowers, "SYSTEM_3").worst, 1.6 * auxWorst, 1e-6);
    EXPECT_TRUE(group(c.groupCurrents, "SYSTEM_3").worstIsHigher());

    // The same figures in the machine-readable forms other tools read.
    ReportViews views;
    views.corners = &c;
    nlohmann::json const json = nlohmann::json::parse(toJson(c.typical, views));
    nlohmann::json const& supplies = json.at("corners").at("supplies");
    ASSERT_EQ(supplies.size(), 1 + c.groupCurrents.size());
    EXPECT_EQ(supplies.at(0).at("supply"), "CORE");
    EXPECT_EQ(supplies.at(0).at("kind"), "regulator");
    EXPECT_NEAR(supplies.at(0).at("worst_current").get<double>(), intWorst, 1e-6);
    EXPECT_EQ(supplies.at(0).at("worst"), "worst");
    EXPECT_EQ(supplies.at(1).at("kind"), "group");
    EXPECT_TRUE(supplies.at(1).contains("worst_power"));
    std::string const csv = toCsv(c.typical, views);
    EXPECT_NE(csv.find("corner_supply,CORE,,worst_current,"), std::string::npos) << csv;
    EXPECT_NE(csv.find("corner_supply,PL_2,,typical_power,"), std::string::npos) << csv;
}

TEST(DesignCorners, BudgetHoldsAtTypicalAndFailsOnVccintAtWorst) {
    Design const design = cornersDesign();
    CornerReports const c = estimateCorners(design);
    // Typical: 0.619 W <= 1 W, VCCINT 0.586 A <= 0.7 A, VCCAUX 0.114 A <= 1 A.
    std::vector<BudgetLine> const typical = checkBudget(design.budget, c.typical);
    ASSERT_EQ(typical.size(), 3u);
    EXPECT_TRUE(typical[0].rail.empty());
    EXPECT_DOUBLE_EQ(typical[0].limit, 1.0);
    EXPECT_FALSE(anyExceeded(typical));
    // Worst: 0.882 W <= 1 W, but VCCINT 0.796 A > 0.7 A.
    std::vector<BudgetLine> const worst = checkBudget(design.budget, c.worst);
    EXPECT_FALSE(worst[0].exceeded);
    EXPECT_EQ(worst[1].rail, "VCCINT");
    EXPECT_TRUE(worst[1].exceeded);
    EXPECT_FALSE(worst[2].exceeded);
    // An incomplete report holds nothing against a limit.
    Report incomplete = c.worst;
    incomplete.complete = false;
    EXPECT_FALSE(anyExceeded(checkBudget(design.budget, incomplete)));
}

TEST(DesignCorners, RefusesBadBudgetsAndAHotAmbientWithoutThetaJa) {
    auto refusal = [](std::string const& extra) {
        return prsm::test::designRefusal(R"({"schema_version": 1, "device": {"part": "TESTDEV"}, )" + extra +
                                         R"(, "blocks": []})");
    };
    EXPECT_MENTIONS(refusal(R"("budget": {"rails": {"VCCNOPE": 1}})"), "/budget/rails/VCCNOPE: unknown rail");
    EXPECT_MENTIONS(refusal(R"("budget": {"total_power": -1})"),
                    "/budget/total_power: a budget is not negative");
    EXPECT_MENTIONS(refusal(R"("budget": {"supply": 1})"), "/budget");
    EXPECT_MENTIONS(refusal(R"("thermal": {"junction_temperature": 50, "max_ambient_temperature": 45})"),
                    "/thermal/max_ambient_temperature: a maximum ambient needs theta_ja");
}

// small.json (ambient 25 degC, theta_ja 2 degC/W) held at a 50 degC junction. Its dynamic power is
// 0.554 W, 0.174 W of it logic (design_estimate_test.cpp), so t = 50 - 2 * 0.174 = 49.652 degC and the
// leakage is 0.8 (0.5 + 0.01 * 24.652) + 1.5 (0.1 + 0.002 * 24.652) = 0.55 + 0.011 * 24.652 = 0.821172 W.
// P(50) = 1.375172 W: theta_ja at most 25 / 1.375172 = 18.17954 degC/W, the ambient at most
// 50 - 2 * 1.375172 = 47.249656 degC.
TEST(DesignCorners, JunctionLimitGivesTheLargestThetaJaAndTheHottestAmbient) {
    Design const small = readDesignFile(std::string(PRSM_TEST_DESIGNDIR) + "/small.json");
    JunctionLimit const limit = solveJunctionLimit(small, 50);
    EXPECT_TRUE(limit.missing.empty()) << limit.missing;
    EXPECT_NEAR(limit.power, 1.375172, 1e-6);
    EXPECT_NEAR(limit.maxThetaJa, 25 / 1.375172, 1e-5);
    EXPECT_NEAR(limit.maxAmbient, 47.249656, 1e-5);

    // At the ambient itself no resistance will do; a given junction leaves nothing to solve for.
    EXPECT_TRUE(std::isnan(solveJunctionLimit(small, 25).maxThetaJa));
    Design given = small;
    given.thermal.junction = 60;
    JunctionLimit const none = solveJunctionLimit(given, 50);
    EXPECT_TRUE(std::isnan(none.maxThetaJa) && std::isnan(none.maxAmbient));
    EXPECT_NE(none.missing.find("gives its junction temperature"), std::string::npos);
}

}  // namespace
