// The general-purpose I/O sheet on tests/data/powercfg/talvex/PRSMTalvexIoData.cfg: every figure below
// is worked out by hand from that file's round values (HDIO pad 2 pF, 20 pins a bank; XPIO pad 1 pF, 50
// pins; LVCMOS18 driver 0.2 pF + 0.1 pF/mA; SSTL12, POD12 and DIFF_SSTL12 driver 1 pF and 40 ohms;
// ZQVC1902 scales by 1, other parts by the DEFAULT 2).
#include <prsm/design/DeclaredWarnings.h>
#include <prsm/framework/PRSMSheetRegistry.h>
#include <prsm/models/talvex/PRSMTalvexIoModel.h>

#include "ModelFixture.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using Params = PRSMTalvexIoParams;
using prsm::test::expectRel;

class Io : public prsm::test::ModelFixture<PRSMTalvexIoModel> {};

// One LVCMOS18 output on an HDIO bank, 200 Mb/s, half its bits changing: its line cycles at
// 200 x 0.5 / 2 = 50 MHz. It drives 5 pF + 2 pF of pad + (0.2 + 0.1 x 8 mA) of output stage = 8 pF:
//   VCCO18    8 x 1.8^2 x 50 x 0.001                    = 1.296 mW
//   VCCINTIO  (0.1 x 50 + 0.02 x 200 / 2) x 0.8^2 x 0.001 = 0.00448 mW
// and fills one HDIO bank at 1.8 V.
TEST_F(Io, DefaultsAreOneLvcmos18OutputOfAboutAMilliwatt) {
    expectRel(calc(Params::TOTAL_POWER), 1.30048e-3);
    expectRel(p[Params::VCCO18_POWER], 1.296e-3);
    expectRel(p[Params::VCCINTIO_POWER], 4.48e-6);
    EXPECT_EQ(p[Params::VCCO12_POWER], 0.0f);
    EXPECT_EQ(p[Params::VCCAUX_POWER], 0.0f);  // an output's receiver is off
    EXPECT_EQ(p[Params::TERMINATION_COMPONENT], 0.0f);
    EXPECT_EQ(p[Params::VCCO_RAIL], "VCCO18");
    EXPECT_EQ(model.getOdt(p, data), 0.0f);  // unterminated: read only when asked
    EXPECT_EQ(p[Params::PINS_USED], 1);
    EXPECT_EQ(p[Params::BANKS_USED], 1);
    EXPECT_EQ(p[Params::USED_VCCO18_HDIO_BANKS], 1);
    EXPECT_EQ(p[Params::USED_VCCO12_XPIO_BANKS], 0);
}

// A 72-bit SSTL12 data bus on XPIO at 2,400 Mb/s, driving 40 % of the time, on a part without a row
// (scale 2). Lines cycle at 600 MHz; the output stage is 3 + 1 + 1 = 5 pF.
//   switching    0.4 x 5 x 1.44 x 600 x 0.001 x 2                              = 3.456 mW
//   termination  driving: 0.5 x (1 - 0.5) / (40 + 40) = 0.003125 /ohm of VCCO current per volt;
//                receiving: the mean line is (0.5/40 + 0.5/40) / (1/40 + 1/40) = 0.5, so the divider's
//                upper half carries (1 - 0.5) x 0.5/40 = 0.00625;
//                (0.4 x 0.003125 + 0.6 x 0.00625) x 1.44 x 1000 x 2             = 14.4 mW
//   receiver     (0.5 mA x 1.5 + 0.6 x 0.1 x 2.25 x 600 x 0.001) x 2 = (0.75 + 0.081) x 2 = 1.662 mW
//   I/O logic    ((0.4 x 0.2 + 0.6 x 0.1) x 600 + 0.05 x 1200) x 0.64 x 0.001 x 2  = 0.18432 mW
// 72 signals: VCCO12 72 x 17.856 = 1.285632 W; 72 pins fill two banks of 50.
TEST_F(Io, ABidirectionalSstlBusDrawsItsTerminationsOnVcco12) {
    p[Params::BANK_TYPE] = "XPIO";
    p[Params::IO_STANDARD] = "SSTL12";
    p[Params::DIRECTION] = "BIDIR";
    p[Params::OUTPUT_SHARE] = 0.4f;
    p[Params::PIN_COUNT] = 72;
    p[Params::DATA_RATE] = 2400.0f;
    p[Params::LOAD_CAP] = 3.0f;
    p[Params::DEVICE] = "NOSUCH";
    expectRel(calc(Params::VCCO12_POWER), 1.285632);
    expectRel(p[Params::VCCAUX_POWER], 72 * 1.662e-3);
    expectRel(p[Params::VCCINTIO_POWER], 72 * 0.18432e-3);
    expectRel(p[Params::TOTAL_POWER], 72 * (17.856 + 1.662 + 0.18432) * 1e-3);
    EXPECT_EQ(p[Params::VCCO18_POWER], 0.0f);
    EXPECT_EQ(p[Params::ODT], 40.0f);  // the standard's defaults
    EXPECT_EQ(p[Params::EXTERNAL_TERMINATION], 40.0f);
    EXPECT_EQ(p[Params::BANKS_USED], 2);
    EXPECT_EQ(p[Params::USED_VCCO12_XPIO_BANKS], 2);
    EXPECT_EQ(p[Params::USED_VCCO12_X5IO_BANKS], 0);
    EXPECT_EQ(valid("IS_VALID_IO_STANDARD"), 1);
    EXPECT_EQ(valid("IS_VALID_DATA_RATE"), 1);
}

// At 200 Mb/s (50 MHz lines) on XPIO with 5 pF loads, 1.2 V and 1.5 V:
//   POD12 input, 40-ohm termination to VCCO against a 40-ohm driver: the mean line is
//     (0.5/40 + 1/40) / (1/40 + 1/40) = 0.75, so (1 - 0.75) / 40 x 1.44 x 1000       = 9 mW
//   POD12 output into a termination to VCCO: no DC current from our VCCO; switching
//     (5 + 1 + 1) x 1.44 x 50 x 0.001                                               = 0.504 mW
//   DIFF_SSTL12 output, ten pairs: 2 lines x (0.003125 x 1.44 x 1000 + 0.504)        = 10.008 mW a pair
//   LVDS output: 4 mA at 1.5 V = 6 mW whatever the data; input: 1 mA x 1.5 + 0.1 x 2.25 x 50 x 0.001
TEST_F(Io, TerminationsAndCurrentModeDriversFollowTheirStandards) {
    auto const run = [this](char const* standard, char const* direction, int pins = 1) {
        p = Params{};
        p[Params::BANK_TYPE] = "XPIO";
        p[Params::IO_STANDARD] = standard;
        p[Params::DIRECTION] = direction;
        p[Params::PIN_COUNT] = pins;
        model.calculate(p);
    };
    run("POD12", "INPUT");
    expectRel(p[Params::TERMINATION_COMPONENT], 9.0);
    EXPECT_EQ(p[Params::SWITCHING_COMPONENT], 0.0f);
    expectRel(p[Params::RECEIVER_COMPONENT], 0.76125);

    run("POD12", "OUTPUT");
    EXPECT_EQ(p[Params::TERMINATION_COMPONENT], 0.0f);
    expectRel(p[Params::SWITCHING_COMPONENT], 0.504);

    run("DIFF_SSTL12", "OUTPUT", 10);
    expectRel(p[Params::VCCO_SIGNAL_POWER], 10.008);
    expectRel(p[Params::VCCO12_POWER], 0.10008);
    EXPECT_EQ(p[Params::PINS_USED], 20);  // PIN_COUNT counts pairs

    run("LVDS", "OUTPUT");
    expectRel(p[Params::DRIVER_BIAS_COMPONENT], 6.0);
    EXPECT_EQ(p[Params::SWITCHING_COMPONENT], 0.0f);
    expectRel(p[Params::VCCO15_POWER], 6e-3);
    EXPECT_EQ(p[Params::USED_VCCO15_XPIO_BANKS], 1);

    run("LVDS", "INPUT");
    EXPECT_EQ(p[Params::DRIVER_BIAS_COMPONENT], 0.0f);
    expectRel(p[Params::RECEIVER_COMPONENT], 1.51125);
}

// Impossible combinations are invalid inputs: reported, calculated as given, never a crash.
TEST_F(Io, ImpossibleCombinationsAreInvalidAndStillCalculated) {
    p[Params::BANK_TYPE] = "XPIO";  // LVCMOS18 is an HDIO standard here
    p[Params::DRIVE_STRENGTH] = 10;
    p[Params::ODT] = 40.0f;  // an unterminated standard
    p[Params::TOGGLE_RATE] = 50.0f;
    calc(Params::TOTAL_POWER);
    EXPECT_EQ(valid("IS_VALID_IO_STANDARD"), 0);
    EXPECT_EQ(model.calculateValidValuesIoStandard(p, data), "SSTL12,POD12,DIFF_SSTL12,LVDS");
    EXPECT_EQ(valid("IS_VALID_DATA_RATE"), 0);  // no rate on a bank that does not carry it
    EXPECT_EQ(valid("IS_VALID_DRIVE_STRENGTH"), 0);
    EXPECT_EQ(valid("IS_VALID_ODT"), 0);
    EXPECT_EQ(valid("IS_VALID_TOGGLE_RATE"), 0);
    // 100 times the default's switching, on the XPIO pad: 1 x (5 + 1 + 1.2) x 3.24 x 5000 x 0.001.
    expectRel(p[Params::SWITCHING_COMPONENT], 7.2 * 3.24 * 5.0);
    EXPECT_EQ(p[Params::USED_VCCO18_HDIO_BANKS], 0);  // the static sheet counts no 1.8 V XPIO banks

    // SSTL12 on a 1.5 V rail: the standard leaves the choices and its rail's range says why.
    Params q;
    q[Params::BANK_TYPE] = "XPIO";
    q[Params::IO_STANDARD] = "SSTL12";
    q[Params::VCCO12] = 1.5f;
    q[Params::DATA_RATE] = 4000.0f;
    q[Params::DRIVE_STRENGTH] = 8;
    q[Params::ODT] = 20.0f;
    model.calculate(q);
    EXPECT_EQ(model.intDispatchTable(q, data, "IS_VALID_IO_STANDARD"), 0);
    EXPECT_EQ(model.calculateValidValuesIoStandard(q, data), "LVDS");
    expectRel(model.floatDispatchTable(q, data, "VCCO12_STANDARD_MIN"), 1.14);
    expectRel(model.floatDispatchTable(q, data, "VCCO12_STANDARD_MAX"), 1.26);
    EXPECT_EQ(model.floatDispatchTable(q, data, "VCCO15_STANDARD_MAX"), 0.0f);
    EXPECT_EQ(model.intDispatchTable(q, data, "IS_VALID_DATA_RATE"), 0);  // above 3,200
    EXPECT_EQ(model.floatDispatchTable(q, data, "GET_MAX_DATA_RATE"), 3200.0f);
    EXPECT_EQ(model.intDispatchTable(q, data, "IS_VALID_DRIVE_STRENGTH"), 0);
    EXPECT_EQ(model.intDispatchTable(q, data, "IS_VALID_ODT"), 0);  // below 30 ohms
    EXPECT_GT(q[Params::VCCO12_POWER], 0.0f);

    // A standard the file does not know has no rail: nothing on any VCCO rail, no banks.
    Params unknown;
    unknown[Params::IO_STANDARD] = "GTL";
    model.calculate(unknown);
    EXPECT_EQ(model.intDispatchTable(unknown, data, "IS_VALID_IO_STANDARD"), 0);
    EXPECT_EQ(unknown[Params::VCCO_RAIL], "NONE");
    EXPECT_EQ(unknown[Params::VCCO18_POWER], 0.0f);
    EXPECT_EQ(unknown[Params::PINS_USED], 0);
    EXPECT_EQ(unknown[Params::USED_VCCO18_HDIO_BANKS], 0);
}

// In a design every block takes the design's VCCO voltages: an SSTL12 bank on a 1.5 V VCCO12 is warned
// on that rail, with the range SSTL12 allows there (1.2 V within 5 %), and nowhere else.
TEST(IoDesign, AVoltageTheStandardCannotTakeIsWarnedOnItsRail) {
    prsm::Sheet const& sheet = *prsm::SheetRegistry::instance().find("TalvexIo");
    auto const block = sheet.create();
    block->set("BANK_TYPE", "XPIO");
    block->set("IO_STANDARD", "SSTL12");
    block->set("VCCO12", "1.5");
    block->calculate();
    auto const warnings = prsm::design::declaredWarnings(sheet, *block);
    ASSERT_EQ(warnings.size(), 1u);
    EXPECT_EQ(warnings[0].first, "VCCO12");
    std::string const& message = warnings[0].second;
    EXPECT_EQ(message.rfind("VCCO12 = 1.5 V is outside 1.14 .. 1.26 V", 0), 0u) << message;
    EXPECT_NE(message.find("IO_STANDARD"), std::string::npos) << message;

    block->set("VCCO12", "1.2");
    block->calculate();
    EXPECT_TRUE(prsm::design::declaredWarnings(sheet, *block).empty());
}

TEST_F(Io, PowerGrowsWithRateActivityLoadAndDriveAndIsLinearInPins) {
    auto const with = [this](auto set) {
        Params q;
        q[Params::BANK_TYPE] = "XPIO";
        q[Params::IO_STANDARD] = "SSTL12";
        q[Params::DIRECTION] = "BIDIR";
        set(q);
        model.calculate(q);
        return q[Params::TOTAL_POWER];
    };
    float const base = with([](Params&) {});
    EXPECT_GT(with([](Params& q) { q[Params::DATA_RATE] = 800.0f; }), base);
    EXPECT_GT(with([](Params& q) { q[Params::TOGGLE_RATE] = 1.0f; }), base);
    EXPECT_GT(with([](Params& q) { q[Params::LOAD_CAP] = 10.0f; }), base);
    EXPECT_GT(with([](Params& q) { q[Params::SLEW] = "FAST"; }), base);
    EXPECT_GT(with([](Params& q) { q[Params::ODT] = 30.0f; }), base);
    EXPECT_LT(with([](Params& q) { q[Params::ODT] = 0.0f; }), base);
    expectRel(with([](Params& q) { q[Params::PIN_COUNT] = 9; }), 9.0 * base);
    EXPECT_EQ(with([](Params& q) { q[Params::PIN_COUNT] = 0; }), 0.0f);

    Params lvcmos;  // a wider drive widens the output stage
    lvcmos[Params::DRIVE_STRENGTH] = 12;
    model.calculate(lvcmos);
    EXPECT_GT(lvcmos[Params::SWITCHING_COMPONENT], calc(Params::SWITCHING_COMPONENT));
}

}  // namespace
