// The host's logic in process: command-line parsing, name suggestion, input checks, value text, table
// layout, data-directory choice, and one calculation of the test-only sheet.
// These need the host's core library; without it linked into the test binary they compile to nothing.
#ifdef PRSM_HOST_CORE_LINKED

#include <prsm/design/EditDistance.h>
#include <prsm/host/Calculation.h>
#include <prsm/host/CellListing.h>
#include <prsm/host/Commands.h>
#include <prsm/host/DataDir.h>
#include <prsm/host/HostError.h>
#include <prsm/host/Inputs.h>
#include <prsm/host/Render.h>
#include <prsm/host/Request.h>
#include <prsm/host/Suggest.h>
#include <prsm/host/TextTable.h>
#include <prsm/host/Values.h>

#include <gtest/gtest.h>

#include "HostFailure.h"

#include <algorithm>
#include <filesystem>
#include <sstream>

namespace prsm::host {
namespace {

ParsedCommandLine parse(std::vector<char const*> args, std::string* out = nullptr,
                        std::string* err = nullptr) {
    args.insert(args.begin(), "prsm");
    std::ostringstream outStream, errStream;
    ParsedCommandLine parsed =
        parseCommandLine(static_cast<int>(args.size()), args.data(), outStream, errStream);
    if (out != nullptr) *out = outStream.str();
    if (err != nullptr) *err = errStream.str();
    return parsed;
}

Sheet const& sampler() {
    return *SheetRegistry::instance().find("TestSampler");
}

TEST(HostCommandLine, ParsesEachCommandIntoARequest) {
    ParsedCommandLine calc =
        parse({"calc", "TestSampler", "COUNT=3", "MODE=SLOW", "-i", "in.json", "--json", "-v"});
    ASSERT_TRUE(calc.request);
    EXPECT_EQ(calc.request->command, Command::Calc);
    EXPECT_EQ(calc.request->model, "TestSampler");
    EXPECT_EQ(calc.request->assignments, (std::vector<std::string>{"COUNT=3", "MODE=SLOW"}));
    EXPECT_EQ(calc.request->inputFile, "in.json");
    EXPECT_EQ(calc.request->format, OutputFormat::Json);
    EXPECT_TRUE(calc.request->verbose);

    EXPECT_EQ(parse({"calc", "M", "--reflect"}).request->format, OutputFormat::Reflect);
    EXPECT_EQ(parse({"calc", "M"}).request->format, OutputFormat::Table);
    ParsedCommandLine cells = parse({"cells", "M", "--category", "output"});
    EXPECT_EQ(cells.request->command, Command::Cells);
    EXPECT_EQ(cells.request->category, "output");
    EXPECT_EQ(parse({"models"}).request->command, Command::Models);

    std::string out;
    ParsedCommandLine help = parse({"--help"}, &out);
    EXPECT_FALSE(help.request);
    EXPECT_EQ(help.exitCode, 0);
    EXPECT_NE(out.find("calc"), std::string::npos);
}

TEST(HostCommandLine, RejectsBadUsageWithExitTwo) {
    for (std::vector<char const*> const& args : {std::vector<char const*>{},
                                                 {"calc"},
                                                 {"calc", "M", "--json", "--reflect"},
                                                 {"cells", "M", "--category", "x"},
                                                 {"frobnicate"}}) {
        std::string out, err;
        ParsedCommandLine parsed = parse(args, &out, &err);
        EXPECT_FALSE(parsed.request);
        EXPECT_EQ(parsed.exitCode, kExitBadInput);
        EXPECT_TRUE(out.empty());
        EXPECT_FALSE(err.empty());
    }
}

TEST(HostSuggest, FindsCloseNamesBestFirst) {
    EXPECT_EQ(design::editDistance("kitten", "sitting"), 3u);  // k->s, e->i, +g
    EXPECT_EQ(design::editDistance("ABC", "abc"), 0u);
    EXPECT_EQ(design::editDistance("", "abc"), 3u);

    std::vector<std::string> const models{"TalvexCleLogic", "TalvexClock", "TalvexNoc", "DravikS26"};
    EXPECT_EQ(suggestNames("talvexclelogic", models), std::vector<std::string>{"TalvexCleLogic"});
    EXPECT_EQ(suggestNames("TalvexClok", models), std::vector<std::string>{"TalvexClock"});
    EXPECT_EQ(suggestNames("CleLogic", models), std::vector<std::string>{"TalvexCleLogic"});
    EXPECT_TRUE(suggestNames("Zebra", models).empty());
    EXPECT_EQ(suggestNames("TalvexNoc2", {"TalvexNoc", "TalvexNocA", "TalvexNocB", "TalvexNocC"}, 2).size(),
              2u);

    EXPECT_EQ(didYouMean({}), "");
    EXPECT_EQ(didYouMean({"A"}), " (did you mean A?)");
    EXPECT_EQ(didYouMean({"A", "B", "C"}), " (did you mean A, B or C?)");
}

TEST(HostInputs, ReadsAssignmentsAndJsonObjects) {
    Assignment const pair = parseAssignment("MODE=a=b");
    EXPECT_EQ(pair.name, "MODE");
    EXPECT_EQ(pair.text, "a=b");
    EXPECT_EQ(parseAssignment("MODE=").text, "");
    EXPECT_NE(hostFailure(kExitBadInput, [] { parseAssignment("MODE"); }).find("NAME=VALUE"),
              std::string::npos);
    hostFailure(kExitBadInput, [] { parseAssignment("=3"); });

    std::vector<Assignment> const file =
        parseInputJson(R"({"COUNT": 3, "RATE": 0.25, "MODE": "SLOW"})", "f.json");
    ASSERT_EQ(file.size(), 3u);
    auto kindOf = [&](std::string const& name) {
        return std::find_if(file.begin(), file.end(), [&](Assignment const& a) { return a.name == name; })
            ->kind;
    };
    EXPECT_EQ(kindOf("COUNT"), ValueKind::JsonInteger);
    EXPECT_EQ(kindOf("RATE"), ValueKind::JsonNumber);
    EXPECT_EQ(kindOf("MODE"), ValueKind::JsonString);

    EXPECT_NE(
        hostFailure(kExitBadInput, [] { parseInputJson("{\"COUNT\": ", "f.json"); }).find("not valid JSON"),
        std::string::npos);
    EXPECT_NE(hostFailure(kExitBadInput, [] { parseInputJson("[1, 2]", "f.json"); }).find("object"),
              std::string::npos);
    std::string const kinds =
        hostFailure(kExitBadInput, [] { parseInputJson(R"({"A": true, "B": null})", "f.json"); });
    EXPECT_NE(kinds.find("A must be a number or a string"), std::string::npos);
    EXPECT_NE(kinds.find("B must be a number or a string"), std::string::npos);
    EXPECT_NE(hostFailure(kExitBadInput, [] { readInputFile("/nonexistent/in.json"); }).find("cannot open"),
              std::string::npos);

    std::vector<Assignment> const merged =
        mergeAssignments(file, {parseAssignment("RATE=0.75"), parseAssignment("X=1")});
    ASSERT_EQ(merged.size(), 4u);
    EXPECT_EQ(merged[1].name, "RATE");  // the object's order; the command line's value
    EXPECT_EQ(merged[1].text, "0.75");
    EXPECT_EQ(merged[2].name, "MODE");
    EXPECT_EQ(merged[3].name, "X");
}

TEST(HostInputs, ChecksEveryAssignmentAgainstTheSheet) {
    std::vector<ResolvedInput> const ok = resolveInputs(
        sampler(), parseInputJson(R"({"COUNT": 4.0, "RATE": "0.5", "MODE": "NOT_A_MODE"})", "f.json"));
    ASSERT_EQ(ok.size(), 3u);
    EXPECT_EQ(ok[0].cell->name, "COUNT");
    EXPECT_EQ(ok[0].text, "4");  // a whole JSON number fits an int cell
    EXPECT_EQ(ok[1].text, "0.5");
    EXPECT_EQ(ok[2].text, "NOT_A_MODE");  // invalid but well-formed: accepted here

    std::string const problems = hostFailure(kExitBadInput, [] {
        resolveInputs(sampler(), {parseAssignment("CONT=1"), parseAssignment("TOTAL=1"),
                                  parseAssignment("IS_VALID_COUNT=1"), parseAssignment("RATE=fast"),
                                  parseAssignment("COUNT=1.5"), parseAssignment("COUNT=99999999999")});
    });
    EXPECT_NE(problems.find("has no cell CONT (did you mean COUNT?)"), std::string::npos) << problems;
    EXPECT_NE(problems.find("TOTAL is an output cell"), std::string::npos) << problems;
    EXPECT_NE(problems.find("IS_VALID_COUNT is an intermediate cell"), std::string::npos) << problems;
    EXPECT_NE(problems.find("RATE"), std::string::npos) << problems;
    EXPECT_EQ(std::count(problems.begin(), problems.end(), '\n'), 5) << problems;

    EXPECT_NE(hostFailure(kExitBadInput,
                          [] { resolveInputs(sampler(), parseInputJson(R"({"MODE": 1})", "f.json")); })
                  .find("JSON string"),
              std::string::npos);
}

TEST(HostValues, PrintsShortestExactTextAndTypedJson) {
    EXPECT_EQ(shortestFloatText(0.1f), "0.1");
    EXPECT_EQ(shortestFloatText(200.0f), "200");
    EXPECT_EQ(shortestFloatText(123456792.0f), "123456792");
    EXPECT_EQ(shortestFloatText(3.4028235e38f), "3.4028235e+38");
    EXPECT_EQ(shortestFloatText(2.5e-7f), "2.5e-07");
    EXPECT_EQ(displayValue(CellType::Float, "0.100000001"), "0.1");
    EXPECT_EQ(displayValue(CellType::Int, "7"), "7");

    EXPECT_EQ(jsonValue(CellType::Int, "2147483645").get<long long>(), 2147483645LL);
    EXPECT_TRUE(jsonValue(CellType::Float, "200").is_number_float());
    EXPECT_EQ(jsonValue(CellType::Float, "0.100000001").get<double>(), 0.1);
    EXPECT_TRUE(jsonValue(CellType::Float, "inf").is_null());
    EXPECT_EQ(jsonValue(CellType::String, "12").get<std::string>(), "12");
}

TEST(HostTextTable, AlignsColumnsWithoutTrailingBlanks) {
    EXPECT_EQ(formatTable({"name", "v"}, {{"A", "1"}, {"LONGER", ""}}),
              "name    v\n"
              "------  -\n"
              "A       1\n"
              "LONGER\n");
}

TEST(HostDataDir, PrefersTheEnvironmentThenInstalledThenSourceData) {
    namespace fs = std::filesystem;
    fs::path const root = fs::temp_directory_path() / ("prsm_host_datadir_" + std::to_string(::getpid()));
    fs::create_directories(root / "bin");
    fs::create_directories(root / "share/prsm/powercfg");
    fs::create_directories(root / "src/data/powercfg");
    std::string const bin = (root / "bin").string(), src = (root / "src/data").string();

    DataDirChoice const fromEnvironment = chooseDataDir("/mine", bin, "../share/prsm", src);
    EXPECT_EQ(fromEnvironment.source, DataDirSource::Environment);
    EXPECT_EQ(fromEnvironment.path, "/mine");
    DataDirChoice const installed = chooseDataDir(nullptr, bin, "../share/prsm", src);
    EXPECT_EQ(installed.source, DataDirSource::Installed);
    EXPECT_EQ(fs::path(installed.path), fs::canonical(root / "share/prsm"));
    DataDirChoice const source = chooseDataDir(nullptr, bin, "../share/elsewhere", src);
    EXPECT_EQ(source.source, DataDirSource::SourceTree);
    EXPECT_EQ(chooseDataDir(nullptr, "", "x", (root / "none").string()).source, DataDirSource::None);
    EXPECT_NE(describeDataDir({}).find("set QDI_DATADIR"), std::string::npos);
    fs::remove_all(root);
}

TEST(HostCalculation, CalculatesTheTestSheetAndFlagsInvalidInputs) {
    // SLOW lanes: A 0.5, B 1.0. RATE 0.5 loads each lane with 0.5 and SCALE = 2 * RATE = 1, so
    // TOTAL = 0.5 * 0.5 + 0.5 * 1.0 + 0.25 (the constant cell) = 1.0. COUNT 11 is outside 0 .. 10.
    CalcResult const result = runCalculation(
        sampler(), resolveInputs(sampler(), {parseAssignment("MODE=SLOW"), parseAssignment("COUNT=11")}));
    nlohmann::json const json = nlohmann::json::parse(calcJson(result).dump());
    EXPECT_EQ(json["model"], "TestSampler");
    EXPECT_EQ(json["outputs"]["TOTAL"].get<double>(), 1.0);
    EXPECT_EQ(json["outputs"]["COUNT_OUT"].get<int>(), 22);
    EXPECT_EQ(json["outputs"]["LABEL"], "SLOW:11");
    EXPECT_EQ(json["inputs"]["RATE"].get<double>(), 0.5);
    EXPECT_EQ(json["inputs"]["SCALE"].get<double>(), 1.0);
    EXPECT_EQ(json["valid"], nlohmann::json::parse(R"({"COUNT": false, "RATE": true, "MODE": true})"));

    std::string const table = renderCalcTable(result);
    EXPECT_NE(table.find("TOTAL      1        W\n"), std::string::npos) << table;
    EXPECT_NE(table.find("INVALID inputs"), std::string::npos) << table;
    EXPECT_NE(table.find("COUNT  11     count  0 .. 10"), std::string::npos) << table;
    EXPECT_EQ(json["unit"]["TOTAL"], "W");
    EXPECT_EQ(json["unit"]["RATE"], "fraction");
    EXPECT_EQ(json["unit"]["LABEL"], "");
    ASSERT_EQ(invalidInputWarnings(result).size(), 1u);

    // The sheet looks its mode up without a fallback: an unknown mode fails the calculation.
    std::string const lookup = hostFailure(kExitDataFailure, [] {
        runCalculation(sampler(), resolveInputs(sampler(), {parseAssignment("MODE=X")}));
    });
    EXPECT_NE(lookup.find("LANE_CAP"), std::string::npos) << lookup;

    CalcResult badMode;
    badMode.checks.push_back({"MODE", CellType::String, "X", "one of MODES", "FAST,SLOW", false, ""});
    EXPECT_NE(renderCalcTable(badMode).find("MODE   X            one of FAST, SLOW\n"), std::string::npos)
        << renderCalcTable(badMode);
}

TEST(HostCellListing, ShowsEvaluatedDefaultsAndChoices) {
    CellListing const listing = listCells(sampler(), "input");
    EXPECT_TRUE(listing.note.empty());
    auto row = [&](std::string const& name) {
        return *std::find_if(listing.rows.begin(), listing.rows.end(),
                             [&](CellRow const& r) { return r.name == name; });
    };
    EXPECT_EQ(listing.rows.size(), 6u);
    EXPECT_EQ(row("SCALE").defaultValue, "1");  // 2 * RATE's default 0.5
    EXPECT_EQ(row("RATE").unit, "fraction");
    EXPECT_EQ(row("COUNT").validValues, "0 .. 10");
    EXPECT_EQ(row("MODE").validValues, "FAST, SLOW");
    EXPECT_EQ(row("MODE").description, "Speed mode: selects the lanes' capacitance");
    EXPECT_EQ(row("LANE_B_LOAD").description, "Share of the work on lane B");  // "LANE_*_LOAD", {*} = B
    EXPECT_EQ(listCells(sampler(), "output").rows.size(), 3u);

    std::string const unknown = hostFailure(kExitBadInput, [] { findSheet("TestSampeler"); });
    EXPECT_NE(unknown.find("did you mean TestSampler?"), std::string::npos) << unknown;
}

}  // namespace
}  // namespace prsm::host

#endif  // PRSM_HOST_CORE_LINKED
