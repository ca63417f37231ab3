// The older architecture's clocking blocks in a module design: their rail currents reach the module
// board's device-current inputs, and their counts are checked against the part's clock resources. The
// module ZDS26 is the base device ZDM5100 (4 clock managers, 8 PLLs, 96 global buffers), and the figures
// come from the shipped clocking data (docs/models/DravikMmcm.md, DravikPll.md, DravikLogicClock.md).
#include <prsm/design/Estimate.h>

#include <gtest/gtest.h>

#include <optional>
#include <string>

namespace {

using namespace prsm::design;

std::string design(int managers) {
    return R"({"schema_version": 1, "device": {"part": "ZDS26"}, "thermal": {"junction_temperature": 50},
        "rails": {"VCCINT": 0.85, "VCCAUX": 1.8},
        "board": {"model": "DravikS26"},
        "blocks": [
          {"name": "clock managers", "model": "DravikMmcm", "count": )" +
           std::to_string(managers) + R"(},
          {"name": "interface PLL", "model": "DravikPll"},
          {"name": "pixel clocks", "model": "DravikLogicClock", "count": 2,
           "inputs": {"FFS_USING_CLK": 1600, "ROUTING_COUNT": 1, "REGION_COUNT": 1, "LEAF_COUNT": 4}}
        ]})";
}

double boardCurrent(Report const& report, std::string const& input) {
    for (auto const& [name, amps] : report.board.value().currents)
        if (name == input) return amps;
    ADD_FAILURE() << "no board current " << input;
    return 0;
}

double used(Report const& report, std::string const& resource) {
    for (ResourceUse const& r : report.resources)
        if (r.resource == resource) return r.used;
    return -1;
}

std::string warnings(Report const& report) {
    std::string text;
    for (Warning const& w : report.warnings) text += w.block + "|" + w.cell + "|" + w.message + "\n";
    return text;
}

// Two managers at their defaults: 2 x 0.03924 W on VCCAUX and 2 x 8.656825e-4 W on VCCINT; the PLL
// 0.02088 W and 8.310025e-4 W. Each pixel clock: 1,600 flip-flops in 100 slices, one routing segment,
// one region, four leaves: 0.572 + 0.904 + 4 x 0.41 + 100 x 0.091 + 1,600 x 0.005 + buffer 0.6
// = 20.816 pF x 250 MHz x 0.85^2 x 0.001 = 3.75989 mW; two clocks 7.51978 mW.
//   VCCAUX (2 x 0.03924 + 0.02088) / 1.8 = 0.0552 A
//   VCCINT (1.731365 + 0.8310025 + 7.51978) mW / 0.85 = 11.86135 mA
TEST(DravikClockingDesign, BlockCurrentsReachTheModuleBoardAndCountsTheParts) {
    Report const report = Estimator(parseDesign(design(2), "clocking.json")).estimate();
    ASSERT_TRUE(report.complete) << report.failures.at(0);
    EXPECT_NEAR(boardCurrent(report, "FPGA_VCCAUX_CURRENT"), 0.0552, 1e-6);
    EXPECT_NEAR(boardCurrent(report, "FPGA_VCCINT_CURRENT"), 11.86135e-3, 1e-7);
    EXPECT_EQ(used(report, "MMCMS"), 2);
    EXPECT_EQ(used(report, "PLLS"), 1);
    EXPECT_EQ(used(report, "CLOCK_BUFFERS"), 2);
    EXPECT_EQ(warnings(report).find("MMCMS"), std::string::npos) << warnings(report);

    // Five managers on a part with four: the design says so.
    Report const over = Estimator(parseDesign(design(5), "clocking.json")).estimate();
    EXPECT_NE(warnings(over).find("the blocks use 5 MMCMS"), std::string::npos) << warnings(over);
}

}  // namespace
