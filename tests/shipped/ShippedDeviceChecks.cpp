// The design engine's warnings about quietly wrong inputs, on the shipped sheets and data: a block's
// sheet meant for parts with another feature, rail voltages that do not fit the voltage grade, and a
// rate typed as a percent. The grades' VCCINT ranges are the shipped VOLTAGE_RANGE rows (non-over-drive
// SKUs): LP 0.665 .. 0.735 V, MP 0.76 .. 0.84 V, HP 0.836 .. 0.924 V.

#include <prsm/design/Design.h>
#include <prsm/design/DeviceChecks.h>
#include <prsm/design/Estimate.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using namespace prsm::design;

std::vector<Warning> warningsOf(std::string const& device, std::string const& rest) {
    Design const design = parseDesign(R"({"schema_version": 1, "device": )" + device +
                                          R"(, "thermal": {"junction_temperature": 50}, )" + rest + "}",
                                      "inline.json");
    return Estimator(design).estimate().warnings;
}

// The warnings on one cell, as "block|message".
std::vector<std::string> on(std::vector<Warning> const& warnings, std::string const& cell) {
    std::vector<std::string> found;
    for (Warning const& w : warnings)
        if (w.cell == cell) found.push_back(w.block + "|" + w.message);
    return found;
}

TEST(ShippedDeviceChecks, ASheetForOtherPartsIsNamedWithWhatThePartHas) {
    std::string const blocks = R"("blocks": [{"name": "kernels", "model": "TalvexAie"},
                                             {"name": "cpu", "model": "TalvexPss"}])";
    // ZQVC2606 has the second-generation array and the larger processor system.
    EXPECT_EQ(
        on(warningsOf(R"({"part": "ZQVC2606"})", blocks), "/device/part"),
        (std::vector<std::string>{"kernels|sheet TalvexAie needs a part whose AIE is AIE; ZQVC2606 has AIE2",
                                  "cpu|sheet TalvexPss needs a part whose PS is PS; ZQVC2606 has PSXL"}));
    EXPECT_TRUE(on(warningsOf(R"({"part": "ZQVC1902"})", blocks), "/device/part").empty());
    // An alias stands for its part; a part the catalogue does not know gets only the catalogue's warning.
    EXPECT_TRUE(on(warningsOf(R"({"part": "ZQVC1902A"})", blocks), "/device/part").empty());
    std::vector<std::string> const unknown =
        on(warningsOf(R"({"part": "ZQVX9999"})", blocks), "/device/part");
    ASSERT_EQ(unknown.size(), 1u);
    EXPECT_NE(unknown[0].find("is not in the device catalogue"), std::string::npos) << unknown[0];
}

TEST(ShippedDeviceChecks, AVoltageOutsideItsGradeNamesTheGradesItFits) {
    std::string const device = R"({"part": "ZQVC1902", "voltage_grade": "LP"})";
    auto const withVccint = [&](std::string const& volts) {
        return warningsOf(device, R"("rails": {"VCCINT": )" + volts +
                                      R"(}, "static": {"model": "TalvexStatic"}, "blocks": [])");
    };
    // 0.7 V lies in LP's 0.665 .. 0.735 V: nothing to say.
    EXPECT_TRUE(on(withVccint("0.7"), "VCCINT").empty());
    EXPECT_TRUE(on(withVccint("0.7"), "/device/voltage_grade").empty());

    // 0.8 V: outside LP, inside MP (0.76 .. 0.84) only.
    std::vector<Warning> const mid = withVccint("0.8");
    EXPECT_EQ(on(mid, "VCCINT"),
              std::vector<std::string>{
                  "static|VCCINT = 0.8 V is outside 0.665 .. 0.735 V, the rail's range for the "
                  "device's grades; estimated as given"});
    EXPECT_EQ(
        on(mid, "/device/voltage_grade"),
        std::vector<std::string>{"|voltage grade LP does not match VCCINT = 0.8 V: its range is 0.665 .. "
                                 "0.735 V; the voltage fits grade MP (0.76 .. 0.84 V)"});
    // 0.838 V lies in both MP (up to 0.84) and HP (from 0.836).
    std::vector<std::string> const both = on(withVccint("0.838"), "/device/voltage_grade");
    ASSERT_EQ(both.size(), 1u);
    EXPECT_NE(both[0].find("fits grade MP (0.76 .. 0.84 V), HP (0.836 .. 0.924 V)"), std::string::npos)
        << both[0];
    // 1.1 V fits no grade: the range warning alone.
    EXPECT_EQ(on(withVccint("1.1"), "VCCINT").size(), 1u);
    EXPECT_TRUE(on(withVccint("1.1"), "/device/voltage_grade").empty());
}

TEST(ShippedDeviceChecks, OneStaticSheetNamesTheGradeItsVoltageFits) {
    // As prsm calc checks it: the inputs as given, the voltage grade's range from the sheet's own cells.
    prsm::Sheet const& statics = *prsm::SheetRegistry::instance().find("TalvexStatic");
    EXPECT_EQ(
        voltageGradeMismatches(statics, {{"VOLTAGE_GRADE", "LP"}, {"VCCINT", "0.8"}}),
        std::vector<std::string>{"voltage grade LP does not match VCCINT = 0.8 V: its range is 0.665 .. "
                                 "0.735 V; the voltage fits grade MP (0.76 .. 0.84 V)"});
    EXPECT_TRUE(voltageGradeMismatches(statics, {{"VOLTAGE_GRADE", "MP"}, {"VCCINT", "0.8"}}).empty());
}

TEST(ShippedDeviceChecks, ARateTypedAsAPercentIsNamedWithItsBlock) {
    std::vector<Warning> const warnings = warningsOf(R"({"part": "ZQVC1902"})", R"("blocks": [
        {"name": "fabric", "model": "TalvexCleLogic", "inputs": {"TOGGLE_RATE": 12.5}},
        {"name": "fine", "model": "TalvexCleLogic", "inputs": {"TOGGLE_RATE": 0.125}}])");
    EXPECT_EQ(on(warnings, "TOGGLE_RATE"),
              std::vector<std::string>{"fabric|TOGGLE_RATE = 12.5 is outside 0 .. 1: it is a fraction (0.125 "
                                       "for 12.5 %), not a percent"});
}

}  // namespace

// A hard-IP block's power is tagged "ip": the static sheet takes it as the transceivers' IP power, and
// the transceiver lanes themselves as the rest of the region's.
TEST(ShippedDeviceChecks, HardIpPowerFeedsTheIpInputOfItsRegion) {
    Design const design = parseDesign(
        R"({"schema_version": 1, "device": {"part": "ZQVC1902"}, "thermal": {"junction_temperature": 50},
            "static": {"model": "TalvexStatic"},
            "blocks": [{"name": "pcie", "model": "TalvexHardIp"},
                       {"name": "lanes", "model": "TalvexGt", "inputs": {"GT_TYPE": "GTY"}}]})",
        "inline.json");
    Report const report = Estimator(design).estimate();
    ASSERT_TRUE(report.complete) << report.failures.at(0);
    auto fed = [&](std::string const& input) {
        for (auto const& [name, watts] : report.staticInputs)
            if (name == input) return watts;
        return -1.0;
    };
    ASSERT_EQ(report.blocks.size(), 2u);
    EXPECT_GT(report.blocks[0].power, 0.0);
    EXPECT_GT(report.blocks[1].power, 0.0);
    EXPECT_DOUBLE_EQ(fed("GT_IP_DYN_POWER"), report.blocks[0].power);
    EXPECT_DOUBLE_EQ(fed("GT_DYN_POWER"), report.blocks[1].power);
    // Both blocks draw on VCCINT, but that power is already in their region's input: the sheet sums the
    // inputs, so the VCCINT input must not take it again.
    EXPECT_EQ(fed("ALL_VCCINT_DYN_POWER_MINUS_AIE"), 0.0);
}

// Transceiver quads over the whole design: each link of 24 GTY lanes fits the part's 8 bonded quads on
// its own (6 quads), the two together (12) do not.
TEST(ShippedDeviceChecks, QuadsAreCheckedAcrossBlocks) {
    std::vector<Warning> const warnings = warningsOf(R"({"part": "ZQVC1902", "package": "TQA2197"})",
                                                     R"("blocks": [
        {"name": "a", "model": "TalvexGt", "inputs": {"GT_TYPE": "GTY", "LANES": 24, "LINE_RATE": 10.3125}},
        {"name": "b", "model": "TalvexGt", "inputs": {"GT_TYPE": "GTY", "LANES": 24, "LINE_RATE": 10.3125}}])");
    EXPECT_EQ(on(warnings, "/blocks"),
              (std::vector<std::string>{"|the blocks use 12 GTY_QUADS, the device ZQVC1902 has 8 (150.0 %)"}));

    // The smaller package bonds out 6 GTY quads: one 24-lane link fills them, 28 lanes need a seventh.
    std::string const smaller = R"({"part": "ZQVC1902", "package": "TQD1760"})";
    EXPECT_TRUE(on(warningsOf(smaller, R"("blocks": [{"name": "a", "model": "TalvexGt",
        "inputs": {"GT_TYPE": "GTY", "LANES": 24, "LINE_RATE": 10.3125}}])"), "/blocks").empty());
    EXPECT_EQ(on(warningsOf(smaller, R"("blocks": [{"name": "a", "model": "TalvexGt",
        "inputs": {"GT_TYPE": "GTY", "LANES": 28, "LINE_RATE": 10.3125}}])"), "/blocks"),
              (std::vector<std::string>{"|the blocks use 7 GTY_QUADS, the device ZQVC1902 has 6 (116.7 %)"}));

    // The part has no GTM quads at all: a 4-lane GTM link (one quad) is over-use, not an unknown count.
    EXPECT_EQ(on(warningsOf(R"({"part": "ZQVC1902"})", R"("blocks": [{"name": "a", "model": "TalvexGt",
        "inputs": {"GT_TYPE": "GTM", "LANES": 4, "LINE_RATE": 10.3125}}])"), "/blocks"),
              (std::vector<std::string>{"|the blocks use 1 GTM_QUADS, the device ZQVC1902 has none"}));
}
