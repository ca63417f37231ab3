// The design's supplies on the test-only sheets: its declared regulators loaded with the rail currents,
// their margins, losses and input power, the rails' power-up currents, a rail whose leakage another
// rail's holds counted once, and the regulator declarations that are refused.
#include <prsm/design/Estimate.h>
#include <prsm/design/Regulators.h>
#include <prsm/design/ReportFormat.h>

#include "DesignText.h"
#include "ReportLookup.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>

namespace {

using namespace prsm::design;
using prsm::test::rail;

// At Tj = 35 degC, the loads in the noc region (no logic heating): VCCINT leaks 0.5 + 0.01 * 10 = 0.6 A
// and carries 0.8 W / 0.8 V = 1.0 A, 1.6 A in all; VCCAUX leaks 0.1 + 0.002 * 10 = 0.12 A and carries
// 0.2 A, 0.32 A in all.
std::string design(std::string const& regulators) {
    return R"({"schema_version": 1, "device": {"part": "TESTDEV"}, "thermal": {"junction_temperature": 35},
        "rails": {"VCCINT": 0.8, "VCCAUX": 1.5}, "static": {"model": "TestLeakage"}, "blocks": [],
        "loads": [{"name": "fabric", "rail": "VCCINT", "power": 0.8, "region": "noc"},
                  {"name": "aux", "rail": "VCCAUX", "current": 0.2, "region": "noc"}],
        "regulators": )" +
           regulators + "}";
}

TEST(DesignSupplies, RegulatorsCarryTheirRailsByHand) {
    Estimator estimator(parseDesign(design(R"([
        {"name": "CORE", "rails": ["VCCINT"], "rating": 2.0, "efficiency": [[0, 0.8], [2, 0.9]]},
        {"name": "AUX", "rails": ["VCCAUX"], "rating": 0.3, "efficiency": 0.75}])"),
                                    "supplies.json"));
    Report const& report = estimator.estimate();
    ASSERT_TRUE(report.complete);
    ASSERT_EQ(report.regulators.size(), 2u);

    // CORE at 1.6 A: efficiency 0.8 + 0.1 * 1.6 / 2 = 0.88; out 0.8 V * 1.6 A = 1.28 W, in 1.28 / 0.88
    // = 1.454545 W, loss 0.174545 W; margin 2.0 - 1.6 = 0.4 A.
    RegulatorLoad const& core = report.regulators[0];
    EXPECT_NEAR(core.load, 1.6, 1e-6);
    EXPECT_NEAR(core.efficiency, 0.88, 1e-6);
    EXPECT_NEAR(core.outputPower, 1.28, 1e-6);
    EXPECT_NEAR(core.inputPower, 1.454545, 1e-5);
    EXPECT_NEAR(core.loss, 0.174545, 1e-5);
    EXPECT_NEAR(core.margin, 0.4, 1e-6);
    // AUX at 0.32 A over its 0.3 A: out 1.5 * 0.32 = 0.48 W, in 0.48 / 0.75 = 0.64 W, loss 0.16 W.
    RegulatorLoad const& aux = report.regulators[1];
    EXPECT_NEAR(aux.margin, -0.02, 1e-6);
    EXPECT_NEAR(aux.inputPower, 0.64, 1e-6);
    EXPECT_NEAR(aux.loss, 0.16, 1e-6);
    // The board draws 1.454545 + 0.64 W; every rail has a regulator.
    EXPECT_NEAR(report.supplyInputPower, 2.094545, 1e-5);
    EXPECT_EQ(report.unregulatedPower, 0.0);

    int overRating = 0;
    for (Warning const& w : report.warnings)
        if (w.cell == "/regulators/1") {
            ++overRating;
            EXPECT_MENTIONS(w.message, "regulator AUX: load 0.32 A exceeds its rating 0.3 A");
        }
    EXPECT_EQ(overRating, 1);

    // VCCAUX powers up on twice its 0.1 A leakage at 25 degC; the sheet gives VCCINT no such figure.
    EXPECT_NEAR(rail(report, "VCCAUX").powerupCurrent, 0.2, 1e-6);
    EXPECT_TRUE(std::isnan(rail(report, "VCCINT").powerupCurrent));
    EXPECT_NEAR(aux.powerupCurrent, 0.2, 1e-6);  // within its 0.3 A
    EXPECT_TRUE(std::isnan(core.powerupCurrent));

    EXPECT_MENTIONS(toJson(report), "\"over_rating\": true");
    EXPECT_MENTIONS(toJson(report), "\"powerup_current\": null");
    EXPECT_MENTIONS(toCsv(report), "regulator_supply,AUX,VCCAUX,rating,0.3,A");
    EXPECT_MENTIONS(toCsv(report), "rail,VCCAUX,VCCAUX,powerup_current,0.2");

    // A rail no regulator feeds is the board's to supply some other way: VCCAUX's 0.48 W.
    Estimator coreOnly(parseDesign(
        design(R"([{"name": "CORE", "rails": ["VCCINT"], "rating": 2.0, "efficiency": 0.8}])"), "core.json"));
    Report const& partial = coreOnly.estimate();
    EXPECT_NEAR(partial.unregulatedPower, 0.48, 1e-6);
    EXPECT_NEAR(partial.supplyInputPower, 1.28 / 0.8, 1e-6);
}

// A held rail's static current is inside its holder's: whichever way the rails are grouped, the supplies
// add up to the rails' currents less the held leakage once.
TEST(DesignSupplies, HeldLeakageIsCountedOnce) {
    Report report;
    report.rails.resize(2);
    report.rails[0].rail = "VCCINT";
    report.rails[1].rail = "VCCME";
    report.rails[0].voltage = report.rails[1].voltage = 0.8;
    report.rails[0].staticCurrent = 0.5;
    report.rails[0].totalCurrent = 2.0;  // 0.1 A of its static current is VCCME's
    report.rails[1].staticCurrent = 0.1;
    report.rails[1].totalCurrent = 0.3;
    report.rails[1].countedIn = "VCCINT";
    Regulator both{"R", {"VCCINT", "VCCME"}, 5.0, {{0.0, 1.0}}, "/regulators/0"};
    loadRegulators({both}, report);
    EXPECT_NEAR(report.regulators[0].load, 2.0 + 0.3 - 0.1, 1e-9);  // 2.2 A

    // Apart, VCCME's regulator supplies its leakage and VCCINT's carries 2.0 - 0.1 = 1.9 A.
    Regulator core{"CORE", {"VCCINT"}, 5.0, {{0.0, 1.0}}, "/regulators/0"};
    Regulator me{"ME", {"VCCME"}, 5.0, {{0.0, 1.0}}, "/regulators/1"};
    loadRegulators({core, me}, report);
    EXPECT_NEAR(report.regulators[0].load, 1.9, 1e-9);
    EXPECT_NEAR(report.regulators[1].load, 0.3, 1e-9);
    EXPECT_NEAR(report.supplyInputPower, 0.8 * 2.2, 1e-9);  // 1.76 W at efficiency 1
}

TEST(DesignSupplies, RefusesBadRegulatorsWithTheirPointer) {
    auto refusal = [](std::string const& regulators) {
        return prsm::test::designRefusal(design(regulators));
    };
    EXPECT_MENTIONS(refusal(R"([{"name": "R", "rails": ["VCCNOPE"], "rating": 1, "efficiency": 0.9}])"),
                    "bad.json: /regulators/0/rails/0: unknown rail VCCNOPE");
    EXPECT_MENTIONS(refusal(R"([{"name": "A", "rails": ["VCCINT"], "rating": 1, "efficiency": 0.9},
                               {"name": "B", "rails": ["VCCAUX", "VCCINT"], "rating": 1, "efficiency": 0.9}])"),
                    "/regulators/1/rails/1: rail VCCINT is already fed by regulator A");
    EXPECT_MENTIONS(refusal(R"([{"name": "R", "rails": ["VCCINT"], "rating": 0, "efficiency": 0.9}])"),
                    "/regulators/0/rating: a rating is a current in A above 0");
    EXPECT_MENTIONS(refusal(R"([{"name": "R", "rails": ["VCCINT"], "rating": 1, "efficiency": 1.2}])"),
                    "/regulators/0/efficiency: an efficiency is a fraction above 0 and at most 1");
    EXPECT_MENTIONS(refusal(R"([{"name": "R", "rails": ["VCCINT"], "rating": 1,
                                 "efficiency": [[1, 0.8], [1, 0.9]]}])"),
                    "/regulators/0/efficiency/1: loads are not negative and increase");
    EXPECT_MENTIONS(refusal(R"([{"name": "R", "rails": ["VCCINT"], "rating": 1}])"),
                    "/regulators/0/efficiency: missing");
    EXPECT_MENTIONS(refusal(R"({"name": "R"})"), "/regulators: an array of regulators expected");
}

}  // namespace
