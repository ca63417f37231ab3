// The older architecture's processing system in a module design: its rail currents reach the board's
// device-current inputs, the board reads the memory traffic the processing system is given (so the two
// cannot disagree), and a sheet of the other architecture is refused.
#include <prsm/design/Estimate.h>

#include "DesignText.h"
#include "ReportLookup.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using namespace prsm::design;
using prsm::test::boardInput;

// The smaller module's part, no static sheet (no leakage: the board's currents are the blocks' alone).
std::string moduleDesign(std::string const& boardInputs) {
    return R"({"schema_version": 1, "device": {"part": "ZDS26"}, "thermal": {"junction_temperature": 40},
               "rails": {"VCCPSINTFP": 0.85, "VCCPSINTLP": 0.85, "VCCPSINTDDR": 0.85, "VCCOPSDDR12": 1.2},
               "board": {"model": "DravikS26", "inputs": {)" +
           boardInputs + R"(}},
               "blocks": [{"name": "ps", "model": "DravikPs", "inputs": {"READ_RATE": 0.25, "WRITE_RATE": 0.25}}]})";
}

constexpr char const* kTrafficFromThePs =
    R"("PSDDR_READ_RATE": {"from": "ps", "cell": "READ_RATE"},
       "PSDDR_WRITE_RATE": {"from": "ps", "cell": "WRITE_RATE"},
       "PSDDR_CLOCK_FREQ": {"from": "ps", "cell": "DDR_CLOCK_FREQ"})";

TEST(DesignDravikPs, RailCurrentsAndMemoryTrafficReachTheBoard) {
    Estimator estimator(parseDesign(moduleDesign(kTrafficFromThePs), "module.json"));
    Report const& report = estimator.estimate();
    ASSERT_TRUE(report.complete) << (report.failures.empty() ? "" : report.failures[0]);
    ASSERT_TRUE(report.board.has_value());
    // DDR4-2400 x64 at half the bandwidth (ps_test.cpp works the figures): the controller's 0.1947282 W
    // at 0.85 V and the pins' 0.483584 W at 1.2 V.
    EXPECT_NEAR(boardInput(*report.board, "FPGA_VCC_PSINTFP_DDR_CURRENT"), 0.1947282 / 0.85, 1e-5);
    EXPECT_NEAR(boardInput(*report.board, "FPGA_VCCO_PSDDR_504_CURRENT"), 0.483584 / 1.2, 1e-5);
    // The full-power domain: 0.689199975 W at 0.85 V.
    EXPECT_NEAR(boardInput(*report.board, "FPGA_VCC_PSINTFP_CURRENT"), 0.689199975 / 0.85, 1e-5);

    // The board's memory follows the processing system's traffic: the same design with the same traffic
    // typed into the board gives the same module, and a change on the processing system moves both.
    Estimator typed(parseDesign(
        moduleDesign(R"("PSDDR_READ_RATE": 0.25, "PSDDR_WRITE_RATE": 0.25, "PSDDR_CLOCK_FREQ": 1200)"),
        "typed.json"));
    double const total = report.board->totalPower;
    EXPECT_NEAR(typed.estimate().board->totalPower, total, 1e-6);

    estimator.setInput("ps", "READ_RATE", "0.5");
    typed.setInput("ps", "READ_RATE", "0.5");
    typed.setInput("board", "PSDDR_READ_RATE", "0.5");
    double const busier = estimator.update().board->totalPower;
    EXPECT_GT(busier, total);
    EXPECT_NEAR(typed.update().board->totalPower, busier, 1e-6);
}

TEST(DesignDravikPs, ASheetOfTheOtherArchitectureIsRefused) {
    auto refusal = [](std::string const& part, std::string const& model) {
        std::string const blocks = R"("blocks": [{"name": "cpu", "model": ")" + model + R"("}])";
        return prsm::test::designRefusal(prsm::test::testDesign(blocks, 25, R"("part": ")" + part + R"(")"),
                                         "mixed.json");
    };
    EXPECT_MENTIONS(refusal("ZDM9200", "TalvexPss"),
                    "mixed.json: /blocks/0/model: block \"cpu\": TalvexPss is a TALVEX sheet; the design's "
                    "part ZDM9200 is a DRAVIK device");
    EXPECT_MENTIONS(
        refusal("ZQVC1902", "DravikPs"),
        "block \"cpu\": DravikPs is a DRAVIK sheet; the design's part ZQVC1902 is a TALVEX device");
    // A module is its base device's architecture; a part the catalogue does not know is not refused.
    EXPECT_MENTIONS(refusal("ZDS24", "TalvexCleLogic"), "TalvexCleLogic is a TALVEX sheet");
    EXPECT_EQ(refusal("ZDM5100", "DravikVcu"), "");
    EXPECT_EQ(refusal("NOSUCHPART", "TalvexPss"), "");
}

}  // namespace
