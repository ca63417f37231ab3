// The DSP sheet on its shipped data file: every figure below is worked out by hand from that file's
// values (MODE_CAP FIXED_POINT/COMPLEX_MULTIPLY MULT 0.054 and ACC 0.036, FLOATING_POINT MULT 0.042525;
// SLICE_CAP PREADD 0.012, REG_DATA 0.006, REG_CLOCK 0.003, CASCADE 0.016, CLOCK 0.11, VPOW 2; scale 1).
#include <prsm/models/talvex/PRSMTalvexDspModel.h>

#include "ModelFixture.h"

#include <gtest/gtest.h>

namespace {

using Params = PRSMTalvexDspParams;
using prsm::test::expectRel;

class Dsp : public prsm::test::ModelFixture<PRSMTalvexDspModel> {};

// A fixed-point slice, 27 x 24, three register levels, accumulating, at 300 MHz, a quarter of its bits
// toggling, 0.8 V. Data bits cycle at 300 x 0.25 x 0.5 = 37.5 MHz; a pF x MHz is 0.64 x 0.001 mW.
//   multiplier  648 bits x 0.054 x 37.5 = 1312.2          -> 0.839808 mW
//   accumulator 58 x 0.036 x 37.5 = 78.3                  -> 0.050112 mW
//   registers   3 x 51 bits x (0.006 x 37.5 + 0.003 x 300) = 172.125 -> 0.11016 mW
//   clock spine 0.11 x 300 = 33                           -> 0.02112 mW
// One slice: 1.0212 mW.
TEST_F(Dsp, DefaultsAreOneFixedPointSliceOfAboutAMilliwatt) {
    expectRel(calc(Params::DSP_INSTANCE_POWER), 1.0212);
    expectRel(p[Params::MULT_COMPONENT], 0.839808);
    expectRel(p[Params::ACC_COMPONENT], 0.050112);
    expectRel(p[Params::REG_COMPONENT], 0.11016);
    expectRel(p[Params::CLOCK_COMPONENT], 0.02112);
    EXPECT_EQ(p[Params::PREADD_COMPONENT], 0.0f);
    EXPECT_EQ(p[Params::CASCADE_COMPONENT], 0.0f);
    EXPECT_EQ(p[Params::DSP_SLICE_COUNT], 1);
    EXPECT_EQ(p[Params::A_WIDTH], 27);
    EXPECT_EQ(p[Params::B_WIDTH], 24);
}

// Ten complex pairs of 18-bit parts with pre-adders, both cascades and four register levels, at
// 500 MHz, toggle 0.2, 0.7 V, on a part without a row (the DEFAULT scale 1). Data at 50 MHz:
//   multiplier  4 x 18 x 18 = 1296 bits x 0.054 x 50 = 3499.2
//   pre-adders  2 slices x 18 bits x 0.012 x 50 = 21.6
//   accumulator 116 x 0.036 x 50 = 208.8
//   registers   4 x 2 x 36 bits x (0.006 x 50 + 0.003 x 500) = 518.4
//   cascade     2 ports x 116 x 0.016 x 50 = 185.6
//   clock       2 x 0.11 x 500 = 110
// 4543.6 pF x MHz x 0.49 x 0.001 = 2.226364 mW a pair; ten pairs 22.26364 mW on twenty slices.
TEST_F(Dsp, AComplexPairUsesTwoSlicesAndEveryPath) {
    p[Params::DSP_MODE] = "COMPLEX_MULTIPLY";
    p[Params::USE_PREADDER] = "YES";
    p[Params::CASCADE] = "IN_OUT";
    p[Params::PIPELINE_STAGES] = 4;
    p[Params::INSTANCE_COUNT] = 10;
    p[Params::CLOCK_FREQ] = 500.0f;
    p[Params::TOGGLE_RATE] = 0.2f;
    p[Params::VCCINT] = 0.7f;
    p[Params::DEVICE] = "NOSUCH";
    expectRel(calc(Params::DSP_INSTANCE_POWER), 2.226364);
    expectRel(p[Params::PREADD_COMPONENT], 21.6 * 0.49e-3);
    expectRel(p[Params::CASCADE_COMPONENT], 185.6 * 0.49e-3);
    expectRel(p[Params::DSP_POWER], 0.02226364);
    EXPECT_EQ(p[Params::DSP_SLICE_COUNT], 20);
    EXPECT_EQ(p[Params::A_WIDTH], 18);
    EXPECT_EQ(model.intDispatchTable(p, data, "IS_VALID_A_WIDTH"), 1);
}

// Floating point: 32-bit operands only, no pre-adder. 1024 operand-bit pairs x 0.042525 x 37.5.
TEST_F(Dsp, FloatingPointTakesOnlyItsOwnWidthAndNoPreadder) {
    p[Params::DSP_MODE] = "FLOATING_POINT";
    p[Params::USE_PREADDER] = "YES";
    p[Params::A_WIDTH] = 27;
    expectRel(calc(Params::MULT_COMPONENT), 27 * 32 * 0.042525 * 37.5 * 0.64e-3);
    EXPECT_EQ(p[Params::PREADD_COMPONENT], 0.0f);  // the mode's pre-adder is 0 bits wide
    EXPECT_EQ(model.calculateValidValuesUsePreadder(p, data), "NO");
    EXPECT_EQ(model.intDispatchTable(p, data, "IS_VALID_USE_PREADDER"), 0);
    EXPECT_EQ(model.intDispatchTable(p, data, "IS_VALID_A_WIDTH"), 0);  // below 32
    EXPECT_EQ(model.floatDispatchTable(p, data, "GET_MIN_A_WIDTH"), 32.0f);
    EXPECT_EQ(model.intDispatchTable(p, data, "IS_VALID_B_WIDTH"), 1);
}

// Invalid inputs are reported and still calculated as given.
TEST_F(Dsp, InvalidInputsAreReportedAndStillCalculated) {
    p[Params::TOGGLE_RATE] = 25.0f;  // percent meant: 100 times the default's data power
    p[Params::B_WIDTH] = 30;          // the fixed-point B operand is at most 24 bits
    p[Params::PIPELINE_STAGES] = 5;
    p[Params::CASCADE] = "BOTH";
    expectRel(calc(Params::ACC_COMPONENT), 0.050112 * 100);
    EXPECT_EQ(model.intDispatchTable(p, data, "IS_VALID_TOGGLE_RATE"), 0);
    EXPECT_EQ(model.intDispatchTable(p, data, "IS_VALID_B_WIDTH"), 0);
    EXPECT_EQ(model.floatDispatchTable(p, data, "GET_MAX_B_WIDTH"), 24.0f);
    EXPECT_EQ(model.intDispatchTable(p, data, "IS_VALID_PIPELINE_STAGES"), 0);
    EXPECT_EQ(model.intDispatchTable(p, data, "IS_VALID_CASCADE"), 0);
    EXPECT_EQ(p[Params::CASCADE_COMPONENT], 0.0f);
    EXPECT_EQ(p[Params::B_WIDTH], 30);  // never clamped

    PRSMTalvexDspParams unknownMode;
    unknownMode[Params::DSP_MODE] = "FIXED";
    model.calculate(unknownMode);
    EXPECT_EQ(model.intDispatchTable(unknownMode, data, "IS_VALID_DSP_MODE"), 0);
    EXPECT_EQ(unknownMode[Params::A_WIDTH], 0);  // a mode without a row has no widths and no slices
    EXPECT_EQ(unknownMode[Params::DSP_SLICE_COUNT], 0);
    EXPECT_EQ(unknownMode[Params::DSP_POWER], 0.0f);
}

TEST_F(Dsp, PowerGrowsWithClockAndToggleAndIsLinearInTheInstanceCount) {
    float const base = calc(Params::DSP_POWER);
    auto const with = [this](auto set) {
        Params q;
        set(q);
        model.calculate(q);
        return q[Params::DSP_POWER];
    };
    EXPECT_GT(with([](Params& q) { q[Params::CLOCK_FREQ] = 400.0f; }), base);
    EXPECT_GT(with([](Params& q) { q[Params::TOGGLE_RATE] = 0.5f; }), base);
    EXPECT_GT(with([](Params& q) { q[Params::USE_PREADDER] = "YES"; }), base);
    EXPECT_LT(with([](Params& q) { q[Params::USE_ACCUMULATOR] = "NO"; }), base);
    expectRel(with([](Params& q) { q[Params::INSTANCE_COUNT] = 7; }), 7.0 * base);
    EXPECT_EQ(with([](Params& q) { q[Params::INSTANCE_COUNT] = 0; }), 0.0f);
}

}  // namespace
