// The device's maximum current per rail from the catalogue: a rail over it is flagged and warned about,
// a rail within it is not, and a rail or part the catalogue gives no figure for has none.
#include <prsm/design/Estimate.h>
#include <prsm/design/ReportFormat.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using namespace prsm::design;

RailResult const& railOf(Report const& report, std::string const& name) {
    for (RailResult const& rail : report.rails)
        if (rail.rail == name) return rail;
    throw std::runtime_error("no rail " + name);
}

Report estimateLoads(std::string const& part) {
    Estimator estimator(parseDesign(R"({"schema_version": 1, "device": {"part": ")" + part + R"("},
        "thermal": {"junction_temperature": 50}, "rails": {"VCCINT": 0.8, "VCCAUX": 1.5, "VCCO33": 3.3},
        "blocks": [], "loads": [
          {"name": "core", "rail": "VCCINT", "current": 61, "region": "logic"},
          {"name": "aux", "rail": "VCCAUX", "current": 1, "region": "logic"},
          {"name": "io", "rail": "VCCO33", "current": 0.5, "region": "io"}]})",
                                    "limits.json"));
    return estimator.estimate();
}

TEST(DesignRailLimits, TheCatalogueLimitsEachRail) {
    // ZQVC1902: VCCINT 60 A, the static data's device-wide maximum; VCCAUX 4 A; VCCO33 1 A for each of
    // its 3 HDIO banks, 3 A.
    Report const report = estimateLoads("ZQVC1902");
    RailResult const& core = railOf(report, "VCCINT");
    EXPECT_DOUBLE_EQ(core.maxCurrent, 60.0);
    EXPECT_TRUE(core.overLimit);  // 61 A
    RailResult const& aux = railOf(report, "VCCAUX");
    EXPECT_DOUBLE_EQ(aux.maxCurrent, 4.0);
    EXPECT_FALSE(aux.overLimit);  // 1 A
    EXPECT_DOUBLE_EQ(railOf(report, "VCCO33").maxCurrent, 3.0);
    EXPECT_FALSE(railOf(report, "VCCO33").overLimit);  // 0.5 A
    int flagged = 0;
    for (Warning const& w : report.warnings)
        if (w.cell.rfind("/rails/", 0) == 0) {
            ++flagged;
            EXPECT_EQ(w.cell, "/rails/VCCINT");
            EXPECT_EQ(w.message, "total current 61 A exceeds the device's maximum 60 A");
        }
    EXPECT_EQ(flagged, 1);
    std::string const json = toJson(report);
    EXPECT_NE(json.find("\"max_current\": 60.0"), std::string::npos) << json;

    // An alias is looked up as the part it stands for; a part the catalogue does not know has no limits.
    EXPECT_DOUBLE_EQ(railOf(estimateLoads("ZQVC1902A"), "VCCINT").maxCurrent, 60.0);
    Report const unknown = estimateLoads("NOSUCHPART");
    EXPECT_EQ(railOf(unknown, "VCCINT").maxCurrent, 0.0);
    EXPECT_FALSE(railOf(unknown, "VCCINT").overLimit);
}

TEST(DesignRailLimits, BankAndQuadRailsFollowTheBanksAndQuadsOfThePackage) {
    // ZQVC1902 in TQD1760 bonds out 2 HDIO banks and 6 GTY quads (the part has 3 and 8): VCCO33 may
    // carry 2 * 1 A = 2 A, MGTYAVCC 6 * 1.5 A = 9 A. A rail the package does not change keeps the
    // part's figure: VCCAUX 4 A.
    Estimator estimator(parseDesign(R"({"schema_version": 1,
        "device": {"part": "ZQVC1902", "package": "TQD1760"}, "thermal": {"junction_temperature": 50},
        "rails": {"VCCO33": 3.3, "MGTYAVCC": 0.88, "VCCAUX": 1.5}, "blocks": [], "loads": [
          {"name": "lvcmos", "rail": "VCCO33", "current": 2.5, "region": "io"},
          {"name": "lanes", "rail": "MGTYAVCC", "current": 8, "region": "gt"},
          {"name": "aux", "rail": "VCCAUX", "current": 1, "region": "logic"}]})",
                                    "banks.json"));
    Report const& report = estimator.estimate();
    RailResult const& io = railOf(report, "VCCO33");
    EXPECT_DOUBLE_EQ(io.maxCurrent, 2.0);
    EXPECT_TRUE(io.overLimit);  // 2.5 A
    RailResult const& lanes = railOf(report, "MGTYAVCC");
    EXPECT_DOUBLE_EQ(lanes.maxCurrent, 9.0);
    EXPECT_FALSE(lanes.overLimit);  // 8 A
    EXPECT_DOUBLE_EQ(railOf(report, "VCCAUX").maxCurrent, 4.0);
    std::vector<std::string> flagged;
    for (Warning const& w : report.warnings)
        if (w.cell.rfind("/rails/", 0) == 0) flagged.push_back(w.cell + ": " + w.message);
    EXPECT_EQ(flagged, std::vector<std::string>{
                           "/rails/VCCO33: total current 2.5 A exceeds the device's maximum 2 A"});
}

}  // namespace
