// The older architecture's DSP sheet on tests/data/powercfg/dravik/PRSMDravikDspData.cfg; every figure is
// worked out by hand from that file: the 27 x 18 slice and the three-slice complex multiplier.
#include <prsm/models/dravik/PRSMDravikDspModel.h>

#include "ModelFixture.h"
#include "TestData.h"

#include <gtest/gtest.h>

namespace {

using Params = PRSMDravikDspParams;
using Model = PRSMDravikDspModel;
using prsm::test::expectRel;

class DravikDsp : public prsm::test::ModelFixture<Model> {
protected:
    // Ten slices at 200 MHz, a quarter of the bits toggling, VCCINT 1 V; the mode's widest operands
    // (27 x 18), three register levels, pre-adder and accumulator in use, both cascade paths. ZDM9200 (the
    // default device) scales by 0.5.
    static Params configured() {
        Params q;
        q[Params::INSTANCE_COUNT] = 10;
        q[Params::CLOCK_FREQ] = 200.0f;
        q[Params::TOGGLE_RATE] = 0.25f;
        q[Params::VCCINT] = 1.0f;
        q[Params::USE_PREADDER] = "YES";
        q[Params::CASCADE] = "IN_OUT";
        return q;
    }
};

// Data cycles 200 x 0.25 x 0.5 = 25 MHz. In pF x MHz:
//   multiplier 27 x 18 = 486 bits x 0.1 x 25 = 1215      pre-adder 27 x 0.02 x 25 = 13.5
//   accumulator 48 x 0.05 x 25 = 60                       cascade 2 x 48 x 0.03 x 25 = 72
//   registers 3 levels x 45 bits x (0.01 x 25 + 0.005 x 200) = 168.75      clock 0.2 x 200 = 40
// 1569.25 x 1 V^2 x 0.001 x 0.5 = 0.784625 mW a slice; ten: 7.84625 mW.
TEST_F(DravikDsp, HandWorkedSliceAndComplexMultiplier) {
    Params q = configured();
    expectRel(calc(q, Params::DSP_POWER), 7.84625e-3);
    expectRel(q[Params::DSP_INSTANCE_POWER], 0.784625);
    expectRel(q[Params::PREADD_COMPONENT], 0.00675);
    expectRel(q[Params::CASCADE_COMPONENT], 0.036);
    EXPECT_EQ(q[Params::DSP_SLICE_COUNT], 10);

    // Three slices of 18 x 18, no cascade: multipliers 3 x 324 x 0.1 x 25 = 2430, pre-adders
    // 3 x 18 x 0.02 x 25 = 27, adders 144 x 0.05 x 25 = 180, registers 3 x 108 x 1.25 = 405, clocks
    // 3 x 0.2 x 200 = 120: 3162 x 0.0005 = 1.581 mW a block, 30 slices for ten blocks.
    Params c = configured();
    c[Params::DSP_MODE] = "COMPLEX_MULTIPLY";
    c[Params::CASCADE] = "NONE";
    expectRel(calc(c, Params::DSP_INSTANCE_POWER), 1.581);
    EXPECT_EQ(c[Params::A_WIDTH], 18);
    EXPECT_EQ(c[Params::DSP_SLICE_COUNT], 30);

    // ZDM5100 has no scale row: the DEFAULT row's 2, four times ZDM9200's 0.5.
    q[Params::DEVICE] = "ZDM5100";
    expectRel(calc(q, Params::DSP_INSTANCE_POWER), 4 * 0.784625);
}

TEST_F(DravikDsp, PowerIsLinearInSlicesAndClockAndRisesWithToggling) {
    Params q = configured();
    float const base = calc(q, Params::DSP_POWER);
    q[Params::INSTANCE_COUNT] = 30;
    expectRel(calc(q, Params::DSP_POWER), 3.0 * base);
    q[Params::CLOCK_FREQ] = 400.0f;  // data and clock pins alike follow the clock
    expectRel(calc(q, Params::DSP_POWER), 6.0 * base);
    float previous = 0.0f;
    for (float toggle : {0.0f, 0.1f, 0.5f, 1.0f}) {
        q[Params::TOGGLE_RATE] = toggle;
        float const power = calc(q, Params::DSP_POWER);
        EXPECT_GT(power, previous) << "toggle rate " << toggle;
        previous = power;
    }
    q[Params::PIPELINE_STAGES] = 0;  // combinational: no register or clock-spine power
    calc(q, Params::DSP_POWER);
    EXPECT_EQ(q[Params::REG_COMPONENT], 0.0f);
    EXPECT_EQ(q[Params::CLOCK_COMPONENT], 0.0f);
}

TEST_F(DravikDsp, DefaultsGiveAFigureAndBadInputsAreFlagged) {
    Params defaults;
    EXPECT_GT(calc(defaults, Params::DSP_POWER), 0.0f);
    EXPECT_EQ(defaults[Params::B_WIDTH], 18);

    Params q = configured();
    q[Params::A_WIDTH] = 28;  // the slice's A port is 27 bits
    EXPECT_EQ(model.intDispatchTable(q, data, "IS_VALID_A_WIDTH"), 0);
    q[Params::A_WIDTH] = 27;
    EXPECT_EQ(model.intDispatchTable(q, data, "IS_VALID_A_WIDTH"), 1);
    q[Params::DSP_MODE] = "COMPLEX_MULTIPLY";  // 18-bit parts
    model.calculate(q);                          // the mode's limits are calculated anew
    EXPECT_EQ(model.intDispatchTable(q, data, "IS_VALID_A_WIDTH"), 0);
    q[Params::B_WIDTH] = 0;
    EXPECT_EQ(model.intDispatchTable(q, data, "IS_VALID_B_WIDTH"), 0);
    q[Params::TOGGLE_RATE] = 25.0f;
    EXPECT_EQ(model.intDispatchTable(q, data, "IS_VALID_TOGGLE_RATE"), 0);
    q[Params::PIPELINE_STAGES] = 5;
    EXPECT_EQ(model.intDispatchTable(q, data, "IS_VALID_PIPELINE_STAGES"), 0);
    q[Params::DEVICE] = "ZQVC1902";
    EXPECT_EQ(model.intDispatchTable(q, data, "IS_VALID_DEVICE"), 0);
    q[Params::DSP_MODE] = "NO_SUCH_MODE";  // every width falls back to 0: no power, no throw
    EXPECT_EQ(model.intDispatchTable(q, data, "IS_VALID_DSP_MODE"), 0);
    EXPECT_EQ(calc(q, Params::MULT_COMPONENT), 0.0f);
}

}  // namespace
