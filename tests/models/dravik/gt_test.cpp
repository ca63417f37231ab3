// The older architecture's transceiver sheet on tests/data/powercfg/dravik/PRSMDravikGtData.cfg: every
// figure below is worked out by hand from that file.
#include <prsm/models/dravik/PRSMDravikGtModel.h>

#include "ModelFixture.h"

#include <gtest/gtest.h>

namespace {

using Params = PRSMDravikGtParams;
using prsm::test::expectRel;

class DravikGt : public prsm::test::ModelFixture<PRSMDravikGtModel> {
protected:
    // Two GTH links of four lanes at 10 Gb/s, both directions, LC PLL, DFE, 64b/66b, on ZDM7100 (scale 1,
    // four GTH quads); every rail at its nominal voltage (the inputs' defaults).
    static Params gthLinks() {
        Params q;
        q[Params::GT_TYPE] = "GTH";
        q[Params::DEVICE] = "ZDM7100";
        q[Params::INSTANCE_COUNT] = 2;
        q[Params::LINE_RATE] = 10.0f;
        return q;
    }
};

// Per lane: TX 10 + 2 x 10 = 30 mW, RX 20 + (3 + 1) x 10 = 60 mW on AVCC; AVTT 15 + 5; VCCAUX 1 + 2.
//   MGTAVCC   4 x 30 + 4 x 60 + one LC PLL 40 = 400 mW
//   MGTAVTT   4 x 20 = 80 mW; MGTVCCAUX 4 x 3 + 8 = 20 mW
//   VCCINT    8 directions x 0.5 x 10 Gb/s x 1.0 = 40 mW
// One link 540 mW (135 mW a lane); two links 1.08 W, and two GTH quads for the static sheet.
TEST_F(DravikGt, TwoGthLinksOnTheirRails) {
    Params q = gthLinks();
    expectRel(calc(q, Params::TOTAL_POWER), 1.08);
    expectRel(q[Params::LANE_POWER], 135.0);
    expectRel(q[Params::MGTAVCC_POWER], 0.8);
    expectRel(q[Params::MGTAVTT_POWER], 0.16);
    expectRel(q[Params::MGTVCCAUX_POWER], 0.04);
    expectRel(q[Params::VCCINT_POWER], 0.08);
    EXPECT_EQ(q[Params::MGTYAVCC_POWER], 0.0f);
    EXPECT_EQ(q[Params::VCCPSGTA_POWER], 0.0f);
    EXPECT_EQ(q[Params::PLL_TYPE], "LC");
    EXPECT_EQ(q[Params::USED_GTH_QUADS], 2);
    EXPECT_EQ(q[Params::USED_GTY_QUADS], 0);
    EXPECT_EQ(q[Params::LANE_COUNT], 8);
    EXPECT_EQ(valid(q, "IS_VALID_LANES"), 1);
    EXPECT_EQ(model.floatDispatchTable(q, data, "GET_MAX_LANES"), 16.0f);
}

// One PS-GTR lane for USB 3 (5 Gb/s, 8b/10b, linear equaliser) on ZDM5100, VCCPSGTA at half its 0.85 V:
//   VCCPSGTA    TX 5 + 1 x 5 = 10, RX 10 + 2 x 5 = 20, the lane's own PLL 6: 36 mW, x 0.25 = 9 mW
//   VTTPSGTA    4 + 2 = 6 mW; VCCPSAUX 1 + 1 + 2 = 4 mW
//   VCCPSINTFP  2 directions x 0.25 x 5 Gb/s x 2 = 5 mW
// 24 mW; the PS-GTR has no quad PLL, so it clocks from its ring PLL by default and LC is invalid.
TEST_F(DravikGt, APsGtrLaneOnTheProcessingSystemsRails) {
    Params q;
    q[Params::GT_TYPE] = "PSGTR";
    q[Params::DEVICE] = "ZDM5100";
    q[Params::LANES] = 1;
    q[Params::LINE_RATE] = 5.0f;
    q[Params::ENCODING] = "ENC_8B10B";
    q[Params::EQUALIZATION] = "LPM";
    q[Params::VCCPSGTA] = 0.425f;
    expectRel(calc(q, Params::INSTANCE_POWER), 24.0);
    expectRel(q[Params::VCCPSGTA_POWER], 0.009);
    expectRel(q[Params::VTTPSGTA_POWER], 0.006);
    expectRel(q[Params::VCCPSAUX_POWER], 0.004);
    expectRel(q[Params::VCCPSINTFP_POWER], 0.005);
    EXPECT_EQ(q[Params::VCCINT_POWER], 0.0f);
    EXPECT_EQ(q[Params::PLL_TYPE], "RING");
    EXPECT_EQ(q[Params::USED_PSGTR_QUADS], 1);
    EXPECT_EQ(q[Params::USED_GTH_QUADS], 0);
    EXPECT_EQ(model.calculateValidValuesPllType(q, data), "RING");
    q[Params::PLL_TYPE] = "LC";
    model.calculate(q);
    EXPECT_EQ(valid(q, "IS_VALID_PLL_TYPE"), 0);
}

// Invalid inputs are reported and still calculated as given, never clamped.
TEST_F(DravikGt, ImpossibleLinksAreInvalidAndStillCalculated) {
    Params ring = gthLinks();
    ring[Params::PLL_TYPE] = "RING";
    ring[Params::LINE_RATE] = 14.0f;  // within GTH's 16 Gb/s, beyond the ring PLL's 12
    model.calculate(ring);
    EXPECT_EQ(valid(ring, "IS_VALID_LINE_RATE"), 0);
    EXPECT_EQ(model.floatDispatchTable(ring, data, "GET_MAX_LINE_RATE"), 12.0f);
    Params slow = gthLinks();
    slow[Params::LINE_RATE] = 0.5f;  // below GTH's 1 Gb/s
    model.calculate(slow);
    EXPECT_EQ(valid(slow, "IS_VALID_LINE_RATE"), 0);

    // The smaller part has one GTH quad and no GTY: two quads, or any GTY lane, do not fit. On it the
    // DEFAULT scale, 2, doubles every GTH figure.
    Params small = gthLinks();
    small[Params::DEVICE] = "ZDM5100";
    expectRel(calc(small, Params::TOTAL_POWER), 2 * 1.08);
    EXPECT_EQ(valid(small, "IS_VALID_LANES"), 0);
    EXPECT_EQ(small[Params::USED_GTH_QUADS], 2);
    EXPECT_EQ(model.floatDispatchTable(small, data, "GET_MAX_LANES"), 4.0f);
    Params gty = small;
    gty[Params::GT_TYPE] = "GTY";
    gty[Params::INSTANCE_COUNT] = 1;
    model.calculate(gty);
    EXPECT_EQ(valid(gty, "IS_VALID_LANES"), 0);

    Params unknown = gthLinks();
    unknown[Params::GT_TYPE] = "GTX";
    EXPECT_EQ(calc(unknown, Params::TOTAL_POWER), 0.0f);
    EXPECT_EQ(valid(unknown, "IS_VALID_GT_TYPE"), 0);
    EXPECT_EQ(unknown[Params::USED_GTH_QUADS], 0);
    Params negative = gthLinks();
    negative[Params::INSTANCE_COUNT] = -1;
    model.calculate(negative);
    EXPECT_EQ(valid(negative, "IS_VALID_INSTANCE_COUNT"), 0);
}

TEST_F(DravikGt, PowerGrowsWithRateLanesAndUseAndFollowsItsLaws) {
    Params base = gthLinks();
    float const total = calc(base, Params::TOTAL_POWER);
    auto const with = [this](auto set) {
        Params q = gthLinks();
        set(q);
        return calc(q, Params::TOTAL_POWER);
    };
    EXPECT_GT(with([](Params& q) { q[Params::LINE_RATE] = 15.0f; }), total);
    EXPECT_GT(with([](Params& q) { q[Params::LANES] = 8; }), total);
    EXPECT_LT(with([](Params& q) { q[Params::LANE_USE] = "TX_ONLY"; }), total);
    EXPECT_LT(with([](Params& q) { q[Params::EQUALIZATION] = "LPM"; }), total);
    EXPECT_GT(with([](Params& q) { q[Params::ENCODING] = "ENC_8B10B"; }), total);
    expectRel(with([](Params& q) { q[Params::INSTANCE_COUNT] = 6; }), 3.0 * total);
    EXPECT_EQ(with([](Params& q) { q[Params::INSTANCE_COUNT] = 0; }), 0.0f);

    // The square law: MGTAVTT at 0.6 V (half its 1.2) draws a quarter of 0.16 W.
    Params low = gthLinks();
    low[Params::MGTAVTT] = 0.6f;
    expectRel(calc(low, Params::MGTAVTT_POWER), 0.04);
}

}  // namespace
