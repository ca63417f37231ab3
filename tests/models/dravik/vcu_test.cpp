// The video codec unit's sheet on its shipped data file (data/powercfg/dravik/PRSMDravikVcuData.cfg):
// CODEC_B encodes at 0.09 W + 2.1e-3 W per Mpixel/s, CODEC_A decodes at 0.05 W + 0.9e-3 W per
// Mpixel/s, both at 0.9 V; one direction handles 497.664 Mpixel/s (one 2160p60 stream); 0.025 W on
// VCCAUX at 1.8 V while the unit is used.
#include <prsm/models/dravik/PRSMDravikVcuModel.h>

#include "ModelFixture.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

using Params = PRSMDravikVcuParams;
using prsm::test::expectRel;

class DravikVcu : public prsm::test::ModelFixture<PRSMDravikVcuModel> {};

// Defaults: one 1080p60 stream encoded with CODEC_B: 1920 x 1080 x 60 = 124.416 Mpixel/s, a quarter of
// the capacity; 0.09 + 2.1e-3 x 124.416 = 0.3512736 W on VCCVCUINT.
TEST_F(DravikVcu, DefaultsEncodeOneFullHdStream) {
    expectRel(calc(Params::TOTAL_POWER), 0.3512736 + 0.025);
    expectRel(p[Params::VCCVCUINT_POWER], 0.3512736);
    expectRel(p[Params::VCCAUX_POWER], 0.025);
    expectRel(p[Params::PIXEL_RATE], 124.416);
    expectRel(p[Params::UTILISATION], 0.25);
    EXPECT_EQ(valid("IS_VALID_STREAMS"), 1);
}

// Decoding two 720p30 streams with CODEC_A: 2 x 1280 x 720 x 30 = 55.296 Mpixel/s;
// 0.05 + 0.9e-3 x 55.296 = 0.0997664 W, and VCCVCUINT at 0.99 V scales it by 1.1^2.3.
TEST_F(DravikVcu, CodecDirectionAndSupplyChooseTheFigure) {
    p[Params::CODEC] = "CODEC_A";
    p[Params::MODE] = "DECODE";
    p[Params::RESOLUTION] = "HD_720";
    p[Params::FRAME_RATE] = 30.0f;
    p[Params::STREAMS] = 2;
    expectRel(calc(Params::VCCVCUINT_POWER), 0.0997664);
    p[Params::VCCVCUINT] = 0.99f;
    expectRel(calc(Params::VCCVCUINT_POWER), 0.0997664 * std::pow(1.1, 2.3));
}

// Power grows linearly with the pixel rate (each 1080p60 stream adds 2.1e-3 x 124.416 W); no streams,
// no power; more than the unit handles is flagged and calculated as given: two 2160p60 streams,
// 995.328 Mpixel/s, 0.09 + 2.1e-3 x 995.328 W.
TEST_F(DravikVcu, StreamsScaleThePowerAndOverloadIsFlagged) {
    p[Params::STREAMS] = 2;
    double const two = calc(Params::VCCVCUINT_POWER);
    p[Params::STREAMS] = 4;
    double const four = calc(Params::VCCVCUINT_POWER);
    expectRel(four - two, 2 * (two - 0.3512736));  // one stream gives 0.3512736 W

    p[Params::STREAMS] = 0;
    EXPECT_EQ(calc(Params::TOTAL_POWER), 0.0f);

    p[Params::RESOLUTION] = "UHD_2160";
    p[Params::STREAMS] = 2;
    expectRel(calc(Params::VCCVCUINT_POWER), 0.09 + 2.1e-3 * 995.328);
    expectRel(p[Params::UTILISATION], 2.0);
    EXPECT_EQ(valid("IS_VALID_STREAMS"), 0);

    p = Params();
    p[Params::RESOLUTION] = "8K";
    p[Params::FRAME_RATE] = 0.0f;
    model.calculate(p);
    EXPECT_EQ(valid("IS_VALID_RESOLUTION"), 0);
    EXPECT_EQ(valid("IS_VALID_FRAME_RATE"), 0);
}

}  // namespace
