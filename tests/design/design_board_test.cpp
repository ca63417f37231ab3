// The board view on the test-only board (TestBoard, three regulators): the rail currents it is fed, its
// regulators' loads with what they feed, dissipation, margins and over-limit power, and the designs that
// are refused.
#include <prsm/design/Estimate.h>
#include <prsm/design/ReportFormat.h>

#include "DesignText.h"
#include "ReportLookup.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>

namespace {

using namespace prsm::design;
using prsm::test::boardInput;

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

    EXPECT_TRUE(board.unsupplied.empty());  // every rail with current reaches an input

    ASSERT_EQ(board.regulators.size(), 3u);
    RegulatorResult const& c = board.regulators[0];
    EXPECT_EQ(c.name, "CORE_REG");
    EXPECT_EQ(c.label, "CORE REG (V0V8)");
    EXPECT_EQ(c.kind, "buck");
    EXPECT_EQ(c.input, "VIN");
    EXPECT_NEAR(c.inputVoltage, 5.0, 1e-6);  // the board's VIN input, 5 V by default
    EXPECT_NEAR(c.load, 1.6, 1e-6);
    EXPECT_NEAR(c.margin, 1.5 - 1.6, 1e-6);
    EXPECT_NEAR(c.efficiency, 0.8, 1e-6);
    EXPECT_NEAR(c.loss, 1.6 * 0.8 * (1 / 0.8 - 1), 1e-5);      // 0.32 W, the sheet's
    EXPECT_NEAR(c.overLimit, (1.6 - 1.5) * 0.8 * 1000, 1e-3);  // 80 mW beyond 1.5 A
    RegulatorResult const& a = board.regulators[1];
    EXPECT_EQ(a.label, "AUX REG (V1V5)");
    EXPECT_EQ(a.kind, "ldo");
    EXPECT_EQ(a.input, "MAIN_REG");
    EXPECT_NEAR(a.inputVoltage, 3.3, 1e-9);  // the main regulator's output
    EXPECT_TRUE(std::isnan(a.efficiency));   // an LDO has none
    EXPECT_NEAR(a.load, 0.32, 1e-6);
    EXPECT_NEAR(a.loss, 0.32 * (3.3 - 1.5), 1e-5);  // 0.576 W dropped from 3.3 V
    EXPECT_NEAR(a.margin, 0.5 - 0.32, 1e-6);
    EXPECT_EQ(a.overLimit, 0.0);
    // The 3.3 V buck's own load is VCCO33's 0 A; it also carries the LDO's 0.32 A, beyond its 0.3 A.
    RegulatorResult const& m = board.regulators[2];
    EXPECT_NEAR(m.load, 0.0 + 0.32, 1e-6);
    EXPECT_NEAR(m.margin, 0.3 - 0.32, 1e-6);
    EXPECT_NEAR(m.loss, 0.32 * 3.3 * (1 / 0.9 - 1), 1e-5);  // 0.1173 W, the sheet's
    EXPECT_TRUE(std::isnan(m.overLimit));                    // the sheet works none out
    // 1.6 * 0.8 + 0.32 * 1.5 + 0.32 + 0.576 + 0.1173 + 0.5 = 3.2733 W
    EXPECT_NEAR(board.totalPower, 1.28 + 0.48 + 0.32 + 0.576 + 0.32 * 3.3 / 9 + 0.5, 1e-5);

    // Each regulator beyond its rating is one warning naming it: the sheet's over-limit figure for the
    // core, the view's load for the 3.3 V buck, whose sheet does not see the LDO against its rating.
    int flagged = 0;
    for (Warning const& w : report.warnings)
        if (w.block == "TestBoard") {
            ++flagged;
            if (w.cell == "CORE_OVERLIMIT")
                EXPECT_MENTIONS(w.message, "regulator CORE_REG is loaded 80.0 mW beyond its rating");
            else
                EXPECT_MENTIONS(w.message, "regulator MAIN REG (V3V3): load 0.32 A exceeds its rating 0.3 A");
        }
    EXPECT_EQ(flagged, 2);

    std::string const json = toJson(report);
    EXPECT_MENTIONS(json, "\"name\": \"AUX_REG\"");
    EXPECT_MENTIONS(json, "\"label\": \"AUX REG (V1V5)\"");
    EXPECT_MENTIONS(json, "\"over_rating\": true");
    std::string const csv = toCsv(report);
    EXPECT_MENTIONS(csv, "regulator,CORE_REG,,over_limit,80");
    EXPECT_MENTIONS(csv, "regulator,AUX_REG,V1V5,input,MAIN_REG,");
    EXPECT_MENTIONS(csv, "regulator,MAIN_REG,V3V3,margin,-0.0199");  // 0.3 - 0.32 in float

    // The board's own inputs can change; the next update recalculates it: 1.0 W instead of 0.5 W.
    double const before = board.totalPower;  // the update rewrites the report `board` is part of
    estimator.setInput("board", "OTHER_POWER", "1.0");
    EXPECT_NEAR(estimator.update().board->totalPower, before + 0.5, 1e-5);
}

// A load on VCCPSAUX, which no input of the board takes: 0.25 A at 1.8 V = 0.45 W, no leakage there. It is
// listed as not supplied and warned about, counts in the device's dynamic power (0.8 W + 0.2 A * 1.5 V +
// 0.45 W = 1.55 W) and not in the module's total, which stays 3.2733 W as without it.
TEST(DesignBoard, RailNoInputTakesIsListedNotDropped) {
    Design design = readDesignFile(std::string(PRSM_TEST_DESIGNDIR) + "/board.json");
    design.rails.emplace_back("VCCPSAUX", 1.8);
    Load extra;
    extra.name = "sensor";
    extra.rail = "VCCPSAUX";
    extra.current = 0.25;
    extra.region = "noc";
    extra.pointer = "/loads/2";
    design.loads.push_back(extra);
    Estimator estimator(std::move(design));
    Report const& report = estimator.estimate();
    ASSERT_TRUE(report.complete && report.board) << (report.failures.empty() ? "" : report.failures[0]);
    BoardResult const& board = *report.board;
    ASSERT_EQ(board.unsupplied.size(), 1u);
    UnsuppliedRail const& rail = board.unsupplied[0];
    EXPECT_EQ(rail.rail, "VCCPSAUX");
    EXPECT_NEAR(rail.current, 0.25, 1e-9);
    EXPECT_NEAR(rail.dynamicCurrent, 0.25, 1e-9);
    EXPECT_NEAR(rail.power, 0.45, 1e-9);
    EXPECT_NEAR(board.unsuppliedPower, 0.45, 1e-9);
    EXPECT_NEAR(report.dynamicPower, 1.55, 1e-6);
    EXPECT_NEAR(board.totalPower, 1.28 + 0.48 + 0.32 + 0.576 + 0.32 * 3.3 / 9 + 0.5, 1e-5);
    int said = 0;
    for (Warning const& w : report.warnings)
        if (w.message.find("VCCPSAUX") != std::string::npos) {
            ++said;
            EXPECT_EQ(w.block, "TestBoard");
            EXPECT_MENTIONS(w.message, "rail VCCPSAUX draws 0.25 A (0.45 W) that board TestBoard does not supply");
        }
    EXPECT_EQ(said, 1);
    EXPECT_MENTIONS(toJson(report), "\"unsupplied_power\": 0.45");
    EXPECT_MENTIONS(toCsv(report), "board_unsupplied,VCCPSAUX,VCCPSAUX,current,0.25,A");
}

TEST(DesignBoard, RefusesWhatIsNotABoardDesign) {
    auto refusal = [](std::string const& members, std::string const& part = "TESTDEV") {
        return prsm::test::designRefusal(prsm::test::testDesign(members, 25, R"("part": ")" + part + R"(")"));
    };
    std::string m = refusal(R"("board": "TestLoad", "blocks": [])");
    EXPECT_MENTIONS(m, "bad.json: /board/model: block \"board\": TestLoad is not a module board");
    m = refusal(R"("blocks": [{"name": "b", "model": "TestBoard"}])");
    EXPECT_MENTIONS(m, "TestBoard is a module board: name it under /board");
    m = refusal(R"("board": {"model": "TestBoard", "inputs": {"CORE_CURRENT": 2}}, "blocks": [])");
    EXPECT_MENTIONS(m, "cell CORE_CURRENT is the device's total current on rail VCCINT");
    // The board carries a device of the older architecture; the catalogue places this part elsewhere.
    m = refusal(R"("board": "TestBoard", "blocks": [])", "ZQVC1902");
    EXPECT_MENTIONS(
        m, "bad.json: /device/part: part ZQVC1902 is a TALVEX device; board TestBoard carries a DRAVIK");
    EXPECT_EQ(refusal(R"("board": "TestBoard", "blocks": [])"), "");
}

}  // namespace
