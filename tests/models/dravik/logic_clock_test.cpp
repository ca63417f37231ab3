// The older architecture's logic-clock sheet on its shipped data file: every figure is worked out by hand
// from that file's values (SEGMENT_CAP ROUTING 0.572, REGION 0.904, LEAF 0.41 pF; LOAD_CAP FF 0.005,
// LUTRAM and SRL 0.0075, BRAM 0.066, URAM 0.116, DSP 0.058; CLOCKED_SLICE 0.091, NON_CLE_SITE 0.052;
// buffers 0.6 and 0.6375; VPOW 2; ZDM9200's network of 40 regions, 1,954 leaves, 58,592 sites, 2
// routing segments; scales 1).
#include <prsm/models/dravik/PRSMDravikLogicClockModel.h>

#include "ModelFixture.h"

#include <gtest/gtest.h>

namespace {

using Params = PRSMDravikLogicClockParams;
using prsm::test::expectRel;

class DravikLogicClock : public prsm::test::ModelFixture<PRSMDravikLogicClockModel> {};

// 16,000 flip-flops fill 1,000 slices, 1,000 / 58,592 of the sites: the reach is
// 1 - 0.5^(8 x 0.0170672) = 0.090300, so ceil(40 x 0.0903) = 4 regions and ceil(1954 x 0.0903) = 177 leaves.
//   distribution 2 x 0.572 + 4 x 0.904 = 4.76 pF; leaves 177 x 0.41 = 72.57; slices 1,000 x 0.091 = 91;
//   pins 16,000 x 0.005 = 80; buffer 0.6
// 248.93 pF x 250 MHz x 0.85^2 x 0.001 = 248.93 x 0.180625 = 44.962981 mW.
TEST_F(DravikLogicClock, DefaultsAreAClockOfSixteenThousandFlipFlops) {
    expectRel(calc(Params::VCCINT_CLOCK_POWER), 44.962981e-3);
    EXPECT_EQ(p[Params::ROUTING_COUNT], 2);
    EXPECT_EQ(p[Params::REGION_COUNT], 4);
    EXPECT_EQ(p[Params::LEAF_COUNT], 177);
    EXPECT_EQ(p[Params::NUM_CLOCKED_SLICES], 1000);
    EXPECT_EQ(p[Params::NON_CLE_SITE_FANOUT], 0);
    expectRel(p[Params::BUFFER_COMPONENT], 0.6 * 0.180625);
    EXPECT_EQ(p[Params::CLOCK_LOAD_COUNT], 16000);
}

// Every count given; two clocks at 400 MHz, gated off a quarter of the time, 0.72 V, gated buffers.
//   distribution 3 x 0.572 + 2 x 0.904 = 3.524; leaves 10 x 0.41 = 4.1; slices 50 x 0.091 + 6 x 0.052 = 4.862
//   pins 700 x 0.005 + 24 x 0.0075 + 2 x 0.066 + 0.116 + 3 x 0.058 = 4.102           -> 16.588 pF
// 16.588 x 300 MHz x 0.5184 x 0.001 = 2.57976576 mW; the buffer at the full clock
// 0.6375 x 400 x 0.5184 x 0.001 = 0.132192 mW; two clocks 5.42391552 mW.
TEST_F(DravikLogicClock, GivenCountsGiveTheirOwnPower) {
    p[Params::INSTANCE_COUNT] = 2;
    p[Params::DEVICE] = "ZDM5100";
    p[Params::ROUTING_COUNT] = 3;
    p[Params::REGION_COUNT] = 2;
    p[Params::LEAF_COUNT] = 10;
    p[Params::NUM_CLOCKED_SLICES] = 50;
    p[Params::NON_CLE_SITE_FANOUT] = 6;
    p[Params::FFS_USING_CLK] = 700;
    p[Params::LUTRAMS_USING_CLK] = 16;
    p[Params::SRLS_USING_CLK] = 8;
    p[Params::BRAMS_USING_CLK] = 2;
    p[Params::URAMS_USING_CLK] = 1;
    p[Params::DSPS_USING_CLK] = 3;
    p[Params::CLOCK_FREQ] = 400.0f;
    p[Params::GATING_PROB] = 0.25f;
    p[Params::VCCINT] = 0.72f;
    p[Params::BUF_TYPE] = "GATED_BUFFER";
    expectRel(calc(Params::VCCINT_CLOCK_POWER), 5.42391552e-3);
    expectRel(p[Params::SLICE_COMPONENT], 4.862 * 0.15552);
    expectRel(p[Params::BUFFER_COMPONENT], 0.132192);
    EXPECT_EQ(p[Params::CLOCK_LOAD_COUNT], 2 * 730);
}

TEST_F(DravikLogicClock, InvalidInputsAreReportedAndStillCalculated) {
    p[Params::DEVICE] = "ZDM5100";  // 12 regions, 537 leaves
    p[Params::REGION_COUNT] = 13;
    p[Params::LEAF_COUNT] = 600;
    p[Params::GATING_PROB] = 25.0f;  // a percent meant
    p[Params::FFS_USING_CLK] = -16;
    p[Params::BUF_TYPE] = "MYSTERY_BUFFER";
    model.calculate(p);
    for (char const* cell : {"IS_VALID_REGION_COUNT", "IS_VALID_LEAF_COUNT", "IS_VALID_GATING_PROB",
                             "IS_VALID_FFS_USING_CLK", "IS_VALID_BUF_TYPE"})
        EXPECT_EQ(model.intDispatchTable(p, data, cell), 0) << cell;
    EXPECT_EQ(model.floatDispatchTable(p, data, "GET_MAX_REGION_COUNT"), 12.0f);
    EXPECT_EQ(p[Params::BUFFER_COMPONENT], 0.0f);  // a buffer the file does not know
    EXPECT_EQ(p[Params::NUM_CLOCKED_SLICES], 0);
    // -16 x 0.005 = -0.08 pF of pins at 250 x (1 - 25) = -6,000 MHz: positive, as given.
    expectRel(p[Params::LOAD_PIN_COMPONENT], -0.08 * -6000 * 0.7225e-3);
}

TEST_F(DravikLogicClock, PowerFollowsFrequencyGatingAndLoadsAndIsLinearInTheInstanceCount) {
    float const base = calc(Params::VCCINT_CLOCK_POWER);
    float const buffer = p[Params::BUFFER_COMPONENT] * 1e-3f;
    auto const with = [this](auto set) {
        Params q;
        set(q);
        model.calculate(q);
        return q[Params::VCCINT_CLOCK_POWER];
    };
    expectRel(with([](Params& q) { q[Params::CLOCK_FREQ] = 500.0f; }), 2.0 * base);
    expectRel(with([](Params& q) { q[Params::INSTANCE_COUNT] = 4; }), 4.0 * base);
    // Gating stops the network below the buffer, not the buffer itself.
    expectRel(with([](Params& q) { q[Params::GATING_PROB] = 0.5f; }), 0.5 * (base - buffer) + buffer);
    EXPECT_GT(with([](Params& q) { q[Params::FFS_USING_CLK] = 32000; }), base);
    EXPECT_GT(with([](Params& q) { q[Params::BRAMS_USING_CLK] = 100; }), base);
    expectRel(with([](Params& q) { q[Params::BUF_TYPE] = "NO_BUFFER"; }), base - buffer);

    // A clock of 200,000 flip-flops at 250 MHz draws a few hundred milliwatts.
    float const large = with([](Params& q) { q[Params::FFS_USING_CLK] = 200000; });
    EXPECT_GT(large, 0.2f);
    EXPECT_LT(large, 2.0f);
}

}  // namespace
