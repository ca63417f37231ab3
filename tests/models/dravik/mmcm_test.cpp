// The older architecture's mixed-mode clock manager on its shipped data file: every figure is worked out
// by hand from that file's values (COMMON_DATA, LIMITS, DEVICE_RESOURCES; scales 1).
//   VCCAUX: regulator 0.012 + charge pump 0.004 + bias 0.003 = 0.019 A, VCO 2.8e-6 A/MHz
//   VCCINT: control 0.0008 A; per MHz: PFD 8.5e-8, input counter 5.95e-8, output counter 1.7e-8 (of the
//           VCO), output driver 3.825e-7 (of the output), fractional 4.25e-7 (of the VCO), spread
//           spectrum 8.5e-7 (of the PFD); given at 0.85 V
#include <prsm/models/dravik/PRSMDravikMmcmModel.h>

#include "ModelFixture.h"

#include <gtest/gtest.h>

namespace {

using Params = PRSMDravikMmcmParams;
using prsm::test::expectRel;

class DravikMmcm : public prsm::test::ModelFixture<PRSMDravikMmcmModel> {};

// 100 MHz in, D 1, M 10: PFD 100, VCO 1000; outputs 1000 / 5 = 200 and 1000 / 10 = 100 MHz.
//   VCCAUX 0.019 + 2.8e-6 x 1000 = 0.0218 A; x 1.8 V = 0.03924 W
//   VCCINT 0.0008 + PFD (8.5e-8 + 5.95e-8) x 100 = 1.445e-5
//          + feedback 1.7e-8 x 1000 + 3.825e-7 x 100 = 5.525e-5
//          + output 0 1.7e-5 + 3.825e-7 x 200 = 9.35e-5, output 1 5.525e-5  = 1.01845e-3 A
//          x 0.85 V x (0.85 / 0.85) = 8.656825e-4 W
TEST_F(DravikMmcm, DefaultsAreOneManagerWithTwoOutputs) {
    expectRel(calc(Params::VCCAUX_PWR), 0.03924);
    expectRel(p[Params::FVCO], 1000.0);
    expectRel(p[Params::CLOCKOUT0], 200.0);
    expectRel(p[Params::CLOCKOUT1], 100.0);
    EXPECT_EQ(p[Params::CLOCKOUT2], 0.0f);
    expectRel(p[Params::VCCINT_PWR], 8.656825e-4);
    expectRel(p[Params::TOTAL_PWR], 0.03924 + 8.656825e-4);
}

// Three managers on ZDM5100 (it has 4), 125 MHz in, M 8.5: VCO 1062.5 MHz; output 0 divides by 4.25:
// 250 MHz; both fractional counters and spread spectrum on; VCCINT 0.72 V.
//   VCCAUX 0.019 + 2.8e-6 x 1062.5 = 0.021975 A; x 1.8 x 3 = 0.118665 W
//   VCCINT 0.0008 + PFD 1.445e-7 x 125 = 1.80625e-5
//          + feedback 1.7e-8 x 1062.5 + 3.825e-7 x 125 = 6.5875e-5
//          + output 0 1.80625e-5 + 3.825e-7 x 250 = 1.136875e-4
//          + fractional 2 x 4.25e-7 x 1062.5 = 9.03125e-4 + spread 8.5e-7 x 125 = 1.0625e-4  = 2.007e-3 A
//          x 0.72 x (0.72 / 0.85) x 3 = 3.6721017e-3 W
TEST_F(DravikMmcm, FractionalCountersAndSpreadSpectrumOnASmallerPart) {
    p[Params::INSTANCE_COUNT] = 3;
    p[Params::DEVICE] = "ZDM5100";
    p[Params::INPUT_FREQUENCY] = 125.0f;
    p[Params::M_COUNTER] = 8;
    p[Params::M_FRACTION] = 0.5f;
    p[Params::CLKOUT0_DIVIDE] = 4;
    p[Params::CLKOUT0_FRACTION] = 0.25f;
    p[Params::CLKOUT1_DIVIDE] = 0;
    p[Params::SPREAD_SPECTRUM] = "ON";
    p[Params::VCCINT] = 0.72f;
    expectRel(calc(Params::VCCAUX_PWR), 0.118665);
    expectRel(p[Params::FVCO], 1062.5);
    expectRel(p[Params::CLOCKOUT0], 250.0);
    expectRel(p[Params::VCCINT_PWR], 3.6721017e-3);
    for (char const* cell : {"IS_VALID_INSTANCE_COUNT", "IS_VALID_INPUT_FREQUENCY", "IS_VALID_D_COUNTER",
                             "IS_VALID_M_COUNTER", "IS_VALID_M_FRACTION", "IS_VALID_CLKOUT0_DIVIDE",
                             "IS_VALID_CLKOUT0_FRACTION", "IS_VALID_CLKOUT1_DIVIDE", "IS_VALID_DEVICE"})
        EXPECT_EQ(valid(cell), 1) << cell;
}

// The limits: input 10..800, PFD 10..450, VCO 800..1600, outputs up to 800 MHz, D 1..106, M 2..128,
// divides 2..128 (0: unused), fractions in eighths; ZDM5100 has 4 managers.
TEST_F(DravikMmcm, ImpossibleSettingsAreInvalidAndStillCalculated) {
    p[Params::M_COUNTER] = 20;      // VCO 2030 MHz with the fraction: above the band
    p[Params::CLKOUT2_DIVIDE] = 2;  // 1015 MHz: faster than an output may run
    p[Params::CLKOUT1_DIVIDE] = 1;  // below the divide range: no clock
    p[Params::M_FRACTION] = 0.3f;   // not a whole number of eighths
    p[Params::CLKOUT0_FRACTION] = 1.0f;
    p[Params::INSTANCE_COUNT] = 5;
    p[Params::DEVICE] = "ZDM5100";
    model.calculate(p);
    for (char const* cell : {"IS_VALID_M_COUNTER", "IS_VALID_CLKOUT2_DIVIDE", "IS_VALID_CLKOUT1_DIVIDE",
                             "IS_VALID_M_FRACTION", "IS_VALID_CLKOUT0_FRACTION", "IS_VALID_INSTANCE_COUNT"})
        EXPECT_EQ(valid(cell), 0) << cell;
    EXPECT_EQ(model.floatDispatchTable(p, data, "GET_MAX_INSTANCE_COUNT"), 4.0f);
    EXPECT_EQ(model.floatDispatchTable(p, data, "GET_MAX_M_FRACTION"), 0.875f);
    EXPECT_EQ(model.floatDispatchTable(p, data, "GET_MIN_M_COUNTER"), 2.0f);
    EXPECT_EQ(model.floatDispatchTable(p, data, "GET_MAX_CLKOUT3_DIVIDE"), 128.0f);
    expectRel(p[Params::FVCO], 20.3 * 100);  // calculated as given
    EXPECT_EQ(p[Params::CLOCKOUT1], 0.0f);
    EXPECT_GT(p[Params::VCCAUX_PWR], 0.0f);

    // D 0: no phase-detector clock and no VCO; the managers draw their bias and control alone:
    // 5 x 0.019 x 1.8 = 0.171 W and 5 x 0.0008 x 0.85 = 0.0034 W.
    Params q;
    q[Params::D_COUNTER] = 0;
    q[Params::INSTANCE_COUNT] = 5;
    q[Params::INPUT_FREQUENCY] = 2.0f;  // below the input range
    model.calculate(q);
    EXPECT_EQ(model.intDispatchTable(q, data, "IS_VALID_D_COUNTER"), 0);
    EXPECT_EQ(model.intDispatchTable(q, data, "IS_VALID_INPUT_FREQUENCY"), 0);
    EXPECT_EQ(model.intDispatchTable(q, data, "IS_VALID_INSTANCE_COUNT"), 1);  // ZDM9200 has 16
    EXPECT_EQ(q[Params::FVCO], 0.0f);
    // The input counter still counts the input clock: 5.95e-8 x 2 MHz on top of the control logic.
    expectRel(q[Params::VCCAUX_PWR], 0.171);
    expectRel(q[Params::VCCINT_PWR], 5 * (0.0008 + 5.95e-8 * 2) * 0.85);
}

TEST_F(DravikMmcm, PowerFollowsCountVoltagesAndClocks) {
    float const aux = calc(Params::VCCAUX_PWR);
    float const core = p[Params::VCCINT_PWR];
    auto const with = [this](auto set) {
        Params q;
        set(q);
        model.calculate(q);
        return q;
    };
    Params const four = with([](Params& q) { q[Params::INSTANCE_COUNT] = 4; });
    expectRel(four[Params::VCCAUX_PWR], 4.0 * aux);
    expectRel(four[Params::VCCINT_PWR], 4.0 * core);
    // The regulated VCCAUX current stays: its power follows the rail; VCCINT's goes with V squared.
    expectRel(with([](Params& q) { q[Params::VCCAUX] = 1.9f; })[Params::VCCAUX_PWR], aux * 1.9 / 1.8);
    expectRel(with([](Params& q) { q[Params::VCCINT] = 0.72f; })[Params::VCCINT_PWR],
              core * (0.72 / 0.85) * (0.72 / 0.85));
    EXPECT_GT(with([](Params& q) { q[Params::M_COUNTER] = 14; })[Params::VCCAUX_PWR], aux);
    EXPECT_GT(with([](Params& q) { q[Params::CLKOUT2_DIVIDE] = 8; })[Params::VCCINT_PWR], core);
    // An unknown part takes the DEFAULT rows: the same power, and the default part's 16 managers.
    Params const other = with([](Params& q) { q[Params::DEVICE] = "NOSUCH"; });
    expectRel(other[Params::VCCAUX_PWR], aux);
}

}  // namespace
