// `prsm estimate` in process, on the test-only design sheets: the three output forms, the exit status of
// a refused design and of a design without a steady temperature.
#ifdef PRSM_HOST_CORE_LINKED

#include <prsm/host/HostError.h>

#include "HostCommand.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include <cstdio>
#include <fstream>
#include <iterator>

namespace prsm::host {
namespace {

struct EstimateRun {
    int code;
    std::string out, err;
};

EstimateRun estimate(std::string const& file, std::vector<char const*> flags = {}) {
    std::string const path = std::string(PRSM_TEST_DESIGNDIR) + "/" + file;
    flags.insert(flags.begin(), {"estimate", path.c_str()});
    EstimateRun run;
    run.code = runCommandLine(flags, run.out, run.err);
    return run;
}

TEST(HostEstimate, PrintsTableJsonAndCsv) {
    EstimateRun const table = estimate("small.json");
    EXPECT_EQ(table.code, kExitOk) << table.err;
    EXPECT_NE(table.out.find("voltage (V)"), std::string::npos);
    EXPECT_NE(table.out.find("4 iterations"), std::string::npos);
    // A complete estimate without a board ends with its totals, and says nothing of missing ones.
    EXPECT_NE(table.out.find("dynamic  0.5540"), std::string::npos) << table.out;
    EXPECT_EQ(table.out.find("No totals"), std::string::npos) << table.out;

    EstimateRun const json = estimate("small.json", {"--json"});
    ASSERT_EQ(json.code, kExitOk);
    nlohmann::json const report = nlohmann::json::parse(json.out);
    EXPECT_EQ(report["schema_version"], 1);
    // 2 x (0.064 + 0.015) + 0.016 + 0.2 + 0.18 W of dynamic power.
    EXPECT_NEAR(report["totals"]["dynamic_power"].get<double>(), 0.554, 1e-6);
    EXPECT_EQ(report["blocks"].size(), 4u);

    EstimateRun const csv = estimate("small.json", {"--csv"});
    ASSERT_EQ(csv.code, kExitOk);
    EXPECT_EQ(csv.out.rfind("section,name,rail,quantity,value,unit\n", 0), 0u);
    EXPECT_NE(csv.out.find("rail,VCCO18,VCCO18,dynamic_current,0.1,A\n"), std::string::npos);
    EXPECT_NE(csv.out.find("block,ddr phy,VCCO18,power,0.18,W\n"), std::string::npos);  // 0.1 A at 1.8 V
}

TEST(HostEstimate, WritesTheHtmlPageBesideTheTable) {
    std::string const page = testing::TempDir() + "prsm_estimate_report.html";
    std::remove(page.c_str());
    EstimateRun const run = estimate("small.json", {"--html", page.c_str()});
    ASSERT_EQ(run.code, kExitOk) << run.err;
    EXPECT_NE(run.out.find("voltage (V)"), std::string::npos) << "the table is still printed";
    std::ifstream file(page);
    std::string const html((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    EXPECT_NE(html.find("Two test blocks, an AI-engine load"), std::string::npos);
    // 2 x (0.064 + 0.015) + 0.016 + 0.2 + 0.18 W of dynamic power.
    EXPECT_NE(html.find("<td>dynamic power (W)</td><td class=\"num\">0.5540</td>"), std::string::npos);
    EXPECT_NE(html.find("Static power against junction temperature"), std::string::npos);

    EstimateRun const unwritable = estimate("small.json", {"--html", "/nonexistent/dir/report.html"});
    EXPECT_EQ(unwritable.code, kExitBadInput);
    EXPECT_NE(unwritable.err.find("--html /nonexistent/dir/report.html: cannot write the file"),
              std::string::npos)
        << unwritable.err;
}

TEST(HostEstimate, RefusedDesignAndRunawayEndWithTheirStatus) {
    EstimateRun const malformed = estimate("malformed.json");
    EXPECT_EQ(malformed.code, kExitBadInput);
    EXPECT_NE(malformed.err.find("prsm: error: "), std::string::npos);
    EXPECT_NE(malformed.err.find("malformed.json: /: not valid JSON"), std::string::npos);
    EXPECT_TRUE(malformed.out.empty());

    EstimateRun const runaway = estimate("runaway.json");
    EXPECT_EQ(runaway.code, kExitDataFailure);
    EXPECT_NE(runaway.err.find("prsm: error: thermal runaway"), std::string::npos);
    EXPECT_NE(runaway.out.find("No totals"), std::string::npos);
}

// corners.json: within its budget as the file gives it, over it on VCCINT at the worst corner
// (0.796 A > 0.7 A, see design_corners_test.cpp), which --corners checks.
TEST(HostEstimate, BudgetGatesTheExitStatusAtTheWorstCorner) {
    EXPECT_EQ(estimate("corners.json").code, kExitOk);

    EstimateRun const json = estimate("corners.json", {"--corners", "--json"});
    EXPECT_EQ(json.code, kExitOverBudget) << json.err;
    EXPECT_NE(json.err.find("over budget: VCCINT current"), std::string::npos) << json.err;
    nlohmann::json const report = nlohmann::json::parse(json.out);
    EXPECT_EQ(report["corners"]["worst"]["process"], "max");
    EXPECT_EQ(report["corners"]["worst"]["junction_from"], "max_ambient");
    EXPECT_EQ(report["corners"]["total"]["worst"], "worst");
    EXPECT_EQ(report["budget"][1]["rail"], "VCCINT");
    EXPECT_EQ(report["budget"][1]["exceeded"], true);
    EXPECT_EQ(report["budget"][0]["exceeded"], false);

    EstimateRun const csv = estimate("corners.json", {"--corners", "--csv"});
    EXPECT_EQ(csv.code, kExitOverBudget);
    EXPECT_NE(csv.out.find("budget,VCCINT,VCCINT,exceeded,1,\n"), std::string::npos) << csv.out;
    EXPECT_NE(csv.out.find("corner_rail,VCCINT,VCCINT,worst_current,"), std::string::npos);

    EstimateRun const table = estimate("corners.json", {"--corners"});
    EXPECT_NE(table.out.find("EXCEEDED"), std::string::npos) << table.out;
}

// small.json against corners.json: "core" is two instances of 1000 pF at 100 MHz and 0.8 V plus 10 mA
// at 1.5 V in A, 2 * (0.064 + 0.015) = 0.158 W, and one at 0.75 V plus 10 mA at 1.6 V in B,
// 1000e-12 * 0.5625 * 100e6 + 0.016 = 0.07225 W; "slow" and the 0.1 A VCCO18 load are A's alone.
TEST(HostEstimate, DiffMatchesBlocksByNameAndLeavesOneSidedFiguresEmpty) {
    std::string const a = std::string(PRSM_TEST_DESIGNDIR) + "/small.json";
    std::string const b = std::string(PRSM_TEST_DESIGNDIR) + "/corners.json";
    std::string out, err;
    ASSERT_EQ(runCommandLine({"diff", a.c_str(), b.c_str(), "--json"}, out, err), kExitOk) << err;
    nlohmann::json const rows = nlohmann::json::parse(out)["rows"];
    auto row = [&](std::string const& section, std::string const& name, std::string const& quantity) {
        for (auto const& r : rows)
            if (r["section"] == section && r["name"] == name && r["quantity"] == quantity) return r;
        ADD_FAILURE() << section << " " << name;
        return nlohmann::json();
    };
    nlohmann::json const core = row("block", "core", "power");
    EXPECT_NEAR(core["a"].get<double>(), 0.158, 1e-6);
    EXPECT_NEAR(core["b"].get<double>(), 0.07225, 1e-6);
    EXPECT_NEAR(core["difference"].get<double>(), -0.08575, 1e-6);
    EXPECT_NEAR(core["ratio"].get<double>(), 0.07225 / 0.158, 1e-6);  // 0.45728
    nlohmann::json const slow = row("block", "slow", "power");
    EXPECT_NEAR(slow["a"].get<double>(), 0.016, 1e-6);  // 500 pF * 0.64 * 50 MHz
    EXPECT_TRUE(slow["b"].is_null());
    EXPECT_TRUE(slow["difference"].is_null());
    EXPECT_TRUE(row("rail", "VCCO18", "current")["b"].is_null());
    EXPECT_EQ(rows[0]["section"], "total");
}

}  // namespace
}  // namespace prsm::host

#endif
