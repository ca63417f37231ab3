// The network-on-chip sheet on tests/data: every figure below is worked out by hand from that file.
// ZQVC1902 is ZQ10S80 (PS_TO_DDRC row: 2 switches, 1 six-port, 0 inter-die, 1 crossing, 6 buffers;
// PL_TO_PL row: 4, 2, 1, 3, 10 buffers; 40 buffers in all, 16 for DDR alone); coefficients NMU 1,
// NSU 2, NPS 3, NPS6 4, NCRB 5, NIDB 6 and clock 0.01 (ten times those, clock 0.02, on NOC2).
// At 0.8 V the scale is 0.64 / 0.7744 = 0.826446.
#include <prsm/framework/PRSMCommonParamControlData.h>
#include <prsm/framework/PRSMReservedValues.h>
#include <prsm/models/talvex/PRSMTalvexNocModel.h>

#include "ModelFixture.h"
#include "TestData.h"

#include <gtest/gtest.h>

#include <climits>

namespace {

using Params = PRSMTalvexNocParams;
using Model = PRSMTalvexNocModel;
using Data = PRSMTalvexNocData;

constexpr float kScale = 0.826446f;

class Noc : public prsm::test::ModelFixture<Model> {
protected:
    int usedBuffers() {
        model.calculate(p);
        return p[Params::USED_CLK_BUFFERS];
    }
};

// Raw bandwidth 0.8 x 5/4 + 0.8 x 6/4 = 2.2 Gb/s; units 1 + 2 + 3x2 + 4x1 + 6x0 + 5x1 = 18, so the
// path costs 39.6 x 0.826446 = 32.7273. Clock: no paths, so the PL-to-PL row's 10 buffers (not the
// path's 6), below the 16 of DDR traffic: 0.826446 x 10 x 0.95 x 0.01 = 0.0785124.
TEST_F(Noc, DefaultsCostTheSelectedPathAndThePlToPlBuffers) {
    EXPECT_NEAR(calc(Params::VCC_SOC_PWR), 32.80579f, 1e-4);
    EXPECT_NEAR(p[Params::TOTAL_PATH_PWR], 32.72727f, 1e-4);
    EXPECT_NEAR(p[Params::NOC_CLK_PWR], 0.0785124f, 1e-6);
    EXPECT_EQ(p[Params::INT_DEVICE_NAME], "ZQ10S80");
    EXPECT_EQ(p[Params::NOC2_DEVICE], 0);

    // The device-table defaults follow DATA_PATH: 1 + 2 + 3x4 + 4x2 + 6x1 + 5x3 = 44, x 2.2 x 0.826446.
    Params q;
    q[Params::DATA_PATH] = "PL_TO_PL";
    model.calculate(q);
    EXPECT_NEAR(q[Params::TOTAL_PATH_PWR], 80.0f, 1e-4);
    EXPECT_EQ(q[Params::NUM_NIDB], 1);
}

TEST_F(Noc, TransactionSizesAndVoltageShapeThePathPower) {
    p[Params::TRANSACTION_READ_SIZE] = 16;  // one flit: 0.8 x 2/1 = 1.6 read, 0.8 x 3/1 = 2.4 write
    p[Params::TRANSACTION_WRITE_SIZE] = 16;
    EXPECT_NEAR(calc(Params::RAW_BW), 4.0f, 1e-6);
    p[Params::TRANSACTION_READ_SIZE] = 0;  // the read direction drops out
    p[Params::TRANSACTION_WRITE_SIZE] = 64;
    EXPECT_NEAR(calc(Params::RAW_BW), 1.2f, 1e-6);
    p[Params::TRANSACTION_READ_SIZE] = 64;
    p[Params::TRANSACTION_WRITE_SIZE] = -8;
    EXPECT_NEAR(calc(Params::RAW_BW), 1.0f, 1e-6);
    p[Params::TRANSACTION_READ_SIZE] = 0;
    EXPECT_EQ(calc(Params::VCC_SOC_PWR), 0.0f);

    p.resetUserInputs();
    p[Params::VCC_SOC] = 0.88f;
    EXPECT_NEAR(calc(Params::PWR_SCALE_FACTOR), 1.0f, 1e-6);
    EXPECT_NEAR(p[Params::TOTAL_PATH_PWR], 39.6f, 1e-4);

    // No traffic: the clock buffers still count, but the network reports nothing.
    p.resetUserInputs();
    p[Params::BANDWITH_READ] = 0.0f;
    p[Params::BANDWITH_WRITE] = 0.0f;
    p[Params::IS_CLOCK_GATING_DISABLED] = 1;
    EXPECT_EQ(calc(Params::VCC_SOC_PWR), 0.0f);
    EXPECT_NEAR(p[Params::NOC_CLK_PWR], kScale * 40 * 0.95f * 0.01f, 1e-6);
}

TEST_F(Noc, ClockBufferRules) {
    auto const defaultBuffers = [this](int plToPlPaths) {
        Params q;
        q[Params::NUM_2PL_PATHS] = plToPlPaths;
        return model.getNumClockBuffers(q, data);
    };
    EXPECT_EQ(defaultBuffers(3), 10);
    EXPECT_EQ(defaultBuffers(5), 20);
    EXPECT_EQ(defaultBuffers(8), 10);  // a multiple of four needs one group's buffers
    EXPECT_EQ(defaultBuffers(9), 30);
    EXPECT_EQ(defaultBuffers(13), 40);

    p[Params::NUM_2PL_PATHS] = 9;
    EXPECT_EQ(usedBuffers(), 16);  // PL-to-PL paths alone fall to the DDR-only limit
    p[Params::NUM_PL_PATHS] = 1;
    EXPECT_EQ(usedBuffers(), 30);
    p[Params::NUM_IMPORTED_CLK_BUFFERS] = 7;
    EXPECT_EQ(usedBuffers(), 7);
    p[Params::NUM_IMPORTED_CLK_BUFFERS] = 100;
    EXPECT_EQ(usedBuffers(), 40);
    p[Params::NUM_IMPORTED_CLK_BUFFERS] = 20;
    p[Params::NOC_CLK] = 1000.0f;
    EXPECT_NEAR(calc(Params::NOC_CLK_PWR), kScale * 20 * 1.0f * 0.01f, 1e-6);
    p[Params::IS_CLOCK_GATING_DISABLED] = 1;
    EXPECT_EQ(usedBuffers(), 40);

    p.resetUserInputs();
    p[Params::NUM_CPM_PATHS] = 1;  // the selected path's own count
    EXPECT_EQ(usedBuffers(), 6);
    p.resetUserInputs();
    p[Params::NUM_PS2AIE_PATHS] = 1;
    p[Params::NUM_CLOCK_BUFFERS] = 20;
    EXPECT_EQ(usedBuffers(), 20);  // limited by the device's 40, not by the 16 of DDR traffic
    p[Params::NUM_PS2AIE_PATHS] = 0;
    EXPECT_EQ(usedBuffers(), 16);

    // ZQVM1606 has no clock-buffer entries: 64 in all, 24 for DDR traffic.
    p.resetUserInputs();
    p[Params::DEVICE] = "ZQVM1606";
    p[Params::NUM_CLOCK_BUFFERS] = 30;
    EXPECT_EQ(usedBuffers(), 24);
    p[Params::IS_CLOCK_GATING_DISABLED] = 1;
    EXPECT_EQ(usedBuffers(), 64);
}

TEST_F(Noc, DevicesAndChoices) {
    // ZQVE2210's second-generation network, PS_TO_DDRC row 1, 1, 0, 0: (10 + 20 + 30 + 40) x 2.2 x
    // 0.826446 = 181.818; the PL-to-PL row's 8 buffers at 0.02: 0.826446 x 8 x 0.95 x 0.02 = 0.125620.
    p[Params::DEVICE] = "ZQVE2210";
    EXPECT_NEAR(calc(Params::TOTAL_PATH_PWR), 181.8182f, 1e-3);
    EXPECT_EQ(p[Params::INT_DEVICE_NAME], "ZQ10N60");
    EXPECT_EQ(p[Params::NOC2_DEVICE], 1);
    EXPECT_NEAR(p[Params::NOC_CLK_PWR], 0.125620f, 1e-6);

    // An internal name passes through; an unknown device has no counts and the fallback buffers.
    p.resetUserInputs();
    p[Params::DEVICE] = "ZQ10N60";
    model.calculate(p);
    EXPECT_EQ(p[Params::NOC2_DEVICE], 1);
    p.resetUserInputs();
    p[Params::DEVICE] = "ZQXX0000";
    EXPECT_NEAR(calc(Params::TOTAL_PATH_PWR), 3 * 2.2f * kScale, 1e-5);
    EXPECT_EQ(p[Params::NUM_SWITCHES], 0);
    EXPECT_EQ(p[Params::TOTAL_CLOCK_BUFFERS], 64);
    EXPECT_EQ(p[Params::DDR_ONLY_CLOCK_BUFFERS], 24);
    EXPECT_FALSE(model.calculateIsValidDevice(p, data));

    EXPECT_EQ(model.calculateValidValuesDevice(p, data), "ZQVC1902,ZQVE2210,ZQVM1606");
    EXPECT_EQ(model.calculateValidValuesDataPath(p, data), "PS_TO_DDRC,PL_TO_PL");
    EXPECT_EQ(model.calculateValidValuesIsClockGatingDisabled(p, data), "0,1");
    p[Params::IS_CLOCK_GATING_DISABLED] = 2;
    EXPECT_EQ(model.intDispatchTable(p, data, "calculateIsValidIS_CLOCK_GATING_DISABLED"), 0);
    p[Params::IS_CLOCK_GATING_DISABLED] = 1;
    EXPECT_TRUE(model.calculateIsValidIsClockGatingDisabled(p, data));
    p[Params::DATA_PATH] = "PL_TO_AIE";
    EXPECT_FALSE(model.calculateIsValidDataPath(p, data));
}

// The shipped file: a default path costs tens of milliwatts, every part maps to the catalogue's
// internal name, and the one second-generation network is the catalogue's NOC2 device.
TEST_F(Noc, ShippedDataMatchesTheCatalogue) {
    prsm::test::ScopedDataDir dir(prsm::test::shippedDataDir());
    Data const shipped;
    PRSMCommonParamControlData const catalogue;
    Params q;
    float const watts = model.calculateVccSocPwr(q, shipped);
    EXPECT_GT(watts, 0.01f);
    EXPECT_LT(watts, 0.1f);
    ASSERT_FALSE(shipped.m__DeviceIntNames.empty());
    for (auto const& [part, names] : shipped.m__DeviceIntNames) {
        ASSERT_EQ(names.size(), 1u) << part;
        std::string family;
        for (auto const& [key, internal] : catalogue.m_Device)
            if (key.substr(key.find('.') + 1) == part) family = key.substr(0, key.find('.'));
        EXPECT_EQ(catalogue.getDevice(family, part), names[0]) << part;
        EXPECT_EQ(catalogue.getFeature(part, "NOC") == "NOC2", names[0] == "ZQ10N60") << part;
        EXPECT_NE(shipped.getClockBufferMaxOrError(names[0]), prsm::kIntNotSet) << part;
        EXPECT_NE(shipped.getClockBufferDdrOrError(names[0]), prsm::kIntNotSet) << part;
        bool const hasAie = catalogue.getFeature(part, "AIE") != "NONE";
        for (auto const& path : shipped.getDropdownLists("DATA_PATH")) {
            if (!hasAie && path.find("AIE") != std::string::npos) continue;
            for (char const* column :
                 {"AVG_SW", "AVG_NPS6_SW", "AVG_NIDB_SW", "AVG_NCRB_SW", "AVG_CLK_BUFFERS"})
                EXPECT_NE(shipped.getDeviceDataOrError(names[0], path, column), prsm::kIntNotSet)
                    << part << path;
        }
    }
}

// Path counts of any size: the PL-to-PL groups are counted in 64 bits and saturate at the int range
// (10 buffers a group). 858993453 paths: 214748363 + 1 groups, 2147483640 buffers, just inside;
// 858993457 paths: 214748365 groups, 2147483650, beyond. Sums of path counts past INT_MAX (which
// itself means "not set") do not wrap around to "no path": 2147483646 + 2 CPM and DDR paths take the
// selected path's 6 buffers, not the PL-to-PL 10; with CPM and PL paths, 30 wanted buffers are limited
// by the device's 40, not by the 16 of DDR traffic alone.
TEST_F(Noc, HugePathCountsSaturate) {
    Params q;
    q[Params::NUM_2PL_PATHS] = 858993453;
    EXPECT_EQ(model.getNumClockBuffers(q, data), 2147483640);
    Params r;
    r[Params::NUM_2PL_PATHS] = 858993457;
    EXPECT_EQ(model.getNumClockBuffers(r, data), INT_MAX);

    Params s;
    s[Params::NUM_CPM_PATHS] = INT_MAX - 1;
    s[Params::NUM_2DDR_PATHS] = 2;
    EXPECT_EQ(model.getNumClockBuffers(s, data), 6);

    p[Params::NUM_CPM_PATHS] = INT_MAX - 1;
    p[Params::NUM_PL_PATHS] = 2;
    p[Params::NUM_CLOCK_BUFFERS] = 30;
    EXPECT_EQ(usedBuffers(), 30);
}

}  // namespace
