// Data files: the search path, loading and flattening of tables, protected files and failures.
#include <prsm/framework/PRSMCommonParamControlData.h>
#include <prsm/framework/PRSMConfigHelpers.h>
#include <prsm/framework/PRSMException.h>
#include <prsm/tests/framework/PRSMTestSamplerData.h>

#include "TestData.h"

#include <gtest/gtest.h>
#include <boost/filesystem.hpp>
#include <boost/iostreams/filter/gzip.hpp>
#include <boost/iostreams/filtering_stream.hpp>

#include <fstream>
#include <libconfig.h++>

namespace fs = boost::filesystem;
using prsm::test::ScopedDataDir;

namespace {

// A data directory of its own, holding one test-sheet file written by the test.
class DataDir {
public:
    DataDir() : m_root(fs::temp_directory_path() / fs::unique_path("prsm-%%%%-%%%%")) {
        fs::create_directories(m_root / "powercfg" / "test");
    }
    ~DataDir() { fs::remove_all(m_root); }
    std::string root() const { return m_root.string(); }
    std::string file() const { return (m_root / "powercfg/test/PRSMTestSamplerData.cfg").string(); }
    void write(std::string const& text) const { std::ofstream(file(), std::ios::binary) << text; }
    void writeGzip(std::string const& text) const {
        std::ofstream out(file(), std::ios::binary);
        boost::iostreams::filtering_ostream zip;
        zip.push(boost::iostreams::gzip_compressor());
        zip.push(out);
        zip << text;
    }

private:
    fs::path m_root;
};

char const kSmall[] = "PRSMTestSamplerData = { MODES = (\"ONLY\"); LANE_CAP = { ONLY = { A = 7; }; }; };";

TEST(Data, SearchPathTakesTheFirstDirectoryHoldingTheFile) {
    DataDir dir;
    dir.write(kSmall);
    ScopedDataDir scope("/no/such/dir::" + dir.root() + ":" + prsm::test::testDataDir());
    EXPECT_EQ(PRSMData::getQDIDataDir("powercfg/test/PRSMTestSamplerData.cfg"), dir.root());
    EXPECT_EQ(PRSMData::getQDIDataDir("powercfg/nothing.cfg"), "");
    PRSMTestSamplerData const data;
    EXPECT_EQ(data.getLaneCap("ONLY", "A"), 7.0f);  // an integer leaf loads into a float table
    EXPECT_EQ(data.getDropdownLists("MODES"), std::vector<std::string>{"ONLY"});
    EXPECT_TRUE(data.m_AbsentTable.empty());  // a table the file lacks stays empty
    EXPECT_THROW(data.getAbsentTable("x"), PRSMException);
    EXPECT_EQ(data.getLaneCapOrError("ONLY", "B"), FLT_MAX);
    std::vector<std::string> keys{"old"};
    data.getCfgKeys(keys);
    EXPECT_EQ(keys, (std::vector<std::string>{"MODES", "ONLY.A"}));
    EXPECT_EQ(data.reflect(), "MODES.MODES = [ONLY]\nLANE_CAP.ONLY.A = 7\n");

    ScopedDataDir empty("");
    EXPECT_EQ(PRSMData::getQDIDataDir("powercfg"), "");
}

TEST(Data, UnsetDataDirectoryIsALogicError) {
    ScopedDataDir scope("");
    ::unsetenv("QDI_DATADIR");
    EXPECT_THROW(PRSMData::getQDIDataDir("x"), std::logic_error);
}

TEST(Data, FlattenedKeysJoinTheGroupsBelowTheTable) {
    libconfig::Config cfg;
    cfg.readString(
        "TOP = { TABLE = { a = { b = { c = 3; d = 1.5; }; }; e = 2; }; LIST = { x = (1, \"y\"); }; };");
    std::vector<std::string> path{"TOP", "TABLE"};
    std::unordered_map<std::string, float> values;
    EXPECT_TRUE(PRSMHelperUtils::loadCfgDataToVar(&cfg, path, values, true));
    EXPECT_EQ(values.at("a.b.c"), 3.0f);
    EXPECT_EQ(values.at("a.b.d"), 1.5f);
    EXPECT_EQ(values.at("e"), 2.0f);
    EXPECT_FALSE(cfg.getAutoConvert());  // restored after the load
    EXPECT_EQ(path, (std::vector<std::string>{"TOP", "TABLE"}));

    std::unordered_map<std::string, int> none;
    std::vector<std::string> missing{"TOP", "NOPE"};
    EXPECT_FALSE(PRSMHelperUtils::loadCfgDataToVar(&cfg, missing, none, true));

    std::vector<std::string> listPath{"TOP", "LIST"};
    testing::internal::CaptureStderr();
    EXPECT_FALSE(PRSMHelperUtils::loadCfgDataToVar(&cfg, listPath, none, true));
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "Unsupported cfg file format error: to use loadCfgDataToVar function, cfg has to be a nested "
              "dictionary that does not contain any array or list.\n");
    std::unordered_map<std::string, std::vector<std::string>> lists;
    EXPECT_TRUE(PRSMHelperUtils::loadCfgDataToList(&cfg, listPath, lists, true));
    EXPECT_EQ(lists.at("x"), (std::vector<std::string>{"1", "y"}));
}

TEST(Data, ProtectedAndBrokenFiles) {
    DataDir dir;
    ScopedDataDir scope(dir.root());
    dir.writeGzip(kSmall);
    EXPECT_EQ(PRSMTestSamplerData().getLaneCap("ONLY", "A"), 7.0f);

    dir.write(
        std::string("\x7f"
                    "ELF\0\0binary",
                    12));
    testing::internal::CaptureStderr();
    EXPECT_THROW(PRSMTestSamplerData(), PRSMException);
    std::string const refused = testing::internal::GetCapturedStderr();
    EXPECT_EQ(refused.rfind("PRS Data Exception: PRS Exception: data file ", 0), 0u) << refused;
    EXPECT_NE(refused.find(dir.file()), std::string::npos);

    dir.write("PRSMTestSamplerData = { MODES = ( \"A\" ;");
    testing::internal::CaptureStderr();
    EXPECT_THROW(PRSMTestSamplerData(), libconfig::ParseException);
    std::string const parse = testing::internal::GetCapturedStderr();
    EXPECT_EQ(parse.rfind("Parse error at " + dir.file() + ":1 - ", 0), 0u) << parse;

    fs::remove(dir.file());
    testing::internal::CaptureStderr();
    EXPECT_THROW(PRSMTestSamplerData(), libconfig::FileIOException);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "I/O error while reading file.\n");

    dir.write(kSmall);  // the next attempt loads again
    EXPECT_EQ(PRSMTestSamplerData().getLaneCap("ONLY", "A"), 7.0f);
}

TEST(Data, CommonSettingsServeTheDeviceCatalogue) {
    auto const& common = PRSMCommonParamControlData::getGlobal();
    EXPECT_EQ(common.className(), "PRSMCommonParamControlData");
    EXPECT_EQ(common.getDevice("TALVEX_COMPUTE", "ZQVC1902"), "ZQ10S80");
    EXPECT_EQ(common.getDeviceAlias("ZQVC1902A"), "ZQVC1902");
    EXPECT_EQ(common.getMasterKey("TALVEX", "DEFAULT_DEVICE"), "ZQVC1902");
    EXPECT_EQ(common.getParamVarsInt("THERMAL", "MAX_JUNCTION_TEMP"), 100);
    EXPECT_FLOAT_EQ(common.getParamVarsFloat("VOLTAGE", "VCCINT_NOMINAL"), 0.8f);
    EXPECT_EQ(common.getFeature("ZQVE2210", "NOC"), "NOC2");
    EXPECT_THROW(common.getDevice("TALVEX_COMPUTE", "NOPE"), PRSMException);
    std::vector<std::string> keys;
    common.getCfgKeys(keys, true);
    EXPECT_NE(std::find(keys.begin(), keys.end(), "TALVEX_CORE.ZQVM1606"), keys.end());
}

}  // namespace
