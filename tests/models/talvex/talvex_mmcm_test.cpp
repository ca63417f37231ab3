// Mixed-mode clock manager, on the round coefficients of tests/data. At the defaults (320 MHz, D 1, M 10,
// divides 3, spread spectrum "ON", VCCAUX 1.5 V, VCCRAM 0.88 V): FVCO 3200 MHz, outputs 1066.67 MHz.
//   VCCAUX: base 1 + 0.5 + 0.5 = 2 mA, VCO 1e-6 * 3200 = 3.2 mA, less 0.001 / 2 = 0.5 mA: 4.7 mA;
//           power 2 * 4.7 mA * 1.5 V = 14.1 mW.
//   VCCRAM: base 0.5 mA, VCO 1e-7 * 3200 * 4 = 1.28 mA, PFD 1e-6 * 320 + 1e-7 * 2 * 320 = 0.384 mA,
//           each output (1e-8 * 3 + 2e-8 * 3 + 1e-7) * 1066.67 = 0.202667 mA, feedback
//           (1e-8 * 10 + 2e-8 * 10 + 1e-7 + 1e-7) * 320 = 0.16 mA; sum 3.742667 mA, times 1.5 = 5.614 mA;
//           power 2 * 5.614 mA * 0.88 V * 0.88 / 0.8 = 10.868704 mW.
#include <prsm/models/talvex/PRSMTalvexMmcmModel.h>

#include "TestData.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <utility>
#include <vector>

namespace {

using Params = PRSMTalvexMmcmParams;
using Model = PRSMTalvexMmcmModel;
using Data = PRSMTalvexMmcmData;

constexpr double kTol = 1e-5;  // relative

void expectRel(double actual, double expected) {
    EXPECT_NEAR(actual, expected, std::abs(expected) * kTol);
}

TEST(TalvexMmcm, DefaultsAgainstHandDerivation) {
    Params p;
    Model::getGlobal().calculate(p);
    expectRel(p[Params::FVCO], 3200.0);
    expectRel(p[Params::CLOCKOUT4], 3200.0 / 3);
    expectRel(p[Params::VCCAUX_PWR], 14.1e-3);
    expectRel(p[Params::VCCRAM_INT_CURRENT], 5.614e-3);
    expectRel(p[Params::VCCRAM_PWR], 10.868704e-3);

    // VCCRAM power goes with the square of the voltage, VCCAUX power linearly.
    p[Params::VCCRAM] = 0.8f;
    p[Params::VCCAUX] = 1.0f;
    Model::getGlobal().calculate(p);
    expectRel(p[Params::VCCRAM_PWR], 2 * 5.614e-3 * 0.8);
    expectRel(p[Params::VCCAUX_PWR], 2 * 4.7e-3);
}

TEST(TalvexMmcm, DegenerateDividers) {
    Model const& model = Model::getGlobal();
    Params p;
    p[Params::D_COUNTER] = 0;
    model.calculate(p);
    EXPECT_EQ(model.calculateFvco(p, Data::getGlobal()), 0.0f);
    EXPECT_EQ(p[Params::PFD_CLOCK], 0.0f);
    EXPECT_EQ(p[Params::CLOCKFBOUT], 0.0f);
    EXPECT_FALSE(model.calculateIsValidDCounter(p, Data::getGlobal()));
    EXPECT_EQ(p[Params::IS_VALID_D_COUNTER], 0);
    // Left: the fixed currents, and on VCCRAM the input counters that still see the 320 MHz input.
    expectRel(p[Params::VCCAUX_PWR], 2 * (2e-3 - 0.5e-3) * 1.5);
    expectRel(p[Params::VCCRAM_PWR], 2 * 1.5 * (0.5e-3 + 0.064e-3) * 0.968);

    // A divide of 1 gives no output clock and no current, and is reported out of range.
    p = Params();
    p[Params::CLKOUT2_DIVIDE] = 1;
    model.calculate(p);
    EXPECT_EQ(model.floatDispatchTable(p, Data::getGlobal(), "CLOCKOUT2"), 0.0f);
    EXPECT_EQ(p[Params::VCCRAM_CLKOUT2_CURRENT], 0.0f);
    EXPECT_EQ(model.intDispatchTable(p, Data::getGlobal(), "IS_VALID_CLKOUT2_DIVIDE"), 0);
    expectRel(p[Params::VCCRAM_INT_CURRENT], 5.614e-3 - 1.5 * 0.2026667e-3);
}

TEST(TalvexMmcm, SpreadSpectrumMatchesOnExactly) {
    Model const& model = Model::getGlobal();
    Params p;
    p[Params::SPREAD_SPECTRUM] = "on";
    model.calculate(p);
    expectRel(p[Params::VCCRAM_CLOCKFBOUT_CURRENT], 4e-7 * 320);  // without the 1e-7 per MHz
    EXPECT_FALSE(model.calculateIsValidSpreadSpectrum(p, Data::getGlobal()));
    EXPECT_EQ(model.calculateValidValuesSpreadSpectrum(p, Data::getGlobal()), "ON,OFF");
    p[Params::SPREAD_SPECTRUM] = "OFF";
    EXPECT_EQ(model.intDispatchTable(p, Data::getGlobal(), "calculateIsValidSPREAD_SPECTRUM"), 1);
}

TEST(TalvexMmcm, RangeBoundsOfEveryValidityCell) {
    Model const& model = Model::getGlobal();
    Data const& data = Data::getGlobal();
    struct Range {
        std::string input;
        int lo, hi;
    };
    std::vector<Range> ranges = {{"D_COUNTER", 1, 123}, {"M_COUNTER", 4, 432}};
    for (int n = 0; n < 7; ++n) ranges.push_back({"CLKOUT" + std::to_string(n) + "_DIVIDE", 2, 432});
    for (Range const& r : ranges) {
        auto const cell = Params::string_to_int_enum(r.input);
        for (auto [value, valid] :
             {std::pair{r.lo, 1}, {r.hi, 1}, {r.lo - 1, 0}, {r.hi + 1, 0}, {-r.hi, 0}}) {
            Params p;
            p[cell] = value;
            EXPECT_EQ(model.intDispatchTable(p, data, "IS_VALID_" + r.input), valid)
                << r.input << " = " << value;
            EXPECT_EQ(p[cell], value) << "never clamped";
        }
        Params p;
        EXPECT_EQ(model.floatDispatchTable(p, data, "GET_MIN_" + r.input), static_cast<float>(r.lo))
            << r.input;
        EXPECT_EQ(model.floatDispatchTable(p, data, "GET_MAX_" + r.input), static_cast<float>(r.hi))
            << r.input;
    }
    for (auto [value, valid] : {std::pair{10.0f, 1}, {500.0f, 1}, {9.99f, 0}, {500.01f, 0}}) {
        Params p;
        p[Params::INPUT_FREQUENCY] = value;
        EXPECT_EQ(model.intDispatchTable(p, data, "IS_VALID_INPUT_FREQUENCY"), valid) << value;
    }
    Params p;
    EXPECT_EQ(model.calculateGetMinInputFrequency(p, data), 10.0f);
    EXPECT_EQ(model.calculateGetMaxInputFrequency(p, data), 500.0f);
    // An out-of-range M still drives the VCO: 433 * 320 MHz.
    p[Params::M_COUNTER] = 433;
    EXPECT_EQ(model.calculateFvco(p, data), 138560.0f);
}

TEST(TalvexMmcm, DataVariants) {
    Params p;
    {
        prsm::test::ScopedDataDir scope(prsm::test::testDataDir() + "/variants/vccram_sim_zero");
        Data const noSimVoltage;
        EXPECT_EQ(Model::getGlobal().calculateVccramPwr(p, noSimVoltage), 0.0f);
    }
    // The shipped coefficients: some 11 mW on VCCAUX and 8.5 mW on VCCRAM at the defaults.
    prsm::test::ScopedDataDir scope(prsm::test::shippedDataDir());
    Data const shipped;
    Params q;
    float const aux = Model::getGlobal().calculateVccauxPwr(q, shipped);
    float const ram = Model::getGlobal().calculateVccramPwr(q, shipped);
    EXPECT_GT(aux, 2e-3f);
    EXPECT_LT(aux, 30e-3f);
    EXPECT_GT(ram, 2e-3f);
    EXPECT_LT(ram, 30e-3f);
}

}  // namespace
