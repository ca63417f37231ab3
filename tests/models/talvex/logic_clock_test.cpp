// The logic-clock sheet on its shipped data file: every figure below is worked out by hand from that
// file's values (SEGMENT_CAP, LOAD_CAP, SLICE_CLOCK_CAP, BUFFER_CAP; VPOW 2; ZQVC1902's network of 39
// horizontal segments, 865 leaves and 115,878 sites; scales 1).
#include <prsm/framework/PRSMSheetRegistry.h>
#include <prsm/models/talvex/PRSMTalvexLogicClockModel.h>

#include "ModelFixture.h"

#include <gtest/gtest.h>

namespace {

using Params = PRSMTalvexLogicClockParams;
using prsm::test::expectRel;

class LogicClock : public prsm::test::ModelFixture<PRSMTalvexLogicClockModel> {};

// 16,000 flip-flops fill 1,000 slices, 1,000 / 115,878 of the sites: the network's reach is
// 1 - 0.5^(8 x 0.0086298) = 0.046726, so 39 x 0.046726 = 1.82 -> 1 horizontal segment (and its local
// tap) and 865 x 0.046726 = 40.4 -> 40 leaves.
//   distribution 0.828 + 0.174                         =  1.002 pF
//   leaves       40 x 0.33                             = 13.2
//   slices       1,000 x 0.061 + 1,000 x 0.25 x 0.015  = 64.75
//   pins         16,000 x 0.008 x 0.5 (enable share)   = 64
// 142.952 pF x 300 MHz x 0.64 x 0.001 = 27.446784 mW on VCCINT; the global buffer
// 0.49 pF x 300 x 1.5^2 x 0.001 = 0.33075 mW on VCCAUX.
TEST_F(LogicClock, DefaultsAreAClockOfSixteenThousandFlipFlops) {
    expectRel(calc(Params::VCCINT_CLOCK_POWER), 0.027446784);
    EXPECT_EQ(p[Params::HD_COUNT], 1);
    EXPECT_EQ(p[Params::HD_LOC_COUNT], 1);
    EXPECT_EQ(p[Params::LEAF_1_COUNT], 40);
    EXPECT_EQ(p[Params::VR_COUNT], 0);
    EXPECT_EQ(p[Params::NUM_CLOCKED_SLICES], 1000);
    expectRel(p[Params::VCCAUX_CLOCK_POWER], 0.33075e-3);
    expectRel(p[Params::CLOCK_INSTANCE_POWER], 27.446784 + 0.33075);
    EXPECT_EQ(p[Params::CLOCK_LOAD_COUNT], 16000);
}

// Every count set, as a design copies them from a clock block; three such clocks at 400 MHz, gated
// off half the time, 0.7 V and 1.2 V, a gated buffer, on a part without a row (the DEFAULT scale 1).
//   distribution 2 x 0.828 + 2 x 0.174 + 0.376 = 2.38;  leaves 10 x 0.33 + 5 x 0.66 = 6.6
//   slices  100 x 0.061 + 80 x 2 x 0.015 + 10 x 0.018 + 10 x 0.018 + 20 x (0.029 + 1 x 0.015)
//           + 12 x 0.04 + 4 x 0.024 + 4 x 0.006 = 10.34
//   pins    1,000 x 0.008 x 1 x 1.5 (half on both edges) + 40 x 0.0095 x 2 + 4 x 0.04 + 2 x 0.07
//           + 6 x 0.035 = 13.27
// 32.59 pF x 200 MHz x 0.49 x 0.001 = 3.19382 mW a clock; the buffer 0.505 x 400 x 1.44 x 0.001
// = 0.29088 mW, not gated.
TEST_F(LogicClock, CountsTakenFromAClockBlockGiveTheirOwnPower) {
    p[Params::HD_COUNT] = 2;
    p[Params::HD_LOC_COUNT] = 2;
    p[Params::VR_COUNT] = 1;
    p[Params::LEAF_1_COUNT] = 10;
    p[Params::LEAF_2_COUNT] = 5;
    p[Params::NUM_CLOCKED_SLICES] = 100;
    p[Params::NUM_FF_SLICES] = 80;
    p[Params::NUM_LUTRAM_SLICES] = 10;
    p[Params::NUM_SRL_SLICES] = 10;
    p[Params::NUM_IMUX_SLICES] = 20;
    p[Params::NON_CLE_SITE_FANOUT] = 12;
    p[Params::NUM_LATCHED_QUADS_PDELAY_ON] = 4;
    p[Params::NUM_BYPASS_QUADS_PDELAY_ON] = 4;
    p[Params::AVG_CE_FF_GROUPS_PER_SLICE] = 2.0f;
    p[Params::AVG_CE_IMUX_GROUPS_PER_SLICE] = 1.0f;
    p[Params::FFS_USING_CLK] = 1000;
    p[Params::LUTRAMS_USING_CLK] = 40;
    p[Params::SRLS_USING_CLK] = 40;
    p[Params::BRAMS_USING_CLK] = 4;
    p[Params::URAMS_USING_CLK] = 2;
    p[Params::DSPS_USING_CLK] = 6;
    p[Params::PROB_SLICE_CE] = 1.0f;
    p[Params::PROB_DUAL_EDGE_CLOCKING] = 0.5f;
    p[Params::GATING_PROB] = 0.5f;
    p[Params::CLOCK_FREQ] = 400.0f;
    p[Params::VCCINT] = 0.7f;
    p[Params::VCCAUX] = 1.2f;
    p[Params::BUF_TYPE] = "GATED_BUFFER";
    p[Params::INSTANCE_COUNT] = 3;
    p[Params::DEVICE] = "NOSUCH";
    expectRel(calc(Params::VCCINT_CLOCK_POWER), 3 * 3.19382e-3);
    expectRel(p[Params::DISTRIBUTION_COMPONENT], 2.38 * 0.098);
    expectRel(p[Params::SLICE_COMPONENT], 10.34 * 0.098);
    expectRel(p[Params::LOAD_PIN_COMPONENT], 13.27 * 0.098);
    expectRel(p[Params::VCCAUX_CLOCK_POWER], 3 * 0.29088e-3);
    EXPECT_EQ(p[Params::CLOCK_LOAD_COUNT], 3 * 1092);
}

// The distribution counts are named as the clock sheet's outputs, so a design copies them by name.
TEST_F(LogicClock, DistributionInputsAreTheClockSheetsOutputs) {
    auto const& registry = prsm::SheetRegistry::instance();
    prsm::Sheet const* clock = registry.find("TalvexClock");
    prsm::Sheet const* network = registry.find("TalvexLogicClock");
    ASSERT_NE(clock, nullptr);
    ASSERT_NE(network, nullptr);
    int shared = 0;
    for (prsm::CellInfo const& cell : clock->cells()) {
        if (cell.category != prsm::CellCategory::ModelOutput) continue;
        prsm::CellInfo const* input = network->findCell(cell.name);
        if (input == nullptr) continue;
        ++shared;
        EXPECT_EQ(input->category, prsm::CellCategory::UserInput) << cell.name;
        EXPECT_EQ(input->type, cell.type) << cell.name;
    }
    EXPECT_EQ(shared, 28);  // every output but PROB_PDELAY_USED and PROB_CTRL_IMUX_USED
}

TEST_F(LogicClock, InvalidInputsAreReportedAndStillCalculated) {
    p[Params::PROB_SLICE_CE] = 50.0f;  // percent meant: 100 times the default's pin power
    p[Params::GATING_PROB] = -0.5f;
    p[Params::FFS_USING_CLK] = -16;
    p[Params::BUF_TYPE] = "MYSTERY_BUFFER";
    model.calculate(p);
    EXPECT_EQ(model.intDispatchTable(p, data, "IS_VALID_PROB_SLICE_CE"), 0);
    EXPECT_EQ(model.intDispatchTable(p, data, "IS_VALID_GATING_PROB"), 0);
    EXPECT_EQ(model.intDispatchTable(p, data, "IS_VALID_FFS_USING_CLK"), 0);
    EXPECT_EQ(model.intDispatchTable(p, data, "IS_VALID_BUF_TYPE"), 0);
    EXPECT_EQ(p[Params::BUFFER_COMPONENT], 0.0f);  // a buffer the file does not know
    EXPECT_EQ(p[Params::NUM_FF_SLICES], 0);
    // -16 x 0.008 x 50 = -6.4 pF of pins, at 300 x 1.5 = 450 MHz (gated -0.5): negative, as given.
    expectRel(p[Params::LOAD_PIN_COMPONENT], -6.4 * 450 * 0.64e-3);
}

TEST_F(LogicClock, PowerFollowsClockEnableAndGatingAndIsLinearInTheInstanceCount) {
    float const base = calc(Params::VCCINT_CLOCK_POWER);
    auto const with = [this](auto set) {
        Params q;
        set(q);
        model.calculate(q);
        return q[Params::VCCINT_CLOCK_POWER];
    };
    EXPECT_GT(with([](Params& q) { q[Params::CLOCK_FREQ] = 400.0f; }), base);
    EXPECT_GT(with([](Params& q) { q[Params::PROB_SLICE_CE] = 1.0f; }), base);
    EXPECT_GT(with([](Params& q) { q[Params::FFS_USING_CLK] = 32000; }), base);
    expectRel(with([](Params& q) { q[Params::GATING_PROB] = 0.25f; }), 0.75 * base);
    expectRel(with([](Params& q) { q[Params::INSTANCE_COUNT] = 4; }), 4.0 * base);

    // A clock of 200,000 flip-flops at 300 MHz draws a few hundred milliwatts (337 mW).
    float const large = with([](Params& q) { q[Params::FFS_USING_CLK] = 200000; });
    EXPECT_GT(large, 0.2f);
    EXPECT_LT(large, 3.0f);
}

}  // namespace
