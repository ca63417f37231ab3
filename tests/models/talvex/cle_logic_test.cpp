// The logic-element sheet on tests/data: every figure below is worked out by hand from that file.
#include <prsm/models/talvex/PRSMTalvexCleLogicModel.h>

#include "ModelFixture.h"
#include "TestData.h"

#include <gtest/gtest.h>

#include <cfloat>

namespace {

using Params = PRSMTalvexCleLogicParams;
using Model = PRSMTalvexCleLogicModel;
using Data = PRSMTalvexCleLogicData;

class CleLogic : public prsm::test::ModelFixture<Model> {};

// 200 MHz x 0.125 gives signal rates of 25 and pin frequencies of 12.5. Pins: 12.5 x (0.01+...+0.06)
// = 2.625 and OP 1.25; the largest internal component is A1's, 12.5 x (1+2+3+4+5) = 187.5. So the
// table's product is 191.375, times 0.72^2 = 0.5184, 0.001 and ZQVC1902's scale 0.5: 0.0496044.
// The output mux adds 12.5 x 0.7 x 0.5184 x 0.0005 = 0.002268.
TEST_F(CleLogic, DefaultsGiveTheLogicTablePowerAndStayStored) {
    EXPECT_NEAR(calc(Params::LUT_COMPONENT), 0.0496044f, 1e-7);
    EXPECT_NEAR(p[Params::OFMUX_COMPONENT], 0.002268f, 1e-8);
    EXPECT_NEAR(p[Params::LOGIC_POWER], 5.18724e-5f, 1e-10);
    EXPECT_EQ(p[Params::MAX_INT_COMPONENT], 187.5f);
    EXPECT_EQ(p[Params::A6_INT_COMPONENT], 0.0f);
    EXPECT_EQ(p[Params::REG_INSTANCE_POWER], 0.0f);  // not the group's type, but evaluated and cached
    // Legacy figure: (0.31 + 15) x 1.01 = 15.4631 pF; 200 x 0.5184 x 15.4631 x 0.125 x 0.5 x 0.001 x 0.5.
    EXPECT_NEAR(p[Params::KPE_LUT_CAP], 15.4631f, 1e-4);
    EXPECT_NEAR(p[Params::KPE_LOGIC_POWER], 5.010045e-5f, 1e-10);

    EXPECT_EQ(p[Params::CLOCK_FREQ], 200.0f);
    EXPECT_EQ(p[Params::A4_SIG_RATE], 25.0f);
    EXPECT_EQ(p[Params::Q_SIG_RATE], FLT_MAX);  // read only by register types

    Params explicitDefaults;
    explicitDefaults[Params::CLOCK_FREQ] = 200.0f;
    explicitDefaults[Params::TOGGLE_RATE] = 0.125f;
    explicitDefaults[Params::VCCINT] = 0.72f;
    explicitDefaults[Params::INSTANCE_TYPE] = "LUT_LOGIC";
    model.calculate(explicitDefaults);
    EXPECT_EQ(explicitDefaults[Params::LOGIC_POWER], p[Params::LOGIC_POWER]);
}

TEST_F(CleLogic, EachInstanceTypeChoosesItsOwnFigure) {
    // A register type other than REG_FF: the first three letters choose the register figure, the
    // legacy estimate wants REG_FF exactly. Unknown device: the DEFAULT row's scale 2.
    p[Params::INSTANCE_TYPE] = "REG_X";
    p[Params::INSTANCE_COUNT] = 1000;
    p[Params::Q_SIG_RATE] = 50.0f;
    p[Params::VCCINT] = 1.0f;
    p[Params::DEVICE] = "NOSUCH";
    EXPECT_NEAR(calc(Params::REG_INSTANCE_POWER), 0.04f, 1e-7);  // 50 x 0.4 x 0.001 x 2
    EXPECT_NEAR(p[Params::LOGIC_POWER], 0.04f, 1e-7);
    EXPECT_EQ(p[Params::KPE_LOGIC_POWER], 0.0f);

    Params q;
    q[Params::VCCINT] = 1.0f;
    q[Params::CLOCK_FREQ] = 100.0f;
    q[Params::TOGGLE_RATE] = 0.2f;  // pins at 10 MHz
    q[Params::LOOKAHEAD_OFMUX_INSTANCE_COUNT] = 2;
    q[Params::INSTANCE_TYPE] = "LOOKAHEAD8";
    model.calculate(q);
    EXPECT_NEAR(q[Params::LOOKAHEAD_INSTANCE_POWER], 0.05f, 1e-6);  // 10 x (1+2+3+4) x 0.0005
    EXPECT_NEAR(q[Params::LOOKAHEAD_POWER], 0.057f, 1e-6);          // plus 2 x 10 x 0.7 x 0.0005
    EXPECT_NEAR(q[Params::OFMUX_INSTANCE_POWER], 0.014f, 1e-6);     // (1+2+1) muxes
    EXPECT_NEAR(q[Params::LOGIC_POWER], 0.05e-3f, 1e-9);
    q[Params::INSTANCE_TYPE] = "BYP";
    model.calculate(q);
    EXPECT_NEAR(q[Params::BYP_INSTANCE_POWER], 0.0015f, 1e-7);  // 10 x 0.3 x 0.0005
    EXPECT_NEAR(q[Params::BYP_POWER], 0.0015f + 0.0035f, 1e-7);
    q[Params::INSTANCE_TYPE] = "OFMUX";
    model.calculate(q);
    EXPECT_NEAR(q[Params::LOGIC_POWER], 0.014e-3f, 1e-9);
    q[Params::INSTANCE_TYPE] = "LUT_DRAM";
    model.calculate(q);
    EXPECT_NEAR(q[Params::MEMORY_WRITE_COMPONENT], 0.0125f, 1e-7);  // 0.5 x 100 x 0.5 x 0.0005
    EXPECT_NEAR(q[Params::KPE_LOGIC_POWER], (q[Params::LUT_KPE_POWER] + 0.0125f) * 0.001f, 1e-9);
    q[Params::INSTANCE_TYPE] = "LUT_SRL";
    q[Params::OP_SIG_RATE] = 40.0f;
    model.calculate(q);
    EXPECT_NEAR(q[Params::MEMORY_WRITE_COMPONENT], 0.0025f, 1e-7);  // 40 x 0.25 x 0.5 x 0.0005
    q[Params::INSTANCE_TYPE] = "MYSTERY";
    model.calculate(q);
    EXPECT_EQ(q[Params::LOGIC_POWER], 0.0f);
    EXPECT_EQ(q[Params::KPE_LOGIC_POWER], 0.0f);
    EXPECT_FALSE(model.calculateIsValidInstanceType(q, data));
}

TEST_F(CleLogic, ScaleFallsBackToTheDefaultRowThenToOne) {
    prsm::test::ScopedDataDir dir(prsm::test::testDataDir() + "/no-default");
    Data const noDefault;
    p[Params::DEVICE] = "NOSUCH";
    EXPECT_EQ(model.calculateVccintScale(p, noDefault), 1.0f);
    Params known;
    EXPECT_EQ(model.calculateVccintScale(known, noDefault), 0.5f);
}

TEST_F(CleLogic, ValidityAndMemoisation) {
    p[Params::CLOCK_FREQ] = 0.0f;
    p[Params::LUT_WE_PROB] = 1.5f;
    model.calculate(p);
    EXPECT_EQ(p[Params::A3_FREQ], 0.0f);
    EXPECT_EQ(model.intDispatchTable(p, data, "IS_VALID_CLOCK_FREQ"), 0);
    EXPECT_EQ(model.intDispatchTable(p, data, "IS_VALID_LUT_WE_PROB"), 0);
    EXPECT_EQ(model.intDispatchTable(p, data, "calculateIsValidINSTANCE_TYPE"), 1);
    EXPECT_EQ(model.stringDispatchTable(p, data, "A5_PIN_TYPE"), "LOGIC_INPUT");
    EXPECT_EQ(model.calculateValidValuesA5PinType(p, data), "LOGIC_INPUT,UNUSED");
    p[Params::INSTANCE_TYPE] = "LUT_DRAM";
    EXPECT_EQ(model.intDispatchTable(p, data, "calculateIsValidA5_PIN_TYPE"), 0);  // not a memory pin type

    p.resetUserInputs();  // the signal rates stored at 0 MHz are defaults to derive again
    p[Params::CLOCK_FREQ] = 200.0f;
    float const stale = model.floatDispatchTable(p, data, "LOGIC_POWER");
    EXPECT_EQ(stale, 0.0f);  // cached by the calculation at 0 MHz
    EXPECT_GT(calc(Params::LOGIC_POWER), 0.0f);
}

TEST_F(CleLogic, ShippedDataGivesPlausibleMagnitudes) {
    prsm::test::ScopedDataDir dir(prsm::test::shippedDataDir());
    Data const shipped;
    p[Params::INSTANCE_COUNT] = 100000;
    float const watts = model.calculateLogicPower(p, shipped);
    EXPECT_GT(watts, 0.03f);  // 100k look-up tables at 200 MHz and 12.5 % toggle: tens to hundreds of mW
    EXPECT_LT(watts, 0.5f);
    for (auto const& type : shipped.getDropdownLists("INSTANCE_TYPE_LIST")) {
        Params q;
        q[Params::INSTANCE_TYPE] = type;
        EXPECT_GE(model.calculateLogicPower(q, shipped), 0.0f) << type;
    }
}

}  // namespace
