// Clock-network sheet, on tests/data: VAR1 = 0.5, VAR2 = 4, so a clock on a quarter of the sites reaches
// half of the network.
#include <prsm/models/talvex/PRSMTalvexClockModel.h>

#include "TestData.h"

#include <gtest/gtest.h>

#include <climits>

namespace {

using Params = PRSMTalvexClockParams;
using Model = PRSMTalvexClockModel;
using Data = PRSMTalvexClockData;

// A device of 16,000 flip-flops (1,000 sites) in 10 clock regions, without block RAM, UltraRAM or DSP.
Params smallDevice() {
    Params p;
    p[Params::NUM_FFS] = 16000;
    p[Params::NUM_BRAMS] = 0;
    p[Params::NUM_URAMS] = 0;
    p[Params::NUM_DSPS] = 0;
    p[Params::NUM_FSR] = 10;
    p[Params::FANOUT] = 250;
    return p;
}

TEST(TalvexClock, DefaultDevice) {
    Params p;
    Model::getGlobal().calculate(p);
    EXPECT_EQ(p[Params::NUM_FFS_BASE], 1799680);
    EXPECT_FLOAT_EQ(p[Params::MAX_HDIST], 39.0f);
    EXPECT_FLOAT_EQ(p[Params::SITES], 1000.0f);
    EXPECT_FLOAT_EQ(p[Params::AVG_CE_FF_GROUPS_PER_SLICE], 0.25f);
    // 1,799,680/16 + 967 + 463 + 1,968 sites; (9,373.33 + 1,289.33 + 617.33 + 1,312 + 39*32) / 16 leaves.
    EXPECT_FLOAT_EQ(p[Params::TOTAL_SITES], 115878.0f);
    EXPECT_FLOAT_EQ(p[Params::MAX_LEAFS], 865.0f);
    // 1 - 0.5^(4 * 1000/115878) = 0.023643: 39 * 0.0236 = 0.92 segments, 865 * 0.0236 = 20.45 leaves.
    EXPECT_NEAR(p[Params::HDIST_UTIL], 0.023643f, 1e-6);
    EXPECT_EQ(p[Params::HD_COUNT], 0);
    EXPECT_EQ(p[Params::LEAF_1_COUNT], 20);
    EXPECT_EQ(p[Params::NUM_CLOCKED_SLICES], 1000);
    EXPECT_EQ(p[Params::NON_CLE_SITE_FANOUT], 0);
    EXPECT_EQ(Model::getGlobal().calculateValidValuesDesignState(p, Data::getGlobal()),
              "SYNTHESIZED,PLACED,ROUTED");
}

TEST(TalvexClock, NetworkReachFollowsSiteUtilisation) {
    Params p = smallDevice();
    Model::getGlobal().calculate(p);
    // 250 of 1,000 sites: 1 - 0.5^1 = 0.5; (16000*16/3072 + 320) / 16 = 25.21 leaves.
    EXPECT_FLOAT_EQ(p[Params::SITE_UTIL], 0.25f);
    EXPECT_FLOAT_EQ(p[Params::HDIST_UTIL], 0.5f);
    EXPECT_FLOAT_EQ(p[Params::LEAF_UTIL], 0.5f);
    EXPECT_EQ(p[Params::HD_COUNT], 5);
    EXPECT_EQ(p[Params::HD_LOC_COUNT], 5);
    EXPECT_EQ(p[Params::LEAF_1_COUNT], 12);  // 12.6 truncated

    // The larger of a count and its _BASE counts: 1,000 more DSP sites make 2,000 and add 666.67 leaves.
    p = smallDevice();
    p[Params::NUM_DSPS_BASE] = 1000;
    p[Params::NUM_FFS_BASE] = 8000;
    Model::getGlobal().calculate(p);
    EXPECT_FLOAT_EQ(p[Params::TOTAL_SITES], 2000.0f);
    EXPECT_FLOAT_EQ(p[Params::MAX_LEAFS], 66.875f);
    EXPECT_NEAR(p[Params::HDIST_UTIL], 0.292893f, 1e-6);  // 1 - 0.5^0.5
    EXPECT_EQ(p[Params::HD_COUNT], 2);                    // 2.93
    EXPECT_EQ(p[Params::LEAF_1_COUNT], 19);               // 19.59
}

TEST(TalvexClock, GuardsAndSliceShares) {
    Params p = smallDevice();
    p[Params::FANOUT_PER_SITE] = 0.0f;
    Model::getGlobal().calculate(p);
    EXPECT_FLOAT_EQ(p[Params::SITES], 0.0f);
    EXPECT_FLOAT_EQ(p[Params::SITE_UTIL], 0.0f);
    EXPECT_FLOAT_EQ(p[Params::HDIST_UTIL], 0.0f);
    EXPECT_EQ(p[Params::LEAF_1_COUNT], 0);

    // 110 clocked block sites on a clock of 100 sites: no slices rather than -10.
    p = smallDevice();
    p[Params::FANOUT] = 100;
    p[Params::BRAMS_USING_CLK] = 60;
    p[Params::URAMS_USING_CLK] = 30;
    p[Params::DSPS_USING_CLK] = 20;
    Model::getGlobal().calculate(p);
    EXPECT_FLOAT_EQ(p[Params::SLICES], 0.0f);
    EXPECT_EQ(p[Params::NUM_FF_SLICES], 0);
    EXPECT_EQ(p[Params::NON_CLE_SITE_FANOUT], 100);

    // No LUTRAM, flip-flop or SRL counts: no share to give.
    p = smallDevice();
    Model::getGlobal().calculate(p);
    EXPECT_EQ(p[Params::NUM_LUTRAM_SLICES], 0);
    EXPECT_EQ(p[Params::NUM_SRL_SLICES], 0);

    // 240 slices shared 10 : 60 : 30.
    p = smallDevice();
    p[Params::BRAMS_USING_CLK] = 10;
    p[Params::LUTRAMS_USING_CLK] = 10;
    p[Params::FFS_USING_CLK] = 60;
    p[Params::SRLS_USING_CLK] = 30;
    Model::getGlobal().calculate(p);
    EXPECT_EQ(p[Params::NUM_LUTRAM_SLICES], 24);
    EXPECT_EQ(p[Params::NUM_SRL_SLICES], 72);
    EXPECT_EQ(p[Params::NON_CLE_SITE_FANOUT], 10);
}

// A tiny fanout per site makes more sites than an int holds: the counts saturate instead of wrapping.
TEST(TalvexClock, CountsSaturateAtTheIntRange) {
    Params p = smallDevice();
    p[Params::FANOUT_PER_SITE] = 1e-7f;
    p[Params::DSPS_USING_CLK] = 1;
    p[Params::LUTRAMS_USING_CLK] = 1;
    p[Params::FFS_USING_CLK] = 1;
    Model::getGlobal().calculate(p);
    // 250 / 1e-7 = 2.5e9 sites and (almost) as many slices, above 2147483647.
    EXPECT_GT(p[Params::SLICES], 2.4e9f);
    EXPECT_EQ(p[Params::NUM_CLOCKED_SLICES], INT_MAX);
    EXPECT_EQ(p[Params::NUM_FF_SLICES], INT_MAX);
    // Half of 2.5e9 slices is 1.25e9, within the range; sites - slices is the one DSP site.
    EXPECT_NEAR(p[Params::NUM_LUTRAM_SLICES], 1.25e9, 1e3);
    EXPECT_EQ(p[Params::NON_CLE_SITE_FANOUT], 0);  // 2.5e9 - (2.5e9 - 1) in float: the 1 is lost
    // The site utilisation is far above 1: all 10 distribution segments and every leaf are reached.
    EXPECT_EQ(p[Params::HD_COUNT], 10);
    EXPECT_EQ(p[Params::LEAF_1_COUNT], 25);  // 25.21 leaves
}

TEST(TalvexClock, DesignStateAfterSynthesis) {
    Model const& model = Model::getGlobal();
    Params p = smallDevice();
    p[Params::DESIGN_STATE] = "ROUTED";
    p[Params::FFS_USING_CLK] = 1000;
    model.calculate(p);
    // 1,000 flip-flops on 250 slices of 16: x = 0.25, (1 - 0.5^(0.25*4)) * 4 = 2.
    EXPECT_FLOAT_EQ(p[Params::AVG_CE_FF_GROUPS_PER_SLICE], 2.0f);
    EXPECT_TRUE(model.calculateIsValidDesignState(p, Data::getGlobal()));

    // An unknown state is reported invalid and still evaluated; without slices the share is 0.
    p[Params::DESIGN_STATE] = "BOGUS";
    p[Params::FANOUT_PER_SITE] = 0.0f;
    model.calculate(p);
    EXPECT_FLOAT_EQ(p[Params::AVG_CE_FF_GROUPS_PER_SLICE], 0.0f);
    EXPECT_EQ(model.intDispatchTable(p, Data::getGlobal(), "calculateIsValidDESIGN_STATE"), 0);
}

TEST(TalvexClock, ShippedConstants) {
    prsm::test::ScopedDataDir scope(prsm::test::shippedDataDir());
    Data const shipped;
    Model const& model = Model::getGlobal();
    // VAR1 = 0.5, VAR2 = 8: half the network at an eighth of the sites, 1 - 2^-8 at all of them.
    Params p = smallDevice();
    p[Params::FANOUT] = 125;
    EXPECT_FLOAT_EQ(model.calculateHdistUtil(p, shipped), 0.5f);
    p = smallDevice();
    p[Params::FANOUT] = 1000;
    EXPECT_FLOAT_EQ(model.calculateLeafUtil(p, shipped), 0.99609375f);
}

}  // namespace
