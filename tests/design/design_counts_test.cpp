// Used-block counts: summed over the blocks, fed to the static sheet (a given value wins, with a
// warning), and checked against the device's resources in the catalogue.
#include <prsm/design/Estimate.h>
#include <prsm/design/ReportFormat.h>

#include "DesignText.h"
#include "ReportLookup.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>

namespace {

using namespace prsm::design;
using prsm::test::held;
using prsm::test::rail;
using prsm::test::resource;

// TestCounts blocks on the catalogued part ZQVC1902 (899840 LUTs, 1799680 flip-flops, 967 block RAMs):
//   luts:  8 x 22496 LUT_DRAM units         -> 179968 LUTs, 20 % of the device's
//   regs:  2 x 1000 REG units               ->   2000 flip-flops
//   latch: 1 x 5 LATCH units                ->      5 flip-flops
//   rams: 10 x 100 block RAMs, kind REG_X   ->   1000 block RAMs; REG_X is neither REG nor LATCH
//   odd:   1 x 7 BYP units and 3 block RAMs ->      3 block RAMs
std::string design(std::string const& part, std::string const& staticInputs = "{}") {
    return R"({"schema_version": 1, "device": {"part": ")" + part +
           R"("}, "thermal": {"junction_temperature": 50}, "rails": {"VCCINT": 0.8, "VCCAUX": 1.5},
        "static": {"model": "TestLeakage", "inputs": )" +
           staticInputs + R"(},
        "blocks": [
          {"name": "luts", "model": "TestCounts", "count": 8, "inputs": {"KIND": "LUT_DRAM", "UNITS": 22496}},
          {"name": "regs", "model": "TestCounts", "count": 2, "inputs": {"KIND": "REG", "UNITS": 1000}},
          {"name": "latch", "model": "TestCounts", "inputs": {"KIND": "LATCH", "UNITS": 5}},
          {"name": "rams", "model": "TestCounts", "count": 10, "inputs": {"KIND": "REG_X", "UNITS": 0, "BRAMS": 100}},
          {"name": "odd", "model": "TestCounts", "inputs": {"KIND": "BYP", "UNITS": 7, "BRAMS": 3}}
        ]})";
}

std::string warnings(Report const& report) {
    std::string text;
    for (Warning const& w : report.warnings) text += w.block + "|" + w.cell + "|" + w.message + "\n";
    return text;
}

// A new leaking block is its own table and formulas: TestToyCore makes up toy_cores, a count no list
// names, and the static sheet's USED_TOY_CORES receives it without the design naming it:
// 3 instances x 4 cores = 12. The static sheet's member rows turn the count into leakage on the rails
// the rows name, at 50 degC (ZQVC1902 has no heating):
//   VCCINT: own 0.5 + 0 * 25 = 0.5; a core 0.002 + 0.00004 * (50 - 25) = 0.003, x 12 = 0.036 -> 0.536 A
//   VCCAUX: own 0;                   a core 0.001 + 0 * 25 = 0.001,             x 12 = 0.012 -> 0.012 A
//   static power: 0.8 V * 0.536 A + 1.5 V * 0.012 A = 0.4288 + 0.018 = 0.4468 W
TEST(DesignCounts, ANewBlocksCountReachesTheStaticSheetAndLeaksOnItsRowsRails) {
    Estimator estimator(parseDesign(R"({"schema_version": 1, "device": {"part": "ZQVC1902"},
        "thermal": {"junction_temperature": 50}, "rails": {"VCCINT": 0.8, "VCCAUX": 1.5},
        "static": {"model": "TestLeakage", "inputs": {}},
        "blocks": [{"name": "toys", "model": "TestToyCore", "count": 3, "inputs": {"CORES": 4}}]})",
                                    "toy.json"));
    Report report = estimator.estimate();
    ASSERT_TRUE(report.complete) << report.failures[0];
    EXPECT_EQ(held(report, "USED_TOY_CORES"), 12.0);
    EXPECT_EQ(held(report, "USED_BRAMS"), std::nullopt);  // no block makes up block RAMs

    EXPECT_NEAR(rail(report, "VCCINT").staticCurrent, 0.536, 1e-6);
    EXPECT_NEAR(rail(report, "VCCAUX").staticCurrent, 0.012, 1e-6);
    EXPECT_NEAR(report.staticPower, 0.4468, 1e-6);
}

TEST(DesignCounts, BlocksAddUpTheCountsTheStaticSheetReceives) {
    Estimator estimator(parseDesign(design("ZQVC1902"), "counts.json"));
    Report report = estimator.estimate();
    ASSERT_TRUE(report.complete) << report.failures[0];
    EXPECT_EQ(held(report, "USED_BRAMS"), 1003.0);  // bram_active 1000 + 3; no block declares bram_sleep
    EXPECT_NEAR(*held(report, "LUT_USED_PCT"), 20.0, 1e-9);

    EXPECT_EQ(resource(report, "LUTS").used, 179968);
    EXPECT_EQ(resource(report, "LUTS").available, 899840);
    EXPECT_EQ(resource(report, "FLIP_FLOPS").used, 2005);
    EXPECT_EQ(resource(report, "BRAMS").used, 1003);
    // 1003 of 967 block RAMs: 103.7 %, the one resource over.
    EXPECT_MENTIONS(warnings(report),
                    "|/blocks|the blocks use 1003 BRAMS, the device ZQVC1902 has 967 (103.7 %)");
    EXPECT_EQ(warnings(report).find("LUTS,"), std::string::npos);

    // Half the LUT units: 10 %. The block RAMs back within the device: no warning.
    estimator.setInput("luts", "UNITS", "11248");
    estimator.setInput("rams", "BRAMS", "90");
    report = estimator.update();
    EXPECT_NEAR(*held(report, "LUT_USED_PCT"), 10.0, 1e-9);
    EXPECT_EQ(held(report, "USED_BRAMS"), 903.0);
    EXPECT_EQ(warnings(report).find("BRAMS"), std::string::npos) << warnings(report);

    std::string const json = toJson(report);
    EXPECT_MENTIONS(json, "\"counts\": {\n      \"USED_BRAMS\": 903.0");
    EXPECT_MENTIONS(json, "\"resource\": \"BRAMS\",\n      \"used\": 903.0,\n      \"available\": 967.0");
    std::string const csv = toCsv(report);
    EXPECT_MENTIONS(csv, "static_count,USED_BRAMS,,count,903,\n");
    EXPECT_MENTIONS(csv, "resource,LUTS,,utilisation,10,%\n");
}

TEST(DesignCounts, AGivenCountWinsWithAWarningWhenTheBlocksDisagree) {
    Estimator estimator(
        parseDesign(design("ZQVC1902", R"({"USED_BRAMS": 1000, "LUT_USED_PCT": 20})"), "counts.json"));
    Report report = estimator.estimate();
    EXPECT_EQ(held(report, "USED_BRAMS"), 1000.0);
    EXPECT_MENTIONS(warnings(report),
                    "static|USED_BRAMS|1000 from the design's static inputs; the blocks add up to 1003");
    EXPECT_EQ(warnings(report).find("LUT_USED_PCT"), std::string::npos);  // 20 % agrees

    estimator.setInput("static", "LUT_USED_PCT", "35");
    report = estimator.update();
    EXPECT_EQ(held(report, "LUT_USED_PCT"), 35.0);
    EXPECT_MENTIONS(warnings(report),
                    "static|LUT_USED_PCT|35 from the design's static inputs; the blocks add up to 20 %");
}

TEST(DesignCounts, APartWithoutResourcesIsNotCheckedAndGetsNoShare) {
    Report const report = Estimator(parseDesign(design("TESTDEV"), "counts.json")).estimate();
    ASSERT_TRUE(report.complete) << report.failures[0];
    EXPECT_EQ(resource(report, "BRAMS").used, 1003);
    EXPECT_EQ(resource(report, "BRAMS").available, 0);
    EXPECT_EQ(warnings(report).find("/blocks"), std::string::npos) << warnings(report);
    EXPECT_EQ(held(report, "USED_BRAMS"), 1003.0);
    EXPECT_FALSE(held(report, "LUT_USED_PCT"));  // no LUTs to take a share of: the sheet's default stays
}

}  // namespace
