// Inputs taken from another block's cell: checked when the file is read, calculated source first, and
// recalculated with their source after a change; a failed source fails its readers.
#include <prsm/design/Estimate.h>
#include <prsm/host/DesignTarget.h>

#include "DesignText.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

namespace {

using namespace prsm::design;

std::string designWith(std::string const& blocks) {
    return prsm::test::testDesign(R"("rails": {"VCCINT": 0.8, "VCCAUX": 1.5}, "blocks": [)" + blocks + "]");
}

std::string refusal(std::string const& blocks) {
    return prsm::test::designRefusal(designWith(blocks), "refs.json");
}

double blockPower(Report const& report, std::string const& name) {
    for (BlockResult const& b : report.blocks)
        if (b.name == name) return b.power;
    throw std::runtime_error("no block " + name);
}

// The reader comes first in the file: it is still calculated after its source.
constexpr char const* kChain = R"(
    {"name": "reader", "model": "TestLoad", "inputs": {"CLOCK_FREQ": {"from": "source"}, "CAPACITANCE": 500}},
    {"name": "source", "model": "TestLoad", "inputs": {"CLOCK_FREQ": 200}},
    {"name": "units", "model": "TestCounts", "inputs": {"UNITS": {"from": "totals", "cell": "TOTAL_UNITS"}}},
    {"name": "totals", "model": "TestCounts", "inputs": {"UNITS": 30, "BRAMS": 12}},
    {"name": "bystander", "model": "TestLoad", "inputs": {"CLOCK_FREQ": 10}})";

TEST(DesignReferences, ReadersFollowTheirSourcesAtFirstAndAfterAChange) {
    Estimator estimator(parseDesign(designWith(kChain), "refs.json"));
    Report report = estimator.estimate();
    ASSERT_TRUE(report.complete) << report.failures[0];
    // C V^2 f: 500 pF * 0.64 V^2 * 200 MHz = 0.064 W, the source's clock copied across.
    EXPECT_NEAR(blockPower(report, "reader"), 500e-12 * 0.64 * 200e6, 1e-6);
    // An int output into an int input: TOTAL_UNITS = 30 + 12 = 42 units, 1 mW each.
    EXPECT_NEAR(blockPower(report, "units"), 0.042, 1e-7);

    estimator.setInput("source", "CLOCK_FREQ", "300");
    estimator.setInput("totals", "BRAMS", "0");
    report = estimator.update();
    EXPECT_NEAR(blockPower(report, "reader"), 500e-12 * 0.64 * 300e6, 1e-6);  // 0.096 W
    EXPECT_NEAR(blockPower(report, "units"), 0.030, 1e-7);
    EXPECT_NEAR(blockPower(report, "bystander"), 1000e-12 * 0.64 * 10e6, 1e-7);

    // The reader's input is the source's to set.
    try {
        estimator.setInput("reader", "CLOCK_FREQ", "100");
        ADD_FAILURE() << "a referenced input was set";
    } catch (DesignError const& e) {
        EXPECT_MENTIONS(std::string(e.what()), "takes its value from block \"source\"");
    }
}

TEST(DesignReferences, AFailedSourceFailsItsReadersAndNoTotalIsGiven) {
    Estimator estimator(parseDesign(designWith(kChain), "refs.json"));
    estimator.setInput("source", "MODE", "BROKEN");
    Report const& report = estimator.update();
    EXPECT_FALSE(report.complete);
    auto failed = [&](std::string const& name) {
        return std::find_if(report.blocks.begin(), report.blocks.end(),
                            [&](BlockResult const& b) { return b.name == name; })
            ->error;
    };
    EXPECT_MENTIONS(failed("reader"), "block \"source\", which it reads from, failed");
    EXPECT_TRUE(failed("bystander").empty());
}

TEST(DesignReferences, RefusesEachKindOfBadReference) {
    std::string m =
        refusal(R"({"name": "a", "model": "TestLoad", "inputs": {"CLOCK_FREQ": {"from": "nobody"}}})");
    EXPECT_MENTIONS(
        m, "refs.json: /blocks/0/inputs/CLOCK_FREQ/from: block \"a\": cell CLOCK_FREQ: no block \"nobody\"");

    m = refusal(
        R"({"name": "a", "model": "TestLoad", "inputs": {"CLOCK_FREQ": {"from": "b", "cell": "NOPE"}}},
                   {"name": "b", "model": "TestLoad"})");
    EXPECT_MENTIONS(
        m, "/blocks/0/inputs/CLOCK_FREQ/cell: block \"a\": cell CLOCK_FREQ: TestLoad has no cell NOPE");

    // Types: a whole number from a number, a text from a number; a number from a whole number is fine.
    m = refusal(
        R"({"name": "a", "model": "TestCounts", "inputs": {"UNITS": {"from": "b", "cell": "CORE_POWER"}}},
                   {"name": "b", "model": "TestLoad", "inputs": {"MODE": {"from": "a", "cell": "UNITS"}}})");
    EXPECT_MENTIONS(m, "cell UNITS takes a whole number, but cell CORE_POWER of block \"b\" holds a number");
    EXPECT_MENTIONS(m, "cell MODE takes a text, but cell UNITS of block \"a\" holds a whole number");
    EXPECT_EQ(
        refusal(
            R"({"name": "a", "model": "TestLoad", "inputs": {"CLOCK_FREQ": {"from": "b", "cell": "UNITS"}}},
                         {"name": "b", "model": "TestCounts"})"),
        "");

    // A rail voltage is the design's: taken from /rails, not from a block.
    m = refusal(
        R"({"name": "a", "model": "TestLoad", "inputs": {"CAPACITANCE": {"from": "b", "cell": "VCCINT"}}},
                   {"name": "b", "model": "TestLoad"})");
    EXPECT_MENTIONS(
        m,
        "/blocks/0/inputs/CAPACITANCE: block \"a\": cell CAPACITANCE: cell VCCINT of block \"b\" is "
        "the design's, not the block's: the voltage of rail VCCINT");

    // A cycle is named by its blocks, once.
    m = refusal(R"({"name": "a", "model": "TestLoad", "inputs": {"CLOCK_FREQ": {"from": "b"}}},
                   {"name": "b", "model": "TestLoad", "inputs": {"CAPACITANCE": {"from": "c"}}},
                   {"name": "c", "model": "TestLoad", "inputs": {"AUX_MILLIAMPS": {"from": "a", "cell": "CLOCK_FREQ"}}})");
    EXPECT_MENTIONS(
        m,
        "/blocks/2/inputs/AUX_MILLIAMPS: block \"c\": a cycle of references: \"a\" reads from \"b\" "
        "reads from \"c\" reads from \"a\"");
    EXPECT_EQ(m.find("cycle", m.find("cycle") + 1), std::string::npos) << m;
    m = refusal(
        R"({"name": "self", "model": "TestLoad", "inputs": {"CLOCK_FREQ": {"from": "self", "cell": "CAPACITANCE"}}})");
    EXPECT_MENTIONS(m, "a cycle of references: \"self\" reads from \"self\"");
}

TEST(DesignReferences, ASweepOverTheSourceMovesTheReader) {
    prsm::host::DesignTarget target(parseDesign(designWith(kChain), "refs.json"));
    auto const& variables = target.variables();
    auto has = [&](std::string const& name) {
        return std::any_of(variables.begin(), variables.end(), [&](auto const& v) { return v.name == name; });
    };
    EXPECT_TRUE(has("source.CLOCK_FREQ"));
    EXPECT_FALSE(has("reader.CLOCK_FREQ"));  // it is the source's
    EXPECT_MENTIONS(target.notAVariable("reader.CLOCK_FREQ"),
                    "takes its value from cell CLOCK_FREQ of block \"source\"");

    auto evaluation = target.createDesign();
    evaluation->set("source.CLOCK_FREQ", "400");
    evaluation->evaluate();
    // The dynamic total follows the reader too: the source's 1000 pF and the reader's 500 pF, both at
    // 0.64 V^2 and 400 MHz; the bystander 1000 pF at 10 MHz; the counting blocks 30 and 42 units of 1 mW.
    double const moved = (1000e-12 + 500e-12) * 0.64 * 400e6 + 1000e-12 * 0.64 * 10e6 + 0.072;  // 0.4624 W
    EXPECT_NEAR(std::stod(evaluation->read("dynamic_power")), moved, 1e-6);
}

}  // namespace
