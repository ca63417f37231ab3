// The platform-management-controller sheet on tests/data: every figure below is worked out by hand from
// that file. Coefficients: interconnect 0.001 / 0.003 and I/O unit 0.002 / 0.005 W per MHz (clock /
// load); PLLs (VCCINTPMC, VCCAUXPMC) 0.0001, 0.0002 (controller) and 0.0003, 0.0004 (network) W per MHz;
// I/O as in the processor-subsystem test data plus 0.0005 W per pin on VCCAUXPMC; monitor 0.01
// (VCCINTPMC), 0.02 (VCCAUXPMC), 0.03 (VCCINT), 0.04 (VCC_SOC); auxiliary circuits 0.05. Characterised at
// 0.8 V (VCCINTPMC) and 1.5 V (VCCAUXPMC). Loads are percent: L enters as L / 100.
#include <prsm/models/talvex/PRSMTalvexPmcModel.h>

#include "ModelFixture.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

using Params = PRSMTalvexPmcParams;
using Model = PRSMTalvexPmcModel;
using Data = PRSMTalvexPmcData;

class Pmc : public prsm::test::ModelFixture<Model> {
protected:
    // Every interface and PLL disabled except the quad flash (defaults: 2 outputs, 4 bidirectional
    // pins at 150 MHz, 25 %, bank 0 at 1.8 V).
    void SetUp() override {
        for (auto usage :
             {Params::PMC_DED_IO_USAGE, Params::PMC_GEM0_USAGE, Params::PMC_GEM1_USAGE, Params::PMC_I2C_USAGE,
              Params::PMC_IO_BANK0_USAGE, Params::PMC_OSPI_USAGE, Params::PMC_SD_USAGE,
              Params::PMC_USB0_USAGE, Params::PMC_PLL_USAGE, Params::NOC_PLL_USAGE})
            p[usage] = "DISABLED";
    }
};

// The flash: 150 MHz at 25 % is 37.5 MHz of activity on 4 receivers, 6 drivers, 6 pins.
// VCCINTPMC 37.5 x (0.0001 x 4 + 0.0002 x 6) + 0.001 x 6 = 0.066; VCCAUXPMC 6 x 0.0005 = 0.003;
// VCCPMIO0 37.5 x (0.0003 x 4 + 0.001 x 2 x 6) + (0.002 + 0.003) x 6 = 0.525.
// Interconnect 0.003 x 0.25 x 400 = 0.3, I/O unit 0.005 x 0.25 x 250 = 0.3125.
// VCCINT_PMC 0.3 + 0.3125 + 0.066 + 0.01 = 0.6885; VCCAUX_PMC 0.003 + 0.02 + 0.05 = 0.073.
TEST_F(Pmc, SupplyTotalsOfOneEnabledInterface) {
    EXPECT_NEAR(calc(Params::PMC_QSPI_BANK0_VCCINTPMC_POWER), 0.066f, 1e-6);
    EXPECT_NEAR(p[Params::PMC_QSPI_BANK0_VCCAUXPMC_POWER], 0.003f, 1e-7);
    EXPECT_NEAR(p[Params::PMC_QSPI_BANK0_VCCPMIO0_POWER], 0.525f, 1e-6);
    EXPECT_NEAR(p[Params::PMC_INTERCONNECT_VCCINTPMC_POWER], 0.3f, 1e-6);
    EXPECT_NEAR(p[Params::PMC_IOU_VCCINTPMC_POWER], 0.3125f, 1e-6);
    EXPECT_NEAR(p[Params::PMC_AMS_DYNAMIC_POWER], 0.1f, 1e-6);
    EXPECT_NEAR(p[Params::VCCINT_PMC_POWER], 0.6885f, 1e-5);
    EXPECT_NEAR(p[Params::VCCAUX_PMC_POWER], 0.073f, 1e-6);
    EXPECT_NEAR(p[Params::PMC_DYNAMIC_POWER], 0.7615f, 1e-5);
    EXPECT_NEAR(p[Params::VCCPMIO0_POWER], 0.525f, 1e-6);
    EXPECT_EQ(p[Params::VCCPMIO1_POWER], 0.0f);
    EXPECT_EQ(p[Params::VCC_FIO_POWER], 0.0f);
    EXPECT_NEAR(p[Params::TOTAL_DYNAMIC_POWER], 1.2865f, 1e-5);

    // Disabled interfaces contribute nothing, whatever their pins.
    EXPECT_EQ(p[Params::PMC_SD_BANK0_VCCINTPMC_POWER], 0.0f);
    EXPECT_EQ(p[Params::DED_IO_VCCAUXPMC_POWER], 0.0f);
    EXPECT_EQ(p[Params::GEM0_BANK1_VCCPMIO1_POWER], 0.0f);
    p[Params::PMC_QSPI_USAGE] = "DISABLED";
    EXPECT_EQ(calc(Params::PMC_QSPI_BANK0_VCCPMIO0_POWER), 0.0f);
    EXPECT_EQ(p[Params::PMC_QSPI_BANK0_VCCINTPMC_POWER], 0.0f);
    EXPECT_NEAR(p[Params::TOTAL_DYNAMIC_POWER], 1.2865f - 0.066f - 0.003f - 0.525f, 1e-5);
}

TEST_F(Pmc, BanksPllsAndSupplies) {
    // Ethernet on bank 1 at 3.3 V: 125 MHz at 25 % on 7 receivers, 8 drivers, 14 pins:
    // 31.25 x (0.0005 x 7 + 0.002 x 4 x 8) + (0.004 + 0.005) x 14 = 2.235375.
    p[Params::PMC_GEM0_USAGE] = "ENABLED";
    p[Params::PMC_BANK1_IOSTD] = "LVCMOS33";
    EXPECT_NEAR(calc(Params::GEM0_BANK1_VCCPMIO1_POWER), 2.235375f, 1e-5);
    EXPECT_NEAR(p[Params::VCCPMIO1_POWER], 2.235375f, 1e-5);

    // Dedicated I/O on bank 3 at 2.5 V: 10 MHz at 25 % on 8 receivers, 3 drivers, 11 pins:
    // 2.5 x (0.0004 x 8 + 0.0015 x 3 x 3) + (0.0025 + 0.0035) x 11 = 0.10775.
    p[Params::PMC_DED_IO_USAGE] = "ENABLED";
    p[Params::PMC_BANK3_IOSTD] = "LVCMOS25";
    EXPECT_NEAR(calc(Params::DED_IO_FIO_25_POWER), 0.10775f, 1e-6);
    EXPECT_NEAR(p[Params::VCC_FIO_POWER], 0.10775f, 1e-6);

    // PLLs at 1000 MHz; a doubled VCCAUXPMC doubles the auxiliary parts.
    p[Params::PMC_PLL_USAGE] = "ENABLED";
    p[Params::NOC_PLL_USAGE] = "ENABLED";
    p[Params::VCCAUXPMC] = 3.0f;
    EXPECT_NEAR(calc(Params::PMC_PLL_VCCINTPMC_POWER), 0.1f, 1e-6);
    EXPECT_NEAR(p[Params::PMC_PLL_VCCAUXPMC_POWER], 0.4f, 1e-6);
    EXPECT_NEAR(p[Params::NOC_PLL_VCCINTPMC_POWER], 0.3f, 1e-6);
    EXPECT_NEAR(p[Params::NOC_PLL_VCCAUXPMC_POWER], 0.8f, 1e-6);
    EXPECT_NEAR(p[Params::PMC_AMSAUXPOWER], 0.04f, 1e-6);
    EXPECT_NEAR(p[Params::PMC_PMCAUX_POWER], 0.1f, 1e-6);

    // VCCINTPMC at 0.88 V scales everything on it by 1.1^2.3; the monitor's VCCINT part is not on it.
    float const scale = static_cast<float>(std::pow(1.1, 2.3));
    p[Params::VCCINTPMC] = 0.88f;
    EXPECT_NEAR(calc(Params::VCCINTPMC_VOLTAGE_SCALING), scale, 1e-6);
    EXPECT_NEAR(p[Params::PMC_INTERCONNECT_VCCINTPMC_POWER], 0.3f * scale, 1e-6);
    EXPECT_NEAR(p[Params::PMC_AMSPMCPOWER], 0.01f * scale, 1e-7);
    EXPECT_NEAR(p[Params::PMC_AMSINTPOWER], 0.03f, 1e-7);
    p[Params::VCCINTPMC] = 0.0f;
    EXPECT_EQ(calc(Params::VCCINT_PMC_POWER), 0.0f);
}

TEST_F(Pmc, ClockTermGatingAndValidity) {
    // Idle interconnect: its clock term 0.001 x 400, unless clock gating is on.
    p[Params::INTERCONNECT_LOAD] = 0.0f;
    EXPECT_NEAR(calc(Params::PMC_INTERCONNECT_VCCINTPMC_POWER), 0.4f, 1e-6);
    p[Params::CLOCK_GATING] = "ENABLED";
    EXPECT_EQ(calc(Params::PMC_INTERCONNECT_VCCINTPMC_POWER), 0.0f);

    p[Params::PMC_QSPI_LOAD] = 120.0f;
    EXPECT_EQ(model.intDispatchTable(p, data, "IS_VALID_PMC_QSPI_LOAD"), 0);
    EXPECT_EQ(model.floatDispatchTable(p, data, "GET_MAX_PMC_QSPI_LOAD"), 100.0f);
    EXPECT_EQ(model.intDispatchTable(p, data, "IS_VALID_IOU_LOAD"), 1);
    p[Params::IOU_LOAD] = -5.0f;
    EXPECT_EQ(model.intDispatchTable(p, data, "IS_VALID_IOU_LOAD"), 0);
    EXPECT_EQ(model.calculateValidValuesPmcBank0Iostd(p, data), "LVCMOS18,LVCMOS25,LVCMOS33");
}

}  // namespace
