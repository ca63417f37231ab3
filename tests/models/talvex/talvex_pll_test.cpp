// The four smaller clock managers, on the shipped coefficients: defaults, limits, clocks derived by hand
// from the dividers, and powers of a few milliwatts.
#include <prsm/models/talvex/PRSMTalvexDpllModel.h>
#include <prsm/models/talvex/PRSMTalvexPspllModel.h>
#include <prsm/models/talvex/PRSMTalvexX5PllModel.h>
#include <prsm/models/talvex/PRSMTalvexXpllModel.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

struct Limit {
    char const* input;
    float lo, hi;
};

// GET_MIN_/GET_MAX_ hold the bounds; IS_VALID_ is 1 at both and 0 one step beyond.
template <typename Model>
void expectLimits(std::vector<Limit> const& limits, float step = 1.0f) {
    using Params = typename Model::Params;
    Model const& model = Model::getGlobal();
    auto const& data = Model::Data::getGlobal();
    for (Limit const& l : limits) {
        std::string const name = l.input;
        Params p;
        EXPECT_EQ(model.floatDispatchTable(p, data, "GET_MIN_" + name), l.lo) << name;
        EXPECT_EQ(model.floatDispatchTable(p, data, "GET_MAX_" + name), l.hi) << name;
        for (auto [value, valid] : {std::pair{l.lo, 1}, {l.hi, 1}, {l.lo - step, 0}, {l.hi + step, 0}}) {
            Params q;
            if (name == "INPUT_FREQUENCY")
                q[Params::INPUT_FREQUENCY] = value;
            else
                q[Params::string_to_int_enum(name)] = static_cast<int>(value);
            EXPECT_EQ(model.intDispatchTable(q, data, "IS_VALID_" + name), valid) << name << " = " << value;
        }
    }
}

TEST(TalvexPll, DpllDefaultsLimitsAndMagnitudes) {
    using Params = PRSMTalvexDpllParams;
    Params p;
    PRSMTalvexDpllModel::getGlobal().calculate(p);
    EXPECT_FLOAT_EQ(p[Params::FVCO], 3200.0f);
    EXPECT_FLOAT_EQ(p[Params::CLOCKOUT3], 3200.0f / 3);
    EXPECT_GT(p[Params::VCCAUX_PWR], 1e-3f);
    EXPECT_LT(p[Params::VCCAUX_PWR], 30e-3f);
    EXPECT_GT(p[Params::VCCINT_PWR], 0.5e-3f);
    EXPECT_LT(p[Params::VCCINT_PWR], 30e-3f);
    EXPECT_GT(p[Params::VCCRAM_PWR], 0.0f);
    EXPECT_LT(p[Params::VCCRAM_PWR], p[Params::VCCINT_PWR]);
    expectLimits<PRSMTalvexDpllModel>({{"INPUT_FREQUENCY", 10, 1150},
                                       {"D_COUNTER", 1, 115},
                                       {"M_COUNTER", 10, 400},
                                       {"CLKOUT0_DIVIDE", 2, 400},
                                       {"CLKOUT3_DIVIDE", 2, 400}});
    // Spread spectrum adds to the VCCINT current; a divide of 1 removes an output's currents.
    Params q;
    q[Params::SPREAD_SPECTRUM] = "ON";
    q[Params::CLKOUT1_DIVIDE] = 1;
    PRSMTalvexDpllModel::getGlobal().calculate(q);
    EXPECT_GT(q[Params::VCCINT_PFD_CLOCK_CURRENT], p[Params::VCCINT_PFD_CLOCK_CURRENT]);
    EXPECT_EQ(q[Params::VCC_AUX_CLKOUT1_CURRENT], 0.0f);
    EXPECT_EQ(q[Params::VCCINT_CLKOUT1_CURRENT], 0.0f);
}

template <typename Model>
void expectIoPll() {
    using Params = typename Model::Params;
    Model const& model = Model::getGlobal();
    auto const& data = Model::Data::getGlobal();
    Params p;
    model.calculate(p);
    EXPECT_FLOAT_EQ(p[Params::XIPHY_CLOCK], 1600.0f);
    EXPECT_FLOAT_EQ(p[Params::CLOCKFBOUT], 320.0f);
    EXPECT_GT(p[Params::VCC_AUX_XIPHY_CLOCK_CURRENT], 0.0f);
    EXPECT_GT(p[Params::VCCINTIO_XIPHY_CLK_CURRENT], 0.0f);
    float const total = p[Params::VCCAUX_PWR] + p[Params::VCCINTIO_PWR];
    EXPECT_GT(total, 3e-3f);
    EXPECT_LT(total, 40e-3f);
    EXPECT_EQ(model.calculateValidValuesXiphyDivide(p, data), "1,2,4");
    EXPECT_EQ(model.intDispatchTable(p, data, "IS_VALID_XIPHY_DIVIDE"), 1);
    p[Params::XIPHY_DIVIDE] = 3;
    model.calculate(p);
    EXPECT_EQ(model.intDispatchTable(p, data, "IS_VALID_XIPHY_DIVIDE"), 0);
    EXPECT_FLOAT_EQ(p[Params::XIPHY_CLOCK], 3200.0f / 3);  // evaluated all the same
    expectLimits<Model>({{"D_COUNTER", 1, 12}, {"M_COUNTER", 4, 43}, {"CLKOUT2_DIVIDE", 2, 128}});
    expectLimits<Model>({{"INPUT_FREQUENCY", 100, 667.5f}}, 0.5f);
}

TEST(TalvexPll, XpllDefaultsLimitsAndMagnitudes) {
    expectIoPll<PRSMTalvexXpllModel>();
}

TEST(TalvexPll, X5PllDefaultsLimitsAndMagnitudes) {
    expectIoPll<PRSMTalvexX5PllModel>();
    using Params = PRSMTalvexX5PllParams;
    Params p;
    PRSMTalvexX5PllModel::getGlobal().calculate(p);
    EXPECT_GT(p[Params::VCCINTIO_CLK0_CLK90_PATH_CURRENT], 0.0f);
    EXPECT_GT(p[Params::VCCINTIO_CLK_NETWORK_X5PHIO_CURRENT], 0.0f);
}

TEST(TalvexPll, PspllDefaultsLimitsAndMagnitudes) {
    using Params = PRSMTalvexPspllParams;
    PRSMTalvexPspllModel const& model = PRSMTalvexPspllModel::getGlobal();
    Params p;
    model.calculate(p);
    EXPECT_FLOAT_EQ(p[Params::FVCO], 4300.0f);
    EXPECT_FLOAT_EQ(p[Params::CLOCKOUT], 2150.0f);  // 2^1
    // Currents, in amperes: a few milliamperes per rail.
    EXPECT_GT(p[Params::VCC_AUX_CURRENT], 0.5e-3f);
    EXPECT_LT(p[Params::VCC_AUX_CURRENT], 20e-3f);
    EXPECT_GT(p[Params::VCCINT_CURRENT], 0.5e-3f);
    EXPECT_LT(p[Params::VCCINT_CURRENT], 20e-3f);
    EXPECT_EQ(model.calculateValidValuesClkoutDivideExp(p, PRSMTalvexPspllModel::Data::getGlobal()),
              "0,1,2,3");
    expectLimits<PRSMTalvexPspllModel>({{"INPUT_FREQUENCY", 10, 500},
                                        {"D_COUNTER", 1, 12},
                                        {"M_COUNTER", 36, 180},
                                        {"CLKOUT_DIVIDE_EXP", 0, 3}});
    // An exponent of 4 is reported invalid and still divides by 16.
    p[Params::CLKOUT_DIVIDE_EXP] = 4;
    model.calculate(p);
    EXPECT_FLOAT_EQ(p[Params::CLOCKOUT], 268.75f);
}

}  // namespace
