// The block-RAM sheet on tests/data: every figure below is worked out by hand from that file.
#include <prsm/models/talvex/PRSMTalvexBramModel.h>

#include "ModelFixture.h"
#include "TestData.h"

#include <gtest/gtest.h>

namespace {

using Params = PRSMTalvexBramParams;
using Model = PRSMTalvexBramModel;
using Data = PRSMTalvexBramData;
using prsm::test::expectRel;

class Bram : public prsm::test::ModelFixture<Model> {
protected:
    // 100 MHz, half the clocks enabled, 40 % of them writes, a fifth of the bits toggling; VCCINT at 1 V
    // and the other rails at their nominal voltages, so every voltage factor is 1. ZQVC1902 scales
    // VCCINT by 0.5. Port A 36 bits, port B 18; ten blocks, a quarter of them asleep.
    static Params configured() {
        Params q;
        q[Params::CLOCK_FREQ] = 100.0f;
        q[Params::ENABLE_RATE] = 0.5f;
        q[Params::WRITE_RATE] = 0.4f;
        q[Params::TOGGLE_RATE] = 0.2f;
        q[Params::VCCINT] = 1.0f;
        q[Params::VCCRAM] = 0.8f;
        q[Params::VCCAUX] = 1.5f;
        q[Params::WRITE_MODE] = "READ_FIRST";
        q[Params::OUTPUT_REGISTER] = "NO";
        q[Params::PORT_A_WIDTH] = 36;
        q[Params::PORT_B_WIDTH] = 18;
        q[Params::INSTANCE_COUNT] = 10;
        q[Params::SLEEP_RATE] = 0.25f;
        return q;
    }
};

// Port A: 100 x 0.5 = 50 accesses, 20 writes; read-first reads the array on every access (50) and
// updates the output on every access (50). Half the toggled bits: 0.5 x 0.2 x 36 = 3.6.
//   VCCINT A: clock 100 x 2 + control 50 x 1 + 3.6 x (20 x 0.1 + 50 x 0.2) = 200 + 50 + 43.2 = 293.2
//   VCCINT B: the same with 1.8 toggled bits: 250 + 21.6 = 271.6
//   one block: (293.2 + 271.6) x 1^2 x 0.001 x 0.5 = 0.2824 mW
//   array A: 50 x (2 + 36 x 0.1) + 20 x (3 + 36 x 0.2) = 280 + 204 = 484; B: 50 x 3.8 + 20 x 6.6 = 322
//   one block: 806 x 0.001 = 0.806 mW on VCCRAM; boost: (70 + 70) accesses x 0.5 x 0.001 = 0.07 mW
// Ten blocks, 2.5 asleep round to 3: 7 awake.
TEST_F(Bram, HandWorkedConfigurationAndItsRails) {
    Params q = configured();
    expectRel(calc(q, Params::TOTAL_POWER), 7 * 1.1584e-3);
    expectRel(q[Params::PORT_A_CAP_FREQ], 293.2);
    expectRel(q[Params::PORT_B_CAP_FREQ], 271.6);
    expectRel(q[Params::PORT_A_ARRAY_COMPONENT], 484.0);
    expectRel(q[Params::PORT_B_ARRAY_COMPONENT], 322.0);
    expectRel(q[Params::VCCINT_INSTANCE_POWER], 0.2824);
    expectRel(q[Params::VCCRAM_INSTANCE_POWER], 0.806);
    expectRel(q[Params::VCCAUX_INSTANCE_POWER], 0.07);
    expectRel(q[Params::VCCINT_POWER], 7 * 0.2824e-3);
    expectRel(q[Params::VCCRAM_POWER], 7 * 0.806e-3);
    expectRel(q[Params::VCCAUX_POWER], 7 * 0.07e-3);
    EXPECT_EQ(q[Params::SLEEP_INSTANCE_COUNT], 3);
    EXPECT_EQ(q[Params::ACTIVE_INSTANCE_COUNT], 7);
    EXPECT_EQ(q[Params::BRAM36_ACTIVE_COUNT], 7);
    EXPECT_EQ(q[Params::BRAM36_SLEEP_COUNT], 3);

    // Rails off nominal: VCCRAM 0.4 V gives (0.4/0.8)^2 = 0.25, VCCINT 0.5 V gives 0.25.
    q[Params::VCCRAM] = 0.4f;
    q[Params::VCCINT] = 0.5f;
    expectRel(calc(q, Params::VCCRAM_INSTANCE_POWER), 0.2015);
    expectRel(q[Params::VCCINT_INSTANCE_POWER], 0.0706);
    // A part without a row takes the DEFAULT row's scale 2: 564.8 x 0.25 x 0.001 x 2.
    q[Params::DEVICE] = "NOSUCH";
    expectRel(calc(q, Params::VCCINT_INSTANCE_POWER), 0.2824);
}

TEST_F(Bram, ModesWriteModesAndOptionsChangeWhatAPortSwitches) {
    Params q = configured();
    q[Params::WRITE_MODE] = "WRITE_FIRST";  // no array read on a write; the output still updates
    calc(q, Params::TOTAL_POWER);
    expectRel(q[Params::PORT_A_READS], 30.0);
    expectRel(q[Params::PORT_A_ARRAY_COMPONENT], 372.0);  // 30 x 5.6 + 20 x 10.2
    expectRel(q[Params::PORT_A_CAP_FREQ], 293.2);
    q[Params::WRITE_MODE] = "NO_CHANGE";  // the output holds on writes: 250 + 3.6 x (2 + 30 x 0.2)
    calc(q, Params::TOTAL_POWER);
    expectRel(q[Params::PORT_A_OUTPUT_UPDATES], 30.0);
    expectRel(q[Params::PORT_A_CAP_FREQ], 278.8);

    q = configured();
    q[Params::OUTPUT_REGISTER] = "YES";  // + 100 x 0.5 clock + 3.6 x 50 x 0.05 data
    expectRel(calc(q, Params::PORT_A_CAP_FREQ), 352.2);

    // Simple dual port, widths from the mode (72): A writes on every access, B only reads. Toggled
    // bits 7.2. A: 250 + 7.2 x 50 x 0.1 = 286, array 50 x (3 + 14.4); B: 250 + 7.2 x 50 x 0.2 = 322,
    // array 50 x (2 + 7.2). Error correction adds 50 x 3 to A's encoder and 50 x 4 to B's checker.
    Params sdp;
    sdp[Params::CLOCK_FREQ] = 100.0f;
    sdp[Params::TOGGLE_RATE] = 0.2f;
    sdp[Params::VCCINT] = 1.0f;
    sdp[Params::OUTPUT_REGISTER] = "NO";
    sdp[Params::RAM_MODE] = "SIMPLE_DUAL_PORT";
    calc(sdp, Params::TOTAL_POWER);
    EXPECT_EQ(sdp[Params::PORT_A_WIDTH], 72);
    EXPECT_EQ(sdp[Params::PORT_A_WRITE_SHARE], 1.0f);
    EXPECT_EQ(sdp[Params::PORT_A_OUTPUT_UPDATES], 0.0f);
    EXPECT_EQ(sdp[Params::PORT_B_WRITES], 0.0f);
    expectRel(sdp[Params::PORT_A_CAP_FREQ], 286.0);
    expectRel(sdp[Params::PORT_B_CAP_FREQ], 322.0);
    expectRel(sdp[Params::PORT_A_ARRAY_COMPONENT], 870.0);
    expectRel(sdp[Params::PORT_B_ARRAY_COMPONENT], 460.0);
    sdp[Params::ECC] = "YES";
    expectRel(calc(sdp, Params::PORT_A_CAP_FREQ), 436.0);
    expectRel(sdp[Params::PORT_B_CAP_FREQ], 522.0);
    sdp[Params::ECC] = "NO";
    sdp[Params::RAM_MODE] = "FIFO";  // pointers and flags: 50 x 6 on each port
    expectRel(calc(sdp, Params::PORT_A_CAP_FREQ), 586.0);
    expectRel(sdp[Params::PORT_B_CAP_FREQ], 622.0);

    // A cascade of two: one block serves 25 of the chain's 50 accesses (10 writes), and the chain's
    // buses cross it on all 50: 200 + 25 + 3.6 x (10 x 0.1 + 25 x 0.2) + 50 x (3.6 x 0.3 + 7).
    q = configured();
    q[Params::RAM_MODE] = "CASCADE";
    expectRel(calc(q, Params::PORT_A_CAP_FREQ), 650.6);
    EXPECT_EQ(q[Params::CASCADE_DEPTH], 2);
    expectRel(q[Params::PORT_A_ACCESSES], 25.0);

    q = configured();
    q[Params::RAM_MODE] = "ROM";  // reads only: 250 + 3.6 x 50 x 0.2
    expectRel(calc(q, Params::PORT_A_CAP_FREQ), 286.0);
    EXPECT_EQ(q[Params::PORT_A_WRITES], 0.0f);

    Params single;
    single[Params::RAM_MODE] = "SINGLE_PORT";
    calc(single, Params::TOTAL_POWER);
    EXPECT_EQ(single[Params::PORT_B_WIDTH], 0);  // the mode leaves B unused
    EXPECT_EQ(single[Params::PORT_B_CAP_FREQ], 0.0f);
    EXPECT_GT(single[Params::PORT_A_CAP_FREQ], 0.0f);

    // Halves: 5 blocks, round(1.25) = 1 asleep; two halves share a 36 Kb site, so 4 awake take 2 and
    // the one asleep takes 1. BRAM18 has no array row: its array figures fall back to 0.
    Params half;
    half[Params::BRAM_TYPE] = "BRAM18";
    half[Params::INSTANCE_COUNT] = 5;
    half[Params::SLEEP_RATE] = 0.25f;
    calc(half, Params::TOTAL_POWER);
    EXPECT_EQ(half[Params::PORT_A_WIDTH], 18);
    EXPECT_EQ(half[Params::BRAM36_ACTIVE_COUNT], 2);
    EXPECT_EQ(half[Params::BRAM36_SLEEP_COUNT], 1);
    EXPECT_EQ(half[Params::VCCRAM_INSTANCE_POWER], 0.0f);
    EXPECT_GT(half[Params::VCCINT_POWER], 0.0f);
}

TEST_F(Bram, InvalidInputsAreFlaggedAndStillCalculated) {
    Params q = configured();
    float const atFullToggle = [&] {
        q[Params::TOGGLE_RATE] = 1.0f;
        return calc(q, Params::TOTAL_POWER);
    }();
    q[Params::TOGGLE_RATE] = 25.0f;  // someone meaning percent
    EXPECT_GT(calc(q, Params::TOTAL_POWER), atFullToggle);
    EXPECT_EQ(model.intDispatchTable(q, data, "IS_VALID_TOGGLE_RATE"), 0);
    q[Params::ENABLE_RATE] = -0.1f;
    EXPECT_EQ(model.intDispatchTable(q, data, "IS_VALID_ENABLE_RATE"), 0);
    EXPECT_EQ(model.intDispatchTable(q, data, "IS_VALID_WRITE_RATE"), 1);

    Params w = configured();
    w[Params::PORT_A_WIDTH] = 72;  // true dual port allows 36
    EXPECT_EQ(model.intDispatchTable(w, data, "IS_VALID_PORT_A_WIDTH"), 0);
    EXPECT_GT(calc(w, Params::PORT_A_CAP_FREQ), 293.2f);  // calculated at 72 bits
    w[Params::RAM_MODE] = "SIMPLE_DUAL_PORT";
    EXPECT_EQ(model.intDispatchTable(w, data, "IS_VALID_PORT_A_WIDTH"), 1);
    w[Params::RAM_MODE] = "SINGLE_PORT";
    EXPECT_EQ(model.intDispatchTable(w, data, "IS_VALID_PORT_B_WIDTH"), 0);  // B is 18, the mode none

    Params e;
    EXPECT_EQ(model.calculateValidValuesEcc(e, data), "NO");
    e[Params::ECC] = "YES";
    EXPECT_EQ(model.intDispatchTable(e, data, "IS_VALID_ECC"), 0);
    e[Params::RAM_MODE] = "SIMPLE_DUAL_PORT";
    EXPECT_EQ(model.calculateValidValuesEcc(e, data), "NO,YES");
    EXPECT_EQ(model.intDispatchTable(e, data, "IS_VALID_ECC"), 1);
    e[Params::BRAM_TYPE] = "BRAM18";  // 36-bit ports: no room for 64 + 8
    EXPECT_EQ(model.calculateValidValuesEcc(e, data), "NO");

    Params c;
    EXPECT_EQ(model.intDispatchTable(c, data, "IS_VALID_CASCADE_DEPTH"), 1);  // 1 outside a cascade
    c[Params::CASCADE_DEPTH] = 2;
    EXPECT_EQ(model.intDispatchTable(c, data, "IS_VALID_CASCADE_DEPTH"), 0);
    c[Params::RAM_MODE] = "CASCADE";
    EXPECT_EQ(model.intDispatchTable(c, data, "IS_VALID_CASCADE_DEPTH"), 1);
    c[Params::CASCADE_DEPTH] = 5;  // the file allows 4
    EXPECT_EQ(model.intDispatchTable(c, data, "IS_VALID_CASCADE_DEPTH"), 0);

    Params n;
    n[Params::RAM_MODE] = "NOPE";
    n[Params::DEVICE] = "NOSUCH";
    n[Params::CLOCK_FREQ] = 0.0f;
    EXPECT_EQ(calc(n, Params::TOTAL_POWER), 0.0f);
    EXPECT_EQ(model.intDispatchTable(n, data, "IS_VALID_RAM_MODE"), 0);
    EXPECT_EQ(model.intDispatchTable(n, data, "IS_VALID_DEVICE"), 0);
    EXPECT_EQ(model.intDispatchTable(n, data, "IS_VALID_CLOCK_FREQ"), 0);
}

TEST_F(Bram, PowerGrowsWithActivityAndScalesWithTheBlocks) {
    float const base = calc(Params::TOTAL_POWER);
    EXPECT_GT(base, 0.0f);
    EXPECT_GT(p[Params::VCCAUX_POWER], 0.0f);
    for (auto [cell, higher] : {std::pair{Params::CLOCK_FREQ, 400.0f}, std::pair{Params::TOGGLE_RATE, 0.5f},
                                std::pair{Params::ENABLE_RATE, 0.75f}}) {
        Params q;
        q[cell] = higher;
        EXPECT_GT(calc(q, Params::TOTAL_POWER), base) << Params::enum_to_string(cell);
    }
    Params seven;
    seven[Params::INSTANCE_COUNT] = 7;
    expectRel(calc(seven, Params::TOTAL_POWER), 7.0 * base);
    Params asleep;
    asleep[Params::SLEEP_RATE] = 1.0f;
    EXPECT_EQ(calc(asleep, Params::TOTAL_POWER), 0.0f);
    EXPECT_EQ(asleep[Params::BRAM36_SLEEP_COUNT], 1);
}

// A 36 Kb block at 300 MHz with both ports half enabled: a few milliwatts on the shipped data.
TEST_F(Bram, ShippedDataGivesAFewMilliwattsPerBlock) {
    prsm::test::ScopedDataDir dir(prsm::test::shippedDataDir());
    Data const shipped;
    float const milliwatts = model.calculateInstancePower(p, shipped);
    EXPECT_GT(milliwatts, 1.0f);
    EXPECT_LT(milliwatts, 10.0f);
    for (auto const& mode : shipped.getDropdownLists("RAM_MODE_LIST")) {
        Params q;
        q[Params::RAM_MODE] = mode;
        EXPECT_GT(model.calculateTotalPower(q, shipped), 0.0f) << mode;
        EXPECT_TRUE(model.calculateIsValidPortAWidth(q, shipped)) << mode;
        EXPECT_TRUE(model.calculateIsValidCascadeDepth(q, shipped)) << mode;
    }
}

}  // namespace
