// The memory-controller sheet on the round figures of tests/data/powercfg/talvex/PRSMTalvexDdrmcData.cfg:
// DDR4 drive 40 ohm, termination 60 (data, to VDDQ) and 40 (command, to VTT: half the swing), loads
// 4 + 1 per rank (data) and 2 + 1 per byte and rank (command) pF; LPDDR4 terminated to ground, command
// termination 120 ohm, loads 2 + 1 and 2 + 0.5 pF; LPDDR4X swings half of VCCO. PHY 2 pF a pin clocked,
// 0.5 pF a bit moved, PLL 10 mA + 5 mA/GHz a bank of 50 pins, receivers 0.5 mA; controller 400 pF +
// 5 pF a bit + 50 pF a rank clocked, 1 pF a bit moved; VPOW 2; every scale 1 but ZQVE1408's VCCSOC 0.5.
#include <prsm/design/DeclaredWarnings.h>
#include <prsm/framework/PRSMSheetRegistry.h>
#include <prsm/models/talvex/PRSMTalvexDdrmcModel.h>

#include "ModelFixture.h"

#include <gtest/gtest.h>

namespace {

using Params = PRSMTalvexDdrmcParams;
using prsm::test::expectRel;

class Ddrmc : public prsm::test::ModelFixture<PRSMTalvexDdrmcModel> {};

// One DDR4-3200 x64 controller, one rank, reads 0.4 and writes 0.3 of the peak, nominal rails.
// Pins: data 64 + 8 masks = 72, strobes 16, command 24 + 3 + 2 = 29, clock 2: 119, three banks of 50.
// Termination: data pins 0.5 x 1.2 V x 0.4 / 100 ohm = 2.4 mA, command 0.5 x 1.2 x 0.5 / 80 = 3.75 mA;
//   1.2 V x (2.4 x 88 + 3.75 x 31) = 392.94 mW.
// Switching (clock 1600 MHz): data rises 72 x 3200 x 0.3 x 0.25 + 16 x 1600 x 0.3 = 24960 into 5 pF,
//   command rises 29 x 1600 x 0.25 x 0.7 x 0.5 + 2 x 1600 = 7260 into 10 pF: 197400 pF x MHz x 1.44
//   x 0.001 = 284.256 mW.
// PHY: (119 x 2 x 1600 + 72 x 3200 x 0.7 x 0.5) x 0.64 x 0.001 = 295.3216 mW on VCCINTIO;
//   1.5 V x (3 x (10 + 5 x 1.6) + 88 x 0.5 x 0.4) = 107.4 mW on VCCAUX.
// Controller at 800 MHz: ((400 + 64 x 5 + 50) x 800 + 64 x 3200 x 0.7) x 0.64 x 0.001 = 485.9904 mW.
TEST_F(Ddrmc, DefaultsAreOneDdr4InterfaceSplitOverItsFiveRails) {
    expectRel(calc(Params::IO_TERMINATION_COMPONENT), 392.94);
    expectRel(p[Params::IO_SWITCHING_COMPONENT], 284.256);
    expectRel(p[Params::VCCINTIO_INSTANCE_POWER], 295.3216);
    expectRel(p[Params::VCCAUX_INSTANCE_POWER], 107.4);
    expectRel(p[Params::VCCSOC_INSTANCE_POWER], 485.9904);
    expectRel(p[Params::VCCO12_POWER], 0.677196);
    EXPECT_EQ(p[Params::VCCO11_POWER], 0.0f);
    expectRel(p[Params::TOTAL_POWER], 1.565908);
    expectRel(p[Params::PEAK_BANDWIDTH], 25.6);
    expectRel(p[Params::BANDWIDTH], 17.92);
    EXPECT_EQ(p[Params::IO_PINS], 119);
    EXPECT_EQ(p[Params::USED_VCCO12_XPIO_BANKS], 3);
    EXPECT_EQ(p[Params::USED_VCCO11_XPIO_BANKS], 0);
    EXPECT_EQ(p[Params::USED_DDRMC], 1);
    EXPECT_EQ(p[Params::DATA_RATE], 3200.0f);
}

// Three LPDDR4X x32 controllers (two 16-bit channels), two ranks, at the type's 4000 MT/s, half reads
// and half writes, VCCO11 1.1 V, swing 0.55 V. Pins: 36 data, 8 strobes, 2 x (6 + 2 x 2) + 1 = 21
// command, 4 clock: 69, two banks. Terminated to ground, the pins draw while this side sends:
// data 0.5 x 0.55 x 0.5 / 100 = 1.375 mA, command 0.5 x 0.55 / 160 = 1.71875 mA;
//   1.1 x (1.375 x 44 + 1.71875 x 25) = 113.815625 mW.
// Switching: (36 x 4000 x 0.5 x 0.25 + 8 x 2000 x 0.5) x 4 pF + (21 x 2000 x 0.25 x 0.5 + 4 x 2000) x
//   6 pF = 183500; x 1.1 x 0.55 x 0.001 = 111.0175 mW. Per controller 224.833125 mW, three: 0.674499 W.
// Controller at 500 MHz: ((400 + 160 + 100) x 500 + 32 x 4000) x 0.64 x 0.001 = 293.12 mW, three: 0.87936 W.
TEST_F(Ddrmc, Lpddr4xDrawsItsLowSwingFromVcco11WhileWriting) {
    p[Params::MEMORY_TYPE] = "LPDDR4X";
    p[Params::DATA_WIDTH] = 32;
    p[Params::RANKS] = 2;
    p[Params::INSTANCE_COUNT] = 3;
    p[Params::READ_RATE] = 0.5f;
    p[Params::WRITE_RATE] = 0.5f;
    expectRel(calc(Params::IO_TERMINATION_COMPONENT), 113.815625);
    expectRel(p[Params::IO_SWITCHING_COMPONENT], 111.0175);
    expectRel(p[Params::VCCO11_POWER], 0.674499375);
    EXPECT_EQ(p[Params::VCCO12_POWER], 0.0f);
    expectRel(p[Params::VCCSOC_POWER], 0.87936);
    EXPECT_EQ(p[Params::DATA_RATE], 4000.0f);
    EXPECT_EQ(p[Params::IO_PINS], 69);
    EXPECT_EQ(p[Params::USED_VCCO11_XPIO_BANKS], 6);
    EXPECT_EQ(p[Params::USED_VCCO12_XPIO_BANKS], 0);
    EXPECT_EQ(valid("IS_VALID_VCCO11"), 1);
    EXPECT_EQ(valid("IS_VALID_ECC"), 1);
    EXPECT_EQ(model.calculateValidValuesEcc(p, data), "NO");  // no check bits on this type
}

// A part's own limits: ZQVE1408 runs DDR4 at 2400 MT/s at most (the default rate), has two controllers
// and scales the controller by 0.5. x32 with ECC: 40 bits, 5 bytes; at 600 MHz
// ((400 + 40 x 5 + 50) x 600 + 40 x 2400 x 0.7) x 0.64 x 0.001 x 0.5 = 146.304 mW.
TEST_F(Ddrmc, ThePartSetsTheFastestRateTheControllersAndTheScale) {
    p[Params::DEVICE] = "ZQVE1408";
    p[Params::DATA_WIDTH] = 32;
    p[Params::ECC] = "YES";
    p[Params::INSTANCE_COUNT] = 2;
    expectRel(calc(Params::VCCSOC_INSTANCE_POWER), 146.304);
    EXPECT_EQ(p[Params::DATA_RATE], 2400.0f);
    EXPECT_EQ(model.floatDispatchTable(p, data, "GET_MAX_DATA_RATE"), 2400.0f);
    EXPECT_EQ(model.floatDispatchTable(p, data, "GET_MAX_INSTANCE_COUNT"), 2.0f);
    EXPECT_EQ(model.calculateValidValuesEcc(p, data), "NO,YES");
    EXPECT_EQ(p[Params::IO_PINS], 45 + 10 + 29 + 2);
    EXPECT_EQ(valid("IS_VALID_INSTANCE_COUNT"), 1);
    p[Params::INSTANCE_COUNT] = 3;  // one more than the part has
    EXPECT_EQ(valid("IS_VALID_INSTANCE_COUNT"), 0);
}

// Impossible combinations are reported and still calculated as given, never clamped.
TEST_F(Ddrmc, ImpossibleCombinationsAreInvalidAndStillCalculated) {
    p[Params::DATA_WIDTH] = 48;      // not 16 doubled
    p[Params::RANKS] = 3;            // at most 2
    p[Params::DATA_RATE] = 3600.0f;  // beyond DDR4-3200
    p[Params::INSTANCE_COUNT] = 5;   // the part has 4
    p[Params::VCCO12] = 1.35f;       // not a DDR4 bank voltage
    p[Params::VCCO11] = 1.35f;       // unused by DDR4: only above 0 is asked
    p[Params::READ_RATE] = 0.8f;
    p[Params::WRITE_RATE] = 0.6f;  // 1.4 of the peak
    EXPECT_EQ(valid("IS_VALID_DATA_WIDTH"), 0);
    EXPECT_EQ(valid("IS_VALID_RANKS"), 0);
    EXPECT_EQ(valid("IS_VALID_DATA_RATE"), 0);
    EXPECT_EQ(valid("IS_VALID_INSTANCE_COUNT"), 0);
    EXPECT_EQ(valid("IS_VALID_VCCO12"), 0);
    EXPECT_EQ(valid("IS_VALID_VCCO11"), 1);
    EXPECT_EQ(valid("IS_VALID_ECC"), 1);
    EXPECT_EQ(p[Params::DATA_RATE], 3600.0f);
    EXPECT_EQ(p[Params::USED_DDRMC], 5);
    EXPECT_GT(p[Params::TOTAL_POWER], 0.0f);
    for (int width : {8, 128}) {
        p[Params::DATA_WIDTH] = width;
        EXPECT_EQ(valid("IS_VALID_DATA_WIDTH"), 0) << width;
    }
    p[Params::DATA_WIDTH] = 16;
    p[Params::ECC] = "YES";  // too narrow for check bits
    EXPECT_EQ(valid("IS_VALID_ECC"), 0);
    p[Params::MEMORY_TYPE] = "LPDDR4";
    p[Params::VCCO11] = 1.2f;  // LPDDR4 banks run at 1.1 V
    EXPECT_EQ(valid("IS_VALID_VCCO11"), 0);

    // Reads and writes beyond the peak are warned about through the sheet's declared range.
    prsm::Sheet const* sheet = prsm::SheetRegistry::instance().find("TalvexDdrmc");
    ASSERT_NE(sheet, nullptr);
    auto instance = sheet->create();
    instance->set("READ_RATE", "0.8");
    instance->set("WRITE_RATE", "0.6");
    instance->calculate();
    bool warned = false;
    for (auto const& [cell, message] : prsm::design::declaredWarnings(*sheet, *instance))
        warned = warned || (cell == "BANDWIDTH_SHARE" && message.find("1.4") != std::string::npos);
    EXPECT_TRUE(warned);

    // A memory type the file does not know has no pins, no rail and no rate: 0 W, reported.
    Params unknown;
    unknown[Params::MEMORY_TYPE] = "DDR5";
    model.calculate(unknown);
    EXPECT_EQ(model.intDispatchTable(unknown, data, "IS_VALID_MEMORY_TYPE"), 0);
    EXPECT_EQ(unknown[Params::TOTAL_POWER], 0.0f);
}

TEST_F(Ddrmc, PowerGrowsWithRateWidthTrafficAndRanksAndIsLinearInControllers) {
    float const base = calc(Params::TOTAL_POWER);
    auto const with = [this](auto set) {
        Params q;
        set(q);
        model.calculate(q);
        return q[Params::TOTAL_POWER];
    };
    EXPECT_LT(with([](Params& q) { q[Params::DATA_RATE] = 2400.0f; }), base);
    EXPECT_LT(with([](Params& q) { q[Params::DATA_WIDTH] = 32; }), base);
    EXPECT_GT(with([](Params& q) { q[Params::ECC] = "YES"; }), base);
    EXPECT_GT(with([](Params& q) { q[Params::READ_RATE] = 0.6f; }), base);
    EXPECT_GT(with([](Params& q) { q[Params::WRITE_RATE] = 0.5f; }), base);
    EXPECT_GT(with([](Params& q) { q[Params::RANKS] = 2; }), base);
    // Idle, the PHY still clocks every pin and the command bus stays terminated.
    EXPECT_GT(with([](Params& q) {
                  q[Params::READ_RATE] = 0.0f;
                  q[Params::WRITE_RATE] = 0.0f;
              }),
              0.0f);
    expectRel(with([](Params& q) { q[Params::INSTANCE_COUNT] = 3; }), 3.0 * base);
    EXPECT_EQ(with([](Params& q) { q[Params::INSTANCE_COUNT] = 0; }), 0.0f);
}

}  // namespace
