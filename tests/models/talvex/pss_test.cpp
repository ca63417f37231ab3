// The processor-subsystem sheet on tests/data: every figure below is worked out by hand from that file.
// Coefficients (W per MHz, clock / load): MAIA_CPU 0.001 / 0.004, APU 0.002 / 0.006, L2_MEMORY 0.003 /
// 0.008, FP_INTERCONNECT 0.004 / 0.01, CCI 0.005 / 0.012, DUAL_R5 0.0005 / 0.002, RPU_TIEOFF_WRAPPER
// 0.0001 / 0.0003, OCM_MEMORY 0.0002 / 0.0008, TCM_MEMORY 0.0003 / 0.0009, LP_INTERCONNECT 0.0006 /
// 0.0016, LPD_IOU 0.0007 / 0.0021, GEM 0.001 / 0.005, USB 0.0008 / 0.0024; PLLs FPD 0.0001 (VCCINT) and
// 0.0002 (VCCAUX), LPD 0.00005 and 0.00003. I/O: core side RX 0.0001, TX 0.0002, static 0.001; bank side
// at 1.8 / 2.5 / 3.3 V: RX 0.0003 / 0.0004 / 0.0005, TX 0.001 / 0.0015 / 0.002, load factor 2 / 3 / 4,
// static 0.002 / 0.0025 / 0.004, bias 0.003 / 0.0035 / 0.005. Pins: GEM0 2 in, 3 out, 1 both ways;
// low-speed peripherals 4, 2, 2. PSIM_VOLTAGE 0.8 V. Loads are percent: L enters as L / 100.
#include <prsm/framework/PRSMException.h>
#include <prsm/models/talvex/PRSMTalvexPssModel.h>

#include "ModelFixture.h"
#include "TestData.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

using Params = PRSMTalvexPssParams;
using Model = PRSMTalvexPssModel;
using Data = PRSMTalvexPssData;

class Pss : public prsm::test::ModelFixture<Model> {};

TEST_F(Pss, VoltageScalingOfEachDomain) {
    EXPECT_FLOAT_EQ(calc(Params::VCCPSFP_VOLTAGE_SCALING), 1.0f);
    // Defaults: two cores at 1400 MHz and 50 %: 2 x (0.001 + 0.004 x 0.5) x 1400 = 8.4.
    EXPECT_NEAR(p[Params::CPU_DYNAMIC_POWER], 8.4f, 1e-4);

    p[Params::VCCPSFP] = 0.88f;
    p[Params::VCCPSLP] = 0.72f;
    float const fp = static_cast<float>(std::pow(1.1, 2.3));
    float const lp = static_cast<float>(std::pow(0.9, 2.3));
    EXPECT_NEAR(calc(Params::VCCPSFP_VOLTAGE_SCALING), fp, 1e-6);
    EXPECT_NEAR(p[Params::VCCPSLP_VOLTAGE_SCALING], lp, 1e-6);
    EXPECT_NEAR(p[Params::CPU_DYNAMIC_POWER], 8.4f * fp, 1e-4);
    // Two real-time cores at 800 MHz and 25 %: 2 x (0.0005 + 0.002 x 0.25) x 800 = 1.6, the tie-off
    // wrapper 0.0003 x 0.25 x 800 = 0.06.
    EXPECT_NEAR(p[Params::DUAL_RP_DYNAMIC_POWER], 1.66f * lp, 1e-5);
    // The VCCAUX part of a PLL is not scaled: 0.0002 x 1400.
    EXPECT_NEAR(p[Params::FPD_PLL_DYNAMIC_VCCAUX_POWER], 0.28f, 1e-6);
    EXPECT_NEAR(p[Params::FPD_PLL_DYNAMIC_VCCINT_POWER], 0.14f * fp, 1e-6);

    // A zero supply takes every scaled power with it.
    p[Params::VCCPSFP] = 0.0f;
    EXPECT_EQ(calc(Params::VCCPSFP_VOLTAGE_SCALING), 0.0f);
    EXPECT_EQ(p[Params::APU_CPU_POWER], 0.0f);
    EXPECT_NEAR(p[Params::FPD_TOTAL_DYNAMIC_POWER], 0.28f, 1e-6);

    // A file characterised at 0 V scales to 0; one without a coefficient fails with the library's exception.
    prsm::test::ScopedDataDir scope(prsm::test::testDataDir() + "/variants/pss_sim_zero");
    Data const zero;
    Params q;
    EXPECT_EQ(model.calculateVccpsfpVoltageScaling(q, zero), 0.0f);
    EXPECT_EQ(model.calculateCpuDynamicPower(q, zero), 0.0f);
    EXPECT_THROW(model.calculateGem0DynamicPower(q, zero), PRSMException);
}

TEST_F(Pss, ClockedBlocksGateAndCount) {
    // A peripheral at zero load draws its clock term, 0.001 x 125; under load its load term,
    // 0.005 x 0.4 x 125; clock-gated nothing either way.
    EXPECT_NEAR(calc(Params::GEM0_DYNAMIC_POWER), 0.125f, 1e-6);
    EXPECT_NEAR(p[Params::GEM0_POWER], 0.125f, 1e-6);
    p[Params::GEM0_LOAD] = 40.0f;
    EXPECT_NEAR(calc(Params::GEM0_DYNAMIC_POWER), 0.25f, 1e-6);
    p[Params::GEM0_CLOCK_GATED] = 1;
    EXPECT_EQ(calc(Params::GEM0_DYNAMIC_POWER), 0.0f);
    p[Params::GEM0_LOAD] = 0.0f;
    EXPECT_EQ(calc(Params::GEM0_DYNAMIC_POWER), 0.0f);
    EXPECT_NEAR(p[Params::GEM1_DYNAMIC_POWER], 0.125f, 1e-6);  // its own gate

    // A core keeps its clock term under load and counts its cores: 2 x 0.001 x 1400 idle.
    p[Params::CPU_LOAD] = 0.0f;
    EXPECT_NEAR(calc(Params::CPU_DYNAMIC_POWER), 2.8f, 1e-5);
    p[Params::CPU_CLOCK_GATED] = 1;
    EXPECT_EQ(calc(Params::CPU_DYNAMIC_POWER), 0.0f);
    p[Params::CPU_LOAD] = 50.0f;  // a gated core given work runs
    EXPECT_NEAR(calc(Params::CPU_DYNAMIC_POWER), 8.4f, 1e-4);
    p[Params::CPU_CORES] = 4;
    EXPECT_NEAR(calc(Params::CPU_DYNAMIC_POWER), 16.8f, 1e-4);
    // APU_CPU_POWER adds the cluster: 0.006 x 0.5 x 1400 = 4.2.
    EXPECT_NEAR(p[Params::APU_CPU_POWER], 16.8f + 4.2f, 1e-4);
    p[Params::CPU_POWER_GATED] = 1;
    EXPECT_EQ(calc(Params::CPU_DYNAMIC_POWER), 0.0f);

    // Counts and switches: four OCM banks at 600 MHz and 50 %, 4 x 0.0008 x 0.5 x 600; no USB port.
    EXPECT_NEAR(p[Params::OCM_MEMORY_DYNAMIC_POWER], 0.96f, 1e-5);
    p[Params::OCM_MEMORY_CORES] = 1;
    EXPECT_NEAR(calc(Params::OCM_MEMORY_POWER), 0.24f, 1e-6);
    EXPECT_NEAR(p[Params::USB0_POWER], 0.2f, 1e-6);  // 0.0008 x 250 at zero load
    p[Params::USB0_IOS] = 0;
    p[Params::L2_MEMORY_ON_OFF] = 0;
    p[Params::DUAL_R5_POWER_GATED] = 1;
    p[Params::FPD_PLL_ON_OFF] = 0;
    EXPECT_EQ(calc(Params::USB0_POWER), 0.0f);
    EXPECT_EQ(p[Params::L2_MEMORY_POWER], 0.0f);
    EXPECT_EQ(p[Params::DUAL_R5_POWER], 0.0f);
    EXPECT_EQ(p[Params::FPD_PLL_POWER], 0.0f);
}

// Defaults at 0.8 V. Full-power domain: APU 4.2 + CPU 8.4, L2 0.008 x 0.5 x 1400 = 5.6, interconnect
// 0.01 x 0.5 x 600 = 3, CCI 0.012 x 0.5 x 600 = 3.6, PLL (0.0001 + 0.0002) x 1400 = 0.42: 25.22.
// Low-power domain: I/O unit 0.0021 x 0.5 x 250 = 0.2625, GEM0 and GEM1 0.125 each, USB 0.2,
// interconnect 0.0016 x 0.5 x 600 = 0.48, real-time cores 1.66, OCM 0.96, TCM 2 x 0.0009 x 0.25 x 800 =
// 0.36, PLL (0.00005 + 0.00003) x 1000 = 0.08, the low-speed peripherals' I/O 0.328 (below): 4.5805.
TEST_F(Pss, DomainTotalsSumTheirBlocks) {
    EXPECT_NEAR(calc(Params::FPD_TOTAL_DYNAMIC_POWER), 25.22f, 1e-4);
    EXPECT_NEAR(p[Params::LPD_TOTAL_DYNAMIC_POWER], 4.5805f, 1e-4);
    EXPECT_NEAR(p[Params::TCM_MEMORY_POWER], 0.36f, 1e-6);
    EXPECT_NEAR(p[Params::IOU_WITHOUT_IO_POWER], 0.2625f, 1e-6);

    // Any other input set: the totals stay the sums of the block powers.
    p[Params::CPU_LOAD] = 75.0f;
    p[Params::LPD_GEM1_MODE] = "ENABLED";
    p[Params::TCM_MEMORY_CLOCK_GATED] = 1;
    p[Params::VCCPSLP] = 0.85f;
    model.calculate(p);
    EXPECT_NEAR(p[Params::FPD_TOTAL_DYNAMIC_POWER],
                p[Params::APU_CPU_POWER] + p[Params::L2_MEMORY_POWER] + p[Params::FP_INTERCONNECT_POWER] +
                    p[Params::CCI_POWER] + p[Params::FPD_PLL_POWER],
                1e-4);
    EXPECT_NEAR(p[Params::LPD_TOTAL_DYNAMIC_POWER],
                p[Params::IOU_WITHOUT_IO_POWER] + p[Params::GEM0_POWER] + p[Params::GEM1_POWER] +
                    p[Params::USB0_POWER] + p[Params::LP_INTECONNECT_POWER] + p[Params::DUAL_R5_POWER] +
                    p[Params::OCM_MEMORY_POWER] + p[Params::TCM_MEMORY_POWER] + p[Params::LPD_PLL_POWER] +
                    p[Params::LPD_GEM0_POWER] + p[Params::LPD_GEM1_POWER] + p[Params::LPD_LOW_PER_IOS_POWER],
                1e-4);
    EXPECT_GT(p[Params::LPD_GEM1_POWER], 0.0f);
}

TEST_F(Pss, MultiplexedIoOfEnabledInterfaces) {
    // The low-speed peripherals (enabled, 1.8 V): 250 MHz at 10 % is 25 MHz of activity on 6 receivers,
    // 4 drivers and 8 pins. Core side 25 x (0.0001 x 6 + 0.0002 x 4) + 0.001 x 8 = 0.043; bank side
    // 25 x (0.0003 x 6 + 0.001 x 2 x 4) + (0.002 + 0.003) x 8 = 0.285.
    EXPECT_NEAR(calc(Params::LPD_LOW_PER_IO_DYNAMIC_VCCINT_POWER), 0.043f, 1e-6);
    EXPECT_NEAR(p[Params::LPD_LOW_PER_IO_DYNAMIC_MIO_18_POWER], 0.285f, 1e-6);
    EXPECT_EQ(p[Params::LPD_LOW_PER_IO_DYNAMIC_MIO_33_POWER], 0.0f);
    EXPECT_NEAR(p[Params::LPD_LOW_PER_IOS_POWER], 0.328f, 1e-6);
    EXPECT_EQ(p[Params::LPD_IOU_BANK1_BIDIS], 2);

    // GEM0 is disabled by default: no pins, no power.
    EXPECT_EQ(p[Params::GEM0_INPUTS], 0);
    EXPECT_EQ(p[Params::LPD_GEM0_POWER], 0.0f);
    EXPECT_EQ(p[Params::GEM0_BIAS], 0.0f);

    // Enabled at 3.3 V, 125 MHz at 40 %: 50 MHz on 3 receivers, 4 drivers, 6 pins. Core side
    // 50 x (0.0001 x 3 + 0.0002 x 4) + 0.001 x 6 = 0.061; bank side 50 x (0.0005 x 3 + 0.002 x 4 x 4) +
    // 0.004 x 6 = 1.699, bias 0.005 x 6 = 0.03.
    p[Params::LPD_GEM0_MODE] = "ENABLED";
    p[Params::LPD_MIO_GEM0_VOLTAGE] = "3.3";
    p[Params::LPD_GEM0_LOAD] = 40.0f;
    EXPECT_NEAR(calc(Params::LPD_GEM0_DYNAMIC_VCCINT_POWER), 0.061f, 1e-6);
    EXPECT_NEAR(p[Params::GEM0_BIAS], 0.03f, 1e-6);
    EXPECT_NEAR(p[Params::LPD_GEM0_MIO_33_POWER], 1.729f, 1e-5);
    EXPECT_EQ(p[Params::LPD_GEM0_MIO_18_POWER], 0.0f);
    EXPECT_NEAR(p[Params::LPD_GEM0_POWER], 1.79f, 1e-5);
    EXPECT_EQ(p[Params::GEM0_OUTPUTS], 3);

    // At 2.5 V: 50 x (0.0004 x 3 + 0.0015 x 3 x 4) + 0.0025 x 6 + 0.0035 x 6 = 0.996.
    p[Params::LPD_MIO_GEM0_VOLTAGE] = "2.5";
    EXPECT_NEAR(calc(Params::LPD_GEM0_MIO_25_POWER), 0.996f, 1e-5);
    EXPECT_EQ(p[Params::LPD_GEM0_MIO_33_POWER], 0.0f);

    EXPECT_EQ(model.calculateValidValuesLpdMioGem0Voltage(p, data), "1.8,2.5,3.3");
}

TEST_F(Pss, ValidityAgainstBounds) {
    auto const valid = [this](char const* flag) { return model.intDispatchTable(p, data, flag); };
    p[Params::CPU_CLK_FREQ] = 2300.0f;
    EXPECT_EQ(valid("IS_VALID_CPU_CLK_FREQ"), 0);
    EXPECT_EQ(model.floatDispatchTable(p, data, "GET_MAX_CPU_CLK_FREQ"), 2200.0f);
    p[Params::CPU_CLK_FREQ] = 2200.0f;
    EXPECT_EQ(valid("IS_VALID_CPU_CLK_FREQ"), 1);
    p[Params::CPU_LOAD] = -1.0f;
    EXPECT_EQ(valid("IS_VALID_CPU_LOAD"), 0);
    p[Params::LPD_LOW_PER_IO_LOAD] = 100.0f;
    EXPECT_EQ(valid("IS_VALID_LPD_LOW_PER_IO_LOAD"), 1);
    p[Params::LPD_LOW_PER_IO_LOAD] = 100.5f;
    EXPECT_EQ(valid("IS_VALID_LPD_LOW_PER_IO_LOAD"), 0);
    // An invalid input is still calculated with: 2 x (0.001 - 0.004 x 0.01) x 2200.
    EXPECT_NEAR(calc(Params::CPU_DYNAMIC_POWER), 2 * (0.001f - 0.00004f) * 2200.0f, 1e-4);
}

// The shipped file: a core of a few hundred mW at full load, real-time cores of tens of mW, the whole
// subsystem well below a few watts under the heavy preset's kind of load.
TEST(PssShipped, MagnitudesOfA7nmClassSubsystem) {
    prsm::test::ScopedDataDir scope(prsm::test::shippedDataDir());
    Data const shipped;
    Model const& model = Model::getGlobal();
    Params p;
    p[Params::CPU_CORES] = 1;
    p[Params::CPU_LOAD] = 100.0f;
    p[Params::RPU_CORES] = 1;
    p[Params::DUAL_R5_LOAD] = 100.0f;
    p[Params::GEM0_LOAD] = 50.0f;
    float const core = model.calculateCpuDynamicPower(p, shipped);
    EXPECT_GT(core, 0.1f);
    EXPECT_LT(core, 0.6f);
    float const realTime = model.calculateDualRpDynamicPower(p, shipped);
    EXPECT_GT(realTime, 0.01f);
    EXPECT_LT(realTime, 0.1f);
    float const ethernet = model.calculateGem0DynamicPower(p, shipped);
    EXPECT_GT(ethernet, 0.001f);
    EXPECT_LT(ethernet, 0.05f);

    Params heavy;
    heavy[Params::CPU_CORES] = 4;
    heavy[Params::CPU_LOAD] = 100.0f;
    heavy[Params::LPD_GEM0_MODE] = "ENABLED";
    heavy[Params::LPD_GEM1_MODE] = "ENABLED";
    float const total = model.calculateFpdTotalDynamicPower(heavy, shipped) +
                        model.calculateLpdTotalDynamicPower(heavy, shipped);
    EXPECT_GT(total, 0.5f);
    EXPECT_LT(total, 3.0f);
}

}  // namespace
