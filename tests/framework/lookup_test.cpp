// Table lookups through the load-time index and the constant keys that the formulas name: a key the
// file lacks behaves as a lookup by its text does, reset() re-resolves, and multi-part keys are found
// exactly as the joined key would be.
#include <prsm/framework/PRSMException.h>
#include <prsm/framework/PRSMTableIndex.h>
#include <prsm/models/talvex/PRSMTalvexCleLogicModel.h>
#include <prsm/tests/framework/PRSMTestSamplerData.h>

#include "TestData.h"

#include <gtest/gtest.h>
#include <boost/filesystem.hpp>

#include <cfloat>
#include <fstream>
#include <functional>
#include <string>

namespace fs = boost::filesystem;
using prsm::test::ScopedDataDir;

namespace {

// The message of a PRSMException that `call` throws, or "" when it throws none.
std::string messageOf(std::function<void()> const& call) {
    try {
        call();
    } catch (PRSMException const& e) {
        return e.what();
    }
    return "";
}

std::string missing(char const* key, char const* table, char const* function) {
    return std::string("PRS Exception: key \"") + key + "\" not found in table \"" + table +
           "\" [ in function: " + function + " ]";
}

}  // namespace

// tests/data/missing-keys lacks LUT_CAP A3INT and CLSRL, MISC_CAP OFMUX and BLOCK_POWER_SCALE's DEFAULT row.
TEST(Lookups, ConstantKeysTheFileLacksFailWhenReadNotWhenLoaded) {
    using Model = PRSMTalvexCleLogicModel;
    using Data = Model::Data;
    ScopedDataDir scope(prsm::test::testDataDir() + "/missing-keys");
    Data const data;  // loading succeeds
    Model const& model = Model::getGlobal();

    std::string const a3int = missing("A3INT", "LUT_CAP", "PRSMTalvexCleLogicData::getLutCap");
    EXPECT_EQ(messageOf([&] { data.getLutCap(Data::LutCapKey::A3INT); }), a3int);
    EXPECT_EQ(messageOf([&] { data.getLutCap("A3INT"); }), a3int);
    EXPECT_EQ(data.getLutCapOrError(Data::LutCapKey::A3INT), FLT_MAX);
    EXPECT_EQ(data.getLutCap(Data::LutCapKey::A4INT), 4.0f);

    // A look-up-table group reaches the internal nodes of input 1, which include A3INT.
    Model::Params p;
    EXPECT_EQ(messageOf([&] { model.calculateLutCapFreq(p, data); }), a3int);
    EXPECT_EQ(messageOf([&] { model.calculateKpeLutIntCap(p, data); }), a3int);
    p[Model::Params::INSTANCE_TYPE] = "LUT_SRL";
    EXPECT_EQ(messageOf([&] { model.calculateMemoryWriteCapFreq(p, data); }),
              missing("CLSRL", "LUT_CAP", "PRSMTalvexCleLogicData::getLutCap"));
    EXPECT_EQ(messageOf([&] { model.calculateOfmuxCapFreq(p, data); }),
              missing("OFMUX", "MISC_CAP", "PRSMTalvexCleLogicData::getMiscCap"));

    // The register group needs none of the missing keys: 0.2 pF at Q_SIG_RATE = 200 x 0.125 = 25 MHz.
    Model::Params reg;
    reg[Model::Params::INSTANCE_TYPE] = "REG_FF";
    EXPECT_FLOAT_EQ(model.calculateRegCapFreq(reg, data), 25.0f * 0.2f);

    // The device's own scale, then DEFAULT's, then 1: this file has no DEFAULT row.
    EXPECT_EQ(model.calculateVccintScale(reg, data), 0.5f);
    Model::Params other;
    other[Model::Params::DEVICE] = "ZQVC1204";
    EXPECT_EQ(model.calculateVccintScale(other, data), 1.0f);
    EXPECT_EQ(messageOf([&] { data.getBlockPowerScale(Data::BlockPowerScaleKey::DEFAULT_CLE_LOGIC_VCCINT); }),
              missing("DEFAULT.CLE_LOGIC_VCCINT", "BLOCK_POWER_SCALE",
                      "PRSMTalvexCleLogicData::getBlockPowerScale"));
}

TEST(Lookups, ResetReResolvesAndHandEditsStayVisible) {
    fs::path const root = fs::temp_directory_path() / fs::unique_path("prsm-lookups-%%%%-%%%%");
    fs::create_directories(root / "powercfg" / "test");
    auto const write = [&](char const* text) {
        std::ofstream(root / "powercfg/test/PRSMTestSamplerData.cfg") << text;
    };
    using Key = PRSMTestSamplerData::LaneCapKey;
    std::string const slowB = missing("SLOW.B", "LANE_CAP", "PRSMTestSamplerData::getLaneCap");
    {
        ScopedDataDir scope(root.string());
        write("PRSMTestSamplerData = { LANE_CAP = { FAST = { A = 2; }; SLOW = { B = 1.5; }; }; };");
        PRSMTestSamplerData data;
        EXPECT_EQ(data.getLaneCap(Key::FAST_A), 2.0f);
        EXPECT_EQ(data.getLaneCap(Key::SLOW_B), 1.5f);

        write("PRSMTestSamplerData = { LANE_CAP = { FAST = { A = 3; B = 4; }; }; };");
        data.reset();
        EXPECT_EQ(data.getLaneCap(Key::FAST_A), 3.0f);
        EXPECT_EQ(data.getLaneCap("FAST", "B"), 4.0f);  // a key that is new to the file
        EXPECT_EQ(messageOf([&] { data.getLaneCap(Key::SLOW_B); }), slowB);
        EXPECT_EQ(messageOf([&] { data.getLaneCap("SLOW", "B"); }), slowB);
        EXPECT_EQ(data.getLaneCapOrError(Key::SLOW_B), FLT_MAX);

        // Entries changed, erased or added by hand are seen without a reload (after an erasure, resolve()
        // before adding again).
        data.m_LaneCap["FAST.A"] = 5.0f;
        EXPECT_EQ(data.getLaneCap(Key::FAST_A), 5.0f);
        PRSMTestSamplerData copy = data;  // a copy resolves against its own maps
        PRSMTestSamplerData assigned;     // loaded from the file (FAST.A = 3), then given data's tables
        assigned = data;
        data.m_LaneCap.erase("FAST.A");
        EXPECT_EQ(data.getLaneCapOrError(Key::FAST_A), FLT_MAX);
        EXPECT_EQ(data.getLaneCapOrError("FAST", "A"), FLT_MAX);
        EXPECT_EQ(copy.getLaneCap(Key::FAST_A), 5.0f);
        EXPECT_EQ(assigned.getLaneCap(Key::FAST_A), 5.0f);
        EXPECT_EQ(assigned.getLaneCap("FAST", "B"), 4.0f);
        data.resolve();
        data.m_LaneCap["SLOW.B"] = 6.0f;
        EXPECT_EQ(data.getLaneCap(Key::SLOW_B), 6.0f);
        EXPECT_EQ(data.getLaneCap("SLOW", "B"), 6.0f);
        data.resolve();
        EXPECT_EQ(data.getLaneCap(Key::SLOW_B), 6.0f);
        EXPECT_EQ(messageOf([&] { data.getLaneCap(Key::FAST_A); }),
                  missing("FAST.A", "LANE_CAP", "PRSMTestSamplerData::getLaneCap"));
    }
    fs::remove_all(root);
}

TEST(Lookups, MultiPartKeysMatchTheJoinedKeyExactly) {
    using Map = std::unordered_map<std::string, int>;
    Map map;
    // 10 x 10 x 10 four-part keys device.process.rail.kind, with values that name them.
    for (int d = 0; d < 10; ++d)
        for (int p = 0; p < 10; ++p)
            for (int r = 0; r < 10; ++r)
                map["DEV" + std::to_string(d) + ".P" + std::to_string(p) + ".VCC_RAIL_" + std::to_string(r) +
                    ".STATIC"] = 100 * d + 10 * p + r;
    map["a.bc.d.e"] = -1;
    map["x.y.z.w.deeper"] = -2;  // nested one level deeper than the table's four parts
    prsm::data::TableIndex<int> index;
    index.build(map, 4);

    int found = 0;
    for (int d = 0; d < 10; ++d)
        for (int p = 0; p < 10; ++p)
            for (int r = 0; r < 10; ++r) {
                std::string const dev = "DEV" + std::to_string(d), proc = "P" + std::to_string(p);
                std::string const rail = "VCC_RAIL_" + std::to_string(r);
                int const* value = index.find(map, std::string_view(dev), std::string_view(proc),
                                              std::string_view(rail), std::string_view("STATIC"));
                found += value != nullptr && *value == 100 * d + 10 * p + r;
            }
    EXPECT_EQ(found, 1000);

    auto const find = [&](std::string_view a, std::string_view b, std::string_view c, std::string_view d) {
        int const* value = index.find(map, a, b, c, d);
        return value == nullptr ? 0 : *value;
    };
    EXPECT_EQ(find("a", "bc", "d", "e"), -1);
    EXPECT_EQ(find("ab", "c", "d", "e"), 0);  // same characters, other split
    EXPECT_EQ(find("a", "b", "cd", "e"), 0);
    EXPECT_EQ(find("DEV1", "P2", "VCC_RAIL_3", "STATI"), 0);
    EXPECT_EQ(find("DEV1", "P2", "VCC_RAIL_3", ""), 0);
    // A part holding a '.' finds what the joined key names, here and one level deeper.
    int const* joined =
        index.find(map, std::string_view("a.bc"), std::string_view("d"), std::string_view("e"));
    EXPECT_TRUE(joined != nullptr && *joined == -1);
    EXPECT_EQ(find("x", "y", "z", "w.deeper"), -2);
    EXPECT_EQ(find("DEV1.P2", "VCC_RAIL_3", "STATIC", "x"), 0);
    // An entry added after the build is found through the map itself.
    map["n.e.w.key"] = 7;
    EXPECT_EQ(find("n", "e", "w", "key"), 7);
}
