// What the `prsm serve` page's supply view and leakage chart read: the supplies in the answer to an
// input edit, warnings sent only when they change, and static power against the junction temperature
// for the design as edited, worked out by hand on the test-only load and leakage sheets.
#ifdef PRSM_HOST_CORE_LINKED

#include <prsm/host/serve/Api.h>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <filesystem>

namespace prsm::host::serve {
namespace {

namespace fs = std::filesystem;
using Json = nlohmann::json;

// core on TestLoad: 1000 pF * 0.8 V^2 * 100 MHz = 0.064 W on VCCINT (0.08 A), 10 mA on VCCAUX; all of it
// logic, 0.079 W. TestLeakage takes the leakage at t = Tj - 2 degC/W * logic power and gives
// VCCINT 0.5 + 0.01 (t - 25) A, VCCAUX 0.1 + 0.002 (t - 25) A: 0.55 + 0.011 (t - 25) W in all.
constexpr char kDesign[] = R"({
  "schema_version": 1,
  "device": {"part": "TESTDEV", "internal_part": "TESTDEV"},
  "thermal": {"junction_temperature": 50},
  "rails": {"VCCINT": 0.8, "VCCAUX": 1.5},
  "static": {"model": "TestLeakage"},
  "blocks": [
    {"name": "core", "model": "TestLoad", "inputs": {"CAPACITANCE": 1000, "CLOCK_FREQ": 100, "AUX_MILLIAMPS": 10}}
  ],
  "regulators": [{"name": "CORE", "rails": ["VCCINT"], "rating": 0.85, "efficiency": 0.8}]
})";

struct SupplyView : ::testing::Test {
    fs::path folder = fs::temp_directory_path();
    Api api{Workspace(folder), DesignSession(kDesign, "supplies.json")};

    Json call(std::string const& method, std::string const& path, Json const& body = nullptr) {
        ApiResponse const r = api.handle({method, path, body.is_null() ? "" : body.dump()});
        EXPECT_EQ(r.status, 200) << path << " " << r.body;
        return Json::parse(r.body);
    }
    Json setInput(std::string const& cell, std::string const& value) {
        return call("POST", "/api/input", {{"block", "core"}, {"cell", cell}, {"value", value}});
    }
};

TEST_F(SupplyView, AnEditAnswersWithTheRegulatorsAndOnlyWarningsThatChanged) {
    // At 100 MHz: t = 50 - 2 * 0.079 = 49.842; VCCINT 0.08 + 0.5 + 0.01 * 24.842 = 0.82842 A.
    Json const opened = call("GET", "/api/report");
    EXPECT_NEAR(opened["supplies"]["regulators"][0]["load"].get<double>(), 0.82842, 1e-5);
    EXPECT_FALSE(opened["supplies"]["regulators"][0]["over_rating"].get<bool>());

    // At 200 MHz: 0.128 W on VCCINT (0.16 A), logic 0.143 W, t = 50 - 0.286 = 49.714;
    // 0.16 + 0.5 + 0.01 * 24.714 = 0.90714 A, over the 0.85 A rating by 0.05714 A;
    // input 0.8 V * 0.90714 A / 0.8 = 0.90714 W.
    Json answer = setInput("CLOCK_FREQ", "200");
    Json const& regulator = answer["report"]["supplies"]["regulators"][0];
    EXPECT_NEAR(regulator["load"].get<double>(), 0.90714, 1e-5);
    EXPECT_NEAR(regulator["margin"].get<double>(), -0.05714, 1e-5);
    EXPECT_TRUE(regulator["over_rating"].get<bool>());
    EXPECT_NEAR(answer["report"]["supplies"]["input_power"].get<double>(), 0.90714, 1e-5);

    // The over-rating warning is new: the answer carries the warnings.
    EXPECT_FALSE(answer["warnings_unchanged"].get<bool>());
    EXPECT_EQ(answer["report"]["warnings"].size(), 1u);
    // 210 MHz keeps the regulator over its rating with a new load in the message.
    answer = setInput("CLOCK_FREQ", "210");
    EXPECT_FALSE(answer["warnings_unchanged"].get<bool>());
    // The same value again moves nothing: no warnings sent, the page keeps those it shows.
    answer = setInput("CLOCK_FREQ", "210");
    EXPECT_TRUE(answer["warnings_unchanged"].get<bool>());
    EXPECT_TRUE(answer["report"]["warnings"].empty());
    EXPECT_TRUE(answer["report"]["blocks"].empty());
    EXPECT_EQ(call("GET", "/api/report")["warnings"].size(), 1u);  // the whole report still has it
}

TEST_F(SupplyView, TheLeakageCurveFollowsTheEditedDesign) {
    setInput("CLOCK_FREQ", "200");
    // t = Tj - 0.286 after the edit: 0.55 + 0.011 (Tj - 25.286) W. At 0 degC 0.271854 W, at 100 degC
    // 1.371854 W; the design's own 50 degC gives 0.821854 W. Before the edit (t = Tj - 0.158) 100 degC
    // gave 1.373262 W: a curve of the file as opened would miss the edit.
    Json const curve = call("GET", "/api/static-curve");
    ASSERT_EQ(curve["points"].size(), 11u);
    EXPECT_EQ(curve["points"][0][0], 0);
    EXPECT_NEAR(curve["points"][0][1].get<double>(), 0.271854, 1e-5);
    EXPECT_EQ(curve["points"][10][0], 100);
    EXPECT_NEAR(curve["points"][10][1].get<double>(), 1.371854, 1e-5);
    EXPECT_EQ(curve["junction_temperature"], 50);
    EXPECT_NEAR(curve["static_power"].get<double>(), 0.821854, 1e-5);
}

TEST(SupplyViewWithoutStatic, HasNoCurveAndNoSupplies) {
    Json design = Json::parse(kDesign);
    design.erase("static");
    design.erase("regulators");
    Api api{Workspace(fs::temp_directory_path()), DesignSession(design.dump(), "bare.json")};
    Json const curve = Json::parse(api.handle({"GET", "/api/static-curve", ""}).body);
    EXPECT_TRUE(curve["points"].empty());
    EXPECT_TRUE(curve["static_power"].is_null());
    EXPECT_FALSE(Json::parse(api.handle({"GET", "/api/report", ""}).body).contains("supplies"));
}

}  // namespace
}  // namespace prsm::host::serve

#endif
