// The host's one rule for values written as text, the same for the command line and for JSON, and its
// refusal of what would crash it or be silently replaced: numbers beyond a type's range, non-finite
// numbers, the library's reserved values, repeated JSON names, text that is not UTF-8. Also what it
// shows instead of a reserved value, the warning for a value without a table row, and the word about
// missing data.
#ifdef PRSM_HOST_CORE_LINKED

#include <prsm/host/Calculation.h>
#include <prsm/host/Commands.h>
#include <prsm/host/DataDir.h>
#include <prsm/host/HostError.h>
#include <prsm/host/Inputs.h>
#include <prsm/host/Numbers.h>
#include <prsm/host/Render.h>
#include <prsm/host/Values.h>

#include <gtest/gtest.h>

#include "HostFailure.h"

#include <algorithm>
#include <sstream>

namespace prsm::host {
namespace {

CellInfo cell(char const* name, CellType type) {
    CellInfo info;
    info.name = name;
    info.type = type;
    info.category = CellCategory::UserInput;
    return info;
}

// The canonical text of an accepted value; fails the test when the value is refused.
std::string accepted(CellType type, std::string const& text) {
    std::string canonical;
    std::string const problem = checkCellText(cell("X", type), text, canonical);
    EXPECT_EQ(problem, "") << '"' << text << '"';
    return canonical;
}

// The problem reported for a refused value.
std::string refused(CellType type, std::string const& text) {
    std::string canonical;
    std::string const problem = checkCellText(cell("X", type), text, canonical);
    EXPECT_NE(problem, "") << '"' << text << "\" was accepted as " << canonical;
    EXPECT_NE(problem.find("cell X"), std::string::npos) << problem;
    return problem;
}

bool has(std::string const& text, std::string const& part) {
    return text.find(part) != std::string::npos;
}

TEST(HostNumberRule, AcceptsPlainDecimalNumbersOnly) {
    for (char const* text : {"250", "-2.5", "0.5", ".5", "5.", "1e3", "1E+3", "2.5e-3", "007", "-0"})
        EXPECT_TRUE(isNumberText(text)) << text;
    for (char const* text : {"", "-", ".", " 5", "5 ", "+7", "0x1p4", "0x10", "1,5", "1e", "e5", "1e+", "5..",
                             "1.2.3", "inf", "nan", "1_000"})
        EXPECT_FALSE(isNumberText(text)) << text;
    EXPECT_FALSE(isNumberText(std::string("250\0junk", 8)));

    // A whole number for an int cell, however it is written; its value handed on in plain digits.
    EXPECT_EQ(accepted(CellType::Int, "4e3"), "4000");
    EXPECT_EQ(accepted(CellType::Int, "4.0"), "4");
    EXPECT_EQ(accepted(CellType::Int, "40e-1"), "4");
    EXPECT_EQ(accepted(CellType::Int, "-2147483648"), "-2147483648");  // INT_MIN
    EXPECT_EQ(accepted(CellType::Int, "2147483645"), "2147483645");    // below the two reserved values
    EXPECT_EQ(accepted(CellType::Float, "0.1"), "0.1");
    EXPECT_EQ(accepted(CellType::Float, "1e26"), "1e+26");
    // FLT_MIN = 2^-126 = 1.175494351e-38 is the smallest normal float, accepted. Floats there are
    // 2^-149 = 1.4e-45 apart, so eight digits, 1.1754944e-38 (5e-46 away), name it; seven do not.
    EXPECT_EQ(accepted(CellType::Float, "1.17549436e-38"), "1.1754944e-38");
    EXPECT_EQ(accepted(CellType::Float, "0e-500"), "0");

    EXPECT_TRUE(has(refused(CellType::Float, " 5"), "takes a number, not \" 5\""));
    EXPECT_TRUE(has(refused(CellType::Float, "+7"), "no blanks, '+' or hexadecimal"));
    EXPECT_TRUE(has(refused(CellType::Float, std::string("250\0junk", 8)), "\"250\\0junk\""));
    EXPECT_TRUE(has(refused(CellType::Int, "1.5"), "takes a whole number, not \"1.5\""));
    EXPECT_TRUE(has(refused(CellType::Int, "1e-400"), "whole number"));
}

TEST(HostNumberRule, RefusesNonFiniteOutOfRangeAndReservedValues) {
    for (char const* text : {"inf", "-inf", "Infinity", "NaN", "nan"})
        EXPECT_TRUE(has(refused(CellType::Float, text), "takes a finite number")) << text;

    // The largest float is (2 - 2^-23) * 2^127 = 3.40282347e38; a value rounds to infinity from
    // 3.40282357e38 on (half a step of 2^104 = 2.03e31 above it).
    EXPECT_TRUE(has(refused(CellType::Float, "1e39"), "out of the float range"));
    EXPECT_TRUE(has(refused(CellType::Float, "3.4028236e38"), "out of the float range"));
    EXPECT_TRUE(has(refused(CellType::Float, "1e400"), "out of the float range"));
    // Below the smallest normal float: 1e-40 and 1e-400 alike, whatever a parser would make of them.
    EXPECT_TRUE(has(refused(CellType::Float, "1e-40"), "too close to 0 for a float"));
    EXPECT_TRUE(has(refused(CellType::Float, "1e-400"), "too close to 0 for a float"));
    EXPECT_TRUE(has(refused(CellType::Float, "-1e-38"), "too close to 0 for a float"));

    EXPECT_TRUE(has(refused(CellType::Int, "2147483648"), "out of the int range"));
    EXPECT_TRUE(has(refused(CellType::Int, "99999999999999999999999"), "out of the int range"));
    EXPECT_TRUE(has(refused(CellType::Int, "-1e400"), "out of the int range"));

    // The library's reserved values would be replaced by the default without a word.
    for (char const* text : {"2147483647", "2147483646", "2.147483647e9"})
        EXPECT_TRUE(has(refused(CellType::Int, text), "reserved")) << text;
    for (char const* text : {"3.4028235e38", "3.40282347e+38", "-3.4028235e38"})
        EXPECT_TRUE(has(refused(CellType::Float, text), "reserved")) << text;
    EXPECT_TRUE(has(refused(CellType::String, "UninitializedString"), "reserved"));

    EXPECT_EQ(accepted(CellType::String, "caf\xC3\xA9"), "caf\xC3\xA9");
    EXPECT_TRUE(has(refused(CellType::String, "\xFF"), "\"\\xFF\" is not UTF-8 text"));
    EXPECT_TRUE(has(refused(CellType::String, "\xC0\xAF"), "not UTF-8"));      // an overlong '/'
    EXPECT_TRUE(has(refused(CellType::String, "\xED\xA0\x80"), "not UTF-8"));  // a lone surrogate
    EXPECT_TRUE(has(refused(CellType::String, std::string("A\0B", 3)), "NUL"));
}

Sheet const& sampler() {
    return *SheetRegistry::instance().find("TestSampler");
}

TEST(HostJsonInput, KeepsNumbersAsWrittenAndRefusesWhatWouldCrashOrMislead) {
    std::vector<Assignment> const read = parseInputJson(R"({"RATE": 0.10, "COUNT": 3})", "f.json");
    ASSERT_EQ(read.size(), 2u);
    EXPECT_EQ(read[0].text, "0.10");
    EXPECT_EQ(read[0].kind, ValueKind::JsonNumber);

    EXPECT_TRUE(
        has(hostFailure(kExitBadInput,
                        [] { parseInputJson(R"({"RATE": 0.5, "COUNT": 1, "RATE": 0.7})", "f.json"); }),
            "input file f.json: RATE is given more than once"));

    // Beyond the double range the JSON parser gives up; the number still reaches its cell, as written.
    std::string const huge = hostFailure(kExitBadInput, [] {
        resolveInputs(sampler(), parseInputJson(R"({"MODE": "FAST", "RATE": 1e400})", "f.json"));
    });
    EXPECT_TRUE(has(huge, "cell RATE = 1e400 is out of the float range")) << huge;
    EXPECT_TRUE(has(huge, "(in f.json)")) << huge;
    EXPECT_TRUE(
        has(hostFailure(kExitBadInput,
                        [] { resolveInputs(sampler(), parseInputJson(R"({"COUNT": -1e400})", "f.json")); }),
            "cell COUNT = -1e400 is out of the int range"));

    EXPECT_TRUE(has(hostFailure(kExitBadInput, [] { parseInputJson(R"({"RATE": NaN})", "f.json"); }),
                    "not valid JSON (at RATE)"));

    // A hostile file is not answered name by name: 60 copies of one name are 59 repeats, 50 of them
    // listed; 60 unknown names are 50 problems and 10 names left unchecked.
    std::string repeated = "{";
    std::vector<Assignment> unknown;
    for (int i = 0; i < 60; ++i) {
        repeated += std::string(i == 0 ? "" : ", ") + "\"RATE\": 0.5";
        unknown.push_back({"NO_SUCH_CELL_" + std::to_string(i), "1", ValueKind::Text, "command line"});
    }
    std::string const repeats = hostFailure(kExitBadInput, [&] { parseInputJson(repeated + "}", "f.json"); });
    EXPECT_EQ(std::count(repeats.begin(), repeats.end(), '\n'), 50);
    EXPECT_TRUE(has(repeats, "\n... and 9 more problems")) << repeats;
    std::string const unknowns = hostFailure(kExitBadInput, [&] { resolveInputs(sampler(), unknown); });
    EXPECT_EQ(std::count(unknowns.begin(), unknowns.end(), '\n'), 50);
    EXPECT_TRUE(has(unknowns, "\n... and 10 more inputs not checked")) << unknowns;
}

TEST(HostOutput, ShowsNoReservedValueAsAValue) {
    EXPECT_TRUE(isReservedValue(CellType::Int, "2147483646"));
    EXPECT_FALSE(isReservedValue(CellType::Int, "2147483645"));
    EXPECT_TRUE(isReservedValue(CellType::Float, "-3.40282347e+38"));
    EXPECT_FALSE(isReservedValue(CellType::Float, "3.4e+38"));

    CalcResult result;
    result.model = "M";
    result.outputs = {{"I", CellType::Int, "2147483647", "count"},
                      {"F", CellType::Float, "3.40282347e+38", "W"},
                      {"S", CellType::String, "UninitializedString", ""}};
    std::string const table = renderCalcTable(result);
    EXPECT_EQ(table,
              "output  value       unit\n"
              "------  ----------  -----\n"
              "I       (no value)  count\n"
              "F       (no value)  W\n"
              "S       (no value)\n");
    nlohmann::json const json = nlohmann::json::parse(calcJson(result).dump());
    EXPECT_TRUE(json["outputs"]["I"].is_null());
    EXPECT_TRUE(json["outputs"]["F"].is_null());
    EXPECT_TRUE(json["outputs"]["S"].is_null());
    EXPECT_EQ(json["unit"]["I"], "count");
}

TEST(HostOutput, WarnsOfAValueWithoutARowOfItsOwn) {
    // MODE selects rows of LANE_CAP, which has FAST and SLOW (the default FAST among them).
    std::unique_ptr<SheetInstance> instance = sampler().create();
    EXPECT_TRUE(instance->tablesWithoutRow("MODE").empty());  // not set
    instance->set("MODE", "SLOW");
    EXPECT_TRUE(instance->tablesWithoutRow("MODE").empty());
    instance->set("MODE", "fast");
    std::vector<MissingRow> const missing = instance->tablesWithoutRow("MODE");
    ASSERT_EQ(missing.size(), 1u);
    EXPECT_EQ(missing[0].table, "LANE_CAP");
    EXPECT_EQ(missing[0].values, (std::vector<std::string>{"FAST", "SLOW"}));
    EXPECT_EQ(missingRowWarning("MODE", "fast", missing),
              "MODE = fast has no row of its own in LANE_CAP (did you mean FAST?); the sheet falls back to "
              "a default row or value");
    EXPECT_EQ(missingRowWarning("MODE", "SLOW", {}), "");
    EXPECT_TRUE(instance->tablesWithoutRow("COUNT").empty());  // not a string input
}

TEST(HostOutput, SaysFirstThatThereIsNoData) {
    // Without QDI_DATADIR and without shipped data, the host says so first and names where it looked.
    DataDirChoice const none =
        chooseDataDir(nullptr, "/nonexistent/bin", "../share/prsm", "/nonexistent/src");
    EXPECT_EQ(none.source, DataDirSource::None);
    std::string const said = describeDataDir(none);
    EXPECT_TRUE(has(said, "QDI_DATADIR is unset and no shipped data was found")) << said;
    EXPECT_TRUE(has(said, "/nonexistent/share/prsm")) << said;
    EXPECT_TRUE(has(said, "/nonexistent/src")) << said;
    std::ostringstream quiet, warned;
    Request request;
    request.command = Command::Cells;
    request.model = "TestSampler";
    runRequest(request, none, quiet, warned);
    EXPECT_EQ(warned.str().rfind("prsm: warning: QDI_DATADIR is unset", 0), 0u) << warned.str();
}

}  // namespace
}  // namespace prsm::host

#endif  // PRSM_HOST_CORE_LINKED
