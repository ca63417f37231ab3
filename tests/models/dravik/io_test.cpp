// The older architecture's I/O sheet on tests/data/powercfg/dravik/PRSMDravikIoData.cfg: every figure
// below is worked out by hand from that file's round values (HDIO pad 2 pF, 24 pins a bank; HPIO pad
// 1 pF, 52 pins; LVCMOS driver 1 pF + 0.25 pF/mA; ZDM5100 scales by 1, other parts by the DEFAULT 2 on
// VCCO). The physics is shared with the newer I/O sheet and tested there in depth; these tests pin what
// this sheet adds: its banks, its rails and its receivers' two auxiliary rails.
#include <prsm/models/dravik/PRSMDravikIoModel.h>

#include "ModelFixture.h"

#include <gtest/gtest.h>

namespace {

using Params = PRSMDravikIoParams;
using prsm::test::expectRel;

class DravikIo : public prsm::test::ModelFixture<PRSMDravikIoModel> {
protected:
    void SetUp() override { p[Params::DEVICE] = "ZDM5100"; }
};

// 25 LVCMOS33 outputs on HDIO at 100 Mb/s, half the bits changing: lines cycle at 25 MHz and drive
// 5 pF + 2 pF of pad + (1 + 0.25 x 8 mA) of output stage = 10 pF:
//   VCCO33    10 x 3.3^2 x 25 x 0.001       = 2.7225 mW a pin, 0.0680625 W for 25
//   VCCINTIO  0.1 x 25 x 0.85^2 x 0.001     = 0.00180625 mW a pin (the HDIO has no I/O clocking)
// 25 pins fill two HDIO banks of 24.
TEST_F(DravikIo, LvcmosOutputsOnAnHdioBank) {
    p[Params::BANK_TYPE] = "HDIO";
    p[Params::IO_STANDARD] = "LVCMOS33";
    p[Params::PIN_COUNT] = 25;
    p[Params::DATA_RATE] = 100.0f;
    expectRel(calc(Params::TOTAL_POWER), 0.0680625 + 25 * 0.00180625e-3);
    expectRel(p[Params::VCCO33_POWER], 0.0680625);
    expectRel(p[Params::VCCINTIO_POWER], 25 * 0.00180625e-3);
    EXPECT_EQ(p[Params::VCCO18_POWER], 0.0f);
    EXPECT_EQ(p[Params::VCCAUX_POWER], 0.0f);  // an output's receiver is off
    EXPECT_EQ(p[Params::VCCO_RAIL], "VCCO33");
    EXPECT_EQ(p[Params::RECEIVER_RAIL], "VCCAUX");
    EXPECT_EQ(p[Params::PINS_USED], 25);
    EXPECT_EQ(p[Params::BANKS_USED], 2);
    EXPECT_EQ(valid("IS_VALID_IO_STANDARD"), 1);
}

// A camera's MIPI D-PHY input on HPIO: four data lanes and the clock, 5 pairs at 1,000 Mb/s (250 MHz):
//   receiver   1.0 mA x 1.8 V + 1 x 1.0 pF x 1.8^2 x 250 x 0.001 = 1.8 + 0.81 = 2.61 mW a pair, on VCCAUXIO
//   I/O logic  (0.1 x 250 + 0.05 x 1000 / 2) x 0.85^2 x 0.001    = 0.036125 mW a pair
// Nothing on VCCO12: an input's current-mode driver is off. 10 pins fill one HPIO bank.
TEST_F(DravikIo, AMipiCameraInputDrawsFromVccauxio) {
    p[Params::IO_STANDARD] = "MIPI_DPHY";
    p[Params::DIRECTION] = "INPUT";
    p[Params::PIN_COUNT] = 5;
    p[Params::DATA_RATE] = 1000.0f;
    expectRel(calc(Params::TOTAL_POWER), 5 * (2.61 + 0.036125) * 0.001);
    expectRel(p[Params::VCCAUXIO_POWER], 0.01305);
    expectRel(p[Params::VCCINTIO_POWER], 5 * 0.036125e-3);
    EXPECT_EQ(p[Params::VCCAUX_POWER], 0.0f);
    EXPECT_EQ(p[Params::VCCO12_POWER], 0.0f);
    EXPECT_EQ(p[Params::RECEIVER_RAIL], "VCCAUXIO");
    EXPECT_EQ(p[Params::PINS_USED], 10);
    EXPECT_EQ(p[Params::BANKS_USED], 1);

    // Driving the lanes instead: 2.5 mA x 1.2 V = 3 mW a pair on VCCO12.
    p[Params::DIRECTION] = "OUTPUT";
    expectRel(calc(Params::VCCO12_POWER), 5 * 3.0e-3);
    EXPECT_EQ(p[Params::VCCAUXIO_POWER], 0.0f);
}

// One SSTL12 output at 800 Mb/s (200 MHz) on a part without a row (VCCO scale 2): a 40-ohm driver into
// 40 ohms to VCCO / 2 draws 0.5 x 0.5 / 80 = 0.003125 A per volt while high;
//   termination  0.003125 x 1.2^2 x 1000 x 2          = 9.0 mW
//   switching    (5 + 1 + 2) pF x 1.2^2 x 200 x 0.001 x 2 = 4.608 mW
TEST_F(DravikIo, SstlTerminationsAndTheDefaultScale) {
    p[Params::DEVICE] = "ZDM9200";
    p[Params::IO_STANDARD] = "SSTL12";
    p[Params::DATA_RATE] = 800.0f;
    expectRel(calc(Params::VCCO_SIGNAL_POWER), 13.608);
    expectRel(p[Params::VCCO12_POWER], 13.608e-3);
}

// Impossible inputs are invalid and still calculated as given, never clamped.
TEST_F(DravikIo, ImpossibleInputsAreInvalidAndStillCalculated) {
    p[Params::IO_STANDARD] = "LVCMOS33";  // HPIO carries nothing above 1.8 V
    EXPECT_GT(calc(Params::TOTAL_POWER), 0.0f);
    EXPECT_EQ(valid("IS_VALID_IO_STANDARD"), 0);
    EXPECT_EQ(model.calculateValidValuesIoStandard(p, data), "LVCMOS18,SSTL12,MIPI_DPHY");

    // 1.5 V on VCCO12 leaves only LVCMOS18 on HPIO; SSTL12 wants 1.14 .. 1.26 V there.
    p[Params::VCCO12] = 1.5f;
    p[Params::IO_STANDARD] = "SSTL12";
    model.calculate(p);
    EXPECT_EQ(model.calculateValidValuesIoStandard(p, data), "LVCMOS18");
    expectRel(model.floatDispatchTable(p, data, "VCCO12_STANDARD_MIN"), 1.14);
    expectRel(model.floatDispatchTable(p, data, "VCCO12_STANDARD_MAX"), 1.26);
    EXPECT_EQ(model.floatDispatchTable(p, data, "VCCO18_STANDARD_MAX"), 0.0f);
    p[Params::ODT] = 20.0f;  // below SSTL12's 30 ohms
    EXPECT_EQ(valid("IS_VALID_ODT"), 0);

    Params mipi;
    mipi[Params::IO_STANDARD] = "MIPI_DPHY";
    mipi[Params::DATA_RATE] = 2000.0f;  // beyond 1,500 Mb/s
    mipi[Params::DRIVE_STRENGTH] = 8;   // no drive settings
    mipi[Params::EXTERNAL_TERMINATION] = 50.0f;  // unterminated
    mipi[Params::TOGGLE_RATE] = 12.5f;  // a percent
    model.calculate(mipi);
    EXPECT_EQ(model.intDispatchTable(mipi, data, "IS_VALID_DATA_RATE"), 0);
    EXPECT_EQ(model.intDispatchTable(mipi, data, "IS_VALID_DRIVE_STRENGTH"), 0);
    EXPECT_EQ(model.intDispatchTable(mipi, data, "IS_VALID_EXTERNAL_TERMINATION"), 0);
    EXPECT_EQ(model.intDispatchTable(mipi, data, "IS_VALID_TOGGLE_RATE"), 0);
    EXPECT_EQ(mipi[Params::TOGGLE_RATE], 12.5f);

    // A bank type the file does not know fills no bank and draws from no auxiliary rail.
    Params odd;
    odd[Params::BANK_TYPE] = "XPIO";
    model.calculate(odd);
    EXPECT_EQ(model.intDispatchTable(odd, data, "IS_VALID_BANK_TYPE"), 0);
    EXPECT_EQ(odd[Params::BANKS_USED], 0);
    EXPECT_EQ(odd[Params::RECEIVER_RAIL], "NONE");
}

TEST_F(DravikIo, PowerIsLinearInPinsAndGrowsWithRateAndVoltage) {
    auto const total = [this](auto set) {
        Params q;
        q[Params::DEVICE] = "ZDM5100";
        q[Params::DIRECTION] = "BIDIR";
        set(q);
        model.calculate(q);
        return q[Params::TOTAL_POWER];
    };
    float const base = total([](Params&) {});
    EXPECT_GT(base, 0.0f);  // the defaults give a figure
    expectRel(total([](Params& q) { q[Params::PIN_COUNT] = 3; }), 3.0 * base);
    EXPECT_GT(total([](Params& q) { q[Params::DATA_RATE] = 300.0f; }), base);
    EXPECT_GT(total([](Params& q) { q[Params::VCCO18] = 1.85f; }), base);
    EXPECT_GT(total([](Params& q) { q[Params::SLEW] = "FAST"; }), base);
    EXPECT_EQ(total([](Params& q) { q[Params::PIN_COUNT] = 0; }), 0.0f);
}

}  // namespace
