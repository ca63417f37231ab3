// The older architecture's static sheet on tests/data: every figure below is worked out by hand from
// that file. Default device ZDM9200, grades 2 / EXTENDED -> bin BIN_A, PROCESS "MAX", corner MAX.
//   VCCINT (MAX): A..E = 1e-10, 2e-8, 3e-6, 4e-4, 0.05, CONST 1, V_C2 9 but no V_C1 (no scaling),
//     binning 0.5, total-power factor 1.5, power-up constant 250 mA; (TYPICAL): CONST 0.5 only.
//   VCCAUX: CONST 0.5, V_C1 2, V_C2 0.5, factor 2. VCCINTIO 0.1, VCCHBM 0.1, VCCPSINTFP 0.2 (CONST).
//   Blocks: BRAM_VCCINT 0.001, BRAM_VCCBRAM 0.002, URAM_VCCINT 0.1, XIPHY_VCCINTIO 0.05,
//     GTY_MGTYAVCC 0.004 with V_C1 0.5, V_C2 1, HBM_VCCHBM E 0.01 CONST 0.2, VCU_VCCAUX 0.01.
//   Gating: BRAM_SLEEP 0.25, URAM_SLEEP 0.5, URAM_INACTIVE 0.8; memory-stack scale 2.
//   MAX corner: VCCINT 0.85, VCCAUX 1.8, VCCINTIO 0.85, VCCBRAM 0.85, VCCHBM 1.2, MGTYAVCC 0.9,
//     VCCPSINTFP 0.85, VCCPSPLL 1.2; every other rail 0 V.
#include <prsm/framework/PRSMCommonParamControlData.h>
#include <prsm/framework/PRSMException.h>
#include <prsm/framework/PRSMReservedValues.h>
#include <prsm/models/dravik/PRSMDravikStaticModel.h>

#include "ModelFixture.h"
#include "TestData.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

namespace {

using Params = PRSMDravikStaticParams;
using Model = PRSMDravikStaticModel;
using Data = PRSMDravikStaticData;
using Rail = Model::Rail;

constexpr int kRails = 53;

// VCCINT's polynomial at 25 degrees: 1e-10 x 9765625 + 2e-8 x 390625 + 3e-6 x 15625 + 4e-4 x 625
// + 0.05 x 25 + 1.
constexpr double kVccint25 = 0.9765625e-3 + 7.8125e-3 + 0.046875 + 0.25 + 1.25 + 1.0;  // 2.5556640625
double const kE09 = std::exp(0.9);  // VCCAUX: 2 exp(0.5 x 1.8) = 2 e^0.9; GTY: 0.5 exp(1 x 0.9)

using prsm::test::expectRel;

class DravikStatic : public prsm::test::ModelFixture<Model> {};

TEST_F(DravikStatic, RailLeakageAtTheJunctionTemperature) {
    // VCCINT: its own leakage 2.5556640625 x scaling 1 x binning 0.5, plus the UltraRAM array (share 1).
    expectRel(calc(Params::COMMON_VCCINT_VT_LEAKAGE), kVccint25);
    EXPECT_EQ(p[Params::COMMON_VCCINT_V_SCALING], 1.0f);  // V_C1 = 0, whatever V_C2
    EXPECT_EQ(p[Params::SKU_NAME], "BIN_A");
    expectRel(p[Params::URAM_VCCINT_STATIC_CURRENT], 0.1);
    expectRel(p[Params::VCCINT_STATIC_CURRENT], kVccint25 * 0.5 + 0.1);
    // Worst process: times the factor 1.5; power-up = 25-degree leakage x 0.5 x 1 x 1.5 + 250 mA.
    expectRel(p[Params::VCCINT_STATIC_CURRENT_TPF_SCALED], (kVccint25 * 0.5 + 0.1) * 1.5);
    expectRel(p[Params::VCCINT_POWERUP_CURRENT], kVccint25 * 0.5 * 1.5 + 0.25);
    // VCCAUX: 0.5 x 2 e^0.9 plus the codec unit's 0.01; power-up 0.5 x 2 e^0.9 x factor 2.
    expectRel(p[Params::VCCAUX_STATIC_CURRENT], kE09 + 0.01);
    expectRel(p[Params::VCCAUX_POWERUP_CURRENT], 2.0 * kE09);
    expectRel(p[Params::VCU_VCCAUX_STATIC_POWER], 1.8 * 0.01);
    EXPECT_EQ(p[Params::VCU_VCCPSPLL_STATIC_POWER], 0.0f);  // no rows
    // A factor of 1 leaves the scaled current as it is.
    EXPECT_EQ(p[Params::VCCINTIO_STATIC_CURRENT_TPF_SCALED], p[Params::VCCINTIO_STATIC_CURRENT]);

    // 100 degrees: 1 + 2 + 3 + 4 + 5 + 1 = 16, binned to 8, plus 0.1; the power-up stays at 25 degrees.
    p[Params::JUNCTION_TEMPERATURE] = 100.0f;
    expectRel(calc(Params::VCCINT_STATIC_CURRENT), 8.1);
    expectRel(p[Params::VCCINT_STATIC_CURRENT_TPF_SCALED], 8.1 * 1.5);
    expectRel(p[Params::VCCINT_POWERUP_CURRENT], kVccint25 * 0.5 * 1.5 + 0.25);
    // The memory stacks keep their own temperature: 0.01 x 25 + 0.2, times 2 stacks, plus VCCHBM's 0.1.
    expectRel(p[Params::HBM_VCCHBM_VT_LEAKAGE], 0.45);
    expectRel(p[Params::VCCHBM_STATIC_CURRENT], 0.9 + 0.1);
    p[Params::JUNCTION_TEMPERATURE_HBMDRAM] = 50.0f;
    expectRel(calc(Params::VCCHBM_STATIC_CURRENT), (0.5 + 0.2) * 2.0 + 0.1);
    expectRel(p[Params::HBM_STATIC_POWER], 1.2 * 1.5);

    // Grades without a bin: no binning (1).
    p[Params::JUNCTION_TEMPERATURE] = 25.0f;
    p[Params::SPEED_GRADE] = "1";
    expectRel(calc(Params::COMMON_VCCINT_STATIC_CURRENT), kVccint25);
    EXPECT_EQ(p[Params::SKU_NAME], "");
}

TEST_F(DravikStatic, BlocksByCountGatingAndVoltage) {
    // 100 block RAMs, half asleep at a quarter of their leakage: 100 x (1 - 0.5 x 0.75) = 62.5.
    p[Params::USED_BRAM] = 100.0f;
    p[Params::BRAM_AVG_SLEEP_RATE] = 0.5f;
    // UltraRAM: 1 - 0.4 x (1 - 0.5) - 0.2 x (1 - 0.8) = 0.76 of the array.
    p[Params::URAM_AVG_SLEEP_RATE] = 0.4f;
    p[Params::URAM_AVG_INACTIVE_CYCLES] = 0.2f;
    p[Params::USED_GTY_QUAD] = 2.0f;
    expectRel(calc(Params::BRAM_VCCINT_MULTIPLIER), 62.5);
    expectRel(p[Params::BRAM_VCCINT_STATIC_CURRENT], 0.0625);
    expectRel(p[Params::VCCBRAM_STATIC_CURRENT], 0.125);
    expectRel(p[Params::URAM_VCCINT_MULTIPLIER], 0.76);
    expectRel(p[Params::VCCINT_STATIC_CURRENT], kVccint25 * 0.5 + 0.0625 + 0.076);
    expectRel(p[Params::VCCINTIO_STATIC_CURRENT], 0.1 + 0.05);  // the I/O PHYs, always powered
    // Two quads at 0.004 x 0.5 e^0.9 each.
    expectRel(p[Params::GTY_MGTYAVCC_V_SCALING], 0.5 * kE09);
    expectRel(p[Params::MGTYAVCC_STATIC_CURRENT], 0.004 * kE09);
}

TEST_F(DravikStatic, RegionTotalsProcessAndZeroVoltage) {
    // PL: VCCINT, VCCINTIO, VCCAUX (the other PL rails carry nothing); PSS: VCCPSINTFP; HBM: VCCHBM.
    double const pl = 0.85 * (kVccint25 * 0.5 + 0.1) + 0.85 * 0.15 + 1.8 * (kE09 + 0.01);
    expectRel(calc(Params::PL_STATIC_POWER), pl);
    expectRel(p[Params::PSS_STATIC_POWER], 0.85 * 0.2);
    expectRel(p[Params::HBM_STATIC_POWER], 1.2 * 1.0);
    expectRel(p[Params::TOTAL_STATIC_POWER], pl + 0.17 + 1.2);

    // The logic at 0 V carries nothing; VCCAUX leaks on.
    p[Params::VCCINT] = 0.0f;
    EXPECT_EQ(calc(Params::VCCINT_STATIC_CURRENT), 0.0f);
    EXPECT_EQ(p[Params::VCCINT_STATIC_CURRENT_TPF_SCALED], 0.0f);
    expectRel(p[Params::VCCAUX_STATIC_CURRENT], kE09 + 0.01);

    // Typical process: CONST 0.5 only, no UltraRAM row, no scaling by the factor, no power-up.
    Params q;
    q[Params::PROCESS] = "TYPICAL";
    model.calculate(q);
    expectRel(q[Params::VCCINT_STATIC_CURRENT], 0.5);
    EXPECT_EQ(q[Params::VCCINT_STATIC_CURRENT_TPF_SCALED], q[Params::VCCINT_STATIC_CURRENT]);
    EXPECT_EQ(q[Params::VCCINTIO_STATIC_CURRENT_TPF_SCALED], q[Params::VCCINTIO_STATIC_CURRENT]);
    EXPECT_EQ(q[Params::VCCINT_POWERUP_CURRENT], 0.0f);

    // The NOM corner has VCCINT at 0.8 V and no VCCAUX: no VCCAUX current, no codec power.
    Params r;
    r[Params::VOLTAGE_CORNER] = "NOM";
    model.calculate(r);
    EXPECT_EQ(r[Params::VCCINT], 0.8f);
    EXPECT_EQ(r[Params::VCCAUX_STATIC_CURRENT], 0.0f);
    EXPECT_EQ(r[Params::VCU_VCCAUX_STATIC_POWER], 0.0f);
}

TEST_F(DravikStatic, CellsByNameAndChoices) {
    EXPECT_EQ(model.floatDispatchTable(p, data, "COMMON_VCCINT_VT_E"), 0.05f);
    EXPECT_EQ(model.calculateValidValuesDeviceName(p, data), "ZDM7100,ZDM9200");
    EXPECT_EQ(model.calculateValidValuesProcess(p, data), "TYPICAL,MAX");
    p[Params::PROCESS] = "SLOW";
    EXPECT_EQ(model.intDispatchTable(p, data, "calculateIsValidPROCESS"), 0);
    // A device without rows: the worst process needs the total-power factors, which have no default;
    // under any other process nothing leaks and nothing throws.
    Params q;
    q[Params::DEVICE_NAME] = "ZDM7100";
    EXPECT_THROW(model.calculate(q), PRSMException);
    q[Params::PROCESS] = "TYPICAL";
    EXPECT_NO_THROW(model.calculate(q));
    EXPECT_EQ(q[Params::TOTAL_STATIC_POWER], 0.0f);
}

// ---- The shipped file: relations that hold for any data, and the devices and magnitudes ----

float& cell(Params& p, std::string const& name) {
    return p[Params::string_to_float_enum(name)];
}

std::vector<float> outputs(Params& p) {
    std::vector<std::string> names;
    p.getFloatModelOutputNames(names);
    std::vector<float> values;
    for (auto const& name : names) values.push_back(cell(p, name));
    return values;
}

TEST(DravikStaticShippedData, RelationsThatHoldForAnyData) {
    prsm::test::ScopedDataDir dir(prsm::test::shippedDataDir());
    Data const shipped;
    Model const& model = Model::getGlobal();
    for (char const* device : {"ZDM5100", "ZDM7100", "ZDM9200"}) {
        for (char const* process : {"MAX", "TYPICAL"}) {
            Params p;
            p[Params::DEVICE_NAME] = device;
            p[Params::PROCESS] = process;
            p[Params::JUNCTION_TEMPERATURE] = 85.0f;
            p[Params::JUNCTION_TEMPERATURE_HBMDRAM] = 70.0f;
            p[Params::USED_BRAM] = 300.0f;
            p[Params::BRAM_AVG_SLEEP_RATE] = 0.2f;
            p[Params::URAM_AVG_SLEEP_RATE] = 0.3f;
            for (auto used :
                 {Params::USED_GTF_QUAD, Params::USED_GTH_QUAD, Params::USED_GTM_DUAL, Params::USED_GTY_QUAD})
                p[used] = 2.0f;
            Params const inputs = p;
            model.calculate(p);

            // The totals: every rail's V x I, the regions adding up to the total.
            double sum = 0.0;
            for (int i = 0; i < kRails; ++i) {
                std::string const rail(Model::memberName(static_cast<Rail>(i)));
                sum += static_cast<double>(model.getRail(p, shipped, static_cast<Rail>(i))) *
                       cell(p, rail + "_STATIC_CURRENT");
                if (std::string(process) == "TYPICAL") {
                    EXPECT_EQ(cell(p, rail + "_STATIC_CURRENT_TPF_SCALED"),
                              cell(p, rail + "_STATIC_CURRENT"));
                    EXPECT_EQ(cell(p, rail + "_POWERUP_CURRENT"), 0.0f) << rail;
                }
            }
            float const total = p[Params::TOTAL_STATIC_POWER];
            EXPECT_NEAR(total, sum, 1e-5 * sum) << device;
            EXPECT_NEAR(
                total, p[Params::PL_STATIC_POWER] + p[Params::PSS_STATIC_POWER] + p[Params::HBM_STATIC_POWER],
                1e-6 * total);
            if (std::string(process) == "MAX") {
                EXPECT_GT(p[Params::VCCINT_POWERUP_CURRENT], 0.0f);
            }

            // No thermal or dynamic input changes any leakage.
            Params q = inputs;
            q[Params::EFFECTIVE_THETAJ] = 1.5f;
            q[Params::TOTAL_ACTIVE_POWER] = 60.0f;
            model.calculate(q);
            EXPECT_EQ(outputs(q), outputs(p)) << device;

            // Every rail at 0 V: no current anywhere.
            Params z = inputs;
            for (int i = 0; i < kRails; ++i)
                cell(z, std::string(Model::memberName(static_cast<Rail>(i)))) = 0.0f;
            model.calculate(z);
            for (int i = 0; i < kRails; ++i)
                EXPECT_EQ(cell(z, std::string(Model::memberName(static_cast<Rail>(i))) + "_STATIC_CURRENT"),
                          0.0f);
            EXPECT_EQ(z[Params::TOTAL_STATIC_POWER], 0.0f);
        }
    }
}

// An older 16 nm-class device: the reference ZDM9200 has 0.45 A of VCCINT leakage at 25 degrees
// typical at 0.85 V (a third of the newer architecture's reference per unit of logic), the fit's
// error at 25 degrees being 0.3 %; leakage doubles every 25 degrees on the core rails.
TEST(DravikStaticShippedData, HoldsTheCatalogueDevicesWithPlausibleMagnitudes) {
    prsm::test::ScopedDataDir dir(prsm::test::shippedDataDir());
    Data const shipped;
    Model const& model = Model::getGlobal();
    auto at = [&](char const* device, char const* process, float tj) {
        Params p;
        p[Params::DEVICE_NAME] = device;
        p[Params::PROCESS] = process;
        p[Params::JUNCTION_TEMPERATURE] = tj;
        p[Params::VOLTAGE_CORNER] = "NOM";
        model.calculate(p);
        return p;
    };
    Params p = at("ZDM9200", "TYPICAL", 25.0f);
    EXPECT_NEAR(p[Params::COMMON_VCCINT_STATIC_CURRENT], 0.45f, 0.45f * 0.005f);
    EXPECT_NEAR(at("ZDM9200", "TYPICAL", 75.0f)[Params::COMMON_VCCINT_STATIC_CURRENT], 0.45f * 4.0f,
                0.45f * 4 * 0.01f);
    EXPECT_NEAR(at("ZDM9200", "MAX", 25.0f)[Params::COMMON_VCCINT_STATIC_CURRENT], 0.45f * 1.5f,
                0.45f * 1.5f * 0.005f);
    float const small = at("ZDM5100", "TYPICAL", 25.0f)[Params::TOTAL_STATIC_POWER];
    float const middle = at("ZDM7100", "TYPICAL", 25.0f)[Params::TOTAL_STATIC_POWER];
    float const large = p[Params::TOTAL_STATIC_POWER];
    EXPECT_GT(small, 0.2f);
    EXPECT_LT(small, middle);
    EXPECT_LT(middle, large);
    EXPECT_LT(large, 2.0f);
    EXPECT_GT(p[Params::HBM_STATIC_POWER], 0.0f);  // the one device with memory stacks

    // The module boards' base device and the default device are in the shared catalogue.
    auto const& catalogue = PRSMCommonParamControlData::getGlobal();
    EXPECT_EQ(catalogue.getDevice("DRAVIK_SOM", "ZDS24"), "ZDM5100");
    EXPECT_EQ(catalogue.getDevice("DRAVIK_SOC", "ZDM9200"), "ZDM9200");
    EXPECT_EQ(model.calculateValidValuesDeviceName(p, shipped), "ZDM5100,ZDM7100,ZDM9200");
}

}  // namespace
