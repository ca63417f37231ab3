// The older architecture's UltraRAM sheet on tests/data/powercfg/dravik/PRSMDravikUramData.cfg; every
// figure is worked out by hand from that file. The port and array formulas are the shared ones; these
// tests cover what this sheet binds: the array on VCCBRAM, its device rows, its counts and its rules.
#include <prsm/models/dravik/PRSMDravikUramModel.h>

#include "ModelFixture.h"
#include "TestData.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

using Params = PRSMDravikUramParams;
using Model = PRSMDravikUramModel;
using prsm::test::expectRel;

class DravikUram : public prsm::test::ModelFixture<Model> {
protected:
    // 100 MHz, half the clocks enabled, 40 % of them writes, a fifth of the bits toggling; VCCINT 1 V and
    // VCCBRAM at its nominal 0.85 V. ZDM9200 scales VCCINT by 0.5. Both ports 72 bits (the mode's widest).
    static Params configured() {
        Params q;
        q[Params::CLOCK_FREQ] = 100.0f;
        q[Params::ENABLE_RATE] = 0.5f;
        q[Params::WRITE_RATE] = 0.4f;
        q[Params::TOGGLE_RATE] = 0.2f;
        q[Params::VCCINT] = 1.0f;
        q[Params::VCCBRAM] = 0.85f;
        q[Params::OUTPUT_REGISTER] = "NO";
        q[Params::INSTANCE_COUNT] = 4;
        return q;
    }
};

// A port: 50 accesses, 20 writes, 30 reads; the output holds on writes, so 30 updates. Half the toggled
// bits 0.5 x 0.2 x 72 = 7.2.
//   VCCINT: 100 x 4 + 50 x 3 + 7.2 x (20 x 0.1 + 30 x 0.2) = 400 + 150 + 57.6 = 607.6 per port;
//           one block 2 x 607.6 x 0.001 x 0.5 = 0.6076 mW
//   array:  30 x (5 + 72 x 0.5) + 20 x (6 + 72 x 0.75) = 1230 + 1200 = 2430 per port; one block 4.86 mW
// Four blocks: 4 x 0.6076 = 2.4304 mW on VCCINT, 4 x 4.86 = 19.44 mW on VCCBRAM.
TEST_F(DravikUram, HandWorkedConfigurationOnItsTwoRails) {
    Params q = configured();
    expectRel(calc(q, Params::TOTAL_POWER), 4 * 5.4676e-3);
    EXPECT_EQ(q[Params::PORT_A_WIDTH], 72);
    expectRel(q[Params::PORT_A_CAP_FREQ], 607.6);
    expectRel(q[Params::VCCINT_POWER], 2.4304e-3);
    expectRel(q[Params::VCCBRAM_POWER], 19.44e-3);
    EXPECT_EQ(q[Params::URAM_ACTIVE_COUNT], 4);
    EXPECT_EQ(q[Params::URAM_SLEEP_COUNT], 0);

    // Error correction encodes each write and checks each read: 607.6 + 20 x 5 + 30 x 6 = 887.6.
    q[Params::ECC] = "YES";
    expectRel(calc(q, Params::PORT_A_CAP_FREQ), 887.6);

    // A chain of two: one block serves 25 accesses (10 writes, 15 reads) and the chain's 50 cross it:
    // 400 + 25 x 3 + 7.2 x (10 x 0.1 + 15 x 0.2) + 50 x (7.2 x 0.4 + 2) = 503.8 + 244 = 747.8.
    q = configured();
    q[Params::CASCADE_DEPTH] = 2;
    expectRel(calc(q, Params::PORT_A_CAP_FREQ), 747.8);

    // Half of them asleep: 2 awake draw half the power.
    q = configured();
    q[Params::SLEEP_RATE] = 0.5f;
    expectRel(calc(q, Params::TOTAL_POWER), 2 * 5.4676e-3);
    EXPECT_EQ(q[Params::URAM_ACTIVE_COUNT], 2);
    EXPECT_EQ(q[Params::URAM_SLEEP_COUNT], 2);
}

TEST_F(DravikUram, DefaultsGiveAFigureAndBadInputsAreFlagged) {
    Params defaults;
    EXPECT_GT(calc(defaults, Params::VCCINT_POWER), 0.0f);
    EXPECT_GT(defaults[Params::VCCBRAM_POWER], 0.0f);

    Params q = configured();
    q[Params::CASCADE_DEPTH] = 9;  // the file allows 8
    EXPECT_EQ(model.intDispatchTable(q, data, "IS_VALID_CASCADE_DEPTH"), 0);
    q[Params::CASCADE_DEPTH] = 0;
    EXPECT_EQ(model.intDispatchTable(q, data, "IS_VALID_CASCADE_DEPTH"), 0);
    q[Params::WRITE_RATE] = 40.0f;  // a percent
    EXPECT_EQ(model.intDispatchTable(q, data, "IS_VALID_WRITE_RATE"), 0);
    q[Params::RAM_MODE] = "SINGLE_PORT";
    q[Params::PORT_B_WIDTH] = 72;
    EXPECT_EQ(model.intDispatchTable(q, data, "IS_VALID_PORT_B_WIDTH"), 0);  // 72 set, the mode has none
    EXPECT_TRUE(std::isfinite(calc(q, Params::TOTAL_POWER)));
}

}  // namespace
