// The hard link-IP sheet on tests/data: every figure below is worked out by hand from that file.
#include <prsm/models/talvex/PRSMTalvexHardIpModel.h>

#include "ModelFixture.h"

#include <gtest/gtest.h>

namespace {

using Params = PRSMTalvexHardIpParams;
using prsm::test::expectRel;

class HardIp : public prsm::test::ModelFixture<PRSMTalvexHardIpModel> {};

// The defaults: a PCIe GEN4 x16 controller on ZQVC1902 (scale 1), half its bandwidth in use, 0.8 V.
//   bandwidth 16 x 15 = 240 Gb/s, traffic 120 Gb/s
//   idle 100 + 16 x 10 = 260 mW; data path 120 x 4 pJ = 480 mW; no FEC
//   740 mW: 0.75 on VCCCPM5 (555 mW), 0.25 on VCCINTCPM (185 mW)
TEST_F(HardIp, DefaultsAreAPcieGen4X16Controller) {
    expectRel(calc(Params::TOTAL_POWER), 0.74);
    EXPECT_EQ(p[Params::FEC_COMPONENT], 0.0f);
    expectRel(p[Params::VCCCPM5_POWER], 0.555);
    expectRel(p[Params::VCCINTCPM_POWER], 0.185);
    EXPECT_EQ(p[Params::VCCINT_POWER], 0.0f);
    expectRel(p[Params::LINK_BANDWIDTH], 240.0);
    EXPECT_EQ(p[Params::LINE_RATE], 16.0f);
    EXPECT_EQ(p[Params::GT_LANE_COUNT], 16);
}

// Three 100G Ethernet MACs with FEC at a quarter load on VCCINT at 0.4 V ((0.4 / 0.8)^2 = 0.25), on a
// part without a row (DEFAULT scale 1 for Ethernet):
//   idle 200 + 4 x 20 = 280; data path 100 x 0.25 x 2 = 50; FEC 100 x 1 = 100 -> 430 mW at 0.8 V
//   107.5 mW each at 0.4 V; 0.3225 W for three. Without FEC: 330 mW at 0.8 V.
TEST_F(HardIp, EthernetMacsCodeTheWholeLineThroughTheirFec) {
    Params q;
    q[Params::IP_TYPE] = "ETHERNET_100G";
    q[Params::DEVICE] = "NOSUCH";
    q[Params::UTILIZATION] = 0.25f;
    q[Params::VCCINT] = 0.4f;
    q[Params::INSTANCE_COUNT] = 3;
    expectRel(calc(q, Params::VCCINT_POWER), 0.3225);
    expectRel(q[Params::FEC_COMPONENT], 100.0);
    expectRel(q[Params::INSTANCE_POWER], 107.5);
    EXPECT_EQ(q[Params::VCCCPM5_POWER], 0.0f);
    EXPECT_EQ(q[Params::GT_LANE_COUNT], 12);
    EXPECT_EQ(valid(q, "IS_VALID_LANES"), 1);

    Params noFec = q;
    noFec[Params::FEC] = "NO";
    noFec[Params::VCCINT] = 0.8f;
    expectRel(calc(noFec, Params::INSTANCE_POWER), 330.0);
}

// PCIe on a part without a row takes the DEFAULT scale, 2: 1480 mW.
TEST_F(HardIp, InvalidWidthsModesAndSharesAreReportedAndStillCalculated) {
    Params q;
    q[Params::DEVICE] = "NOSUCH";
    q[Params::LANES] = 12;           // not a PCIe width
    q[Params::UTILIZATION] = 50.0f;  // percent meant
    model.calculate(q);
    EXPECT_EQ(valid(q, "IS_VALID_LANES"), 0);
    EXPECT_EQ(valid(q, "IS_VALID_UTILIZATION"), 0);
    // idle 100 + 12 x 10 = 220, data path 12 x 15 x 50 x 4 = 36000: x 2
    expectRel(q[Params::INSTANCE_POWER], 2 * 36220.0);

    Params wide;
    wide[Params::LANES] = 32;
    model.calculate(wide);
    EXPECT_EQ(valid(wide, "IS_VALID_LANES"), 0);
    EXPECT_EQ(model.floatDispatchTable(wide, data, "GET_MAX_LANES"), 16.0f);

    Params ethernet;
    ethernet[Params::IP_TYPE] = "ETHERNET_100G";
    ethernet[Params::LANES] = 2;
    model.calculate(ethernet);
    EXPECT_EQ(valid(ethernet, "IS_VALID_LANES"), 0);

    // A generation the file does not have: only the controller's base idles (100 mW).
    Params gen5;
    gen5[Params::MODE] = "GEN5";
    expectRel(calc(gen5, Params::INSTANCE_POWER), 100.0);
    EXPECT_EQ(valid(gen5, "IS_VALID_MODE"), 0);
    EXPECT_EQ(model.calculateValidValuesMode(gen5, data), "GEN3,GEN4");

    // A controller without a default mode or link rows: no mode, no traffic, no rail share.
    Params interlaken;
    interlaken[Params::IP_TYPE] = "INTERLAKEN";
    EXPECT_EQ(calc(interlaken, Params::TOTAL_POWER), 0.0f);
    EXPECT_EQ(valid(interlaken, "IS_VALID_MODE"), 0);
    EXPECT_EQ(interlaken[Params::LANES], 12);
}

TEST_F(HardIp, PowerGrowsWithLanesTrafficAndGenerationAndIsLinearInControllers) {
    float const base = calc(Params::TOTAL_POWER);
    auto const with = [this](auto set) {
        Params q;
        set(q);
        return calc(q, Params::TOTAL_POWER);
    };
    EXPECT_LT(with([](Params& q) { q[Params::LANES] = 8; }), base);
    EXPECT_GT(with([](Params& q) { q[Params::UTILIZATION] = 1.0f; }), base);
    EXPECT_LT(with([](Params& q) { q[Params::MODE] = "GEN3"; }), base);
    expectRel(with([](Params& q) { q[Params::INSTANCE_COUNT] = 4; }), 4.0 * base);
    EXPECT_EQ(with([](Params& q) { q[Params::INSTANCE_COUNT] = 0; }), 0.0f);
}

}  // namespace
