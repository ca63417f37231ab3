// The static-power sheet on tests/data: every figure below is worked out by hand from that file.
// Default device ZQVP1502, default grades -> SKU_A; PROCESS "MAX" by default.
//   VCCINT (MAX): A..E = 1e-10, 2e-8, 3e-6, 4e-4, 0.05, CONST 1, V_C1 = 0 (no voltage scaling),
//     binning 0.5, total-power factor 1.5, power-up constant 250 mA; (TYPICAL): CONST 0.5 only.
//   VCCAUX: CONST 2, V_C1..V_C6 = 1, 0.5, 1, 2, 0, 1; powered down: CONST 3, V_C1 1, V_C2 0.2, V_C6 1.
//   LUT_TO_CRAM_1_RATIO 0.5, CRAM_TO_ISTDBY_VCCAUX_RATIO 0.25; accuracy 1.1 (MAX row), 0.9 (TYPICAL).
//   Thermal: PL slope 0.2, offset 2; AIE slope 0.1, offset 1; model on; 100 W maximum; pass-1 scale 1.
//   Voltages of the MAX corner: VCCINT 0.8, VCCAUX 1.5, VCCRAM 0.8, VCCSOC 0.8, VCCPSLP 0.8,
//   VCCO33 3.3, VCCO10 1.0, MGTYAVCC 0.9, MGTMAVCC 0.9, VCCIOHBM 1.2, VCCHBM 1.2; every other rail 0 V.
#include <prsm/framework/PRSMCommonParamControlData.h>
#include <prsm/framework/PRSMException.h>
#include <prsm/framework/PRSMReservedValues.h>
#include <prsm/models/talvex/PRSMTalvexStaticModel.h>

#include "ModelFixture.h"
#include "TestData.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

using Params = PRSMTalvexStaticParams;
using Model = PRSMTalvexStaticModel;
using Data = PRSMTalvexStaticData;

// The VCCINT polynomial of the test data at temperature t.
double vccintLeakage(double t) {
    return 1e-10 * t * t * t * t * t + 2e-8 * t * t * t * t + 3e-6 * t * t * t + 4e-4 * t * t + 0.05 * t +
           1.0;
}

// VCCAUX's two-supply scaling at 1.5 V and VCCINT 0.8 V: exp(0.5 x 1.5) exp(1 x 0.8) (2 x 0.64 + 1).
double const kVccauxScaling = std::exp(0.75) * std::exp(0.8) * 2.28;

class Static : public prsm::test::ModelFixture<Model> {};

using prsm::test::expectRel;

TEST_F(Static, LeakagePolynomialAndItsValueAt25Degrees) {
    // Defaults: 25 degrees, no dynamic power, so no temperature rise.
    // 1e-10 x 9765625 + 2e-8 x 390625 + 3e-6 x 15625 + 4e-4 x 625 + 0.05 x 25 + 1 = 2.5556640625.
    expectRel(calc(Params::COMMON_VCCINT_VT_LEAKAGE), 2.5556640625);
    expectRel(p[Params::COMMON_VCCINT_VT_LEAKAGE_25], 2.5556640625);
    EXPECT_EQ(p[Params::COMMON_VCCINT_V_SCALING], 1.0f);  // V_C1 = 0, whatever V_C2
    EXPECT_EQ(p[Params::COMMON_VCCINT_VOLT_BINNING], 0.5f);
    EXPECT_EQ(p[Params::SKU_NAME], "SKU_A");
    EXPECT_EQ(p[Params::VCCINT], 0.8f);                       // the MAX corner of the SKU's range
    EXPECT_EQ(model.calculateVccintValidMin(p, data), 0.7f);  // pulled on demand only
    EXPECT_EQ(model.calculateVccintValidMax(p, data), 0.9f);
    EXPECT_EQ(model.calculateVccauxValidMax(p, data), 0.0f);  // no row

    // 100 degrees: 1 + 2 + 3 + 4 + 5 + 1 = 16, binned to 8 A; 0.8 V x 8 A = 6.4 W.
    p[Params::JUNCTION_TEMPERATURE] = 100.0f;
    expectRel(calc(Params::COMMON_VCCINT_VT_LEAKAGE), 16.0);
    expectRel(p[Params::COMMON_VCCINT_VT_LEAKAGE_25], 2.5556640625);
    expectRel(p[Params::VCCINT_STATIC_CURRENT], 8.0);
    expectRel(p[Params::VCCINT_STATIC_POWER], 6.4);
    // 50 and -10 degrees: 0.03125 + 0.125 + 0.375 + 1 + 2.5 + 1, and the odd powers turn negative.
    p[Params::JUNCTION_TEMPERATURE] = 50.0f;
    expectRel(calc(Params::COMMON_VCCINT_VT_LEAKAGE), 5.03125);
    p[Params::JUNCTION_TEMPERATURE] = -10.0f;
    expectRel(calc(Params::COMMON_VCCINT_VT_LEAKAGE), 1.0 - 0.5 + 0.04 - 0.003 + 0.0002 - 0.00001);

    // Single-supply scaling: VCCSOC 2 x exp(0.5 x 0.8) on CONST 0.3.
    p[Params::JUNCTION_TEMPERATURE] = 25.0f;
    expectRel(calc(Params::COMMON_VCCSOC_V_SCALING), 2.0 * std::exp(0.4));
    expectRel(p[Params::VCCSOC_STATIC_CURRENT], 0.3 * 2.0 * std::exp(0.4));
}

TEST_F(Static, TotalPowerFactorAndPowerUpOnlyUnderTheWorstProcess) {
    p[Params::JUNCTION_TEMPERATURE] = 100.0f;
    expectRel(calc(Params::VCCINT_STATIC_CURRENT_TPF_SCALED), 8.0 * 1.5);
    // 25-degree leakage x scaling 1 x binning 0.5 x multiplier 1 x factor 1.5 + 250 mA.
    expectRel(p[Params::VCCINT_POWERUP_CURRENT], 2.5556640625 * 0.5 * 1.5 + 0.25);
    // VCCSOC's factor is 1; its power-up current is 2 x exp(0.4) x 0.3 at 25 degrees, no constant.
    EXPECT_EQ(p[Params::VCCSOC_STATIC_CURRENT_TPF_SCALED], p[Params::VCCSOC_STATIC_CURRENT]);
    expectRel(p[Params::VCCSOC_POWERUP_CURRENT], 0.3 * 2.0 * std::exp(0.4));
    // A rail at 0 V still has its power-up current: the multiplier is 1 and there are no rows (0).
    EXPECT_EQ(p[Params::VCCFUSE_STATIC_CURRENT], 0.0f);

    // The factor has no default: a device without factor rows cannot be calculated under the worst
    // process, the one case that reads them, and calculates under any other.
    Params r;
    r[Params::DEVICE_NAME] = "ZQVC1204";
    try {
        model.calculate(r);
        ADD_FAILURE() << "a missing total-power factor must throw";
    } catch (PRSMException const& e) {
        EXPECT_NE(std::string(e.what()).find("TOTAL_POWER_FACTORS"), std::string::npos) << e.what();
    }
    r[Params::PROCESS] = "TYPICAL";
    EXPECT_NO_THROW(model.calculate(r));

    p[Params::PROCESS] = "TYPICAL";  // CONST 0.5 only, no binning row (1)
    expectRel(calc(Params::VCCINT_STATIC_CURRENT), 0.5);
    EXPECT_EQ(p[Params::VCCINT_STATIC_CURRENT_TPF_SCALED], p[Params::VCCINT_STATIC_CURRENT]);
    EXPECT_EQ(p[Params::VCCSOC_STATIC_CURRENT_TPF_SCALED], p[Params::VCCSOC_STATIC_CURRENT]);
    EXPECT_EQ(p[Params::VCCINT_POWERUP_CURRENT], 0.0f);
    EXPECT_EQ(p[Params::VCCO10_X5IO_POWERUP_CURRENT], 0.0f);
    // The accuracy factor is read from the MAX row whatever the process.
    expectRel(p[Params::STATIC_POWER_ACCURACY_FACTOR], 1.1);
}

TEST_F(Static, AuxiliaryRailScalesWithTwoSuppliesAndTheConfigurationMemory) {
    // LUT_USED_PCT 0: multiplier (0.25 x 0 + 1) / 1.25 = 0.8.
    expectRel(calc(Params::COMMON_VCCAUX_V_SCALING), kVccauxScaling);
    expectRel(p[Params::COMMON_VCCAUX_MULTIPLIER], 0.8);
    expectRel(p[Params::VCCAUX_STATIC_CURRENT], 2.0 * kVccauxScaling * 0.8);
    EXPECT_EQ(p[Params::COMMON_VCCINT_MULTIPLIER], 1.0f);

    // 40 % of the LUTs: P = 40 x 0.5 = 20, P / L = 40, multiplier (0.25 x 40 + 1) / 1.25 = 8.8.
    p[Params::LUT_USED_PCT] = 40.0f;
    expectRel(calc(Params::COMMON_CRAM_1_PCT), 20.0);
    expectRel(p[Params::COMMON_VCCAUX_MULTIPLIER], 8.8);
    expectRel(p[Params::VCCAUX_STATIC_CURRENT], 2.0 * kVccauxScaling * 8.8);
    // Power-up under MAX: 25-degree leakage 2 x scaling x binning 1 x 8.8 x factor 2, no constant.
    expectRel(p[Params::VCCAUX_POWERUP_CURRENT], 2.0 * kVccauxScaling * 8.8 * 2.0);

    // The logic powered down: VCCINT carries nothing and VCCAUX leaks with its second set,
    // 3 x 1 x exp(0.2 x 1.5) x exp(0) x (0 + 0 + 1), still times the multiplier 8.8.
    p[Params::VCCINT] = 0.0f;
    EXPECT_EQ(calc(Params::VCCINT_STATIC_CURRENT), 0.0f);
    expectRel(p[Params::COMMON_VCCAUX_PL_POWERED_DOWN_V_SCALING], std::exp(0.3));
    expectRel(p[Params::VCCAUX_STATIC_CURRENT], 3.0 * std::exp(0.3) * 8.8);

    // A device without a LUT ratio (L = 0, K = 1): (1 x 0 + 1) / 2; one whose K is -1: 0.
    Params q;
    q[Params::LUT_USED_PCT] = 40.0f;
    q[Params::DEVICE_NAME] = "ZQVC1204";
    EXPECT_EQ(model.calculateCommonVccauxMultiplier(q, data), 0.5f);
    q.resetIntermediateCalculations();
    q[Params::DEVICE_NAME] = "ZQVM2004";
    EXPECT_EQ(model.calculateCommonVccauxMultiplier(q, data), 0.0f);
}

TEST_F(Static, ThermalStepSubtractsTheRiseCapsTheUsageAndDoesNotClampIt) {
    // Pass 1 at 100 degrees: VCCINT 0.8 x 16 x 0.5 = 6.4 W, VCCAUX 1.5 x 2 x scaling x 0.8,
    // VCCRAM 0.8 x 0.1 = 0.08 W; no memory blocks in use.
    double const pass1 = 6.4 + 1.5 * 2.0 * kVccauxScaling * 0.8 + 0.08;
    p[Params::JUNCTION_TEMPERATURE] = 100.0f;
    p[Params::ALL_VCCINT_DYN_POWER_MINUS_AIE] = 10.0f;
    expectRel(calc(Params::TOTAL_PASS1_PL_STATIC_POWER), pass1);
    expectRel(p[Params::PL_GLOBAL_POWER_USAGE_RAW], (pass1 + 10.0) / 100.0 * 100.0);
    double rise = 2.0 + 0.2 * (pass1 + 10.0);
    expectRel(p[Params::TJ_DELTA_PL], rise);
    expectRel(p[Params::COMMON_VCCINT_PASS1_VT_LEAKAGE], 16.0);
    expectRel(p[Params::COMMON_VCCINT_VT_LEAKAGE], vccintLeakage(100.0 - rise));
    expectRel(p[Params::VCCINT_STATIC_CURRENT], vccintLeakage(100.0 - rise) * 0.5);

    // Usage above 100 % is capped: the rise is 2 + 0.2 x 100.
    p[Params::ALL_VCCINT_DYN_POWER_MINUS_AIE] = 1000.0f;
    EXPECT_GT(calc(Params::PL_GLOBAL_POWER_USAGE_RAW), 100.0f);
    EXPECT_EQ(p[Params::PL_GLOBAL_POWER_USAGE], 100.0f);
    expectRel(p[Params::TJ_DELTA_PL], 22.0);
    expectRel(p[Params::COMMON_VCCINT_VT_LEAKAGE], vccintLeakage(78.0));

    // Negative usage is kept: -40 W on the logic, +50 W on the AI engines (together positive).
    p[Params::ALL_VCCINT_DYN_POWER_MINUS_AIE] = -40.0f;
    p[Params::AIE_DYN_POWER] = 50.0f;
    expectRel(calc(Params::PL_GLOBAL_POWER_USAGE), pass1 - 40.0);
    rise = 2.0 + 0.2 * (pass1 - 40.0);
    expectRel(p[Params::COMMON_VCCINT_VT_LEAKAGE], vccintLeakage(100.0 - rise));

    // Gradient disabled: no rise, the final leakage is the pass-1 leakage.
    p[Params::ENABLE_TJ_GRADIENT] = "NO";
    EXPECT_EQ(calc(Params::TJ_DELTA_PL), 0.0f);
    EXPECT_EQ(p[Params::COMMON_VCCINT_VT_LEAKAGE], p[Params::COMMON_VCCINT_PASS1_VT_LEAKAGE]);

    // The AI engines: VCCME (CONST 1, E 0.01) at 0.8 V. Pass 1 at 100 degrees: 0.8 x 2 = 1.6 W; with
    // 8.4 W of dynamic power the usage is 10 %, the rise 1 + 0.1 x 10 = 2, the leakage 1 + 0.98.
    Params q;
    q[Params::JUNCTION_TEMPERATURE] = 100.0f;
    q[Params::VCCME] = 0.8f;
    q[Params::AIE_DYN_POWER] = 8.4f;
    model.calculate(q);
    expectRel(q[Params::TOTAL_PASS1_AIE_STATIC_POWER], 1.6);
    expectRel(q[Params::AIE_GLOBAL_POWER_USAGE], 10.0);
    expectRel(q[Params::TJ_DELTA_AIE], 2.0);
    expectRel(q[Params::COMMON_VCCME_VT_LEAKAGE], 1.98);
}

TEST_F(Static, RegionTotalsTakeTheAiEnginesOutOfTheLogic) {
    p[Params::VCCME] = 0.8f;
    p[Params::USED_GTY_POWER_QUADS] = 2;
    model.calculate(p);
    // VCCME at 25 degrees: 1.25 A, 1 W. VCCINT: 2.5556640625 x 0.5 + 1.25 (VCCME is inside VCCINT).
    double const vccint = 0.8 * (2.5556640625 * 0.5 + 1.25);
    double const vccaux = 1.5 * 2.0 * kVccauxScaling * 0.8;
    double const logic = vccint + 0.08 + vccaux + 3.3 * (0.001);  // VCCINT, VCCRAM, VCCAUX, VCCO33
    expectRel(p[Params::AIE_STATIC_POWER], 1.0 * 1.1);
    expectRel(p[Params::PL_STATIC_POWER], logic * 1.1 - 1.1);
    expectRel(p[Params::NOC_STATIC_POWER], 0.8 * 0.3 * 2.0 * std::exp(0.4) * 1.1);
    expectRel(p[Params::PS_PMC_STATIC_POWER], 0.8 * 0.05 * 1.1);
    expectRel(p[Params::GT_STATIC_POWER], 0.9 * 0.005 * 2 * 1.1);  // two GTY quads on MGTYAVCC
    // Memory stacks: two 8-high stacks of 0.1 A on VCCIOHBM (1.2 V); VCCHBM 0.001 x 25 A per stack.
    expectRel(p[Params::VCCIOHBM_DRAM_STATIC_CURRENT], 0.2);
    EXPECT_EQ(p[Params::VCCIOHBM_FPGA_STATIC_CURRENT], 0.0f);
    expectRel(p[Params::HBM_STATIC_POWER], (1.2 * 0.2 + 1.2 * 0.05) * 1.1);
    float const sum = 0.0f + p[Params::PL_STATIC_POWER] + p[Params::PS_PMC_STATIC_POWER] +
                      p[Params::NOC_STATIC_POWER] + p[Params::AIE_STATIC_POWER] + p[Params::GT_STATIC_POWER] +
                      p[Params::HBM_STATIC_POWER];
    EXPECT_EQ(p[Params::TOTAL_STATIC_POWER], sum);

    // Accuracy off and a power-management mode: factors 1 and 0.5.
    p[Params::ENABLE_ACCURACY_FACTOR] = "NO";
    p[Params::POWER_MANAGEMENT_MODE] = "LOW_POWER_MODE";
    expectRel(calc(Params::AIE_STATIC_POWER), 0.5);
    expectRel(p[Params::PL_STATIC_POWER], logic * 0.5 - 0.5);
}

TEST_F(Static, BlocksOnTheirRails) {
    p[Params::USED_BRAMS_ACTIVE] = 10;
    p[Params::USED_URAMS_ACTIVE] = 1;
    p[Params::USED_VCCO33_HDIO_BANKS] = 2;
    p[Params::USED_VCCO10_X5IO_BANKS] = 3;
    p[Params::USED_GTM_POWER_QUADS] = 1;
    p[Params::JUNCTION_TEMPERATURE_HBMDRAM] = 60.0f;
    p[Params::JUNCTION_TEMPERATURE] = 90.0f;  // no rise: the memory stacks have their own temperature
    model.calculate(p);
    expectRel(p[Params::BRAM_ACTIVE_VCCINT_STATIC_CURRENT], 0.01 * 10 * 2.0);  // device scale 2
    expectRel(p[Params::BRAM_ACTIVE_VCCRAM_STATIC_CURRENT], 0.02 * 10);
    EXPECT_EQ(p[Params::BRAM_ACTIVE_VCCINT_MULTIPLIER], 10);
    // VCCINT carries all four block-RAM and all four UltraRAM currents; VCCRAM its own two.
    expectRel(p[Params::VCCINT_STATIC_CURRENT], vccintLeakage(90.0) * 0.5 + 0.2 + 0.2 + 0.03);
    expectRel(p[Params::VCCRAM_STATIC_CURRENT], 0.1 + 0.2);
    expectRel(p[Params::VCCO33_STATIC_CURRENT], 0.001 + 0.004);
    // X5IO banks of VCCO10 are reported apart: 3 x 0.004 A, factor 1.1, power-up 0.012 x 1.1.
    expectRel(p[Params::VCCO10_X5IO_STATIC_CURRENT], 0.012);
    expectRel(p[Params::VCCO10_X5IO_STATIC_POWER], 0.012);
    expectRel(p[Params::VCCO10_X5IO_STATIC_CURRENT_TPF_SCALED], 0.012 * 1.1);
    expectRel(p[Params::VCCO10_X5IO_POWERUP_CURRENT], 0.012 * 1.1);
    EXPECT_EQ(p[Params::VCCO10_STATIC_CURRENT], 0.0f);
    // Memory stacks at 60 degrees: 0.001 x 60 x 2 stacks.
    expectRel(p[Params::HBM_8H_VCCHBM_STATIC_CURRENT], 0.12);
    EXPECT_EQ(p[Params::HBM_8H_MULTIPLIER], 2);
    EXPECT_EQ(p[Params::HBM_4H_MULTIPLIER], 1);
    // The package bonds two GTM quads: the quad leaks; an unknown package bonds none.
    EXPECT_EQ(p[Params::IS_GTM_BONDED], 1);
    expectRel(p[Params::GTM_STATIC_CURRENT], 0.007);
    p[Params::GT_PACKAGE] = "NO_SUCH_PACKAGE";
    EXPECT_EQ(calc(Params::GTM_STATIC_CURRENT), 0.0f);
    EXPECT_EQ(p[Params::AVAILABLE_GTM], 0);
}

TEST_F(Static, ZeroAndNanVoltagesAndMissingRows) {
    p[Params::VCCSOC] = 0.0f;
    p[Params::VCCO33] = std::numeric_limits<float>::quiet_NaN();
    model.calculate(p);
    EXPECT_EQ(p[Params::VCCSOC_STATIC_CURRENT], 0.0f);
    EXPECT_EQ(p[Params::NOC_STATIC_POWER], 0.0f);
    // A NaN voltage computes as usual (the leakage of this rail does not scale with voltage).
    expectRel(p[Params::VCCO33_STATIC_CURRENT], 0.001);
    EXPECT_TRUE(std::isnan(p[Params::VCCO33_STATIC_POWER]));

    // A device without any leakage rows: no leakage anywhere, no error; binning 1, factors 1.
    Params q;
    q[Params::DEVICE_NAME] = "ZQVM1606";
    q[Params::JUNCTION_TEMPERATURE] = 100.0f;
    q[Params::ALL_VCCINT_DYN_POWER_MINUS_AIE] = 20.0f;
    EXPECT_NO_THROW(model.calculate(q));
    EXPECT_EQ(q[Params::VCCINT_STATIC_CURRENT], 0.0f);
    EXPECT_EQ(q[Params::VCCAUX_STATIC_CURRENT], 0.0f);
    EXPECT_EQ(q[Params::TOTAL_STATIC_POWER], 0.0f);
    EXPECT_EQ(q[Params::VCCINT_STATIC_CURRENT_TPF_SCALED], 0.0f);
    EXPECT_EQ(q[Params::VCCINT_POWERUP_CURRENT], 0.0f);
    EXPECT_EQ(q[Params::COMMON_VCCINT_VOLT_BINNING], 1.0f);
    EXPECT_EQ(q[Params::STATIC_POWER_ACCURACY_FACTOR], 1.0f);
    EXPECT_EQ(q[Params::STATIC_POWER_MANAGEMENT_FACTOR], 1.0f);
    EXPECT_EQ(q[Params::MAX_DEVICE_POWER], 0.0f);
    EXPECT_EQ(q[Params::TJ_DELTA_PL], 0.0f);
    EXPECT_EQ(q[Params::COMMON_VCCAUX_MULTIPLIER], 1.0f);  // K = 0: (0 + 1) / 1

    // Grades without a SKU row: no SKU, so no voltage, so nothing leaks.
    Params r;
    r[Params::SPEED_GRADE] = "1";
    model.calculate(r);
    EXPECT_EQ(r[Params::SKU_NAME], "");
    EXPECT_EQ(r[Params::VCCINT], 0.0f);
    EXPECT_EQ(r[Params::TOTAL_STATIC_POWER], 0.0f);
}

TEST_F(Static, CellsByNameAndChoices) {
    EXPECT_EQ(model.floatDispatchTable(p, data, "COMMON_VCCINT_VT_E"), 0.05f);
    EXPECT_EQ(model.floatDispatchTable(p, data, "VCCINT"), 0.8f);
    p[Params::USED_BFR] = 7;
    EXPECT_EQ(model.intDispatchTable(p, data, "BFR_CORE_ACTIVE_VCCINT_MULTIPLIER"), 7);
    EXPECT_EQ(model.stringDispatchTable(p, data, "VCCAUX_VR_STRING"), "VCCAUX");
    EXPECT_EQ(model.calculateValidValuesDeviceName(p, data), "ZQVM1606,ZQVP1502");
    EXPECT_EQ(model.calculateValidValuesGtPackage(p, data), "ZQVC1902_VSVA2197");
    p[Params::PROCESS] = "SLOW";
    EXPECT_EQ(model.intDispatchTable(p, data, "calculateIsValidPROCESS"), 0);
    EXPECT_EQ(model.calculateValidValuesProcess(p, data), "TYPICAL,MAX");
    // The device and the package have their choices only.
    EXPECT_EQ(model.intDispatchTable(p, data, "calculateIsValidDEVICE_NAME"), 0);
    EXPECT_EQ(model.intDispatchTable(p, data, "calculateIsValidOVER_DRIVE"), 1);
}

// The shipped file: every Talvex device of the catalogue and the default device, with magnitudes a
// user of 7 nm-class parts expects (1 to 3 W at 25 degrees typical, 10 W or more at 100 degrees worst).
TEST(StaticShippedData, HoldsEveryDeviceWithPlausibleMagnitudes) {
    prsm::test::ScopedDataDir dir(prsm::test::shippedDataDir());
    Data const shipped;
    Model const& model = Model::getGlobal();
    auto total = [&](char const* device, char const* process, float tj) {
        Params p;
        p[Params::DEVICE_NAME] = device;
        p[Params::PROCESS] = process;
        p[Params::JUNCTION_TEMPERATURE] = tj;
        p[Params::VOLTAGE_GRADE] = "MP";
        p[Params::VOLTAGE_CORNER] = "NOM";
        float const watts = model.calculateTotalStaticPower(p, shipped);
        float const vccint = p[Params::VCCINT_STATIC_POWER];  // the largest share
        EXPECT_GT(vccint, model.calculateStaticPower(p, shipped, Model::Rail::VCCAUX)) << device;
        EXPECT_GT(vccint, model.calculateStaticPower(p, shipped, Model::Rail::VCCSOC)) << device;
        return watts;
    };
    for (char const* device : {"ZQVC1204", "ZQVC1902", "ZQVC2606", "ZQVE1408", "ZQVE2210", "ZQVM1606",
                               "ZQVM2004", "ZQVP1310", "ZQVP1502"}) {
        EXPECT_GT(total(device, "TYPICAL", 25.0f), 0.5f) << device;
        EXPECT_LT(total(device, "TYPICAL", 25.0f), 4.0f) << device;
    }
    EXPECT_GT(total("ZQVC1902", "TYPICAL", 25.0f), 1.0f);
    EXPECT_LT(total("ZQVC1902", "TYPICAL", 25.0f), 3.0f);
    EXPECT_GT(total("ZQVC1902", "MAX", 100.0f), 10.0f);

    // The default device is in the shared catalogue too.
    EXPECT_EQ(PRSMCommonParamControlData::getGlobal().getDevice("TALVEX_PERFORMANCE", "ZQVP1502"), "ZQ10P50");
    Params p;  // the defaults: ZQVP1502 in ZQVC1902_VSVA2197
    model.calculateTotalStaticPower(p, shipped);
    EXPECT_GT(p[Params::VCCINT], 0.0f);
    EXPECT_GT(model.calculateAvailableGty(p, shipped), 0);
    EXPECT_EQ(model.calculateCommonTotalPowerFactor(p, shipped, Model::Rail::VCCINT), 1.2f);
}

}  // namespace
