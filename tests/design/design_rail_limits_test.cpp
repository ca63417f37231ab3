// The device's maximum current per rail from the catalogue: a rail over it is flagged and warned about,
// a rail within it is not, and a rail or part the catalogue gives no figure for has none.
#include <prsm/design/Estimate.h>
#include <prsm/design/ReportFormat.h>

#include "ReportLookup.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using namespace prsm::design;
using prsm::test::rail;

void expectLimit(Report const& report, std::string const& name, double maxCurrent, bool over) {
    RailResult const& r = rail(report, name);
    EXPECT_DOUBLE_EQ(r.maxCurrent, maxCurrent) << name;
    EXPECT_EQ(r.overLimit, over) << name;
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
    expectLimit(report, "VCCINT", 60.0, true);   // 61 A
    expectLimit(report, "VCCAUX", 4.0, false);   // 1 A
    expectLimit(report, "VCCO33", 3.0, false);   // 0.5 A
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
    EXPECT_DOUBLE_EQ(rail(estimateLoads("ZQVC1902A"), "VCCINT").maxCurrent, 60.0);
    Report const unknown = estimateLoads("NOSUCHPART");
    EXPECT_EQ(rail(unknown, "VCCINT").maxCurrent, 0.0);
    EXPECT_FALSE(rail(unknown, "VCCINT").overLimit);
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
    expectLimit(report, "VCCO33", 2.0, true);     // 2.5 A
    expectLimit(report, "MGTYAVCC", 9.0, false);  // 8 A
    expectLimit(report, "VCCAUX", 4.0, false);    // 1 A
    std::vector<std::string> flagged;
    for (Warning const& w : report.warnings)
        if (w.cell.rfind("/rails/", 0) == 0) flagged.push_back(w.cell + ": " + w.message);
    EXPECT_EQ(flagged, std::vector<std::string>{
                           "/rails/VCCO33: total current 2.5 A exceeds the device's maximum 2 A"});
}

}  // namespace
