// The transceiver sheet on tests/data: every figure below is worked out by hand from that file.
#include <prsm/models/talvex/PRSMTalvexGtModel.h>

#include "ModelFixture.h"

#include <gtest/gtest.h>

namespace {

using Params = PRSMTalvexGtParams;
using prsm::test::expectRel;

class Gt : public prsm::test::ModelFixture<PRSMTalvexGtModel> {
protected:
    // Two GTY links of four lanes at 10 Gb/s NRZ, both directions, LC PLL, DFE, 64b/66b, on ZQVC1902
    // (scale 1) in TQA2197 (two GTY quads); every rail at its nominal voltage.
    static Params gtyLinks() {
        Params q;
        q[Params::INSTANCE_COUNT] = 2;
        q[Params::LINE_RATE] = 10.0f;
        q[Params::MGTYAVCC] = 0.9f;
        return q;
    }
};

// Per lane: TX 10 + 2 x 10 = 30 mW, RX 20 + (3 + 1) x 10 = 60 mW on AVCC; AVTT 15 + 5; VCCAUX 1 + 2.
//   AVCC   4 x 30 + 4 x 60 + one LC PLL 40 = 400 mW
//   AVTT   4 x 20 = 80 mW; VCCAUX 4 x 3 + 8 = 20 mW
//   PCS    8 directions x 0.5 x 10 Gb/s x 1.0 = 40 mW on VCCINT
// One link 540 mW (135 mW a lane); two links 1.08 W.
TEST_F(Gt, TwoGtyLinksOnTheirRails) {
    Params q = gtyLinks();
    expectRel(calc(q, Params::TOTAL_POWER), 1.08);
    expectRel(q[Params::LANE_POWER], 135.0);
    expectRel(q[Params::MGTYAVCC_POWER], 0.8);
    expectRel(q[Params::MGTYAVTT_POWER], 0.16);
    expectRel(q[Params::MGTYVCCAUX_POWER], 0.04);
    expectRel(q[Params::VCCINT_POWER], 0.08);
    EXPECT_EQ(q[Params::MGTMAVCC_POWER], 0.0f);
    EXPECT_EQ(q[Params::VCCINTGT_POWER], 0.0f);
    EXPECT_EQ(q[Params::USED_GTY_POWER_QUADS], 2);
    EXPECT_EQ(q[Params::USED_GTM_POWER_QUADS], 0);
    EXPECT_EQ(q[Params::LANE_COUNT], 8);
    EXPECT_EQ(q[Params::MODULATION], "NRZ");
    EXPECT_EQ(valid(q, "IS_VALID_LANES"), 1);
    EXPECT_EQ(model.floatDispatchTable(q, data, "GET_MAX_LANES"), 8.0f);
}

// Two GTM receive-only lanes at 50 Gb/s: beyond NRZ's 28, so PAM4 by default, 25 GBd, rate terms x 1.5
// = 37.5. LPM, 8b/10b (factor 2), on ZQVP1310 (DEFAULT scale 1) in TQD1760 (three GTM quads).
//   AVCC   2 x (20 + 4 x 37.5) + one LC PLL 60 = 400 mW at 0.9 V; at 0.45 V x 0.25 = 100 mW
//   AVTT   2 x 5 = 10; VCCAUX 2 x 2 + 6 = 10; PCS 2 x 0.5 x 50 x 2 = 100 mW on VCCINTGT
// One link 220 mW, 110 mW a lane.
TEST_F(Gt, AGtmReceiverRunsPam4AtHalfTheSymbolRate) {
    Params q;
    q[Params::GT_TYPE] = "GTM";
    q[Params::LINE_RATE] = 50.0f;
    q[Params::LANES] = 2;
    q[Params::LANE_USE] = "RX_ONLY";
    q[Params::EQUALIZATION] = "LPM";
    q[Params::ENCODING] = "ENC_8B10B";
    q[Params::DEVICE] = "ZQVP1310";
    q[Params::PACKAGE] = "TQD1760";
    q[Params::MGTMAVCC] = 0.45f;
    expectRel(calc(q, Params::INSTANCE_POWER), 220.0);
    EXPECT_EQ(q[Params::MODULATION], "PAM4");
    expectRel(q[Params::SYMBOL_RATE], 25.0);
    expectRel(q[Params::MGTMAVCC_POWER], 0.1);
    expectRel(q[Params::VCCINTGT_POWER], 0.1);
    expectRel(q[Params::LANE_POWER], 110.0);
    EXPECT_EQ(q[Params::VCCINT_POWER], 0.0f);
    EXPECT_EQ(q[Params::USED_GTM_POWER_QUADS], 1);
    EXPECT_EQ(q[Params::USED_GTY_POWER_QUADS], 0);
    EXPECT_EQ(valid(q, "IS_VALID_LINE_RATE"), 1);
    EXPECT_EQ(model.floatDispatchTable(q, data, "GET_MAX_LINE_RATE"), 56.0f);
    EXPECT_EQ(model.calculateValidValuesModulation(q, data), "NRZ,PAM4");
}

// A ring PLL per lane instead of one LC PLL a quad: AVCC 4 x 90 + 4 x 12 = 408, VCCAUX 12 + 4 x 3 = 24.
// On a part without a row of its own the DEFAULT scale, 2, doubles every figure.
TEST_F(Gt, RingPllsAndTheDefaultScale) {
    Params q = gtyLinks();
    q[Params::PLL_TYPE] = "RING";
    expectRel(calc(q, Params::AVCC_INSTANCE_POWER), 408.0);
    expectRel(q[Params::VCCAUX_INSTANCE_POWER], 24.0);

    Params other = gtyLinks();
    other[Params::DEVICE] = "NOSUCH";
    expectRel(calc(other, Params::INSTANCE_POWER), 2 * 540.0);
}

// Invalid inputs are reported and still calculated as given, never clamped.
TEST_F(Gt, ImpossibleLinksAreInvalidAndStillCalculated) {
    Params fast = gtyLinks();
    fast[Params::LINE_RATE] = 40.0f;    // beyond GTY's 30 Gb/s
    fast[Params::MODULATION] = "PAM4";  // GTY has no PAM4
    EXPECT_GT(calc(fast, Params::TOTAL_POWER), 1.08f);
    EXPECT_EQ(valid(fast, "IS_VALID_LINE_RATE"), 0);
    EXPECT_EQ(valid(fast, "IS_VALID_MODULATION"), 0);
    EXPECT_EQ(model.calculateValidValuesModulation(fast, data), "NRZ");
    EXPECT_EQ(fast[Params::LINE_RATE], 40.0f);

    Params ring = gtyLinks();
    ring[Params::PLL_TYPE] = "RING";
    ring[Params::LINE_RATE] = 20.0f;  // within NRZ, beyond the ring PLL's 15
    model.calculate(ring);
    EXPECT_EQ(valid(ring, "IS_VALID_LINE_RATE"), 0);
    EXPECT_EQ(model.floatDispatchTable(ring, data, "GET_MAX_LINE_RATE"), 15.0f);

    // Three links of a quad each, or one of three quads, on a package that bonds out two.
    Params many = gtyLinks();
    many[Params::INSTANCE_COUNT] = 3;
    model.calculate(many);
    EXPECT_EQ(valid(many, "IS_VALID_LANES"), 0);
    EXPECT_EQ(many[Params::USED_GTY_POWER_QUADS], 3);
    Params wide = gtyLinks();
    wide[Params::INSTANCE_COUNT] = 1;
    wide[Params::LANES] = 12;
    model.calculate(wide);
    EXPECT_EQ(valid(wide, "IS_VALID_LANES"), 0);

    // A package the part does not come in bonds out nothing; a family the file lacks draws nothing.
    Params package = gtyLinks();
    package[Params::PACKAGE] = "TQD1760";
    model.calculate(package);
    EXPECT_EQ(valid(package, "IS_VALID_PACKAGE"), 0);
    EXPECT_EQ(valid(package, "IS_VALID_LANES"), 0);
    EXPECT_EQ(model.calculateValidValuesPackage(package, data), "TQA2197");
    Params unknown = gtyLinks();
    unknown[Params::GT_TYPE] = "GTX";
    EXPECT_EQ(calc(unknown, Params::TOTAL_POWER), 0.0f);
    EXPECT_EQ(valid(unknown, "IS_VALID_GT_TYPE"), 0);
    EXPECT_EQ(unknown[Params::USED_GTY_POWER_QUADS], 0);
}

TEST_F(Gt, PowerGrowsWithRateLanesAndUseAndIsLinearInLinks) {
    Params base = gtyLinks();
    float const total = calc(base, Params::TOTAL_POWER);
    auto const with = [this](auto set) {
        Params q = gtyLinks();
        set(q);
        return calc(q, Params::TOTAL_POWER);
    };
    EXPECT_GT(with([](Params& q) { q[Params::LINE_RATE] = 25.0f; }), total);
    EXPECT_GT(with([](Params& q) { q[Params::LANES] = 8; }), total);
    EXPECT_LT(with([](Params& q) { q[Params::LANE_USE] = "TX_ONLY"; }), total);
    EXPECT_LT(with([](Params& q) { q[Params::EQUALIZATION] = "LPM"; }), total);
    EXPECT_GT(with([](Params& q) { q[Params::ENCODING] = "ENC_8B10B"; }), total);
    expectRel(with([](Params& q) { q[Params::INSTANCE_COUNT] = 6; }), 3.0 * total);
    EXPECT_EQ(with([](Params& q) { q[Params::INSTANCE_COUNT] = 0; }), 0.0f);
}

}  // namespace
