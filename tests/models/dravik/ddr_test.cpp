// The older architecture's memory interface on tests/data/powercfg/dravik/PRSMDravikDdrData.cfg: every
// figure below is worked out by hand from that file. The physics is shared with the newer hard
// controllers and tested there in depth; these tests pin this sheet's rails, banks and limits.
#include <prsm/models/dravik/PRSMDravikDdrModel.h>

#include "ModelFixture.h"

#include <gtest/gtest.h>

namespace {

using Params = PRSMDravikDdrParams;
using prsm::test::expectRel;

class DravikDdr : public prsm::test::ModelFixture<PRSMDravikDdrModel> {
protected:
    // A 32-bit DDR4 interface, one rank, 2000 MT/s, reads 0.5 and writes 0.25 of its peak, on ZDM9200
    // (DEFAULT rows); VCCINT and VCCINTIO at 1 V, VCCAUXIO at 2 V for round figures.
    static Params ddr4x32() {
        Params q;
        q[Params::DATA_WIDTH] = 32;
        q[Params::DATA_RATE] = 2000.0f;
        q[Params::READ_RATE] = 0.5f;
        q[Params::WRITE_RATE] = 0.25f;
        q[Params::VCCINT] = 1.0f;
        q[Params::VCCINTIO] = 1.0f;
        q[Params::VCCAUXIO] = 2.0f;
        return q;
    }
};

// Pins: 32 data + 4 masks = 36, 8 strobe, 20 + 3 + 2 = 25 command, 2 clock: 71, two HPIO banks of 50.
// Memory clock 1000 MHz, controller clock 2000 / 8 = 250 MHz, share 0.75.
//   VCCO12    terminations: data 1000 x 0.5 x 1.2 x 0.5 / (40 + 60) = 3 mA x 44 pins, command
//             1000 x 0.5 x 1.2 x 0.5 / (40 + 40) = 3.75 mA x 27 pins: 1.2 x 233.25 = 279.9 mW;
//             switching: data rises 36 x 2000 x 0.25 x 0.25 + 8 x 1000 x 0.25 = 6500 at 5 pF, command
//             rises 25 x 1000 x 0.2 x 0.75 x 0.5 + 2 x 1000 = 3875 at 3 + 4 x 0.5 = 5 pF:
//             51875 x 1.2 x 1.2 x 0.001 = 74.7 mW; 354.6 mW in all
//   VCCINTIO  (71 x 2 x 1000 + 36 x 2000 x 0.75 x 0.5) x 1^2 x 0.001 = 169 mW
//   VCCAUXIO  2 V x (2 banks x (5 + 10 x 1.0) + 44 x 0.5 x 0.5) mA = 2 x 41 = 82 mW
//   VCCINT    ((1000 + 32 x 10 + 50) x 250 + 32 x 2000 x 0.75 x 2) x 0.001 = 438.5 mW
// One interface 1044.1 mW.
TEST_F(DravikDdr, ADdr4InterfaceOnItsFourRails) {
    Params q = ddr4x32();
    model.calculate(q);
    expectRel(q[Params::TOTAL_POWER], 1.0441);
    expectRel(q[Params::VCCO12_POWER], 0.3546);
    expectRel(q[Params::VCCINTIO_POWER], 0.169);
    expectRel(q[Params::VCCAUXIO_POWER], 0.082);
    expectRel(q[Params::VCCINT_POWER], 0.4385);
    expectRel(q[Params::PEAK_BANDWIDTH], 8.0);  // 32 bits x 2000 MT/s / 8000
    EXPECT_EQ(q[Params::IO_PINS], 71);
    EXPECT_EQ(q[Params::HPIO_BANKS], 2);
    EXPECT_EQ(q[Params::USED_HPIO_BANKS], 2);
    EXPECT_EQ(valid(q, "IS_VALID_DATA_RATE"), 1);
    EXPECT_EQ(valid(q, "IS_VALID_INSTANCE_COUNT"), 1);

    // Two interfaces fill four banks, all the DEFAULT part has: the power and banks double.
    q[Params::INSTANCE_COUNT] = 2;
    model.calculate(q);
    expectRel(q[Params::TOTAL_POWER], 2 * 1.0441);
    EXPECT_EQ(q[Params::USED_HPIO_BANKS], 4);
    EXPECT_EQ(valid(q, "IS_VALID_INSTANCE_COUNT"), 1);
}

TEST_F(DravikDdr, ImpossibleInterfacesAreInvalidAndStillCalculated) {
    // ZDM5100 runs DDR4 to 2000 MT/s and has three banks: one interface of two banks fits, two do not.
    Params small = ddr4x32();
    small[Params::DEVICE] = "ZDM5100";
    small[Params::DATA_RATE] = 2400.0f;
    small[Params::INSTANCE_COUNT] = 2;
    model.calculate(small);
    EXPECT_EQ(valid(small, "IS_VALID_DATA_RATE"), 0);
    EXPECT_EQ(model.floatDispatchTable(small, data, "GET_MAX_DATA_RATE"), 2000.0f);
    EXPECT_EQ(valid(small, "IS_VALID_INSTANCE_COUNT"), 0);
    EXPECT_EQ(model.floatDispatchTable(small, data, "GET_MAX_INSTANCE_COUNT"), 1.0f);
    EXPECT_GT(small[Params::TOTAL_POWER], 2 * 1.0441f);

    // LPDDR4 wants 1.06 .. 1.17 V on VCCO12; 24 bits is no power-of-two multiple of 16; no ECC.
    Params lp;
    lp[Params::MEMORY_TYPE] = "LPDDR4";
    lp[Params::DATA_WIDTH] = 24;
    lp[Params::ECC] = "YES";
    model.calculate(lp);
    EXPECT_EQ(valid(lp, "IS_VALID_VCCO12"), 0);
    EXPECT_EQ(valid(lp, "IS_VALID_DATA_WIDTH"), 0);
    EXPECT_EQ(valid(lp, "IS_VALID_ECC"), 0);
    lp[Params::VCCO12] = 1.1f;
    model.calculate(lp);
    EXPECT_EQ(valid(lp, "IS_VALID_VCCO12"), 1);

    Params percent = ddr4x32();
    percent[Params::READ_RATE] = 40.0f;
    model.calculate(percent);
    EXPECT_EQ(valid(percent, "IS_VALID_READ_RATE"), 0);
    EXPECT_EQ(percent[Params::READ_RATE], 40.0f);
}

TEST_F(DravikDdr, PowerGrowsWithTrafficWidthAndRate) {
    auto const total = [this](auto set) {
        Params q = ddr4x32();
        set(q);
        model.calculate(q);
        return q[Params::TOTAL_POWER];
    };
    float const base = total([](Params&) {});
    EXPECT_GT(total([](Params& q) { q[Params::WRITE_RATE] = 0.5f; }), base);
    EXPECT_GT(total([](Params& q) { q[Params::DATA_WIDTH] = 64; }), base);
    EXPECT_GT(total([](Params& q) { q[Params::DATA_RATE] = 2400.0f; }), base);
    EXPECT_GT(total([](Params& q) { q[Params::RANKS] = 2; }), base);
    EXPECT_EQ(total([](Params& q) { q[Params::INSTANCE_COUNT] = 0; }), 0.0f);
    // An idle interface still clocks its controller and PHY.
    EXPECT_GT(total([](Params& q) {
                  q[Params::READ_RATE] = 0.0f;
                  q[Params::WRITE_RATE] = 0.0f;
              }),
              0.0f);
    Params defaults;
    model.calculate(defaults);
    EXPECT_GT(defaults[Params::TOTAL_POWER], 0.0f);
}

}  // namespace
