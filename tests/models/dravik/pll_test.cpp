// The older architecture's PLL on its shipped data file, worked out by hand from that file's values:
//   VCCAUX: regulator 0.006 + charge pump 0.002 + bias 0.0015 = 0.0095 A, VCO 2.1e-6 A/MHz
//   VCCINT: control 0.0008 A; per MHz: PFD 6.375e-8, input counter 3.4e-8, output counter 1.7e-8 (of
//           the VCO), output driver 3.825e-7 (of the output); given at 0.85 V
// Limits: input 70..800, PFD 70..667.5, VCO 750..1500, outputs up to 800 MHz, D 1..15, M 1..19.
#include <prsm/models/dravik/PRSMDravikPllModel.h>

#include "ModelFixture.h"
#include "TestData.h"

#include <gtest/gtest.h>

namespace {

using Params = PRSMDravikPllParams;
using prsm::test::expectRel;

class DravikPll : public prsm::test::ModelFixture<PRSMDravikPllModel> {};

// 100 MHz in, M 10: VCO 1000 MHz, output 0 at 1000 / 4 = 250 MHz, output 1 unused.
//   VCCAUX 0.0095 + 2.1e-6 x 1000 = 0.0116 A; x 1.8 V = 0.02088 W
//   VCCINT 0.0008 + PFD (6.375e-8 + 3.4e-8) x 100 = 9.775e-6
//          + feedback 1.7e-5 + 3.825e-7 x 100 = 5.525e-5 + output 0 1.7e-5 + 3.825e-7 x 250 = 1.12625e-4
//          = 9.7765e-4 A; x 0.85 V = 8.310025e-4 W
TEST_F(DravikPll, DefaultsAreOnePllDrivingAnInterfaceClock) {
    expectRel(calc(Params::VCCAUX_PWR), 0.02088);
    expectRel(p[Params::CLOCKOUT0], 250.0);
    EXPECT_EQ(p[Params::CLOCKOUT1], 0.0f);
    expectRel(p[Params::VCCINT_PWR], 8.310025e-4);
    expectRel(p[Params::TOTAL_PWR], 0.02088 + 8.310025e-4);
}

TEST_F(DravikPll, ItsOwnNarrowerRangesDecideValidity) {
    p[Params::M_COUNTER] = 16;  // 1600 MHz: within the manager's band, above the PLL's 1500
    p[Params::INPUT_FREQUENCY] = 100.0f;
    p[Params::CLKOUT1_DIVIDE] = 2;  // 800 MHz: the fastest an output may run
    p[Params::INSTANCE_COUNT] = 9;  // ZDM5100 has 8
    p[Params::DEVICE] = "ZDM5100";
    model.calculate(p);
    EXPECT_EQ(model.intDispatchTable(p, data, "IS_VALID_M_COUNTER"), 0);
    EXPECT_EQ(model.intDispatchTable(p, data, "IS_VALID_CLKOUT1_DIVIDE"), 1);
    EXPECT_EQ(model.intDispatchTable(p, data, "IS_VALID_INSTANCE_COUNT"), 0);
    EXPECT_EQ(model.floatDispatchTable(p, data, "GET_MAX_M_COUNTER"), 19.0f);

    Params q;
    q[Params::INPUT_FREQUENCY] = 50.0f;  // below the PLL's 70 MHz
    q[Params::D_COUNTER] = 2;            // and so is its phase-detector clock
    q[Params::M_COUNTER] = 19;           // 475 MHz: below the band
    model.calculate(q);
    EXPECT_EQ(model.intDispatchTable(q, data, "IS_VALID_INPUT_FREQUENCY"), 0);
    EXPECT_EQ(model.intDispatchTable(q, data, "IS_VALID_D_COUNTER"), 0);
    EXPECT_EQ(model.intDispatchTable(q, data, "IS_VALID_M_COUNTER"), 0);
    expectRel(q[Params::FVCO], 475.0);
}

// A sparse file laid out as documented (tests/data/missing-keys): a missing coefficient counts 0, a
// missing factor or scale 1, and a limit or part count the file lacks checks nothing.
//   100 PLLs: VCCAUX 100 x (0.002 + 0.001) x 1.8 = 0.54 W; VCCINT 100 x 0.001 x 0.85 = 0.085 W.
TEST(DravikPllSparseFile, MissingFiguresFallBackAndCheckNothing) {
    prsm::test::ScopedDataDir scope(prsm::test::testDataDir() + "/missing-keys");
    PRSMDravikPllData const data;
    PRSMDravikPllModel const& model = PRSMDravikPllModel::getGlobal();
    Params p;
    p[Params::M_COUNTER] = 40;  // a 4 GHz VCO and a 1 GHz output: no band or limit to leave
    p[Params::INSTANCE_COUNT] = 100;
    expectRel(model.calculateVccauxPwr(p, data), 0.54);
    expectRel(model.calculateVccintPwr(p, data), 0.085);
    for (char const* cell : {"IS_VALID_M_COUNTER", "IS_VALID_CLKOUT0_DIVIDE", "IS_VALID_INSTANCE_COUNT"})
        EXPECT_EQ(model.intDispatchTable(p, data, cell), 1) << cell;
    EXPECT_EQ(model.floatDispatchTable(p, data, "GET_MAX_INSTANCE_COUNT"), 0.0f);
}

}  // namespace
