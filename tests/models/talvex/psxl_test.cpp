// The larger processor system's sheet on its shipped data file. Coefficients used below (W per MHz, from
// data/powercfg/talvex/PRSMTalvexPsxlData.cfg): CPU 5.12e-5 / 1.92e-4, L3_CACHE 3.84e-5 / 1.28e-4,
// FP_INTERCONNECT 3.2e-5 / 9.6e-5, RPU 1.28e-5 / 3.84e-5, TCM 3.2e-6 / 1.28e-5, OCM 3.84e-6 / 1.6e-5,
// LP_INTERCONNECT 1.6e-5 / 5.12e-5, ETHERNET 3.2e-5 / 1.28e-4 (pin activity 1, pins 6 in, 7 out, 1 both
// ways); PLL cores 9.6e-6 and 7.68e-6, PLL aux 4.95e-6 and 4.05e-6; pins on the bank at 1.8 V: receiver
// 1.62e-6, driver 2.592e-5, standing 3e-5 + 6e-5 W; at 3.3 V: 5.445e-6, 8.712e-5, 5e-5 + 1e-4 W; pins on
// the core: 1.92e-7, 3.84e-7 and 2e-5 W. Supplies at 0.8 V and 1.5 V as characterised; device scale 1.
#include <prsm/framework/PRSMSheetPresets.h>
#include <prsm/framework/PRSMSheetRegistry.h>
#include <prsm/models/talvex/PRSMTalvexPsxlModel.h>

#include "ModelFixture.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>

namespace {

using Params = PRSMTalvexPsxlParams;
using prsm::test::expectRel;

class Psxl : public prsm::test::ModelFixture<PRSMTalvexPsxlModel> {};

// Defaults: four application cores at 2 GHz and half load, two real-time cores, two TCM and two OCM
// banks at a quarter load, one of each peripheral but SPI at a tenth.
//   CPU   4 x (5.12e-5 + 1.92e-4 x 0.5) x 2000 = 1.1776
//   L3    (3.84e-5 + 1.28e-4 x 0.5) x 1200     = 0.12288
//   FPI   (3.2e-5 + 9.6e-5 x 0.5) x 800        = 0.064
//   PLL   9.6e-6 x 2000                        = 0.0192       -> VCCFPD 1.38368 W
//   RPU   2 x (1.28e-5 + 3.84e-5 / 4) x 1000   = 0.0448
//   TCM   2 x (3.2e-6 + 1.28e-5 / 4) x 1000    = 0.0128
//   OCM   2 x (3.84e-6 + 1.6e-5 / 4) x 800     = 0.012544
//   LPI   (1.6e-5 + 5.12e-5 / 4) x 600         = 0.01728
//   PLL   7.68e-6 x 2000                       = 0.01536
//   controllers USB 0.0088, ETHERNET 0.0056, SD 0.00256, QSPI 0.001792, UART 0.000256, I2C 0.0001664
//   pins' core side (worked per peripheral as for ETHERNET below) 1.01399168e-3
//                                                             -> VCCLPD 0.12297239168 W
//   PLL aux (4.95e-6 + 4.05e-6) x 2000 = 0.018                -> VCCAUXLPD
//   pins on the bank at 1.8 V: 11.3877072e-3                   -> VCCOPMIO2
// Ethernet pins: 7 receivers, 8 drivers, 14 pins, switching at 125 x 1 x 0.1 = 12.5 MHz:
//   core  12.5 x (1.92e-7 x 7 + 3.84e-7 x 8) + 2e-5 x 14       = 3.352e-4
//   bank  12.5 x (1.62e-6 x 7 + 2.592e-5 x 8) + 9e-5 x 14      = 3.99375e-3
TEST_F(Psxl, DefaultsGiveEachDomainItsBlocks) {
    expectRel(calc(Params::TOTAL_DYNAMIC_POWER), 1.38368 + 0.12297239168 + 0.018 + 0.0113877072);
    expectRel(p[Params::FPD_TOTAL_DYNAMIC_POWER], 1.38368);
    expectRel(p[Params::ETHERNET_IO_CORE_POWER], 3.352e-4);
    expectRel(p[Params::ETHERNET_IO_BANK_POWER], 3.99375e-3);
    EXPECT_EQ(p[Params::SPI_DYNAMIC_POWER], 0.0f);
    EXPECT_EQ(p[Params::SPI_IO_BANK_POWER], 0.0f);
    expectRel(p[Params::LPD_TOTAL_DYNAMIC_POWER], 0.12297239168);
    expectRel(p[Params::AUX_TOTAL_DYNAMIC_POWER], 0.018);
    expectRel(p[Params::MIO_TOTAL_DYNAMIC_POWER], 0.0113877072);
    EXPECT_EQ(p[Params::USED_PSXL_CPU], 4);
    EXPECT_EQ(p[Params::USED_PSXL_L3_CACHE], 1);
    EXPECT_EQ(p[Params::USED_PSXL_RPU], 2);
    EXPECT_EQ(p[Params::USED_PSXL_RPU_OCM], 2);
    EXPECT_EQ(p[Params::USED_PSXL_RPU_TCM], 2);
}

// VCCFPD at 0.88 V: 1.1^2.3 on the full-power blocks only. The bank at 3.3 V: the Ethernet pins
// 12.5 x (5.445e-6 x 7 + 8.712e-5 x 8) + 1.5e-4 x 14 = 0.0112884375 W. A 2.0 V bank is not a standard
// voltage: it is flagged and scales from 1.8 V, switching (2/1.8)^2 and standing 2/1.8.
TEST_F(Psxl, SuppliesScaleTheirOwnBlocks) {
    p[Params::VCCFPD] = 0.88f;
    p[Params::VCCOPMIO2] = 3.3f;
    double const scaling = std::pow(1.1, 2.3);
    expectRel(calc(Params::CPU_DYNAMIC_POWER), 1.1776 * scaling);
    expectRel(p[Params::FPD_PLL_CORE_POWER], 0.0192 * scaling);
    expectRel(p[Params::RPU_DYNAMIC_POWER], 0.0448);
    expectRel(p[Params::ETHERNET_IO_BANK_POWER], 0.0112884375);
    EXPECT_EQ(valid("IS_VALID_VCCOPMIO2"), 1);

    p[Params::VCCOPMIO2] = 2.0f;
    double const ratio = 2.0 / 1.8;
    expectRel(calc(Params::ETHERNET_IO_BANK_POWER), 2.73375e-3 * ratio * ratio + 1.26e-3 * ratio);
    EXPECT_EQ(valid("IS_VALID_VCCOPMIO2"), 0);

    p[Params::VCCAUXLPD] = 1.65f;  // the PLLs' analog part: (1.65 / 1.5)^2 = 1.21
    expectRel(calc(Params::AUX_TOTAL_DYNAMIC_POWER), 0.018 * 1.21);
}

TEST_F(Psxl, GatingAndSwitches) {
    p[Params::CPU_CLOCK_GATED] = 1;  // a gated core given work runs: the figure is unchanged
    expectRel(calc(Params::CPU_DYNAMIC_POWER), 1.1776);
    p[Params::CPU_LOAD] = 0.0f;  // idle and gated: nothing
    EXPECT_EQ(calc(Params::CPU_DYNAMIC_POWER), 0.0f);
    p[Params::CPU_CLOCK_GATED] = 0;  // idle, clocks running: 4 x 5.12e-5 x 2000
    expectRel(calc(Params::CPU_DYNAMIC_POWER), 0.4096);

    p[Params::RPU_POWER_GATED] = 1;
    p[Params::L3_CACHE_POWER_GATED] = 1;
    p[Params::FPD_PLL_ON_OFF] = 0;
    EXPECT_EQ(calc(Params::RPU_DYNAMIC_POWER), 0.0f);
    EXPECT_EQ(p[Params::L3_CACHE_DYNAMIC_POWER], 0.0f);
    EXPECT_EQ(p[Params::FPD_PLL_CORE_POWER], 0.0f);
    EXPECT_EQ(p[Params::FPD_PLL_AUX_POWER], 0.0f);
    expectRel(p[Params::AUX_TOTAL_DYNAMIC_POWER], 4.05e-6 * 2000);
    EXPECT_EQ(p[Params::USED_PSXL_RPU], 0);
    EXPECT_EQ(p[Params::USED_PSXL_L3_CACHE], 0);
    EXPECT_EQ(p[Params::USED_PSXL_CPU], 4);
}

// Each block reads its own row: its count, its gates and its domain, and nobody else's.
//   FP interconnect idle and clock-gated: 0; it has no power gate and counts once
//   LP interconnect idle, clocks running: 1.6e-5 x 600 = 0.0096 on VCCLPD, untouched by VCCFPD
//   four TCM banks: 4 x (3.2e-6 + 1.28e-5 / 4) x 1000 = 0.0256; OCM powered off: 0, none counted
//   two Ethernet controllers: 2 x 0.0056 = 0.0112, their pins' core side 2 x 3.352e-4 = 6.704e-4
TEST_F(Psxl, EachBlockFollowsItsOwnRow) {
    p[Params::VCCFPD] = 0.88f;
    p[Params::FP_INTERCONNECT_LOAD] = 0.0f;
    p[Params::FP_INTERCONNECT_CLOCK_GATED] = 1;
    p[Params::LP_INTERCONNECT_LOAD] = 0.0f;
    p[Params::TCM_MEMORY_CORES] = 4;
    p[Params::OCM_MEMORY_POWER_GATED] = 1;
    p[Params::ETHERNET_COUNT] = 2;
    EXPECT_EQ(calc(Params::FP_INTERCONNECT_DYNAMIC_POWER), 0.0f);
    expectRel(p[Params::LP_INTERCONNECT_DYNAMIC_POWER], 0.0096);
    expectRel(p[Params::TCM_MEMORY_DYNAMIC_POWER], 0.0256);
    EXPECT_EQ(p[Params::OCM_MEMORY_DYNAMIC_POWER], 0.0f);
    expectRel(p[Params::ETHERNET_DYNAMIC_POWER], 0.0112);
    expectRel(p[Params::ETHERNET_IO_CORE_POWER], 6.704e-4);
    expectRel(p[Params::USB_DYNAMIC_POWER], 0.0088);
    EXPECT_EQ(p[Params::USED_PSXL_RPU_TCM], 4);
    EXPECT_EQ(p[Params::USED_PSXL_RPU_OCM], 0);
}

// Impossible inputs are flagged and still calculated with as given.
TEST_F(Psxl, ValidityFlagsImpossibleInputs) {
    model.calculate(p);
    for (char const* flag : {"IS_VALID_CPU_CORES", "IS_VALID_CPU_LOAD", "IS_VALID_ETHERNET_COUNT",
                             "IS_VALID_SPI_CLK_FREQ", "IS_VALID_CPU_POWER_GATED", "IS_VALID_VCCFPD"})
        EXPECT_EQ(valid(flag), 1) << flag;
    p[Params::CPU_CORES] = 9;
    p[Params::CPU_LOAD] = 150.0f;
    p[Params::ETHERNET_COUNT] = 4;
    p[Params::SPI_CLK_FREQ] = 500.0f;
    p[Params::CPU_POWER_GATED] = 2;
    p[Params::VCCFPD] = 0.0f;
    model.calculate(p);
    for (char const* flag : {"IS_VALID_CPU_CORES", "IS_VALID_CPU_LOAD", "IS_VALID_ETHERNET_COUNT",
                             "IS_VALID_SPI_CLK_FREQ", "IS_VALID_CPU_POWER_GATED", "IS_VALID_VCCFPD"})
        EXPECT_EQ(valid(flag), 0) << flag;
    EXPECT_EQ(model.floatDispatchTable(p, data, "GET_MAX_CPU_CORES"), 8.0f);
    // Four Ethernet controllers: 4 x (3.2e-5 + 1.28e-4 x 0.1) x 125.
    expectRel(calc(Params::ETHERNET_DYNAMIC_POWER), 0.0224);
}

TEST_F(Psxl, PowerGrowsWithRateLoadAndUnitsAndIsLinearInCounts) {
    float const base = calc(Params::TOTAL_DYNAMIC_POWER);
    auto const grows = [&](auto cell, auto value) {
        Params before = p;
        p[cell] = value;
        EXPECT_GT(calc(Params::TOTAL_DYNAMIC_POWER), base);
        p = before;
    };
    grows(Params::CPU_CLK_FREQ, 2400.0f);
    grows(Params::CPU_LOAD, 90.0f);
    grows(Params::CPU_CORES, 6);
    grows(Params::OCM_MEMORY_LOAD, 80.0f);
    grows(Params::ETHERNET_LOAD, 50.0f);
    grows(Params::SPI_COUNT, 1);

    float const oneLink = calc(Params::ETHERNET_DYNAMIC_POWER);
    float const onePins = p[Params::ETHERNET_IO_BANK_POWER];
    p[Params::ETHERNET_COUNT] = 3;
    expectRel(calc(Params::ETHERNET_DYNAMIC_POWER), 3.0 * oneLink);
    expectRel(p[Params::ETHERNET_IO_BANK_POWER], 3.0 * onePins);
    p[Params::ETHERNET_COUNT] = 0;
    EXPECT_EQ(calc(Params::ETHERNET_IO_CORE_POWER), 0.0f);
}

// Every preset sets every input that a block may set, to a valid value, and a plausible figure.
TEST(PsxlPresets, EachIsAValidInputSet) {
    prsm::Sheet const* sheet = prsm::SheetRegistry::instance().find("TalvexPsxl");
    ASSERT_NE(sheet, nullptr);
    prsm::Sheet const* presets = prsm::findPresetSheet(*sheet);
    ASSERT_NE(presets, nullptr);
    auto const names = prsm::presetNames(*presets);
    EXPECT_EQ(names, (std::vector<std::string>{"IDLE", "LINUX_HEAVY", "LINUX_LIGHT", "REAL_TIME"}));
    for (std::string const& name : names) {
        auto instance = sheet->create();
        auto const inputs = prsm::presetInputs(*sheet, *presets, name);
        EXPECT_EQ(inputs.size(), 55u) << name;  // every input but the four rails and DEVICE
        for (auto const& [cell, text] : inputs) instance->set(cell, text);
        instance->calculate();
        for (auto const& [cell, text] : inputs) EXPECT_EQ(instance->isValid(cell), 1) << name << " " << cell;
        double const total = std::stod(instance->get("TOTAL_DYNAMIC_POWER"));
        EXPECT_GT(total, 0.05) << name;
        EXPECT_LT(total, 6.0) << name;
    }
}

}  // namespace
