// The decoupling-capacitor sheets on tests/data: a count is M · load + B with the coefficients of
// those files, worked out by hand below.
#include <prsm/framework/PRSMCommonParamControlData.h>
#include <prsm/framework/PRSMException.h>
#include <prsm/models/talvex/PRSMTalvexDecouplingCapXcModel.h>
#include <prsm/models/talvex/PRSMTalvexDecouplingCapXqModel.h>

#include "ModelFixture.h"
#include "TestData.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace {

using XqParams = PRSMTalvexDecouplingCapXqParams;
using XqModel = PRSMTalvexDecouplingCapXqModel;
using XqData = PRSMTalvexDecouplingCapXqData;
using XcParams = PRSMTalvexDecouplingCapXcParams;
using XcModel = PRSMTalvexDecouplingCapXcModel;
using XcData = PRSMTalvexDecouplingCapXcData;

class Decoupling : public prsm::test::ModelFixture<XqModel> {
protected:
    float xq(char const* cell) { return model.floatDispatchTable(p, data, cell); }
};

// VCCAUX: (M, B) = (1, 2), (3, 4), (5, 6), (7, 8), (9, 10), (0.5, 0.25) for 0.1 ... 330 uF.
TEST_F(Decoupling, EveryValueIsSlopeTimesStepCurrentPlusOffset) {
    EXPECT_FLOAT_EQ(xq("VCCAUX_0p1uF"), 2.0f);  // no step: the offsets alone
    EXPECT_FLOAT_EQ(xq("VCCAUX_330uF"), 0.25f);

    XqParams q;
    q[XqParams::VCCAUX_STEP_CURRENT] = 2.5f;
    float const expected[] = {1 * 2.5f + 2, 3 * 2.5f + 4,  5 * 2.5f + 6,
                              7 * 2.5f + 8, 9 * 2.5f + 10, 0.5f * 2.5f + 0.25f};
    char const* cells[] = {"VCCAUX_0p1uF", "VCCAUX_0p47uF", "VCCAUX_2p2uF",
                           "VCCAUX_22uF",  "VCCAUX_47uF",   "VCCAUX_330uF"};
    for (int i = 0; i < 6; ++i)
        EXPECT_FLOAT_EQ(model.floatDispatchTable(q, data, cells[i]), expected[i]) << cells[i];
    EXPECT_FLOAT_EQ(q[XqParams::VCCAUX_330uF], 1.5f);  // not rounded: the designer rounds
}

// VCCINT_22uF on PKG_A: AIE line 2 · I + 1, logic line 0.5 · I + 1.5; on PKG_B the AIE line is
// 4 · I + 3 and the logic line has no row.
TEST_F(Decoupling, VccintAddsItsTwoLinesKeyedByPackage) {
    p[XqParams::PACKAGE_TYPE] = "PKG_A";
    EXPECT_FLOAT_EQ(xq("VCCINT_22uF"), 1.0f + 1.5f);
    XqParams q;
    q[XqParams::PACKAGE_TYPE] = "PKG_A";
    q[XqParams::VCCINT_AIE_STEP_CURRENT] = 3.0f;
    q[XqParams::VCCINT_PL_STEP_CURRENT] = 10.0f;
    EXPECT_FLOAT_EQ(model.calculateVccint22uf(q, data), (2 * 3.0f + 1) + (0.5f * 10.0f + 1.5f));
    q.resetModelOutputs();
    q[XqParams::PACKAGE_TYPE] = "PKG_B";
    EXPECT_THROW(model.calculateVccint22uf(q, data), PRSMException);
    // An ordinary rail is keyed ALL_PACKAGES whatever the package: VCCPMC's PKG_A row is not read.
    EXPECT_THROW(model.calculateVccpmc0p1uf(q, data), PRSMException);
    EXPECT_THROW(model.calculateVcco3347uf(q, data), PRSMException);  // no B_47uF
    EXPECT_THROW(model.calculate(q), PRSMException);                  // most rails have no rows
}

// MGTYAVCC_0p47uF = 1.5 · quads + 0.5 over the GTY and GTYP channels; MGTMAVTT_2p2uF = 2 · quads + 1
// over the GTM channels. A quad per four channels or part thereof; no channel, no capacitor.
TEST_F(Decoupling, TransceiverSuppliesCountQuadsInUse) {
    EXPECT_EQ(xq("MGTYAVCC_0p47uF"), 0.0f);
    auto const counts = [this](char const* gty, char const* gtyp, char const* gtm) {
        XqParams q;
        q[XqParams::GTY_CHANNELS_USED] = gty;
        q[XqParams::GTYP_CHANNELS_USED] = gtyp;
        q[XqParams::GTM_CHANNELS_USED] = gtm;
        return std::make_pair(model.floatDispatchTable(q, data, "MGTYAVCC_0p47uF"),
                              model.floatDispatchTable(q, data, "MGTMAVTT_2p2uF"));
    };
    EXPECT_EQ(counts("6", "4", "0"), std::make_pair(1.5f * 3 + 0.5f, 0.0f));  // 2 + 1 quads
    EXPECT_EQ(counts("8", "0", "12"), std::make_pair(1.5f * 2 + 0.5f, 2.0f * 3 + 1));
    EXPECT_EQ(counts("0", "4", "4"), std::make_pair(1.5f * 1 + 0.5f, 2.0f * 1 + 1));

    XqParams q;
    q[XqParams::GTY_CHANNELS_USED] = "5";
    EXPECT_EQ(model.intDispatchTable(q, data, "calculateIsValidGTY_CHANNELS_USED"), 0);
    q[XqParams::PACKAGE_TYPE] = "PKG_B";
    EXPECT_EQ(model.intDispatchTable(q, data, "calculateIsValidPACKAGE_TYPE"), 1);
    EXPECT_EQ(model.calculateValidValuesGtmChannelsUsed(q, data), "0,4,12");
}

// Xc: the same construction for 1, 10, 47, 100 and 330 uF, without the RF converter rails.
TEST_F(Decoupling, SecondPackageClass) {
    XcModel const& xc = XcModel::getGlobal();
    XcData const& xcData = XcData::getGlobal();
    XcParams q;
    q[XcParams::PACKAGE_TYPE] = "PKG_X";
    q[XcParams::VCCINT_AIE_STEP_CURRENT] = 2.0f;
    q[XcParams::VCCINT_PL_STEP_CURRENT] = 4.0f;
    q[XcParams::VCCAUX_STEP_CURRENT] = 1.5f;
    EXPECT_FLOAT_EQ(xc.floatDispatchTable(q, xcData, "VCCINT_100uF"), (1 * 2.0f + 0) + (0.25f * 4.0f + 2));
    EXPECT_FLOAT_EQ(xc.floatDispatchTable(q, xcData, "VCCAUX_10uF"), 4 * 1.5f + 1);
    EXPECT_THROW(xc.floatDispatchTable(q, xcData, "VCCAUX_47uF"), PRSMException);
    EXPECT_EQ(XcParams::string_to_float_enum("ADCAVCC_1uF"), XcParams::LastFloat);
    EXPECT_EQ(XqParams::string_to_float_enum("VCCAUX_1uF"), XqParams::LastFloat);
}

// The shipped files: every package of the catalogue is served by one of the two sheets, every output
// of every package evaluates, and the counts are of the size a board designer expects.
TEST_F(Decoupling, ShippedDataCoversTheCatalogue) {
    prsm::test::ScopedDataDir dir(prsm::test::shippedDataDir());
    XqData const xqShipped;
    XcData const xcShipped;
    PRSMCommonParamControlData const catalogue;
    std::set<std::string> packages;
    for (auto const& [key, value] : catalogue.m_Feature) {
        if (key.size() < 9 || key.compare(key.size() - 9, 9, ".PACKAGES") != 0 || key.rfind("ZQ", 0) != 0)
            continue;
        std::stringstream list(value);
        for (std::string package; std::getline(list, package, ',');) packages.insert(package);
    }
    ASSERT_FALSE(packages.empty());
    auto const xqPackages = xqShipped.getDropdownLists("PACKAGE_TYPE");
    auto const xcPackages = xcShipped.getDropdownLists("PACKAGE_TYPE");
    for (auto const& package : packages)
        EXPECT_EQ(std::count(xqPackages.begin(), xqPackages.end(), package) +
                      std::count(xcPackages.begin(), xcPackages.end(), package),
                  1)
            << package;

    auto const evaluateAll = [](auto const& sheet, auto& params, auto const& shipped) {
        std::vector<std::string> names;
        params.getFloatModelOutputNames(names);
        for (auto const& name : names) {
            float const value = sheet.floatDispatchTable(params, shipped, name);
            EXPECT_GE(value, 0.0f) << name;
        }
    };
    for (auto const& package : xqPackages) {
        XqParams q;
        q[XqParams::PACKAGE_TYPE] = package;
        q[XqParams::GTY_CHANNELS_USED] = "48";
        q[XqParams::GTM_CHANNELS_USED] = "32";
        q[XqParams::VCCINT_PL_STEP_CURRENT] = 20.0f;
        q[XqParams::VCCBATT_STEP_CURRENT] = 0.001f;
        EXPECT_NO_THROW(evaluateAll(model, q, xqShipped)) << package;
        // A 20 A logic step: a handful of bulk capacitors, not dozens; a 1 mA battery: one small part.
        EXPECT_GE(q[XqParams::VCCINT_330uF], 2.0f);
        EXPECT_LE(q[XqParams::VCCINT_330uF], 6.0f);
        EXPECT_LE(q[XqParams::VCCBATT_0p1uF], 2.0f);
    }
    for (auto const& package : xcPackages) {
        XcParams q;
        q[XcParams::PACKAGE_TYPE] = package;
        q[XcParams::GTYP_CHANNELS_USED] = "16";
        EXPECT_NO_THROW(evaluateAll(XcModel::getGlobal(), q, xcShipped)) << package;
    }
}

}  // namespace
