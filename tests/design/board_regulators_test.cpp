// The module board's regulator view on hand-made readings: names, downstream loads through LDOs and
// switching regulators, a load cell that already holds what it feeds, LDO drops and buck losses.
#include <prsm/design/BoardRegulators.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

namespace {

using namespace prsm::design;
using prsm::BoardRegulator;

constexpr double kNone = std::numeric_limits<double>::quiet_NaN();

BoardRegulator regulator(char const* name, char const* kind, double volts, double rating, char const* fedFrom,
                         bool loadIncludesFed = false) {
    BoardRegulator r;
    r.name = name;
    r.rail = "R_" + std::string(name);
    r.kind = kind;
    r.voltage = volts;
    r.rating = rating;
    r.fedFrom = fedFrom;
    r.loadIncludesFed = loadIncludesFed;
    return r;
}

TEST(BoardRegulatorView, LoadsFollowTheTopologyByHand) {
    std::vector<BoardRegulator> declared = {
        regulator("A", "buck", 1.2, 2.5, "VIN", true),  // its load cell already holds T's
        regulator("T", "ldo", 0.6, 1.0, "A"),
        regulator("B", "buck", 3.3, 1.0, "VIN"),
        regulator("C", "buck", 1.0, 2.0, "B"),  // a switching regulator fed from another
        regulator("L", "ldo", 1.8, 0.05, "VIN"),
        regulator("P", "", 0, 0, ""),  // a part's summed loss, nothing else
    };
    declared[5].rail.clear();
    std::vector<RegulatorReadings> const read = {
        {2.0, 0.8, kNone, 0.0, 5.0},  {0.5, kNone, kNone, 0.0, kNone}, {0.2, 0.9, 0.25, 0.0, 5.0},
        {1.0, 0.5, kNone, 0.0, kNone}, {0.1, kNone, kNone, 0.0, 5.0},  {kNone, kNone, 0.7, kNone, kNone},
    };
    std::vector<RegulatorResult> const rows = regulatorView(declared, read);
    ASSERT_EQ(rows.size(), 6u);

    // A: 2.0 A as its cell gives it (T's 0.5 A inside); no loss cell: 1.2 * 2.0 * (1/0.8 - 1) = 0.6 W.
    EXPECT_DOUBLE_EQ(rows[0].load, 2.0);
    EXPECT_NEAR(rows[0].loss, 0.6, 1e-12);
    EXPECT_NEAR(rows[0].margin, 0.5, 1e-12);
    EXPECT_EQ(rows[0].label, "A (R_A)");
    EXPECT_EQ(rows[0].input, "VIN");
    EXPECT_DOUBLE_EQ(rows[0].inputVoltage, 5.0);
    // T: fed at A's 1.2 V: (1.2 - 0.6) * 0.5 = 0.3 W; an LDO has no efficiency.
    EXPECT_DOUBLE_EQ(rows[1].inputVoltage, 1.2);
    EXPECT_NEAR(rows[1].loss, 0.3, 1e-12);
    EXPECT_TRUE(std::isnan(rows[1].efficiency));
    // C: 1.0 * 1.0 * (1/0.5 - 1) = 1.0 W lost; it draws (1.0 W + 1.0 W) / 3.3 V = 0.60606 A from B.
    EXPECT_NEAR(rows[3].loss, 1.0, 1e-12);
    // B: 0.2 A of its own plus C's draw; its loss is the sheet's 0.25 W.
    EXPECT_NEAR(rows[2].load, 0.2 + 2.0 / 3.3, 1e-12);
    EXPECT_DOUBLE_EQ(rows[2].loss, 0.25);
    EXPECT_NEAR(rows[2].margin, 1.0 - (0.2 + 2.0 / 3.3), 1e-12);
    // L: fed from the input cell's 5 V: (5 - 1.8) * 0.1 = 0.32 W; 0.1 A is over its 0.05 A.
    EXPECT_NEAR(rows[4].loss, 0.32, 1e-12);
    EXPECT_NEAR(rows[4].margin, -0.05, 1e-12);
    // P: only its loss; no rating, so no margin.
    EXPECT_EQ(rows[5].label, "P");
    EXPECT_DOUBLE_EQ(rows[5].loss, 0.7);
    EXPECT_TRUE(std::isnan(rows[5].margin));
    EXPECT_TRUE(std::isnan(rows[5].voltage));
}

TEST(BoardRegulatorView, AMissingFigureStaysMissing) {
    // An LDO whose feeding regulator declares no voltage has no drop to work from; a buck without a
    // loss cell or an efficiency has no loss.
    std::vector<BoardRegulator> const declared = {regulator("U", "buck", 0, 0, "VIN"),
                                                  regulator("D", "ldo", 1.8, 0.3, "U")};
    std::vector<RegulatorReadings> const read = {{0.0, kNone, kNone, 0.0, 5.0}, {0.2, kNone, kNone, 0.0, kNone}};
    std::vector<RegulatorResult> const rows = regulatorView(declared, read);
    EXPECT_TRUE(std::isnan(rows[1].loss));
    EXPECT_TRUE(std::isnan(rows[0].loss));
    EXPECT_NEAR(rows[0].load, 0.2, 1e-12);  // the LDO's current still reaches it
    EXPECT_EQ(regulatorLabel(regulator("DA9062_LDO2", "ldo", 1.8, 0.3, "")), "DA9062 LDO2 (R_DA9062_LDO2)");
}

}  // namespace
