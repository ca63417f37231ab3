// The older architecture's block-RAM sheet on tests/data/powercfg/dravik/PRSMDravikBramData.cfg; every
// figure is worked out by hand from that file. The port and array formulas are the shared ones (the
// newer architecture's tests cover every mode); these tests cover what this sheet binds differently:
// the array on VCCBRAM at its own nominal voltage, no word-line boost, its devices and its counts.
#include <prsm/models/dravik/PRSMDravikBramModel.h>

#include "ModelFixture.h"
#include "TestData.h"

#include <gtest/gtest.h>

namespace {

using Params = PRSMDravikBramParams;
using Model = PRSMDravikBramModel;
using prsm::test::expectRel;

class DravikBram : public prsm::test::ModelFixture<Model> {
protected:
    // 100 MHz, half the clocks enabled, 40 % of them writes, a fifth of the bits toggling; VCCINT at 1 V
    // and VCCBRAM at its nominal 0.85 V, so both voltage factors are 1. ZDM9200 (the default device)
    // scales VCCINT by 0.5 and VCCBRAM by 1. Port A 36 bits, port B 18; ten blocks, a quarter asleep.
    static Params configured() {
        Params q;
        q[Params::CLOCK_FREQ] = 100.0f;
        q[Params::ENABLE_RATE] = 0.5f;
        q[Params::WRITE_RATE] = 0.4f;
        q[Params::TOGGLE_RATE] = 0.2f;
        q[Params::VCCINT] = 1.0f;
        q[Params::VCCBRAM] = 0.85f;
        q[Params::WRITE_MODE] = "READ_FIRST";
        q[Params::OUTPUT_REGISTER] = "NO";
        q[Params::PORT_A_WIDTH] = 36;
        q[Params::PORT_B_WIDTH] = 18;
        q[Params::INSTANCE_COUNT] = 10;
        q[Params::SLEEP_RATE] = 0.25f;
        return q;
    }
};

// Port A: 100 x 0.5 = 50 accesses, 20 of them writes; read first, so 50 array reads and 50 output
// updates. Half the toggled bits: 0.5 x 0.2 x 36 = 3.6 (B: 1.8).
//   VCCINT A: clock 100 x 3 + control 50 x 2 + 3.6 x (20 x 0.1 + 50 x 0.2) = 300 + 100 + 43.2 = 443.2
//   VCCINT B: 400 + 1.8 x 12 = 421.6; one block (443.2 + 421.6) x 1 x 0.001 x 0.5 = 0.4324 mW
//   array A: 50 x (2 + 36 x 0.1) + 20 x (3 + 36 x 0.2) = 280 + 204 = 484
//   array B: 50 x (2 + 18 x 0.1) + 20 x (3 + 18 x 0.2) = 190 + 132 = 322; one block 0.806 mW on VCCBRAM
// Ten blocks, 2.5 asleep round to 3: 7 awake, 7 x 1.2384 mW in all.
TEST_F(DravikBram, HandWorkedConfigurationOnItsTwoRails) {
    Params q = configured();
    expectRel(calc(q, Params::TOTAL_POWER), 7 * 1.2384e-3);
    expectRel(q[Params::VCCINT_INSTANCE_POWER], 0.4324);
    expectRel(q[Params::VCCBRAM_INSTANCE_POWER], 0.806);
    expectRel(q[Params::VCCINT_POWER], 7 * 0.4324e-3);
    expectRel(q[Params::VCCBRAM_POWER], 7 * 0.806e-3);
    EXPECT_EQ(q[Params::ACTIVE_INSTANCE_COUNT], 7);
    EXPECT_EQ(q[Params::BRAM36_ACTIVE_COUNT], 7);
    EXPECT_EQ(q[Params::BRAM36_SLEEP_COUNT], 3);

    // Off nominal: VCCBRAM 0.425 V is half its nominal, (0.5)^2 = 0.25 of the array's 0.806 mW; VCCINT
    // 0.5 V gives 864.8 x 0.25 x 0.001 x 0.5.
    q[Params::VCCBRAM] = 0.425f;
    q[Params::VCCINT] = 0.5f;
    expectRel(calc(q, Params::VCCBRAM_INSTANCE_POWER), 0.2015);
    expectRel(q[Params::VCCINT_INSTANCE_POWER], 0.1081);

    // ZDM5100 is listed but has no scale row: the DEFAULT row's 2 on both rails.
    q = configured();
    q[Params::DEVICE] = "ZDM5100";
    expectRel(calc(q, Params::VCCBRAM_INSTANCE_POWER), 0.806 * 2);
    expectRel(q[Params::VCCINT_INSTANCE_POWER], 864.8 * 0.001 * 2);

    // 18 Kb halves: 5 blocks, round(1.25) = 1 asleep; two halves share a 36 Kb site, so the 4 awake take
    // 2 sites and the one asleep 1.
    Params half;
    half[Params::BRAM_TYPE] = "BRAM18";
    half[Params::INSTANCE_COUNT] = 5;
    half[Params::SLEEP_RATE] = 0.25f;
    calc(half, Params::TOTAL_POWER);
    EXPECT_EQ(half[Params::BRAM36_ACTIVE_COUNT], 2);
    EXPECT_EQ(half[Params::BRAM36_SLEEP_COUNT], 1);
}

TEST_F(DravikBram, PowerScalesWithBlocksAndActivity) {
    Params q = configured();
    q[Params::SLEEP_RATE] = 0.0f;
    float const tenBlocks = calc(q, Params::TOTAL_POWER);
    q[Params::INSTANCE_COUNT] = 20;
    expectRel(calc(q, Params::TOTAL_POWER), 2.0 * tenBlocks);
    // Every array access and every data bit follows the enable: the array figure is linear in it.
    float const array = q[Params::VCCBRAM_POWER];
    q[Params::ENABLE_RATE] = 1.0f;
    expectRel(calc(q, Params::VCCBRAM_POWER), 2.0 * array);
    float previous = 0.0f;
    for (float toggle : {0.0f, 0.25f, 0.5f, 1.0f}) {
        q[Params::TOGGLE_RATE] = toggle;
        float const power = calc(q, Params::VCCINT_POWER);
        EXPECT_GT(power, previous) << "toggle rate " << toggle;
        previous = power;
    }
    // Every block asleep: no dynamic power, all ten counted asleep.
    q[Params::INSTANCE_COUNT] = 10;
    q[Params::SLEEP_RATE] = 1.0f;
    EXPECT_EQ(calc(q, Params::TOTAL_POWER), 0.0f);
    EXPECT_EQ(q[Params::BRAM36_SLEEP_COUNT], 10);
}

TEST_F(DravikBram, DefaultsGiveAFigureAndBadInputsAreFlagged) {
    Params defaults;
    EXPECT_GT(calc(defaults, Params::VCCINT_POWER), 0.0f);
    EXPECT_GT(defaults[Params::VCCBRAM_POWER], 0.0f);
    EXPECT_EQ(model.intDispatchTable(defaults, data, "IS_VALID_DEVICE"), 1);

    Params q = configured();
    float const atFullToggle = [&] {
        q[Params::TOGGLE_RATE] = 1.0f;
        return calc(q, Params::TOTAL_POWER);
    }();
    q[Params::TOGGLE_RATE] = 25.0f;  // someone meaning percent: flagged, calculated as given
    EXPECT_GT(calc(q, Params::TOTAL_POWER), atFullToggle);
    EXPECT_EQ(model.intDispatchTable(q, data, "IS_VALID_TOGGLE_RATE"), 0);
    q[Params::VCCBRAM] = -0.85f;
    EXPECT_EQ(model.intDispatchTable(q, data, "IS_VALID_VCCBRAM"), 0);
    q[Params::DEVICE] = "ZQVC1902";  // a part of the other architecture
    EXPECT_EQ(model.intDispatchTable(q, data, "IS_VALID_DEVICE"), 0);
    q[Params::PORT_A_WIDTH] = 72;  // true dual port allows 36
    EXPECT_EQ(model.intDispatchTable(q, data, "IS_VALID_PORT_A_WIDTH"), 0);
    q[Params::RAM_MODE] = "CASCADE";
    q[Params::CASCADE_DEPTH] = 5;  // the file allows 4
    EXPECT_EQ(model.intDispatchTable(q, data, "IS_VALID_CASCADE_DEPTH"), 0);
    EXPECT_GE(calc(q, Params::TOTAL_POWER), 0.0f);  // a mode without widths falls back to 0, no throw
}

}  // namespace
