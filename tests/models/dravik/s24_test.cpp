// The smaller module board on tests/data/powercfg/dravik/PRSMDravikS24Data.cfg; every figure is worked
// out by hand from that file. At the default rates (0.25 each) and clock (1600 MHz, the table's own):
//   core, commercial  (0.25 x 0.396 x 2 + 0.044) / 1.1 = 0.22 A
//   core, industrial  (0.25 x 0.495 x 2 + 0.055) / 1.1 = 0.275 A   <- the larger
//   1.8 V, commercial (0.25 x 0.072 x 2 + 0.018) / 1.8 = 0.03 A    <- the larger
//   1.8 V, industrial (0.25 x 0.063 x 2 + 0.009) / 1.8 = 0.0225 A
//   I/O               (0.25 x 0.11 + 0.25 x 0.022) / 1.1 = 0.03 A
// The file has no storage or part rows, so those loads are 0.
#include <prsm/models/dravik/PRSMDravikS24Model.h>
#include <prsm/models/dravik/PRSMDravikS26Params.h>

#include "ModelFixture.h"
#include "ShippedEfficiency.h"
#include "TestData.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using Params = PRSMDravikS24Params;
using Model = PRSMDravikS24Model;
using Data = PRSMDravikS24Data;

class S24 : public prsm::test::ModelFixture<Model> {};

// A design feeds either board by the same input names: the smaller board has every input of the larger
// one but the video codec's supply.
TEST_F(S24, SharesTheLargerBoardsInputs) {
    using Large = PRSMDravikS26Params;
    std::vector<std::string> small, large;
    Params().getFloatUserInputNames(small);
    Large().getFloatUserInputNames(large);
    EXPECT_EQ(small.size() + 1, large.size());
    for (std::string const& name : small)
        EXPECT_NE(Large::string_to_float_enum(name), Large::LastFloat) << name;
}

TEST_F(S24, MemoryRailsCarryTheLargerGrade) {
    model.calculate(p);
    EXPECT_NEAR(p[Params::LOAD_DDR4_VDD_CGRADE], 0.22f, 1e-6);
    EXPECT_NEAR(p[Params::LOAD_DDR4_VDD_IGRADE], 0.275f, 1e-6);
    EXPECT_NEAR(p[Params::LOAD_DDR4_VDD], 0.275f, 1e-6);
    EXPECT_NEAR(p[Params::LOAD_DDR4_VPP_CGRADE], 0.03f, 1e-6);
    EXPECT_NEAR(p[Params::LOAD_DDR4_VPP_IGRADE], 0.0225f, 1e-6);
    EXPECT_NEAR(p[Params::LOAD_DDR4_VPP], 0.03f, 1e-6);
    EXPECT_NEAR(p[Params::LOAD_DDR4_VDDQ], 0.03f, 1e-6);
    // (0.275 + 0.03) x 1.1 + 0.03 x 1.8.
    EXPECT_NEAR(p[Params::LPDDR4_POWER], 0.3355f + 0.054f, 1e-6);
    // The 1.1 V rail: the memory's 0.305 A; the 1.8 V processor rail carries the memory's 0.03 A.
    EXPECT_NEAR(p[Params::REG_LOAD_VCC_PS_1V10], 0.305f, 1e-6);
    EXPECT_NEAR(p[Params::REG_LOAD_VCC_PS_1V80], 0.03f, 1e-6);
}

TEST_F(S24, SameRulesOnItsOwnRails) {
    // 0.195 A of memory-bank current brings the 1.1 V rail to 0.5 A: key 500 at 0.8, so the loss is
    // 0.55 W x 0.25.
    p[Params::FPGA_VCCO_PSDDR_504_CURRENT] = 0.195f;
    // The processor core output also feeds the transceiver core and the logic's 0.85 V supplies:
    // 1 + 0.25 + 0.25 = 1.5 A, key 1500 at 0.75: 1.275 W / 3. The device core 1.5 A at 0.9: 1.08 W x 1/9.
    p[Params::FPGA_VCC_PSINTFP_CURRENT] = 1.0f;
    p[Params::FPGA_VPS_MGTRAFPGA_VCC_CURRENT] = 0.25f;
    p[Params::FPGA_VCCBRAM_CURRENT] = 0.25f;
    p[Params::FPGA_VCCINT_CURRENT] = 1.5f;
    model.calculate(p);
    EXPECT_EQ(p[Params::DA9062_BUCK1_LOAD_KEY_STRING], "KEY_LOAD_500");
    EXPECT_FLOAT_EQ(p[Params::DA9062_BUCK1_EFFICIENCY], 0.8f);
    EXPECT_NEAR(p[Params::DA9062_BUCK1_POWER], 0.1375f, 1e-6);
    EXPECT_NEAR(p[Params::REG_LOAD_VCC_PS_0V85], 1.5f, 1e-6);
    EXPECT_EQ(p[Params::DA9131_CH1_LOAD_KEY], "LOAD_1500");
    EXPECT_NEAR(p[Params::DA9131_POWER], 0.425f + 0.12f, 1e-6);
    // The 1.8 V buck carries nothing: key 0 (0.4), no loss.
    EXPECT_EQ(p[Params::DA9062_BUCK4_POWER], 0.0f);
    // Device power: 0.195 x 1.1 + 1 x 0.85 + 0.25 x 0.85 + 0.25 x 0.85 + 1.5 x 0.72.
    EXPECT_NEAR(p[Params::FPGA_POWER], 0.2145f + 1.275f + 1.08f, 1e-5);
    // The 3.3 V buck feeds only the 1.8 V linear output's 0.03 A x 3.3 V = 0.099 W: 0.03 A, key 30, no
    // row, so 0.099 W lost; that output drops 0.099 - 0.054.
    EXPECT_EQ(p[Params::DA9062_BUCK3_LOAD_KEY], "LOAD_30");
    EXPECT_NEAR(p[Params::DA9062_POWER], 0.1375f + 0.099f + 0.045f, 1e-6);
    // Device, memory, and the two regulators' losses.
    EXPECT_NEAR(p[Params::TOTAL_SOM_POWER], 2.5695f + 0.3895f + 0.2815f + 0.545f, 1e-5);
    for (auto const cell : {Params::DA9062_POWER, Params::TOTAL_SOM_POWER, Params::REG_LOAD_VCC_PS_1V10})
        EXPECT_EQ(p[cell], p[Params::string_to_float_enum(Params::enum_to_string(cell) + "_CALC")]);

    // Its own ratings: the 1.1 V buck 2.5 A, the device core 3.2 A at 0.72 V.
    p[Params::FPGA_VCCO_PSDDR_504_CURRENT] = 2.295f;  // 2.6 A on the rail
    p[Params::FPGA_VCCINT_CURRENT] = 3.3f;
    model.calculate(p);
    EXPECT_NEAR(p[Params::DA9062_BUCK1_OVERLIMIT], 110.0f, 1e-2);
    EXPECT_NEAR(p[Params::DA9131_CH2_OVERLIMIT], 72.0f, 1e-2);
    EXPECT_FLOAT_EQ(p[Params::DA9131_CH2_EFFICIENCY], 0.5f);  // no row for 3300 mA
    p[Params::FPGA_VCCO_PSDDR_504_CURRENT] = 2.195f;          // 2.5 A: at the rating
    p[Params::FPGA_VCCINT_CURRENT] = 3.2f;
    model.calculate(p);
    EXPECT_NEAR(p[Params::DA9062_BUCK1_OVERLIMIT], 0.0f, 1e-3);
    EXPECT_EQ(p[Params::DA9131_CH2_OVERLIMIT], 0.0f);
    // The linear outputs and their ratings are the larger board's.
    Params q;
    q[Params::FPGA_VPS_MGTRAFPGA_VTT_CURRENT] = 0.15f;
    model.calculate(q);
    EXPECT_NEAR(q[Params::DA9062_LDO1_LOAD], 0.15f * 1.8f * 1.7777777f, 1e-6);
    EXPECT_NEAR(q[Params::DA9062_LDO1_OVERLIMIT], 90.0f, 1e-3);
}

TEST_F(S24, ShippedEfficiencyTablesCoverEveryKey) {
    prsm::test::ScopedDataDir dir(prsm::test::shippedDataDir());
    prsm::test::expectAnEfficiencyRowForEveryLoad(
        model, Data(),
        {{Model::Converter::DA9062_BUCK1, Params::REG_LOAD_VCC_PS_1V10, 2.5f},
         {Model::Converter::DA9062_BUCK2, Params::REG_LOAD_VCC_PS_1V20, 1.0f},
         {Model::Converter::DA9062_BUCK3, Params::DA9062_BUCK3_LOAD, 2.0f},
         {Model::Converter::DA9062_BUCK4, Params::REG_LOAD_VCC_PL_1V80, 0.6f},
         {Model::Converter::DA9131_CH1, Params::REG_LOAD_VCC_PS_0V85, 3.5f},
         {Model::Converter::DA9131_CH2, Params::REG_LOAD_VCC_PL_0V72, 3.2f}});
}

}  // namespace
