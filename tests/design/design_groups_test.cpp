// The design's supply views on the test data: the rail-grouping sheet's regulator groups loaded with the
// rail currents (a held rail under its holder, counted once), the decoupling sheet's capacitor counts
// from the rails' load steps, budgets per supply, and the declarations that are refused.
#include <prsm/design/Budget.h>
#include <prsm/design/Estimate.h>
#include <prsm/design/RailGroups.h>
#include <prsm/design/ReportFormat.h>
#include <prsm/design/ReportHtml.h>
#include <prsm/design/SupplyFormat.h>

#include "DesignText.h"

#include <nlohmann/json.hpp>

#include <gtest/gtest.h>

#include <cmath>
#include <string>

namespace {

using namespace prsm::design;

using prsm::test::designRefusal;
using prsm::test::testDesign;

RailResult railOf(std::string name, double volts, double dynamic, double leakage,
                  std::string countedIn = "") {
    RailResult r;
    r.rail = std::move(name);
    r.voltage = volts;
    r.dynamicCurrent = dynamic;
    r.staticCurrent = leakage;
    r.totalCurrent = dynamic + leakage;
    r.power = volts * r.totalCurrent;
    r.countedIn = std::move(countedIn);
    return r;
}

// VCCINT's 0.6 A leakage holds VCCME's 0.05 A; VCCME has no group of its own, so it goes with VCCINT.
TEST(DesignGroups, GroupsCarryTheirRailsAndHeldLeakageOnce) {
    Report report;
    report.rails = {railOf("VCCINT", 0.8, 1.4, 0.6), railOf("VCCME", 0.8, 0.1, 0.05, "VCCINT"),
                    railOf("VCCINTGT", 0.85, 0.3, 0.0), railOf("VCCAUX", 1.5, 0.2, 0.12),
                    railOf("VCCO33", 3.3, 0.1, 0.0)};
    report.rails[3].powerupCurrent = 0.2;
    SupplyScheme scheme;
    scheme.groups = {{"PL_2", "CORE", "PL/2", "1%", "+-17mV"},
                     {"PL_3", "RAM", "PL/3", "1%", "+-17mV"},  // feeds none of the design's rails
                     {"SYSTEM_3", "AUX", "SYSTEM/3", "1%", "2%"}};
    scheme.railGroup = {{"VCCINT", 0}, {"VCCINTGT", 0}, {"VCCAUX", 2}};  // VCCO33's label names no group
    report.supplyModel = "TalvexPowerRailGrouping";
    groupSupplies(scheme, report);
    ASSERT_EQ(report.supplyGroups.size(), 2u);

    // PL_2: VCCINT 2.0 A (its leakage holds VCCME's), VCCME's dynamic 0.1 A under it, VCCINTGT 0.3 A:
    // 2.4 A = the three rails' 2.45 A less the 0.05 A held once. Power 0.8 * 2.0 + 0.8 * 0.1 + 0.85 * 0.3
    // = 1.6 + 0.08 + 0.255 = 1.935 W; two voltages, so no group voltage.
    SupplyGroup const& core = report.supplyGroups[0];
    EXPECT_EQ(core.name, "PL_2");
    EXPECT_EQ(core.label, "CORE");
    EXPECT_EQ(core.sequence, "PL/2");
    ASSERT_EQ(core.rails.size(), 2u);
    EXPECT_EQ(core.rails[0].rail, "VCCINT");
    EXPECT_NEAR(core.rails[0].current, 2.0, 1e-12);
    ASSERT_EQ(core.rails[0].held.size(), 1u);
    EXPECT_EQ(core.rails[0].held[0].rail, "VCCME");
    EXPECT_NEAR(core.rails[0].held[0].current, 0.1, 1e-12);
    EXPECT_EQ(core.rails[1].rail, "VCCINTGT");
    EXPECT_NEAR(core.current, 2.4, 1e-12);
    EXPECT_NEAR(core.power, 1.935, 1e-12);
    EXPECT_TRUE(std::isnan(core.voltage));
    EXPECT_TRUE(std::isnan(core.powerupCurrent));

    // SYSTEM_3: VCCAUX alone, 0.32 A at 1.5 V = 0.48 W, powering up on 0.2 A. VCCO33's label names no
    // group of the scheme: it is in none.
    SupplyGroup const& aux = report.supplyGroups[1];
    EXPECT_EQ(aux.name, "SYSTEM_3");
    EXPECT_NEAR(aux.current, 0.32, 1e-12);
    EXPECT_NEAR(aux.power, 0.48, 1e-12);
    EXPECT_NEAR(aux.voltage, 1.5, 1e-12);
    EXPECT_NEAR(aux.powerupCurrent, 0.2, 1e-12);

    std::string const json = toJson(report);
    EXPECT_MENTIONS(json, "\"groups\"");
    EXPECT_MENTIONS(json, "\"held\"");
    EXPECT_MENTIONS(toCsv(report), "supply_group_rail,PL_2,VCCME,held_in,VCCINT,");

    // Grouped again into the same report, as after an update: VCCAUX draws 0.1 A more, nothing else moves
    // and nothing is listed twice.
    report.rails[3] = railOf("VCCAUX", 1.5, 0.3, 0.12);
    groupSupplies(scheme, report);
    ASSERT_EQ(report.supplyGroups.size(), 2u);
    EXPECT_NEAR(report.supplyGroups[1].current, 0.42, 1e-12);
    EXPECT_TRUE(std::isnan(report.supplyGroups[1].powerupCurrent));  // the new rail row has none
    ASSERT_EQ(report.supplyGroups[0].rails.size(), 2u);
    EXPECT_EQ(report.supplyGroups[0].rails[0].held.size(), 1u);
    EXPECT_NEAR(report.supplyGroups[0].current, 2.4, 1e-12);

    report.complete = false;  // no rail totals, no groups
    groupSupplies(scheme, report);
    EXPECT_TRUE(report.supplyGroups.empty());
}

// The test data labels each rail of FAM_A after itself ("F_VCCINT"), so each group holds one rail.
// At Tj = 35 degC: VCCINT 0.8 W / 0.8 V + 0.6 A leakage = 1.6 A, VCCAUX 0.2 A + 0.12 A = 0.32 A,
// VCCO12 0.5 A (no leakage in the test sheet).
std::string groupedDesign(std::string const& extra) {
    std::string const members = R"("rails": {"VCCINT": 0.8, "VCCAUX": 1.5, "VCCO12": 1.2},
        "static": {"model": "TestLeakage"}, "blocks": [],
        "loads": [{"name": "fabric", "rail": "VCCINT", "power": 0.8, "region": "noc"},
                  {"name": "aux", "rail": "VCCAUX", "current": 0.2, "region": "noc"},
                  {"name": "ddr", "rail": "VCCO12", "current": 0.5, "region": "io"}],
        "supplies": {"model": "TalvexPowerRailGrouping"})";
    return testDesign(members + extra, 35, R"("part": "TESTDEV", "family": "FAM_A")");
}

TEST(DesignGroups, TheGroupingSheetGroupsTheDesignsRails) {
    Estimator estimator(parseDesign(
        groupedDesign(R"(, "budget": {"supplies": {"PL_2": 1.5, "SYSTEM_3": 1}})"), "grouped.json"));
    Report const& report = estimator.estimate();
    ASSERT_TRUE(report.complete);
    EXPECT_EQ(report.supplyModel, "TalvexPowerRailGrouping");
    // In the sheet's order. VCCO12 is PL_1F's and SYSTEM_1A's member under full power management: one
    // regulator, reported once, under the first.
    ASSERT_EQ(report.supplyGroups.size(), 3u);
    SupplyGroup const& io = report.supplyGroups[0];
    EXPECT_EQ(io.name, "PL_1F");
    EXPECT_EQ(io.label, "F_VCCO12");
    EXPECT_EQ(io.sequence, "PL/1");
    EXPECT_EQ(io.dcTolerance, "1%");
    EXPECT_EQ(io.acRipple, "4%");
    EXPECT_NEAR(io.current, 0.5, 1e-6);
    EXPECT_NEAR(io.power, 0.6, 1e-6);  // 1.2 V * 0.5 A
    SupplyGroup const& core = report.supplyGroups[1];
    EXPECT_EQ(core.name, "PL_2");
    EXPECT_EQ(core.acRipple, "+-17mV");
    EXPECT_NEAR(core.current, 1.6, 1e-6);
    EXPECT_NEAR(core.power, 1.28, 1e-6);  // 0.8 V * 1.6 A
    SupplyGroup const& aux = report.supplyGroups[2];
    EXPECT_EQ(aux.name, "SYSTEM_3");
    EXPECT_EQ(aux.sequence, "SYSTEM/3");
    EXPECT_EQ(aux.acRipple, "2%");
    EXPECT_NEAR(aux.current, 0.32, 1e-6);
    EXPECT_NEAR(aux.powerupCurrent, 0.2, 1e-6);  // twice VCCAUX's 0.1 A leakage at 25 degC

    // PL_2 carries 1.6 A against 1.5 A; SYSTEM_3 0.32 A within 1 A.
    std::vector<BudgetLine> const lines = checkBudget(estimator.design().budget, report);
    ASSERT_EQ(lines.size(), 2u);
    EXPECT_EQ(lines[0].title(), "supply PL_2 current");
    EXPECT_TRUE(lines[0].exceeded);
    EXPECT_FALSE(lines[1].exceeded);
    EXPECT_NEAR(lines[1].value, 0.32, 1e-6);

    // The JSON shape other tools read: supplies.groups[], each rail with its held rails.
    nlohmann::json const json = nlohmann::json::parse(toJson(report));
    nlohmann::json const& pl2 = json.at("supplies").at("groups").at(1);
    EXPECT_EQ(pl2.at("name"), "PL_2");
    EXPECT_EQ(pl2.at("dc_tolerance"), "1%");
    EXPECT_EQ(pl2.at("ac_ripple"), "+-17mV");
    EXPECT_NEAR(pl2.at("voltage").get<double>(), 0.8, 1e-9);
    EXPECT_NEAR(pl2.at("rails").at(0).at("current").get<double>(), 1.6, 1e-6);
    EXPECT_TRUE(pl2.at("rails").at(0).at("held").empty());
    EXPECT_TRUE(pl2.at("powerup_current").is_null());  // the test sheet gives VCCINT none
    std::string const page = toHtml(report, estimator.design(), {});
    EXPECT_MENTIONS(page, "<h3>Regulator groups (TalvexPowerRailGrouping)</h3>");
    EXPECT_MENTIONS(page, "SYSTEM/3");

    // Under minimum rails the full-power-management groups are blank: every group is a MIN_RAILS one.
    estimator.setInput("supplies", "POWER_RAIL_CONSOLIDATION", "MINIMUM_RAILS");
    Report const& minimum = estimator.update();
    ASSERT_FALSE(minimum.supplyGroups.empty());
    for (SupplyGroup const& g : minimum.supplyGroups) EXPECT_EQ(g.name.rfind("MIN_RAILS_", 0), 0u) << g.name;
}

TEST(DesignGroups, DecouplingCountsFollowTheRailsLoadSteps) {
    Estimator estimator(parseDesign(testDesign(R"("rails": {"VCCINT": 0.8, "VCCAUX": 1.5},
        "static": {"model": "TestLeakage"}, "blocks": [],
        "loads": [{"name": "fabric", "rail": "VCCINT", "power": 0.8, "region": "noc"},
                  {"name": "kernels", "rail": "VCCINT", "power": 0.4, "region": "aie"},
                  {"name": "aux", "rail": "VCCAUX", "current": 0.2, "region": "noc"}],
        "decoupling": {"step_fraction": 0.5, "rail_step_fractions": {"VCCAUX": 1}})",
                                               35, R"("part": "TESTDEV", "package": "PKG_A")"),
                                    "decoupled.json"));
    Report const& report = estimator.estimate();
    ASSERT_TRUE(report.complete);
    EXPECT_EQ(report.decouplingModel, "TalvexDecouplingCapXq");  // the sheet that offers PKG_A
    ASSERT_EQ(report.decoupling.size(), 2u);
    auto count = [](RailDecoupling const& r, std::string const& value) {
        for (CapacitorCount const& c : r.capacitors)
            if (c.value == value) return c.count;
        return -1.0;
    };
    // VCCINT: 1.2 W / 0.8 V = 1.5 A dynamic, 0.4 / 0.8 = 0.5 A of it in the AI engines; half of each is
    // the step: 0.25 A and 0.5 A. 22 uF: (2.0 * 0.25 + 1.0) + (0.5 * 0.5 + 1.5) = 1.5 + 1.75 = 3.25,
    // so 4 capacitors. The test data has no 0.1 uF row for VCCINT: no figure, and a warning.
    RailDecoupling const& core = report.decoupling[0];
    EXPECT_EQ(core.rail, "VCCINT");
    EXPECT_NEAR(core.stepCurrent, 0.75, 1e-6);
    ASSERT_EQ(core.stepParts.size(), 2u);
    EXPECT_NEAR(core.stepParts[0].second + core.stepParts[1].second, 0.75, 1e-6);
    EXPECT_NEAR(count(core, "22uF"), 3.25, 1e-5);
    EXPECT_EQ(wholeCapacitors(count(core, "22uF")), 4.0);
    EXPECT_TRUE(std::isnan(count(core, "0p1uF")));
    bool warned = false;
    for (Warning const& w : report.warnings)
        warned = warned || w.message.find("VCCINT_0p1uF") != std::string::npos;
    EXPECT_TRUE(warned);
    // VCCAUX steps its whole 0.2 A: 22 uF 7 * 0.2 + 8 = 9.4 (10 whole), 330 uF 0.5 * 0.2 + 0.25 = 0.35
    // (1 whole), 0.1 uF 1 * 0.2 + 2 = 2.2 (3 whole).
    RailDecoupling const& aux = report.decoupling[1];
    EXPECT_NEAR(aux.stepCurrent, 0.2, 1e-6);
    EXPECT_NEAR(count(aux, "22uF"), 9.4, 1e-5);
    // In float, 7 x 0.2f + 8 is 9.39999961853..., the float nearest 9.4; the count is its nine
    // significant digits, as its text reads: 9.39999962, not the float widened.
    EXPECT_EQ(count(aux, "22uF"), 9.39999962);
    EXPECT_NEAR(count(aux, "330uF"), 0.35, 1e-5);
    EXPECT_EQ(wholeCapacitors(count(aux, "0p1uF")), 3.0);
    EXPECT_MENTIONS(toCsv(report), "decoupling,330uF,VCCAUX,whole_count,1,count");

    // At 1.0 V the same 1.2 W is 1.2 A, 0.4 A of it in the AI engines: steps 0.2 A and 0.4 A, 22 uF
    // (2.0 * 0.2 + 1.0) + (0.5 * 0.4 + 1.5) = 1.4 + 1.7 = 3.1. VCCAUX's step is as it was: 9.4.
    estimator.setRailVoltage("VCCINT", 1.0);
    Report const& raised = estimator.update();
    ASSERT_EQ(raised.decoupling.size(), 2u);
    EXPECT_NEAR(raised.decoupling[0].stepCurrent, 0.6, 1e-6);
    EXPECT_NEAR(count(raised.decoupling[0], "22uF"), 3.1, 1e-5);
    EXPECT_NEAR(count(raised.decoupling[1], "22uF"), 9.4, 1e-5);

    // A whole count stays whole; a float's last bit above it is not one capacitor more.
    EXPECT_EQ(wholeCapacitors(3.0000001), 3.0);
    EXPECT_EQ(wholeCapacitors(-0.5), 0.0);
    // A count the sheet could not make has no whole count either (null in the JSON, "-" in the table).
    EXPECT_TRUE(std::isnan(wholeCapacitors(std::nan(""))));
}

TEST(DesignGroups, RefusesBadSupplyViewsWithTheirPointer) {
    EXPECT_MENTIONS(
        designRefusal(groupedDesign(R"(, "budget": {"supplies": {"PL_9": 1}})")),
        "bad.json: /budget/supplies/PL_9: PL_9 is neither a declared regulator nor a regulator group");
    // A group of the sheet that this scheme leaves blank is not one of the design's.
    EXPECT_MENTIONS(designRefusal(groupedDesign(R"(, "budget": {"supplies": {"MIN_RAILS_3": 1}})")),
                    "/budget/supplies/MIN_RAILS_3");
    auto base = [](std::string const& view) { return testDesign(R"("blocks": [], )" + view); };
    EXPECT_MENTIONS(designRefusal(base(R"("supplies": {"model": "TestLoad"})")),
                    "/supplies/model: block \"supplies\": TestLoad is not a rail-grouping sheet");
    EXPECT_MENTIONS(designRefusal(base(R"("supplies": {"inputs": {"VOLTAGE_GRADE": "L"}})")),
                    "/supplies/inputs/VOLTAGE_GRADE: block \"supplies\": cell VOLTAGE_GRADE is taken from "
                    "/device/voltage_grade");
    EXPECT_MENTIONS(designRefusal(base(R"("supplies": {"strategy": "MINIMUM_RAILS"})")),
                    "/supplies/strategy");
    EXPECT_MENTIONS(designRefusal(base(R"("decoupling": {})")),
                    "/decoupling: block \"decoupling\": missing \"model\" (no decoupling sheet lists the "
                    "device's package");
    EXPECT_MENTIONS(
        designRefusal(base(R"("decoupling": {"model": "TalvexDecouplingCapXq",
                                                      "inputs": {"VCCAUX_STEP_CURRENT": 1}})")),
        "/decoupling/inputs/VCCAUX_STEP_CURRENT: block \"decoupling\": cell VCCAUX_STEP_CURRENT is "
        "a rail's load step");
    EXPECT_MENTIONS(
        designRefusal(base(R"("decoupling": {"model": "TalvexDecouplingCapXq", "step_fraction": -1,
                                                      "rail_step_fractions": {"VCCNOPE": 1}})")),
        "/decoupling/step_fraction: a load step is a fraction of the dynamic current, not negative");
    EXPECT_MENTIONS(designRefusal(base(R"("decoupling": {"model": "TalvexDecouplingCapXq",
                                                      "rail_step_fractions": {"VCCNOPE": 1}})")),
                    "/decoupling/rail_step_fractions/VCCNOPE: unknown rail VCCNOPE");
}

}  // namespace
