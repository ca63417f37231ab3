// The board view on the test-only board (TestBoard, two regulators): the rail currents it is fed, its
// regulators' loads, losses and over-limit power, and the designs that are refused.
#include <prsm/design/Estimate.h>
#include <prsm/design/ReportFormat.h>

#include "ReportLookup.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>

namespace {

using namespace prsm::design;
using prsm::test::boardInput;

#define EXPECT_MENTIONS(text, part) EXPECT_NE((text).find(part), std::string::npos) << (text)

TEST(DesignBoard, RailCurrentsFeedTheRegulatorsByHand) {
    Estimator estimator(readDesignFile(std::string(PRSM_TEST_DESIGNDIR) + "/board.json"));
    Report const& report = estimator.estimate();
    ASSERT_TRUE(report.complete) << (report.failures.empty() ? "" : report.failures[0]);
    ASSERT_TRUE(report.board.has_value());
    BoardResult const& board = *report.board;
    EXPECT_EQ(board.model, "TestBoard");

    // At Tj = 35 degC with no logic power: VCCINT leaks 0.5 + 0.01 * 10 = 0.6 A, VCCAUX 0.1 + 0.002 * 10
    // = 0.12 A. Dynamic: 0.8 W / 0.8 V = 1.0 A and 0.2 A. VCCO33 is not in the design: 0 A.
    double const core = 1.0 + 0.6, aux = 0.2 + 0.12;
    EXPECT_NEAR(boardInput(board, "CORE_CURRENT"), core, 1e-6);
    EXPECT_NEAR(boardInput(board, "AUX_CURRENT"), aux, 1e-6);
    EXPECT_EQ(boardInput(board, "IO_CURRENT"), 0.0);

    ASSERT_EQ(board.regulators.size(), 2u);
    RegulatorResult const& c = board.regulators[0];
    EXPECT_EQ(c.name, "CORE_REG");
    EXPECT_NEAR(c.load, 1.6, 1e-6);
    EXPECT_NEAR(c.efficiency, 0.8, 1e-6);
    EXPECT_NEAR(c.loss, 1.6 * 0.8 * (1 / 0.8 - 1), 1e-5);      // 0.32 W
    EXPECT_NEAR(c.overLimit, (1.6 - 1.5) * 0.8 * 1000, 1e-3);  // 80 mW beyond 1.5 A
    RegulatorResult const& a = board.regulators[1];
    EXPECT_EQ(a.name, "AUX_REG");
    EXPECT_TRUE(std::isnan(a.efficiency));          // not declared
    EXPECT_NEAR(a.loss, 0.32 * (3.3 - 1.5), 1e-5);  // 0.576 W dropped from 3.3 V
    EXPECT_EQ(a.overLimit, 0.0);                    // 0.32 A within 0.5 A
    // 1.6 * 0.8 + 0.32 * 1.5 + 0.32 + 0.576 + 0.5 = 3.156 W
    EXPECT_NEAR(board.totalPower, 3.156, 1e-5);

    // Only the regulator beyond its rating is a warning, naming it and the milliwatts.
    int flagged = 0;
    for (Warning const& w : report.warnings)
        if (w.block == "TestBoard") {
            ++flagged;
            EXPECT_EQ(w.cell, "CORE_OVERLIMIT");
            EXPECT_MENTIONS(w.message, "regulator CORE_REG is loaded 80.0 mW beyond its rating");
        }
    EXPECT_EQ(flagged, 1);

    EXPECT_MENTIONS(toJson(report), "\"name\": \"AUX_REG\"");
    EXPECT_MENTIONS(toCsv(report), "regulator,CORE_REG,,over_limit,80");

    // The board's own inputs can change; the next update recalculates it: 3.156 + 1.0 - 0.5 W.
    estimator.setInput("board", "OTHER_POWER", "1.0");
    EXPECT_NEAR(estimator.update().board->totalPower, 3.656, 1e-5);
}

TEST(DesignBoard, RefusesWhatIsNotABoardDesign) {
    auto refusal = [](std::string const& extra, std::string const& part = "TESTDEV") {
        try {
            Estimator(parseDesign(R"({"schema_version": 1, "device": {"part": ")" + part +
                                      R"("}, "thermal": {"junction_temperature": 25}, )" + extra,
                                  "bad.json"));
        } catch (DesignError const& e) {
            return std::string(e.what());
        }
        return std::string();
    };
    std::string m = refusal(R"("board": "TestLoad", "blocks": []})");
    EXPECT_MENTIONS(m, "bad.json: /board/model: block \"board\": TestLoad is not a module board");
    m = refusal(R"("blocks": [{"name": "b", "model": "TestBoard"}]})");
    EXPECT_MENTIONS(m, "TestBoard is a module board: name it under /board");
    m = refusal(R"("board": {"model": "TestBoard", "inputs": {"CORE_CURRENT": 2}}, "blocks": []})");
    EXPECT_MENTIONS(m, "cell CORE_CURRENT is the device's total current on rail VCCINT");
    // The board carries a device of the older architecture; the catalogue places this part elsewhere.
    m = refusal(R"("board": "TestBoard", "blocks": []})", "ZQVC1902");
    EXPECT_MENTIONS(
        m, "bad.json: /device/part: part ZQVC1902 is a TALVEX device; board TestBoard carries a DRAVIK");
    EXPECT_EQ(refusal(R"("board": "TestBoard", "blocks": []})"), "");
}

}  // namespace
