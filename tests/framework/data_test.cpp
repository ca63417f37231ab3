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
    // "\x7f" "ELF" then the first NUL: offset 4.
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "PRS Data Exception: PRS Exception: data file " + dir.file() +
                  " is not text: it holds a NUL byte at offset 4 [ in function: PRSMData::readFile ]\n");

    dir.write("PRSMTestSamplerData = { MODES = ( \"A\" ;");
    testing::internal::CaptureStderr();
    EXPECT_THROW(PRSMTestSamplerData(), libconfig::ParseException);
    std::string const parse = testing::internal::GetCapturedStderr();
    EXPECT_EQ(parse, "Parse error at " + dir.file() + ":1 - syntax error\n");

    fs::remove(dir.file());
    testing::internal::CaptureStderr();
    EXPECT_THROW(PRSMTestSamplerData(), libconfig::FileIOException);
    std::string const notFound =
        "data file powercfg/test/PRSMTestSamplerData.cfg not found in the data "
        "directories (QDI_DATADIR): " +
        dir.root();
    // The report is the one line; the file and the directories searched are the host's to show.
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "I/O error while reading file.\n");
    EXPECT_EQ(PRSMData::lastLoadFailure(), notFound);

    dir.write(kSmall);  // the next attempt loads again
    EXPECT_EQ(PRSMTestSamplerData().getLaneCap("ONLY", "A"), 7.0f);
    EXPECT_EQ(PRSMData::lastLoadFailure(), "");
}

// Loads the test sheet, which must fail with a report of one line on standard error that starts with
// `report`; returns the detail, naming the file, that lastLoadFailure() keeps for hosts.
std::string failureOf(std::string const& report, bool parse = false) {
    testing::internal::CaptureStderr();
    try {
        PRSMTestSamplerData const data;
        ADD_FAILURE() << "loaded";
    } catch (libconfig::ParseException const&) {
        EXPECT_TRUE(parse);
    } catch (libconfig::FileIOException const&) {
        EXPECT_FALSE(parse);
    } catch (PRSMException const&) {
        EXPECT_FALSE(parse);
    }
    std::string const err = testing::internal::GetCapturedStderr();
    EXPECT_EQ(err.rfind(report, 0), 0u) << err;
    EXPECT_EQ(err.find('\n'), err.size() - 1) << "not one line: " << err;
    return PRSMData::lastLoadFailure();
}

TEST(Data, FailuresNameTheFile) {
    DataDir dir;
    ScopedDataDir scope(dir.root());
    std::string const io = "I/O error while reading file.\n";
    fs::create_directory(dir.file());
    EXPECT_EQ(failureOf(io), "data file " + dir.file() + " is a directory");
    fs::remove(dir.file());
    fs::create_symlink(dir.root() + "/nowhere.cfg", dir.file());
    EXPECT_EQ(failureOf(io), "data file " + dir.file() + " is a link to a missing file");
    fs::remove(dir.file());
    fs::create_symlink(dir.file(), dir.file());
    EXPECT_EQ(failureOf(io), "data file " + dir.file() + " is a link loop");
    fs::remove(dir.file());
    ScopedDataDir none("");
    EXPECT_EQ(failureOf(io),
              "data file powercfg/test/PRSMTestSamplerData.cfg not found: QDI_DATADIR names no directory");
}

TEST(Data, CompressedFilesNameTheFileWhenBroken) {
    DataDir dir;
    ScopedDataDir scope(dir.root());
    // A parse error in text decompressed into memory names the file and the line of the text.
    dir.writeGzip("PRSMTestSamplerData = {\n  MODES = ( \"A\" ;\n};\n");
    EXPECT_EQ(failureOf("Parse error at " + dir.file() + ":2 - syntax error\n", true),
              "data file " + dir.file() + " does not parse at line 2: syntax error");

    // A damaged stream (its deflate data overwritten) and a cut one.
    dir.writeGzip(kSmall);
    std::string bytes;
    {
        std::ifstream in(dir.file(), std::ios::binary);
        bytes.assign(std::istreambuf_iterator<char>(in), {});
    }
    std::string damaged = bytes;
    for (std::size_t i = 12; i < damaged.size() - 8; ++i) damaged[i] = '\xff';
    dir.write(damaged);
    std::string const prefix =
        "PRS Data Exception: PRS Exception: data file " + dir.file() + " is a damaged compressed file";
    EXPECT_NE(failureOf(prefix).find(dir.file() + " is a damaged compressed file"), std::string::npos);
    dir.write(bytes.substr(0, bytes.size() / 2));
    failureOf(prefix);
}

// Puts the loader's limits back when a test ends.
struct LimitsScope {
    ~LimitsScope() {
        PRSMData::setMaxDataBytes(PRSMData::kDefaultMaxDataBytes);
        PRSMData::setMaxGroupPairs(PRSMData::kDefaultMaxGroupPairs);
    }
};

TEST(Data, SizeAndGroupLimits) {
    DataDir dir;
    ScopedDataDir scope(dir.root());
    LimitsScope const restore;

    std::string const text = kSmall;
    PRSMData::setMaxDataBytes(text.size());
    dir.write(text);
    EXPECT_EQ(PRSMTestSamplerData().getLaneCap("ONLY", "A"), 7.0f);
    dir.write(text + " ");
    EXPECT_NE(failureOf("PRS Data Exception: ")
                  .find(dir.file() + " is larger than " + std::to_string(text.size()) + " bytes"),
              std::string::npos);
    // A compressed file is held to the limit as it expands: 100,000 blanks compress to a few hundred bytes.
    PRSMData::setMaxDataBytes(10000);
    dir.writeGzip(text + std::string(100000, ' '));
    EXPECT_NE(failureOf("PRS Data Exception: ").find(dir.file() + " expands to more than 10000 bytes"),
              std::string::npos);

    // Pairs of settings sharing a group: MODES and LANE_CAP make 1, the root's one setting none, and
    // the k settings of ONLY k(k-1)/2: 1 + 10 = 11 for k = 5, 1 + 15 = 16 for k = 6.
    PRSMData::setMaxDataBytes(PRSMData::kDefaultMaxDataBytes);
    PRSMData::setMaxGroupPairs(11);
    std::string const five = "a=1; b=2; c=3; d=4; e=5;";
    auto const file = [](std::string const& settings) {
        return "PRSMTestSamplerData = { MODES = (\"ONLY\"); LANE_CAP = { ONLY = {\n" + settings +
               "\n}; }; };";
    };
    dir.write(file(five));
    EXPECT_EQ(PRSMTestSamplerData().getLaneCap("ONLY", "e"), 5.0f);
    dir.write(file(five + " f=6;"));
    EXPECT_NE(
        failureOf("PRS Data Exception: ").find(dir.file() + " has too many settings in one group (line 2)"),
        std::string::npos);
}

// Values that the table's type cannot hold are reported with file, table and key, and left out, so
// that a lookup fails as for a missing key; integers that the parser would wrap keep their value.
TEST(Data, LeafValuesThatDoNotFitAreLeftOut) {
    DataDir dir;
    ScopedDataDir scope(dir.root());
    dir.write(
        "PRSMTestSamplerData = { LANE_CAP = { M = {\n"  // line 1
        "  A = 99999999999999999999999;\n"              // 2: 1e23, as written
        "  B = 0xFFFFFFFFFF;\n"                         // 3: 2^40 - 1
        "  C = 1e39;\n"                                 // 4: beyond the float range
        "  D = \"text\";\n"                             // 5
        "  E = true;\n"                                 // 6
        "  F = -2147483648;\n"                          // 7
        "}; };\n"
        "ABSENT_TABLE = {\n"    // 9
        "  I = 5000000000L;\n"  // 10
        "  J = 1e30;\n"         // 11
        "  K = 38.9;\n"         // 12: 38, with a warning
        "  L = 5000000000;\n"   // 13
        "  M = -2147483649;\n"  // 14
        "  N = 0xFFFFFFFF;\n"   // 15: 4294967295
        "  O = -7.5;\n"         // 16: -7, with a warning
        "  P = 0x7FFFFFFF;\n"   // 17
        "}; };\n");
    testing::internal::CaptureStderr();
    PRSMTestSamplerData const data;
    std::string const err = testing::internal::GetCapturedStderr();
    EXPECT_EQ(data.getLaneCap("M", "A"), 1e23f);
    EXPECT_EQ(data.getLaneCap("M", "B"), 1099511627776.0f);  // 2^40 - 1 rounds to 2^40 in float
    EXPECT_EQ(data.getLaneCap("M", "F"), -2147483648.0f);
    for (char const* key : {"C", "D", "E"}) EXPECT_THROW(data.getLaneCap("M", key), PRSMException) << key;
    EXPECT_EQ(data.getAbsentTable("K"), 38);
    EXPECT_EQ(data.getAbsentTable("O"), -7);
    EXPECT_EQ(data.getAbsentTable("P"), 2147483647);
    for (char const* key : {"I", "J", "L", "M", "N"})
        EXPECT_THROW(data.getAbsentTable(key), PRSMException) << key;

    std::string const at = " (" + dir.file() + ":";
    std::string const error = "Unsupported cfg value error: key ";
    for (std::string const& line : {
             error + "\"M.C\" of table LANE_CAP" + at +
                 "4) holds 1e+39, which does not fit a float; the key is not loaded.",
             error + "\"M.D\" of table LANE_CAP" + at +
                 "5) has the wrong type: a string where the table holds numbers; the key is not loaded.",
             error + "\"M.E\" of table LANE_CAP" + at +
                 "6) has the wrong type: a boolean where the table holds numbers; the key is not loaded.",
             error + "\"I\" of table ABSENT_TABLE" + at +
                 "10) holds 5000000000, which does not fit an int; the key is not loaded.",
             error + "\"J\" of table ABSENT_TABLE" + at +
                 "11) holds 1e+30, which does not fit an int; the key is not loaded.",
             "Cfg value warning: key \"K\" of table ABSENT_TABLE" + at +
                 "12) holds 38.9, not a whole number; loaded as 38.",
             error + "\"L\" of table ABSENT_TABLE" + at +
                 "13) holds 5000000000, which does not fit an int; the key is not loaded.",
             error + "\"M\" of table ABSENT_TABLE" + at +
                 "14) holds -2147483649, which does not fit an int; the key is not loaded.",
             error + "\"N\" of table ABSENT_TABLE" + at +
                 "15) holds 4294967295, which does not fit an int; the key is not loaded.",
         })
        EXPECT_NE(err.find(line + "\n"), std::string::npos) << line << "\nin\n" << err;
}

// An include names a file relative to the including file and must stay inside the data directories.
TEST(Data, IncludesResolveBesideTheFileAndStayInside) {
    DataDir dir;
    ScopedDataDir scope(dir.root());
    fs::path const folder = fs::path(dir.file()).parent_path();
    fs::create_directories(folder / "parts");
    std::ofstream(folder / "parts/lanes.cfg") << "LANE_CAP = {\n@include \"only.cfg\"\n};\n";
    std::ofstream(folder / "parts/only.cfg") << "ONLY = { A = 7; };\n";
    dir.write("PRSMTestSamplerData = {\n  @include \"parts/lanes.cfg\" MODES = (\"ONLY\");\n};\n");
    {
        PRSMTestSamplerData const data;
        EXPECT_EQ(data.getLaneCap("ONLY", "A"), 7.0f);
        EXPECT_EQ(data.getDropdownLists("MODES"), std::vector<std::string>{"ONLY"});
    }

    // An error inside an included file names that file and its own line.
    std::ofstream(folder / "parts/only.cfg") << "ONLY = {\n A = 7;\n B = ;\n};\n";
    failureOf("Parse error at " + (folder / "parts/only.cfg").string() + ":3 - syntax error\n", true);

    // Outside the data directories, by a relative path, an absolute one or a link, whether or not the
    // file exists: refused without reading it.
    fs::path const outside = fs::temp_directory_path() / fs::unique_path("prsm-outside-%%%%-%%%%.cfg");
    std::ofstream(outside.string()) << "LANE_CAP = { ONLY = { A = 9; }; };\n";
    fs::create_symlink(outside, folder / "parts/link.cfg");
    for (std::string const& name : {"../../../" + outside.filename().string(), outside.string(),
                                    std::string("parts/link.cfg"), std::string("/no/such/file.cfg")}) {
        dir.write("PRSMTestSamplerData = {\n@include \"" + name + "\"\n};\n");
        EXPECT_EQ(failureOf("PRS Data Exception: "),
                  "PRS Exception: data file " + dir.file() + ", line 2: @include \"" + name +
                      "\" leaves the data directories; an included file must lie inside one of them [ in "
                      "function: PRSMData::readFile ]");
    }
    fs::remove(outside);

    // A file that includes itself.
    dir.write("PRSMTestSamplerData = { MODES = (\"A\"); };\n@include \"PRSMTestSamplerData.cfg\"\n");
    EXPECT_NE(failureOf("PRS Data Exception: ").find("nests includes deeper than 10 files"),
              std::string::npos);
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
