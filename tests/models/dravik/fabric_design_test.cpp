// The older architecture's fabric sheets in a whole design on ZDM9200 (425280 LUTs, 1080 block RAMs,
// 4272 DSP slices in the catalogue): their counts reach the static sheet and the resource check, and
// their power lands on the rails they declare. The block figures follow tests/data/powercfg/dravik,
// where ZDM9200 scales the block RAM's VCCINT by 0.5 and its VCCBRAM by 1.
#include <prsm/design/Estimate.h>

#include "ReportLookup.h"

#include <gtest/gtest.h>

#include <optional>
#include <stdexcept>
#include <string>

namespace {

using namespace prsm::design;
using prsm::test::held;
using prsm::test::resource;

// The block-RAM configuration of bram_test.cpp, four groups of ten: 7 awake and 3 asleep in each.
constexpr char kDesign[] = R"({"schema_version": 1, "device": {"part": "ZDM9200"},
  "thermal": {"junction_temperature": 50}, "rails": {"VCCINT": 1.0, "VCCBRAM": 0.85},
  "static": {"model": "DravikStatic"},
  "blocks": [
    {"name": "line buffers", "model": "DravikBram", "count": 4,
     "inputs": {"INSTANCE_COUNT": 10, "SLEEP_RATE": 0.25, "CLOCK_FREQ": 100, "ENABLE_RATE": 0.5, "WRITE_RATE": 0.4,
                "TOGGLE_RATE": 0.2, "WRITE_MODE": "READ_FIRST", "OUTPUT_REGISTER": "NO",
                "PORT_A_WIDTH": 36, "PORT_B_WIDTH": 18}},
    {"name": "filters", "model": "DravikCleLogic", "inputs": {"INSTANCE_TYPE": "LUT_LOGIC", "INSTANCE_COUNT": 58560}},
    {"name": "pipeline registers", "model": "DravikCleLogic", "inputs": {"INSTANCE_TYPE": "REG_FF", "INSTANCE_COUNT": 1000}},
    {"name": "macs", "model": "DravikDsp", "count": 2, "inputs": {"DSP_MODE": "COMPLEX_MULTIPLY", "INSTANCE_COUNT": 10}},
    {"name": "frame store", "model": "DravikUram", "inputs": {"INSTANCE_COUNT": 8}}
  ]})";

double blockRail(Report const& report, std::string const& block, std::string const& rail) {
    for (BlockResult const& b : report.blocks)
        if (b.name == block)
            for (auto const& [name, watts] : b.rails)
                if (name == rail) return watts;
    throw std::runtime_error("no " + rail + " on " + block);
}

TEST(DravikFabricDesign, CountsReachTheStaticSheetAndPowerItsRails) {
    Estimator estimator(parseDesign(kDesign, "fabric.json"));
    Report const& report = estimator.estimate();
    ASSERT_TRUE(report.complete) << report.failures[0];

    // Block RAMs leak alike awake or asleep: 4 x (7 + 3) = 40 used.
    EXPECT_EQ(held(report, "USED_BRAM"), 40.0);
    EXPECT_EQ(resource(report, "BRAMS").used, 40);
    EXPECT_EQ(resource(report, "BRAMS").available, 1080);
    EXPECT_EQ(resource(report, "LUTS").used, 58560);
    EXPECT_EQ(resource(report, "LUTS").available, 425280);
    EXPECT_EQ(resource(report, "FLIP_FLOPS").used, 1000);
    EXPECT_EQ(resource(report, "DSPS").used, 60);  // 2 x 10 complex multipliers of three slices
    EXPECT_EQ(resource(report, "URAMS").used, 8);

    // One awake block RAM: 0.806 mW of array on VCCBRAM, 864.8 pF x MHz x 0.001 x 0.5 = 0.4324 mW on
    // VCCINT; 28 awake in all.
    EXPECT_NEAR(blockRail(report, "line buffers", "VCCBRAM"), 28 * 0.806e-3, 1e-7);
    EXPECT_NEAR(blockRail(report, "line buffers", "VCCINT"), 28 * 0.4324e-3, 1e-7);
    // Nothing else draws dynamic power from VCCBRAM but the UltraRAMs.
    double const uram = blockRail(report, "frame store", "VCCBRAM");
    for (RailResult const& rail : report.rails) {
        if (rail.rail != "VCCBRAM") continue;
        EXPECT_NEAR(rail.dynamicCurrent, (28 * 0.806e-3 + uram) / 0.85, 1e-6);
    }
}

}  // namespace
