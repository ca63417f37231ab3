// Design files that must be refused: each message names the file, the JSON pointer, the block and the
// cell, and nothing is estimated.
#include <prsm/design/Design.h>

#include "DesignText.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using namespace prsm::design;

using prsm::test::designRefusal;

std::string withBlocks(std::string const& blocks, std::string const& extra = "") {
    return prsm::test::testDesign(extra + R"("blocks": [)" + blocks + "]");
}

TEST(DesignFile, RefusesEachKindOfFault) {
    std::string m;

    m = designRefusal(withBlocks(R"({"name": "a", "model": "NoSuchSheet"})"));
    EXPECT_MENTIONS(m, "bad.json: /blocks/0/model: block \"a\": unknown model NoSuchSheet");

    m = designRefusal(withBlocks(R"({"name": "a", "model": "TestLoad", "inputs": {"NOPE": 1}})"));
    EXPECT_MENTIONS(m, "bad.json: /blocks/0/inputs/NOPE: block \"a\": TestLoad has no cell NOPE");

    m = designRefusal(withBlocks(R"({"name": "a", "model": "TestLoad", "inputs": {"CORE_POWER": 1}})"));
    EXPECT_MENTIONS(m, "/blocks/0/inputs/CORE_POWER: block \"a\": cell CORE_POWER is an output");

    // Wrong value types: text for a number, a fraction for a whole number, a number for a text.
    m = designRefusal(withBlocks(R"({"name": "a", "model": "TestLoad", "inputs": {"CLOCK_FREQ": "fast"}})"));
    EXPECT_MENTIONS(
        m, "/blocks/0/inputs/CLOCK_FREQ: block \"a\": cell CLOCK_FREQ takes a number, found a string");
    m = designRefusal(withBlocks(R"({"name": "b", "model": "TestSampler", "inputs": {"COUNT": 2.5}})"));
    EXPECT_MENTIONS(m, "/blocks/0/inputs/COUNT: block \"b\": cell COUNT takes a whole number");
    m = designRefusal(withBlocks(R"({"name": "a", "model": "TestLoad", "inputs": {"MODE": 3}})"));
    EXPECT_MENTIONS(m, "cell MODE takes a string, found an integer");

    m = designRefusal(
        withBlocks(R"({"name": "a", "model": "TestLoad"}, {"name": "a", "model": "TestLoad"})"));
    EXPECT_MENTIONS(m, "/blocks/1/name: block \"a\": the name is used by an earlier block");

    m = designRefusal(withBlocks(R"({"name": "a", "model": "TestLoad"})", R"("description": 7,)"));
    EXPECT_MENTIONS(m, "bad.json: /description: ");

    m = designRefusal(withBlocks(R"({"name": "a", "model": "TestLoad"})", R"("rails": {"VCCNOPE": 1.0},)"));
    EXPECT_MENTIONS(m, "bad.json: /rails/VCCNOPE: unknown rail VCCNOPE");
    m = designRefusal(
        withBlocks("", R"("loads": [{"name": "x", "rail": "VCCQ", "power": 1, "region": "io"}],)"));
    EXPECT_MENTIONS(m, "/loads/0/rail: load \"x\": unknown rail VCCQ");

    // A rail voltage is set once for the design, not per block.
    m = designRefusal(withBlocks(R"({"name": "a", "model": "TestLoad", "inputs": {"VCCINT": 0.7}})"));
    EXPECT_MENTIONS(m, "cell VCCINT is the voltage of rail VCCINT: set it once under /rails");

    m = designRefusal(
        R"({"schema_version": 7, "device": {"part": "X"}, "thermal": {"junction_temperature": 25}, "blocks": []})");
    EXPECT_MENTIONS(m, "/schema_version: version 7 is not one this build reads");

    m = designRefusal(
        R"({"schema_version": 1, "device": {"part": "X"}, "blocks": [], "thermal": {"theta_ja": 1}})");
    EXPECT_MENTIONS(m, "/thermal: give either junction_temperature, or ambient_temperature and theta_ja");

    // Every problem is listed, one line each.
    m = designRefusal(withBlocks(
        R"({"name": "a", "model": "Nope"}, {"name": "b", "model": "TestLoad", "inputs": {"X": 1}})"));
    EXPECT_MENTIONS(m, "/blocks/0/model");
    EXPECT_MENTIONS(m, "/blocks/1/inputs/X");

    EXPECT_EQ(designRefusal(
                  withBlocks(R"({"name": "a", "model": "TestLoad", "count": 4, "inputs": {"MODE": "OFF"}})")),
              "");
}

// A block's preset fills the inputs that neither the block nor the design sets. RPU_REALTIME of the
// shipped preset table: RPU_CORES = 2, DUAL_R5_CLK_FREQ = 800.0, DUAL_R5_LOAD = 70.0,
// LPD_GEM1_MODE = "DISABLED", VCCPSFP = VCCPSLP = 0.8 (the design's rails).
TEST(DesignFile, APresetFillsTheInputsTheBlockLeaves) {
    Design const design =
        parseDesign(withBlocks(R"({"name": "ps", "model": "TalvexPss", "preset": "RPU_REALTIME",
                       "inputs": {"DUAL_R5_LOAD": 100}})"),
                    "ps.json");
    std::vector<Input> const& inputs = design.blocks.at(0).inputs;
    auto find = [&](std::string const& cell) -> Input const* {
        Input const* found = nullptr;
        for (Input const& input : inputs)
            if (input.cell == cell) {
                EXPECT_EQ(found, nullptr) << cell << " is set twice";
                found = &input;
            }
        return found;
    };
    ASSERT_NE(find("RPU_CORES"), nullptr);
    EXPECT_EQ(find("RPU_CORES")->text, "2");
    EXPECT_EQ(find("RPU_CORES")->pointer, "/blocks/0/preset");
    EXPECT_EQ(find("DUAL_R5_CLK_FREQ")->text, "800");
    EXPECT_EQ(find("LPD_GEM1_MODE")->text, "DISABLED");
    // The block's own value wins; the rail voltages stay the design's, skipped without complaint.
    EXPECT_EQ(find("DUAL_R5_LOAD")->text, "100");
    EXPECT_EQ(find("DUAL_R5_LOAD")->pointer, "/blocks/0/inputs/DUAL_R5_LOAD");
    EXPECT_EQ(find("VCCPSFP"), nullptr);
    EXPECT_EQ(find("VCCPSLP"), nullptr);

    std::string m =
        designRefusal(withBlocks(R"({"name": "a", "model": "TalvexPss", "preset": "LINUX_HEAVVY"})"));
    EXPECT_MENTIONS(m,
                    "bad.json: /blocks/0/preset: block \"a\": TalvexPss has no preset LINUX_HEAVVY (did you "
                    "mean LINUX_HEAVY?); choose one of LINUX_HEAVY, LINUX_IDLE, LINUX_LIGHT, RPU_REALTIME");
    m = designRefusal(withBlocks(R"({"name": "a", "model": "TestLoad", "preset": "FAST"})"));
    EXPECT_MENTIONS(m, "bad.json: /blocks/0/preset: block \"a\": TestLoad has no presets");
    m = designRefusal(withBlocks(R"({"name": "a", "model": "TalvexPss", "preset": 1})"));
    EXPECT_MENTIONS(m, "bad.json: /blocks/0/preset: a string expected, found an integer");
}

TEST(DesignFile, MalformedFileNamesTheFile) {
    std::string const path = std::string(PRSM_TEST_DESIGNDIR) + "/malformed.json";
    try {
        readDesignFile(path);
        FAIL() << "a truncated file was accepted";
    } catch (DesignError const& e) {
        EXPECT_MENTIONS(std::string(e.what()), path + ": /: not valid JSON");
    }
    EXPECT_THROW(readDesignFile(path + ".absent"), DesignError);
}

}  // namespace
