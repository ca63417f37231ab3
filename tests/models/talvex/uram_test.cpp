// The UltraRAM sheet on tests/data: every figure below is worked out by hand from that file.
#include <prsm/models/talvex/PRSMTalvexBramModel.h>
#include <prsm/models/talvex/PRSMTalvexUramModel.h>

#include "ModelFixture.h"
#include "TestData.h"

#include <gtest/gtest.h>

namespace {

using Params = PRSMTalvexUramParams;
using Model = PRSMTalvexUramModel;
using Data = PRSMTalvexUramData;
using prsm::test::expectRel;

class Uram : public prsm::test::ModelFixture<Model> {};

// Eight blocks in chains of 4, 200 MHz, half enabled, half the accesses writes, a tenth of the bits
// toggling, output registers and error correction, VCCINT 1 V, VCCRAM nominal; ZQVC1902 scales
// VCCINT by 0.5 and VCCRAM by 2. Per port the chain makes 100 accesses; one block serves 25 (12.5
// reads, 12.5 writes; the output holds on writes). Half the toggled bits: 0.5 x 0.1 x 72 = 3.6.
//   VCCINT per port: clocks 200 x (4 + 1) + control 25 x 2 + 3.6 x (12.5 x 0.1 + 12.5 x 0.25)
//   + ECC 12.5 x 3 + 12.5 x 5 + cascade 100 x (3.6 x 0.5 + 10) = 1000 + 50 + 15.75 + 100 + 1180
//   = 2345.75; one block: 2 x 2345.75 x 0.001 x 0.5 = 2.34575 mW
//   array per port: 12.5 x (10 + 72 x 0.25) + 12.5 x (20 + 72 x 0.5) = 350 + 700 = 1050;
//   one block: 2100 x 0.001 x 2 = 4.2 mW
TEST_F(Uram, HandWorkedCascadeWithErrorCorrection) {
    p[Params::INSTANCE_COUNT] = 8;
    p[Params::CASCADE_DEPTH] = 4;
    p[Params::CLOCK_FREQ] = 200.0f;
    p[Params::TOGGLE_RATE] = 0.1f;
    p[Params::VCCINT] = 1.0f;
    p[Params::ECC] = "YES";
    expectRel(calc(Params::TOTAL_POWER), 8 * 6.54575e-3);
    expectRel(p[Params::VCCINT_INSTANCE_POWER], 2.34575);
    expectRel(p[Params::VCCRAM_INSTANCE_POWER], 4.2);
    expectRel(p[Params::VCCINT_POWER], 8 * 2.34575e-3);
    expectRel(p[Params::VCCRAM_POWER], 8 * 4.2e-3);
    EXPECT_EQ(p[Params::URAM_ACTIVE_COUNT], 8);
    EXPECT_EQ(p[Params::URAM_SLEEP_COUNT], 0);

    p[Params::SLEEP_RATE] = 0.5f;  // four asleep: half the power
    expectRel(calc(Params::TOTAL_POWER), 4 * 6.54575e-3);
    EXPECT_EQ(p[Params::URAM_SLEEP_COUNT], 4);

    // Simple dual port: A writes on every access, B reads on every access.
    Params sdp;
    sdp[Params::RAM_MODE] = "SIMPLE_DUAL_PORT";
    calc(sdp, Params::TOTAL_POWER);
    EXPECT_EQ(sdp[Params::PORT_A_WRITE_SHARE], 1.0f);
    EXPECT_EQ(sdp[Params::PORT_B_WRITE_SHARE], 0.0f);
    EXPECT_EQ(sdp[Params::PORT_B_WIDTH], 72);
}

TEST_F(Uram, InvalidInputsAreFlaggedAndStillCalculated) {
    p[Params::CASCADE_DEPTH] = 9;  // the file allows 8
    p[Params::SLEEP_RATE] = 1.2f;
    p[Params::WRITE_RATE] = 2.0f;
    p[Params::PORT_A_WIDTH] = 73;
    EXPECT_EQ(calc(Params::TOTAL_POWER), 0.0f);  // 1.2 of one block rounds to one block asleep
    EXPECT_EQ(model.intDispatchTable(p, data, "IS_VALID_CASCADE_DEPTH"), 0);
    EXPECT_EQ(model.intDispatchTable(p, data, "IS_VALID_SLEEP_RATE"), 0);
    EXPECT_EQ(model.intDispatchTable(p, data, "IS_VALID_WRITE_RATE"), 0);
    EXPECT_EQ(model.intDispatchTable(p, data, "IS_VALID_PORT_A_WIDTH"), 0);
    EXPECT_EQ(model.intDispatchTable(p, data, "IS_VALID_PORT_B_WIDTH"), 1);
    EXPECT_EQ(model.calculateValidValuesEcc(p, data), "NO,YES");

    Params q;
    q[Params::WRITE_RATE] = 2.0f;  // writes beyond every access: still calculated, never clamped
    EXPECT_GT(calc(q, Params::PORT_A_WRITES), q[Params::PORT_A_ACCESSES]);
    q[Params::RAM_MODE] = "SINGLE_PORT";
    q[Params::PORT_B_WIDTH] = 72;
    EXPECT_EQ(model.intDispatchTable(q, data, "IS_VALID_PORT_B_WIDTH"), 0);
    q[Params::CASCADE_DEPTH] = 0;
    EXPECT_EQ(model.intDispatchTable(q, data, "IS_VALID_CASCADE_DEPTH"), 0);
    EXPECT_GT(calc(q, Params::TOTAL_POWER), 0.0f);  // a depth below 1 chains nothing
}

TEST_F(Uram, PowerGrowsWithActivityAndScalesWithTheBlocks) {
    float const base = calc(Params::TOTAL_POWER);
    EXPECT_GT(base, 0.0f);
    for (auto [cell, higher] : {std::pair{Params::CLOCK_FREQ, 400.0f}, std::pair{Params::TOGGLE_RATE, 0.5f},
                                std::pair{Params::ENABLE_RATE, 0.75f}}) {
        Params q;
        q[cell] = higher;
        EXPECT_GT(calc(q, Params::TOTAL_POWER), base) << Params::enum_to_string(cell);
    }
    Params many;
    many[Params::INSTANCE_COUNT] = 11;
    expectRel(calc(many, Params::TOTAL_POWER), 11.0 * base);
}

// An UltraRAM draws a few times what a 36 Kb block RAM does in the same use, on the shipped data.
TEST_F(Uram, ShippedDataGivesAFewTimesABlockRam) {
    prsm::test::ScopedDataDir dir(prsm::test::shippedDataDir());
    Data const shipped;
    PRSMTalvexBramData const shippedBram;
    PRSMTalvexBramParams bram;
    float const uram = model.calculateInstancePower(p, shipped);
    float const ratio = uram / PRSMTalvexBramModel::getGlobal().calculateInstancePower(bram, shippedBram);
    EXPECT_GT(ratio, 2.0f);
    EXPECT_LT(ratio, 6.0f);
    EXPECT_LT(uram, 30.0f);
}

}  // namespace
