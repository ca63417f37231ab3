// The older architecture's logic-element sheet on tests/data/powercfg/dravik/PRSMDravikCleLogicData.cfg;
// every figure is worked out by hand from that file.
#include <prsm/models/dravik/PRSMDravikCleLogicModel.h>

#include "ModelFixture.h"
#include "TestData.h"

#include <gtest/gtest.h>

namespace {

using Params = PRSMDravikCleLogicParams;
using Model = PRSMDravikCleLogicModel;
using prsm::test::expectRel;

class DravikCleLogic : public prsm::test::ModelFixture<Model> {
protected:
    // A thousand elements at 200 MHz, a quarter of the cycles toggling, VCCINT 1 V, memories written on
    // half the clocks; ZDM9200 (the default device) scales by 0.5.
    static Params configured(char const* type) {
        Params q;
        q[Params::INSTANCE_TYPE] = type;
        q[Params::INSTANCE_COUNT] = 1000;
        q[Params::CLOCK_FREQ] = 200.0f;
        q[Params::TOGGLE_RATE] = 0.25f;
        q[Params::LUT_WE_PROB] = 0.5f;
        q[Params::VCCINT] = 1.0f;
        return q;
    }
};

// Data cycles at 200 x 0.25 x 0.5 = 25 MHz; a figure in mW is pF x MHz x 1 V^2 x 0.001 x 0.5.
//   LUT_LOGIC: 25 x 0.2 = 5 -> 0.0025 mW; a thousand: 2.5 mW
//   LUT_DRAM:  the same data, writes 200 x 0.5 x 0.1 = 10 -> 0.005 mW; 0.0075 mW in all
//   LUT_SRL:   shifts 200 x 0.5 x 0.3 = 30 -> 0.015 mW; 0.0175 mW in all
//   REG_FF:    25 x 0.08 = 2 -> 0.001 mW        CARRY8: 25 x 0.4 = 10 -> 0.005 mW
TEST_F(DravikCleLogic, HandWorkedFiguresOfEachKind) {
    Params lut = configured("LUT_LOGIC");
    expectRel(calc(lut, Params::LOGIC_POWER), 2.5e-3);
    EXPECT_EQ(lut[Params::MEMORY_WRITE_COMPONENT], 0.0f);

    Params ram = configured("LUT_DRAM");
    expectRel(calc(ram, Params::INSTANCE_POWER), 0.0075);
    expectRel(ram[Params::MEMORY_WRITE_COMPONENT], 0.005);
    Params srl = configured("LUT_SRL");
    expectRel(calc(srl, Params::INSTANCE_POWER), 0.0175);
    Params reg = configured("REG_FF");
    expectRel(calc(reg, Params::INSTANCE_POWER), 0.001);
    Params carry = configured("CARRY8");
    expectRel(calc(carry, Params::LOGIC_POWER), 5e-3);

    // VCCINT at 0.5 V: a quarter. ZDM5100 has no scale row: the DEFAULT row's 2, four times 0.5.
    lut[Params::VCCINT] = 0.5f;
    expectRel(calc(lut, Params::LOGIC_POWER), 2.5e-3 / 4);
    lut[Params::VCCINT] = 1.0f;
    lut[Params::DEVICE] = "ZDM5100";
    expectRel(calc(lut, Params::LOGIC_POWER), 4 * 2.5e-3);
}

TEST_F(DravikCleLogic, PowerIsLinearInElementsToggleAndWrites) {
    Params q = configured("LUT_DRAM");
    float const base = calc(q, Params::LOGIC_POWER);
    q[Params::INSTANCE_COUNT] = 3000;
    expectRel(calc(q, Params::LOGIC_POWER), 3.0 * base);
    q[Params::TOGGLE_RATE] = 0.5f;  // the data part doubles: 0.0025 -> 0.005 mW, writes stay 0.005
    expectRel(calc(q, Params::INSTANCE_POWER), 0.01);
    q[Params::LUT_WE_PROB] = 0.0f;  // no writes
    expectRel(calc(q, Params::INSTANCE_POWER), 0.005);
    q[Params::CLOCK_FREQ] = 400.0f;
    expectRel(calc(q, Params::INSTANCE_POWER), 0.01);
}

TEST_F(DravikCleLogic, DefaultsGiveAFigureAndBadInputsAreFlagged) {
    Params defaults;
    EXPECT_GT(calc(defaults, Params::LOGIC_POWER), 0.0f);
    EXPECT_EQ(model.intDispatchTable(defaults, data, "IS_VALID_INSTANCE_TYPE"), 1);

    Params q = configured("LUT_LOGIC");
    q[Params::TOGGLE_RATE] = 12.5f;  // a percent: flagged, calculated as given (50 times 0.25)
    expectRel(calc(q, Params::LOGIC_POWER), 50 * 2.5e-3);
    EXPECT_EQ(model.intDispatchTable(q, data, "IS_VALID_TOGGLE_RATE"), 0);
    q[Params::LUT_WE_PROB] = -0.5f;
    EXPECT_EQ(model.intDispatchTable(q, data, "IS_VALID_LUT_WE_PROB"), 0);
    q[Params::CLOCK_FREQ] = 0.0f;
    EXPECT_EQ(model.intDispatchTable(q, data, "IS_VALID_CLOCK_FREQ"), 0);
    q[Params::INSTANCE_COUNT] = -4;
    EXPECT_EQ(model.intDispatchTable(q, data, "IS_VALID_INSTANCE_COUNT"), 0);
    q[Params::DEVICE] = "ZQVC1902";  // a part of the other architecture
    EXPECT_EQ(model.intDispatchTable(q, data, "IS_VALID_DEVICE"), 0);
    q[Params::INSTANCE_TYPE] = "LOOKAHEAD8";  // the newer architecture's carry chain: not here
    EXPECT_EQ(model.intDispatchTable(q, data, "IS_VALID_INSTANCE_TYPE"), 0);
    EXPECT_EQ(calc(q, Params::LOGIC_POWER), 0.0f);
}

}  // namespace
