// The older architecture's transceiver and I/O blocks in a module design, on tests/data: their quads
// and banks reach the static sheet and the part's resources, and their rail currents the module board.
#include <prsm/design/Estimate.h>

#include "ReportLookup.h"

#include <gtest/gtest.h>

#include <optional>
#include <stdexcept>
#include <string>

namespace {

using namespace prsm::design;
using prsm::test::boardInput;
using prsm::test::held;
using prsm::test::resource;

// One GTH link of four lanes at 10 Gb/s (the GTH test configuration: 540 mW at nominal voltages, 400 of
// them on MGTAVCC, 80 on MGTAVTT) and a MIPI camera input of five pairs at 1,000 Mb/s (2.61 mW a pair on
// VCCAUXIO), on the larger module's board. The device is ZDM9200, the one part the test static data
// describes; the test transceiver and I/O data give it no row, so both take their DEFAULT scales (2 for
// GTH, 1 for the receivers). At a given junction temperature the leakage does not move, so what the
// blocks add to a board current is their own.
std::string const kDesign = R"({"schema_version": 1, "device": {"part": "ZDM9200"},
    "thermal": {"junction_temperature": 50},
    "rails": {"MGTAVCC": 0.9, "MGTAVTT": 1.2, "MGTVCCAUX": 1.8, "VCCINT": 0.85, "VCCAUXIO": 1.8,
              "VCCAUX": 1.8, "VCCINTIO": 0.85, "VCCO12": 1.2},
    "static": {"model": "DravikStatic"},
    "board": {"model": "DravikS26"},
    "blocks": [
      {"name": "link", "model": "DravikGt", "inputs": {"GT_TYPE": "GTH", "LINE_RATE": 10}},
      {"name": "camera", "model": "DravikIo", "inputs": {"IO_STANDARD": "MIPI_DPHY", "DIRECTION": "INPUT",
                                                       "PIN_COUNT": 5, "DATA_RATE": 1000}}
    ]})";

TEST(DesignDravikLinks, QuadsBanksAndCurrentsReachTheStaticSheetAndTheBoard) {
    Estimator estimator(parseDesign(kDesign, "module.json"));
    Report const report = estimator.estimate();
    ASSERT_TRUE(report.complete) << report.failures[0];
    ASSERT_TRUE(report.board.has_value());
    EXPECT_EQ(held(report, "USED_GTH_QUAD"), 1.0);
    EXPECT_EQ(held(report, "USED_GTY_QUAD"), 0.0);
    EXPECT_EQ(resource(report, "GTH_QUADS").used, 1);
    EXPECT_EQ(resource(report, "GTH_QUADS").available, 0);  // the catalogue's ZDM9200 has no GTH
    EXPECT_EQ(resource(report, "HPIO_BANKS").used, 1);      // 10 pins of 52
    EXPECT_EQ(resource(report, "HPIO_BANKS").available, 12);

    // Without the links and the camera the board carries the leakage alone.
    estimator.setInput("link", "INSTANCE_COUNT", "0");
    estimator.setInput("camera", "PIN_COUNT", "0");
    Report const idle = estimator.update();
    EXPECT_EQ(held(idle, "USED_GTH_QUAD"), 0.0);
    auto const added = [&](char const* cell) {
        return boardInput(*report.board, cell) - boardInput(*idle.board, cell);
    };
    // MGTAVCC: 400 mW x 2 = 0.8 W at 0.9 V; MGTAVTT: 80 mW x 2 = 0.16 W at 1.2 V.
    EXPECT_NEAR(added("FPGA_MGTAVCC_CURRENT"), 0.8 / 0.9, 1e-5);
    EXPECT_NEAR(added("FPGA_MGTAVTT_CURRENT"), 0.16 / 1.2, 1e-5);
    // The camera: 5 x 2.61 mW = 0.01305 W at 1.8 V = 0.00725 A.
    EXPECT_NEAR(added("FPGA_VCCAUX_IO_CURRENT"), 0.00725, 1e-6);
    EXPECT_GT(report.board->totalPower, idle.board->totalPower);
}

}  // namespace
