// The larger module board on tests/data/powercfg/dravik/PRSMDravikS26Data.cfg; every figure is worked
// out by hand from that file. Its parts draw round currents: eMMC 0.033 W / 3.3 V = 0.01 A core and
// 0.018 W / 1.8 V = 0.01 A interface when idle, EEPROM 0.01 A, flash 0.02 A, TPM 0.03 A; so the 3.3 V
// rail carries 0.05 A of parts and the 1.8 V processor rail 0.03 A. The memory has only a core rail:
// at the default rates (0.25 each) and clock (1200 MHz against 1000 MHz in the table) it carries
// (0.25 x 1.08 x 1.2 + 0.25 x 0.36 x 1.2 + max(0.12, 0.24)) / 1.2 = 0.672 / 1.2 = 0.56 A.
#include <prsm/models/dravik/PRSMDravikS26Model.h>

#include "ModelFixture.h"
#include "ShippedEfficiency.h"
#include "TestData.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using Params = PRSMDravikS26Params;
using Model = PRSMDravikS26Model;
using Data = PRSMDravikS26Data;

class S26 : public prsm::test::ModelFixture<Model> {
protected:
    // The figure of `cell` after a full calculation with one input set.
    float with(Params::FloatEnum input, float value, Params::FloatEnum cell) {
        Params q;
        q[input] = value;
        model.calculate(q);
        return q[cell];
    }
    std::string keyWith(Params::FloatEnum input, float value, Params::StringEnum key) {
        Params q;
        q[input] = value;
        model.calculate(q);
        return q[key];
    }
};

TEST_F(S26, LoadKeysFollowEachRegulatorsSteps) {
    // Buck: 10 mA below 200 mA, 25 mA below 1000 mA, 100 mA from there on.
    auto const buck2 = [this](float amperes) {
        return keyWith(Params::FPGA_VCCBRAM_CURRENT, amperes, Params::DA9062_BUCK2_LOAD_KEY);
    };
    EXPECT_EQ(buck2(0.0f), "LOAD_0");
    EXPECT_EQ(buck2(0.194f), "LOAD_190");
    EXPECT_EQ(buck2(0.196f), "LOAD_200");   // 19.6 steps of 10
    EXPECT_EQ(buck2(0.212f), "LOAD_200");   // 8.48 steps of 25
    EXPECT_EQ(buck2(0.24f), "LOAD_250");    // 9.6 steps of 25
    EXPECT_EQ(buck2(0.99f), "LOAD_1000");   // 39.6 steps of 25
    EXPECT_EQ(buck2(1.049f), "LOAD_1000");  // 10.49 steps of 100
    EXPECT_EQ(buck2(1.051f), "LOAD_1100");
    EXPECT_EQ(buck2(-0.1f), "LOAD_-100");
    EXPECT_EQ(keyWith(Params::FPGA_VCCAUX_CURRENT, 0.012f, Params::DA9062_BUCK4_LOAD_KEY), "LOAD_10");
    Params q;
    q[Params::FPGA_VCCBRAM_CURRENT] = 0.194f;
    model.calculate(q);
    EXPECT_EQ(q[Params::DA9062_BUCK2_LOAD_KEY_STRING], "KEY_LOAD_190");

    // MPS3805A: 10 mA below 50 mA, 50 mA from there on.
    auto const mpmA = [this](float amperes) {
        return keyWith(Params::FPGA_VPS_MGTRAFPGA_VCC_CURRENT, amperes, Params::MPM_A_LOAD_KEY);
    };
    EXPECT_EQ(mpmA(0.044f), "LOAD_40");
    EXPECT_EQ(mpmA(0.046f), "LOAD_50");
    EXPECT_EQ(mpmA(0.074f), "LOAD_50");  // 1.48 steps of 50
    EXPECT_EQ(mpmA(0.076f), "LOAD_100");
    EXPECT_EQ(keyWith(Params::FPGA_MGTAVTT_CURRENT, 0.012f, Params::MPM_B_LOAD_KEY), "LOAD_10");

    // DA9130 and DA9131: 50 mA at any load.
    auto const da9130 = [this](float amperes) {
        return keyWith(Params::FPGA_VCCINT_CURRENT, amperes, Params::DA9130_LOAD_KEY);
    };
    EXPECT_EQ(da9130(0.012f), "LOAD_0");
    EXPECT_EQ(da9130(0.024f), "LOAD_0");
    EXPECT_EQ(da9130(0.026f), "LOAD_50");
    EXPECT_EQ(da9130(1.974f), "LOAD_1950");
    EXPECT_EQ(keyWith(Params::FPGA_VCCINT_VCU_CURRENT, 0.026f, Params::DA9131_CH2_LOAD_KEY), "LOAD_50");
    EXPECT_EQ(keyWith(Params::FPGA_VCC_PSINTLP_CURRENT, 0.174f, Params::DA9131_CH1_LOAD_KEY), "LOAD_150");
}

TEST_F(S26, EfficiencyFromTheTableOrHalfAndTheLossItGives) {
    // 0.2 A on the 0.85 V buck: 0.75, so the loss is 0.17 W x (1/0.75 - 1) = 0.17 / 3.
    EXPECT_FLOAT_EQ(with(Params::FPGA_VCCBRAM_CURRENT, 0.2f, Params::DA9062_BUCK2_EFFICIENCY), 0.75f);
    EXPECT_NEAR(with(Params::FPGA_VCCBRAM_CURRENT, 0.2f, Params::DA9062_BUCK2_POWER), 0.17f / 3.0f, 1e-6);
    // No row for 190 mA: 50 %, so the loss equals the output power 0.19 x 0.85.
    EXPECT_FLOAT_EQ(with(Params::FPGA_VCCBRAM_CURRENT, 0.19f, Params::DA9062_BUCK2_EFFICIENCY), 0.5f);
    EXPECT_NEAR(with(Params::FPGA_VCCBRAM_CURRENT, 0.19f, Params::DA9062_BUCK2_POWER), 0.1615f, 1e-6);
    // 1 A: 0.85 W x (1/0.6 - 1).
    EXPECT_NEAR(with(Params::FPGA_VCCBRAM_CURRENT, 1.0f, Params::DA9062_BUCK2_POWER), 0.85f * 2.0f / 3.0f,
                1e-6);
    // An efficiency of 0 gives minus the output power: -(0.1 x 1.8).
    EXPECT_EQ(with(Params::FPGA_VCCAUX_CURRENT, 0.1f, Params::DA9062_BUCK4_EFFICIENCY), 0.0f);
    EXPECT_NEAR(with(Params::FPGA_VCCAUX_CURRENT, 0.1f, Params::DA9062_BUCK4_POWER), -0.18f, 1e-6);

    // The core regulator at 2 A (0.8): 1.44 W x 0.25; at 7 A, beyond its table, the whole 5.04 W.
    EXPECT_NEAR(with(Params::FPGA_VCCINT_CURRENT, 2.0f, Params::DA9130_POWER), 0.36f, 1e-6);
    EXPECT_FLOAT_EQ(with(Params::FPGA_VCCINT_CURRENT, 7.0f, Params::DA9130_EFFICIENCY), 0.5f);
    EXPECT_NEAR(with(Params::FPGA_VCCINT_CURRENT, 7.0f, Params::DA9130_POWER), 5.04f, 1e-5);

    // DA9131, 2 A on each channel: 1.7 W at 0.85 is 0.3 W lost, 1.8 W at 0.9 is 0.2 W.
    p[Params::FPGA_VCC_PSINTFP_CURRENT] = 2.0f;
    p[Params::FPGA_VCCINT_VCU_CURRENT] = 2.0f;
    model.calculate(p);
    EXPECT_NEAR(p[Params::DA9131_POWER], 0.5f, 1e-6);
    EXPECT_FLOAT_EQ(p[Params::DA9131_CH1_EFFICIENCY], 0.85f);
    EXPECT_FLOAT_EQ(p[Params::DA9131_CH2_EFFICIENCY], 0.9f);

    // MPS3805A outputs at 0.3 A: 0.255 W at 0.75 loses 0.085 W; 0.36 W at 0.6 loses 0.24 W.
    EXPECT_NEAR(with(Params::FPGA_VPS_MGTRAFPGA_VCC_CURRENT, 0.3f, Params::MPS3805A_A_POWER), 0.085f, 1e-6);
    EXPECT_NEAR(with(Params::FPGA_MGTAVTT_CURRENT, 0.3f, Params::MPS3805A_B_POWER), 0.24f, 1e-6);

    // No load: key LOAD_0 and no loss.
    Params q;
    model.calculate(q);
    EXPECT_EQ(q[Params::MPM_A_LOAD_KEY], "LOAD_0");
    EXPECT_FLOAT_EQ(q[Params::MPM_A_EFFICIENCY], 0.4f);
    EXPECT_EQ(q[Params::MPS3805A_A_POWER], 0.0f);
    EXPECT_EQ(q[Params::DA9130_POWER], 0.0f);
}

// Each row of the over-limit table: the regulator, the rail whose load counts, the rating and the
// voltage. Just below and at the rating nothing is over; 0.1 A above it is 0.1 x V x 1000 mW.
TEST_F(S26, OverLimitTableAtBelowAndAboveEachRating) {
    struct Row {
        char const* cell;
        char const* rail;
        float rating;
        float volts;
    };
    Row const rows[] = {
        {"DA9062_BUCK1_OVERLIMIT", "REG_LOAD_VCC_PS_1V20", 2.5f, 1.2f},
        {"DA9062_BUCK2_OVERLIMIT", "REG_LOAD_VCC_PL_0V85", 0.35f, 0.85f},
        {"DA9062_BUCK3_OVERLIMIT", "REG_LOAD_VCC_3V3", 2.0f, 3.3f},
        {"DA9062_BUCK4_OVERLIMIT", "REG_LOAD_VCC_PL_1V80", 0.6f, 1.8f},
        {"DA9062_LDO1_OVERLIMIT", "REG_LOAD_MGTRAVTT_1V80", 0.1f, 1.8f},
        {"DA9062_LDO2_OVERLIMIT", "REG_LOAD_VCC_PS_1V80", 0.3f, 1.8f},
        {"DA9062_LDO3_OVERLIMIT", "REG_LOAD_VMGTAVCC_0V90", 0.3f, 0.9f},
        {"DA9062_LDO4_OVERLIMIT", "REG_LOAD_VCC_2V5", 0.3f, 2.5f},
        {"DA9130_OVERLIMIT", "REG_LOAD_VCC_PL_0V72", 6.5f, 0.72f},
        {"DA9131_CH1_OVERLIMIT", "REG_LOAD_VCC_PS_0V85", 3.5f, 0.85f},
        {"DA9131_CH2_OVERLIMIT", "REG_LOAD_VCCINT_VCU_0V90", 3.2f, 0.9f},
        {"MPS3805A_A_OVERLIMIT", "REG_LOAD_MGTRAVCC_0V85", 0.3f, 0.85f},
        {"MPS3805A_B_OVERLIMIT", "REG_LOAD_VMGTAVTT_1V20", 0.6f, 1.2f},
        {"TPS51200DRCT_OVERLIMIT", "REG_LOAD_DDR4VTT_0V60", 2.0f, 0.6f},
    };
    for (Row const& row : rows) {
        auto const overLimit = [&](float load) {
            Params q;  // the rail's load is put in place; the output reads it
            q[Params::string_to_float_enum(row.rail)] = load;
            return model.floatDispatchTable(q, data, row.cell);
        };
        SCOPED_TRACE(row.cell);
        EXPECT_EQ(overLimit(row.rating - 0.05f), 0.0f);
        EXPECT_EQ(overLimit(row.rating), 0.0f);
        EXPECT_NEAR(overLimit(row.rating + 0.1f), 100.0f * row.volts, 0.01f);
    }

    // From the inputs: 3 + 0.5 A on the processor core is its 3.5 A rating; 0.25 A more is
    // 0.25 x 0.85 x 1000 = 212.5 mW.
    p[Params::FPGA_VCC_PSINTFP_CURRENT] = 3.0f;
    p[Params::FPGA_VCC_PSINTLP_CURRENT] = 0.5f;
    model.calculate(p);
    EXPECT_EQ(p[Params::DA9131_CH1_OVERLIMIT], 0.0f);
    p[Params::FPGA_VCC_PSINTFP_DDR_CURRENT] = 0.25f;
    model.calculate(p);
    EXPECT_NEAR(p[Params::DA9131_CH1_OVERLIMIT], 212.5f, 1e-3);
    // The parts count on their rail: 1.95 A of bank current and 0.05 A of parts are the 3.3 V buck's
    // 2 A; 2.05 A of bank current is 0.1 x 3.3 x 1000 mW over.
    EXPECT_NEAR(with(Params::FPGA_VCCO33_CURRENT, 1.95f, Params::DA9062_BUCK3_OVERLIMIT), 0.0f, 1e-3);
    EXPECT_NEAR(with(Params::FPGA_VCCO33_CURRENT, 2.05f, Params::DA9062_BUCK3_OVERLIMIT), 330.0f, 1e-2);
}

TEST_F(S26, LinearOutputsDrawFromTheThreePointThreeVoltBuck) {
    // 0.09 A of termination current: 0.09 x 1.8 x 1.7777777 = 0.288 W drawn, the output's figure too.
    p[Params::FPGA_VPS_MGTRAFPGA_VTT_CURRENT] = 0.09f;
    p[Params::FPGA_MGTAVCC_CURRENT] = 0.2f;  // 0.2 x 3.3 = 0.66 W drawn, 0.18 W delivered
    p[Params::FPGA_VCCO25_CURRENT] = 0.1f;   // 0.33 W drawn, 0.25 W delivered
    p[Params::FPGA_VCCO33_CURRENT] = 0.1f;   // 0.15 A on the 3.3 V rail with the parts: 0.495 W
    model.calculate(p);
    EXPECT_NEAR(p[Params::DA9062_LDO1_LOAD], 0.288f, 1e-6);
    EXPECT_EQ(p[Params::DA9062_LDO1_POWER], p[Params::DA9062_LDO1_LOAD]);
    EXPECT_NEAR(p[Params::DA9062_LDO2_LOAD], 0.099f, 1e-6);  // the parts' 0.03 A at 3.3 V
    EXPECT_NEAR(p[Params::DA9062_LDO3_LOAD], 0.66f, 1e-6);
    EXPECT_NEAR(p[Params::DA9062_LDO4_LOAD], 0.33f, 1e-6);
    // 0.495 + 0.288 + 0.099 + 0.66 + 0.33 = 1.872 W, 0.567273 A: key 575, no row, so a loss of 1.872 W.
    EXPECT_NEAR(p[Params::DA9062_BUCK3_LOAD_POWER], 1.872f, 1e-5);
    EXPECT_NEAR(p[Params::DA9062_BUCK3_LOAD], 1.872f / 3.3f, 1e-6);
    EXPECT_EQ(p[Params::DA9062_BUCK3_LOAD_KEY], "LOAD_575");
    EXPECT_NEAR(p[Params::DA9062_BUCK3_POWER], 1.872f, 1e-5);
    // Bucks 0.672 (the memory's 0.56 A at 1.2 V, no row) + 1.872, the first linear output's 0.288, and
    // the others' drops 0.099 - 0.054, 0.66 - 0.18 and 0.33 - 0.25.
    EXPECT_NEAR(p[Params::DA9062_POWER], 0.672f + 1.872f + 0.288f + 0.045f + 0.48f + 0.08f, 1e-5);
    EXPECT_EQ(p[Params::DA9062_LDO1_OVERLIMIT], 0.0f);
    EXPECT_NEAR(with(Params::FPGA_VPS_MGTRAFPGA_VTT_CURRENT, 0.15f, Params::DA9062_LDO1_OVERLIMIT), 90.0f,
                1e-3);
}

TEST_F(S26, MemoryStorageAndTotals) {
    // Defaults: no device current. Memory 0.56 A = 0.672 W; eMMC 0.01 A at 3.3 V and 0.01 A at 1.8 V;
    // board loads 0.01 x 3.3 + 0.02 x 1.8 + 0.03 x 3.3.
    model.calculate(p);
    EXPECT_NEAR(p[Params::LOAD_DDR4_VDD], 0.56f, 1e-6);
    EXPECT_EQ(p[Params::LOAD_DDR4_VPP], 0.0f);  // no rows for the other memory rails
    EXPECT_NEAR(p[Params::DDR4_POWER], 0.672f, 1e-6);
    EXPECT_NEAR(p[Params::EMMC_POWER], 0.051f, 1e-6);
    EXPECT_NEAR(p[Params::MISC_POWER], 0.168f, 1e-6);
    EXPECT_EQ(p[Params::FPGA_POWER], 0.0f);
    // The 3.3 V buck: 0.05 x 3.3 + 0.03 x 3.3 = 0.264 W, 0.08 A, key 80 at 0.8: 0.066 W lost. The
    // 1.2 V buck: 0.672 W lost at 50 %; the 1.8 V linear output drops 0.099 - 0.054.
    EXPECT_EQ(p[Params::DA9062_BUCK3_LOAD_KEY_STRING], "KEY_LOAD_80");
    EXPECT_NEAR(p[Params::DA9062_POWER], 0.672f + 0.066f + 0.045f, 1e-6);
    EXPECT_NEAR(p[Params::TOTAL_SOM_POWER], 0.672f + 0.051f + 0.168f + 0.783f, 1e-5);
    EXPECT_EQ(p[Params::PSDDR_CLOCK_FREQ], 1200.0f);  // the defaults are stored

    // Reads only, at the table's clock: (0.5 x 1.08 + 0.24) / 1.2 = 0.65 A.
    p[Params::PSDDR_CLOCK_FREQ] = 1000.0f;
    p[Params::PSDDR_READ_RATE] = 0.5f;
    p[Params::PSDDR_WRITE_RATE] = 0.0f;
    model.calculate(p);
    EXPECT_NEAR(p[Params::LOAD_DDR4_VDD], 0.65f, 1e-6);

    // Storage traffic: 100 MB/s of reads adds 0.33 W core and 0.18 W interface, 50 MB/s of writes
    // 0.33 W and 0.045 W: (0.033 + 0.66) / 3.3 and (0.018 + 0.225) / 1.8.
    p[Params::EMMC_READ_BW] = 100.0f;
    p[Params::EMMC_WRITE_BW] = 50.0f;
    model.calculate(p);
    EXPECT_NEAR(p[Params::LOAD_EMMC_VCC], 0.21f, 1e-6);
    EXPECT_NEAR(p[Params::LOAD_EMMC_VCCQ], 0.135f, 1e-6);
    EXPECT_NEAR(p[Params::EMMC_POWER], 0.693f + 0.243f, 1e-6);

    // Device power: 1 A at 0.72 V and 0.2 A of 1.5 V bank current (no module rail feeds it).
    p[Params::FPGA_VCCINT_CURRENT] = 1.0f;
    p[Params::FPGA_VCCO15_CURRENT] = 0.2f;
    model.calculate(p);
    EXPECT_NEAR(p[Params::FPGA_POWER], 1.02f, 1e-6);
    // The memory termination: none in this file, so no TPS51200 power.
    EXPECT_EQ(p[Params::TPS51200DRCT_POWER], 0.0f);
}

TEST_F(S26, EachFigureTakesOverItsCalculationAndCanBeOverridden) {
    p[Params::FPGA_VCCINT_CURRENT] = 2.0f;
    p[Params::FPGA_VCCBRAM_CURRENT] = 0.5f;
    p[Params::FPGA_VPS_MGTRAFPGA_VTT_CURRENT] = 0.2f;
    model.calculate(p);
    std::vector<std::string> names;
    p.getFloatIntermediateCalculationNames(names);
    int pairs = 0;
    for (std::string const& name : names) {
        std::string const suffix = "_CALC";
        if (name.size() <= suffix.size() ||
            name.compare(name.size() - suffix.size(), suffix.size(), suffix) != 0)
            continue;
        auto const twin = Params::string_to_float_enum(name.substr(0, name.size() - suffix.size()));
        ASSERT_NE(twin, Params::LastFloat) << name;
        EXPECT_EQ(p[twin], p[Params::string_to_float_enum(name)]) << name;
        ++pairs;
    }
    EXPECT_EQ(pairs, 25 + 43);  // every output, and 43 computed figures

    // Another figure in X is what the other cells read: 0.45 A on the 0.85 V buck is 85 mW over,
    // while the calculation itself still gives no load.
    Params q;
    q[Params::REG_LOAD_VCC_PL_0V85] = 0.45f;
    EXPECT_NEAR(model.floatDispatchTable(q, data, "DA9062_BUCK2_OVERLIMIT"), 85.0f, 1e-3);
    EXPECT_EQ(model.floatDispatchTable(q, data, "REG_LOAD_VCC_PL_0V85_CALC"), 0.0f);
    // An efficiency put in place sets the loss: 0.2 A at 0.85 V at 50 % instead of the table's 0.75.
    Params r;
    r[Params::FPGA_VCCBRAM_CURRENT] = 0.2f;
    r[Params::DA9062_BUCK2_EFFICIENCY] = 0.5f;
    EXPECT_NEAR(model.floatDispatchTable(r, data, "DA9062_BUCK2_POWER"), 0.17f, 1e-6);
    // A full calculation computes everything afresh.
    model.calculate(r);
    EXPECT_FLOAT_EQ(r[Params::DA9062_BUCK2_EFFICIENCY], 0.75f);
}

// The shipped tables have a row for every key a load can round to, from no load to beyond the rating,
// and each curve is low at light load, highest in the upper middle and lower again above the rating.
TEST_F(S26, ShippedEfficiencyTablesCoverEveryKey) {
    prsm::test::ScopedDataDir dir(prsm::test::shippedDataDir());
    Data const shipped;
    std::vector<prsm::test::RatedConverter<Model>> const rows = {
        {Model::Converter::DA9062_BUCK1, Params::REG_LOAD_VCC_PS_1V20, 2.5f},
        {Model::Converter::DA9062_BUCK2, Params::REG_LOAD_VCC_PL_0V85, 0.35f},
        {Model::Converter::DA9062_BUCK3, Params::DA9062_BUCK3_LOAD, 2.0f},
        {Model::Converter::DA9062_BUCK4, Params::REG_LOAD_VCC_PL_1V80, 0.6f},
        {Model::Converter::DA9130, Params::REG_LOAD_VCC_PL_0V72, 6.5f},
        {Model::Converter::DA9131_CH1, Params::REG_LOAD_VCC_PS_0V85, 3.5f},
        {Model::Converter::DA9131_CH2, Params::REG_LOAD_VCCINT_VCU_0V90, 3.2f},
        {Model::Converter::MPM_A, Params::REG_LOAD_MGTRAVCC_0V85, 0.3f},
        {Model::Converter::MPM_B, Params::REG_LOAD_VMGTAVTT_1V20, 0.6f},
    };
    prsm::test::expectAnEfficiencyRowForEveryLoad(model, shipped, rows);
    for (auto const& row : rows) {
        auto const efficiency = [&](int milliamperes) {
            Params q;
            q[row.load] = milliamperes / 1000.0f;
            return model.calculateEfficiency(q, shipped, row.converter);
        };
        SCOPED_TRACE(Model::memberName(row.converter));
        int const rated = static_cast<int>(row.rating * 1000.0f);
        int const top = static_cast<int>(row.rating * 1200.0f);
        EXPECT_LT(efficiency(rated / 10), efficiency(rated * 6 / 10));
        EXPECT_LT(efficiency(top), efficiency(rated * 6 / 10));
    }
}

}  // namespace
