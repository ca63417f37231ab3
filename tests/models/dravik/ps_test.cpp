// The older architecture's processing-system sheet and its presets on their shipped data files.
// Coefficients used below (data/powercfg/dravik/PRSMDravikPsData.cfg): CPU 2.89e-5 / 1.08375e-4 W per
// MHz, GPU 4.335e-5 / 1.80625e-4, FP_INTERCONNECT 8.67e-5 / 2.1675e-4, FPD PLL core 1.08375e-5, PLL aux
// 4.32e-6 and 3.6e-6; Ethernet 6 in, 7 out, 1 both ways on bank 1, pin activity 1; pins at 1.8 V:
// receiver 1.944e-6, driver 2.754e-5, standing 3.5e-5 + 7e-5 W; core side 2.89e-7, 5.78e-7, 2.5e-5 W.
// DDR4: controller 4.335e-5 / 1.08375e-4, PHY per bit 4.335e-7 / 1.156e-6 W per MHz of memory clock,
// pins per bit 2.88e-6 W per MT/s, 0.0072 W terminating, 0.0005 W standing, PLL 1.296e-5 W per MHz.
// LPDDR4: pins per bit 1.815e-6, 0.0024, 0.0003 at 1.1 V. Supplies as characterised (0.85, 1.2, 1.8 V).
#include <prsm/models/dravik/PRSMDravikPsModel.h>
#include <prsm/models/dravik/PRSMDravikPsPresetModel.h>

#include "ModelFixture.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

using Params = PRSMDravikPsParams;
using prsm::test::expectRel;

class DravikPs : public prsm::test::ModelFixture<PRSMDravikPsModel> {};

// Defaults: four cores at 1.2 GHz and half load, two GPU pixel processors at 600 MHz, DDR4-2400 x64
// with a quarter of the bandwidth reading and a quarter writing, one of each peripheral at a tenth.
//   CPU  4 x (2.89e-5 + 1.08375e-4 / 2) x 1200   = 0.39882
//   GPU  2 x (4.335e-5 + 1.80625e-4 / 2) x 600   = 0.160395
//   FPI  (8.67e-5 + 2.1675e-4 / 2) x 533         = 0.103974975
//   PLL  1.08375e-5 x 2400                       = 0.02601      -> VCCPSINTFP 0.689199975 W
// DDR at a memory clock of 1200 MHz and a share of 0.5:
//   core  (4.335e-5 + 1.08375e-4 x 0.5 + 64 x (4.335e-7 + 1.156e-6 x 0.5)) x 1200 = 0.1947282
//   pins  64 x (2.88e-6 x 2400 x 0.5 + 0.0072 x 0.5 + 0.0005)               = 0.483584
//   PLL   1.296e-5 x 1200 = 0.015552; PLLs' analog parts (4.32e-6 + 3.6e-6) x 2400 = 0.019008
// Ethernet pins switch at 125 x 1 x 0.1 = 12.5 MHz (7 receivers, 8 drivers, 14 pins):
//   bank  12.5 x (1.944e-6 x 7 + 2.754e-5 x 8) + 1.05e-4 x 14 = 4.3941e-3
//   core  12.5 x (2.89e-7 x 7 + 5.78e-7 x 8) + 2.5e-5 x 14     = 4.330875e-4
// SD on the same bank (6 receivers, 6 drivers, 7 pins) at 200 x 0.5 x 0.1 = 10 MHz:
//   10 x (1.944e-6 x 6 + 2.754e-5 x 6) + 1.05e-4 x 7 = 2.50404e-3  -> bank 1: 6.89814e-3 W
TEST_F(DravikPs, DefaultsGiveEachDomainItsBlocks) {
    expectRel(calc(Params::FPD_TOTAL_DYNAMIC_POWER), 0.689199975);
    expectRel(p[Params::CPU_DYNAMIC_POWER], 0.39882);
    expectRel(p[Params::GPU_DYNAMIC_POWER], 0.160395);
    expectRel(p[Params::DDR_CORE_POWER], 0.1947282);
    expectRel(p[Params::DDR_IO_POWER], 0.483584);
    expectRel(p[Params::DDR_PLL_POWER], 0.015552);
    expectRel(p[Params::PLL_AUX_POWER], 0.019008);
    expectRel(p[Params::AUX_POWER], 0.012);
    expectRel(p[Params::ETHERNET_IO_BANK_POWER], 4.3941e-3);
    expectRel(p[Params::ETHERNET_IO_CORE_POWER], 4.330875e-4);
    expectRel(p[Params::MIO_BANK1_POWER], 6.89814e-3);
    expectRel(p[Params::DDR_CLOCK_FREQ], 1200.0);
    expectRel(p[Params::PEAK_BANDWIDTH], 19.2);  // 2400 MT/s x 8 bytes
    expectRel(p[Params::BANDWIDTH], 9.6);
    double const parts = p[Params::FPD_TOTAL_DYNAMIC_POWER] + p[Params::LPD_TOTAL_DYNAMIC_POWER] + 0.1947282 +
                         0.483584 + 0.015552 + 0.019008 + 0.012 + p[Params::MIO_BANK0_POWER] + 6.89814e-3 +
                         p[Params::MIO_BANK2_POWER];
    expectRel(p[Params::TOTAL_DYNAMIC_POWER], parts);
    EXPECT_GT(p[Params::LPD_TOTAL_DYNAMIC_POWER], 0.0f);
    EXPECT_GT(p[Params::MIO_BANK0_POWER], 0.0f);  // flash, console, I2C, SPI
    EXPECT_GT(p[Params::MIO_BANK2_POWER], 0.0f);  // USB
}

// LPDDR4 x32 at 2133 MT/s, 30 % reads and 10 % writes, pins at 1.1 V:
//   32 x (1.815e-6 x 2133 x 0.4 + 0.0024 x 0.4 + 0.0003) = 0.089873856 W.
// VCCPSINTFP at 0.935 V scales the full-power blocks by 1.1^2.3 and nothing else.
TEST_F(DravikPs, MemoryTypeAndSuppliesScaleTheirOwnParts) {
    p[Params::MEMORY_TYPE] = "LPDDR4";
    p[Params::DATA_WIDTH] = 32;
    p[Params::DATA_RATE] = 2133.0f;
    p[Params::READ_RATE] = 0.3f;
    p[Params::WRITE_RATE] = 0.1f;
    p[Params::VCCOPSDDR12] = 1.1f;
    p[Params::VCCPSINTFP] = 0.935f;
    expectRel(calc(Params::DDR_IO_POWER), 0.089873856);
    expectRel(p[Params::CPU_DYNAMIC_POWER], 0.39882 * std::pow(1.1, 2.3));
    expectRel(p[Params::DDR_PLL_POWER], 1.296e-5 * 1066.5);
    EXPECT_EQ(valid("IS_VALID_DATA_WIDTH"), 1);
    EXPECT_EQ(valid("IS_VALID_DATA_RATE"), 1);
    EXPECT_EQ(valid("IS_VALID_VCCOPSDDR12"), 1);
}

TEST_F(DravikPs, ImpossibleInputsAreFlaggedAndStillCalculated) {
    p[Params::MEMORY_TYPE] = "LPDDR4";
    p[Params::DATA_WIDTH] = 64;      // LPDDR4 is at most 32 bits wide here
    p[Params::DATA_RATE] = 3200.0f;  // beyond LPDDR4's 2400
    p[Params::READ_RATE] = 25.0f;    // a percent typed as a fraction
    p[Params::CPU_CORES] = 5;
    p[Params::VCCOPSIO0500] = 2.0f;  // no bank standard
    model.calculate(p);
    EXPECT_EQ(valid("IS_VALID_DATA_WIDTH"), 0);
    EXPECT_EQ(valid("IS_VALID_DATA_RATE"), 0);
    EXPECT_EQ(valid("IS_VALID_VCCOPSDDR12"), 0);  // 1.2 V on LPDDR4's 1.1 V pins
    EXPECT_EQ(valid("IS_VALID_READ_RATE"), 0);
    EXPECT_EQ(valid("IS_VALID_CPU_CORES"), 0);
    EXPECT_EQ(valid("IS_VALID_VCCOPSIO0500"), 0);
    EXPECT_EQ(valid("IS_VALID_MEMORY_TYPE"), 1);
    // Nothing is clamped: five cores cost five cores' power.
    expectRel(p[Params::CPU_DYNAMIC_POWER], 5 * 0.099705);
    EXPECT_GT(p[Params::DDR_IO_POWER], 0.0f);

    p = Params();
    p[Params::MEMORY_TYPE] = "DDR5";
    model.calculate(p);
    EXPECT_EQ(valid("IS_VALID_MEMORY_TYPE"), 0);
    EXPECT_EQ(valid("IS_VALID_DATA_RATE"), 0);  // a type without rates accepts none
}

// Linear in the traffic and the load, gated to nothing.
TEST_F(DravikPs, PowerFollowsTrafficLoadAndGating) {
    auto ioAt = [&](float read, float write) {
        p[Params::READ_RATE] = read;
        p[Params::WRITE_RATE] = write;
        return static_cast<double>(calc(Params::DDR_IO_POWER));
    };
    double const idle = ioAt(0.0f, 0.0f), some = ioAt(0.2f, 0.1f), twice = ioAt(0.4f, 0.2f);
    expectRel(idle, 64 * 0.0005);
    expectRel(twice - idle, 2 * (some - idle));
    expectRel(ioAt(0.1f, 0.2f), some);  // reads and writes cost alike

    p = Params();
    p[Params::CPU_LOAD] = 100.0f;
    double const full = calc(Params::CPU_DYNAMIC_POWER);
    p[Params::CPU_LOAD] = 0.0f;
    double const idleCores = calc(Params::CPU_DYNAMIC_POWER);
    expectRel(full - idleCores, 4 * 1.08375e-4 * 1200);
    p[Params::CPU_CLOCK_GATED] = 1;
    EXPECT_EQ(calc(Params::CPU_DYNAMIC_POWER), 0.0f);
    p[Params::CPU_LOAD] = 50.0f;
    p[Params::CPU_POWER_GATED] = 1;
    EXPECT_EQ(calc(Params::CPU_DYNAMIC_POWER), 0.0f);
    p[Params::ETHERNET_COUNT] = 0;
    EXPECT_EQ(calc(Params::ETHERNET_IO_BANK_POWER), 0.0f);
}

// The presets grow from idle to a heavy load, and carry the traffic but not the memory fitted.
TEST(DravikPsPreset, PresetsOrderTheLoadAndSetTheTraffic) {
    PRSMDravikPsPresetModel const& presets = PRSMDravikPsPresetModel::getGlobal();
    PRSMDravikPsModel const& ps = PRSMDravikPsModel::getGlobal();
    auto total = [&](char const* name, PRSMDravikPsPresetParams& chosen) {
        chosen[PRSMDravikPsPresetParams::PRESET] = name;
        presets.calculate(chosen);
        Params in;
        in[Params::CPU_CORES] = chosen[PRSMDravikPsPresetParams::CPU_CORES];
        in[Params::CPU_LOAD] = chosen[PRSMDravikPsPresetParams::CPU_LOAD];
        in[Params::GPU_POWER_GATED] = chosen[PRSMDravikPsPresetParams::GPU_POWER_GATED];
        in[Params::READ_RATE] = chosen[PRSMDravikPsPresetParams::READ_RATE];
        in[Params::WRITE_RATE] = chosen[PRSMDravikPsPresetParams::WRITE_RATE];
        ps.calculate(in);
        return in[Params::TOTAL_DYNAMIC_POWER];
    };
    PRSMDravikPsPresetParams idle, withLinux, heavy;
    float const idlePower = total("IDLE", idle), linuxPower = total("LINUX", withLinux),
                heavyPower = total("HEAVY_LOAD", heavy);
    EXPECT_LT(idlePower, linuxPower);
    EXPECT_LT(linuxPower, heavyPower);
    EXPECT_EQ(withLinux[PRSMDravikPsPresetParams::CPU_LOAD], 25.0f);
    EXPECT_EQ(heavy[PRSMDravikPsPresetParams::READ_RATE], 0.4f);
}

}  // namespace
