// The memory-stack sheet on the round figures of tests/data/powercfg/talvex/PRSMTalvexHbmData.cfg:
// 16 pseudo-channels of 64 bits; 10 mW a die and 5 mW a pseudo-channel in use; core 1.5 pJ a bit read,
// 2 a bit written; I/O 0.5 pJ a bit and 2 pJ a pseudo-channel's memory clock; PHY and controllers
// 0.25 pJ a bit and 10 pJ a controller clock (a quarter of the rate); PLL 20 mA and 2 mA a
// pseudo-channel and GHz; nominal 1.2, 1.2 and 0.8 V, VPOW 2. ZQVP1502 has two 8-high stacks at up to
// 3200 Mb/s; TEST4H four 4-high stacks at up to 2000, with its VCCHBM scaled by 2.
#include <prsm/models/talvex/PRSMTalvexHbmModel.h>

#include "ModelFixture.h"

#include <gtest/gtest.h>

namespace {

using Params = PRSMTalvexHbmParams;
using prsm::test::expectRel;

class Hbm : public prsm::test::ModelFixture<PRSMTalvexHbmModel> {};

// One 8-high stack, all 16 pseudo-channels at 3200 Mb/s: 3,276,800 Mb/s peak (409.6 GB/s); reads 0.4
// move 1,310,720 Mb/s and writes 0.3 983,040.
//   VCCHBM      8 x 10 + 16 x 5 + 0.001 x (1310720 x 1.5 + 983040 x 2) = 160 + 3932.16 = 4092.16 mW
//   VCCIOHBM    0.001 x (2293760 x 0.5 + 16 x 1600 x 2) = 1198.08 mW
//   VCCINTIOHBM 0.001 x (2293760 x 0.25 + 16 x 800 x 10) = 701.44 mW
//   VCCAUXHBM   1.5 V x (20 + 16 x 2 x 1.6) = 106.8 mW
TEST_F(Hbm, DefaultsAreOneStackOfThePartWithStacks) {
    expectRel(calc(Params::VCCHBM_INSTANCE_POWER), 4092.16);
    expectRel(p[Params::VCCIOHBM_INSTANCE_POWER], 1198.08);
    expectRel(p[Params::VCCINTIOHBM_INSTANCE_POWER], 701.44);
    expectRel(p[Params::VCCAUXHBM_INSTANCE_POWER], 106.8);
    expectRel(p[Params::TOTAL_POWER], 6.09848);
    expectRel(p[Params::PEAK_BANDWIDTH], 409.6);
    expectRel(p[Params::BANDWIDTH], 286.72);
    EXPECT_EQ(p[Params::PSEUDO_CHANNELS], 16);
    EXPECT_EQ(p[Params::DATA_RATE], 3200.0f);
    EXPECT_EQ(p[Params::USED_HBM_STACKS], 1);
    EXPECT_EQ(p[Params::USED_HBM_PSEUDO_CHANNELS], 16);
}

// Three 4-high stacks of TEST4H, 8 pseudo-channels each, at its fastest 2000 Mb/s, reading half the
// peak, VCCHBM at 1.1 V: 512,000 Mb/s read a stack.
//   VCCHBM (4 x 10 + 8 x 5 + 0.001 x 512000 x 1.5) x (1.1 / 1.2)^2 x 2 = 848 x 1.2100 / 1.44 x 2
//   = 1425.1111 mW a stack, 4.275333 W for three; 128 GB/s peak a stack, 192 GB/s in use.
TEST_F(Hbm, StackHeightRateLimitVoltageAndScaleComeFromThePart) {
    p[Params::DEVICE] = "TEST4H";
    p[Params::INSTANCE_COUNT] = 3;
    p[Params::PSEUDO_CHANNELS] = 8;
    p[Params::READ_RATE] = 0.5f;
    p[Params::WRITE_RATE] = 0.0f;
    p[Params::VCCHBM] = 1.1f;
    expectRel(calc(Params::VCCHBM_INSTANCE_POWER), 848.0 * 1.21 / 1.44 * 2.0);
    expectRel(p[Params::VCCHBM_POWER], 3.0 * 848.0 * 1.21 / 1.44 * 2.0 * 0.001);
    EXPECT_EQ(p[Params::DATA_RATE], 2000.0f);
    expectRel(p[Params::PEAK_BANDWIDTH], 128.0);
    expectRel(p[Params::BANDWIDTH], 192.0);
    EXPECT_EQ(p[Params::USED_HBM_PSEUDO_CHANNELS], 24);
    EXPECT_EQ(valid("IS_VALID_INSTANCE_COUNT"), 1);
    EXPECT_EQ(model.floatDispatchTable(p, data, "GET_MAX_INSTANCE_COUNT"), 4.0f);
}

TEST_F(Hbm, ImpossibleCombinationsAreInvalidAndStillCalculated) {
    p[Params::INSTANCE_COUNT] = 3;    // the part has two stacks
    p[Params::PSEUDO_CHANNELS] = 17;  // a stack has 16
    p[Params::DATA_RATE] = 3600.0f;   // beyond 3200
    p[Params::WRITE_RATE] = 30.0f;    // a percent meant
    EXPECT_EQ(valid("IS_VALID_INSTANCE_COUNT"), 0);
    EXPECT_EQ(valid("IS_VALID_PSEUDO_CHANNELS"), 0);
    EXPECT_EQ(valid("IS_VALID_DATA_RATE"), 0);
    EXPECT_EQ(valid("IS_VALID_WRITE_RATE"), 0);
    EXPECT_EQ(p[Params::USED_HBM_PSEUDO_CHANNELS], 51);  // as given
    p[Params::PSEUDO_CHANNELS] = 0;
    EXPECT_EQ(valid("IS_VALID_PSEUDO_CHANNELS"), 0);

    // A part without stacks: reported, with no stacks to use and no dies to refresh.
    Params flat;
    flat[Params::DEVICE] = "ZQVC1902";
    model.calculate(flat);
    EXPECT_EQ(model.intDispatchTable(flat, data, "IS_VALID_DEVICE"), 0);
    EXPECT_EQ(model.intDispatchTable(flat, data, "IS_VALID_INSTANCE_COUNT"), 0);
    EXPECT_EQ(model.intDispatchTable(flat, data, "STACK_HEIGHT"), 0);
}

TEST_F(Hbm, PowerGrowsWithChannelsRateAndTrafficAndIsLinearInStacks) {
    float const base = calc(Params::TOTAL_POWER);
    auto const with = [this](auto set) {
        Params q;
        set(q);
        model.calculate(q);
        return q[Params::TOTAL_POWER];
    };
    EXPECT_LT(with([](Params& q) { q[Params::PSEUDO_CHANNELS] = 8; }), base);
    EXPECT_LT(with([](Params& q) { q[Params::DATA_RATE] = 2400.0f; }), base);
    EXPECT_GT(with([](Params& q) { q[Params::READ_RATE] = 0.6f; }), base);
    EXPECT_GT(with([](Params& q) { q[Params::WRITE_RATE] = 0.5f; }), base);
    expectRel(with([](Params& q) { q[Params::INSTANCE_COUNT] = 2; }), 2.0 * base);
    EXPECT_EQ(with([](Params& q) { q[Params::INSTANCE_COUNT] = 0; }), 0.0f);
}

}  // namespace
