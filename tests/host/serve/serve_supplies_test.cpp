// What the `prsm serve` page's supply view and leakage chart read: the supplies in the answer to an
// input edit, warnings sent only when they change, and static power against the junction temperature
// for the design as edited, worked out by hand on the test-only load and leakage sheets.
#ifdef PRSM_HOST_CORE_LINKED

#include "ServeFixture.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace prsm::host::serve::test {
namespace {

// The load design with TestLeakage as its static sheet and one regulator on VCCINT. TestLeakage takes
// the leakage at t = Tj - 2 degC/W * logic power (all of core's 0.079 W is logic) and gives VCCINT
// 0.5 + 0.01 (t - 25) A, VCCAUX 0.1 + 0.002 (t - 25) A: 0.55 + 0.011 (t - 25) W in all.
std::string leakageDesign() {
    Json design = Json::parse(kLoadDesign);
    design["static"] = {{"model", "TestLeakage"}};
    design["regulators"] =
        Json::parse(R"([{"name": "CORE", "rails": ["VCCINT"], "rating": 0.85, "efficiency": 0.8}])");
    return design.dump();
}

struct SupplyView : ServeFixture {
    SupplyView() : ServeFixture(leakageDesign()) {}
};

TEST_F(SupplyView, AnEditAnswersWithTheRegulatorsTheChangedWarningsAndTheEditedCurve) {
    auto clock = [&](char const* mhz) { return setInput("core", "CLOCK_FREQ", mhz); };
    // At 100 MHz: t = 50 - 2 * 0.079 = 49.842; VCCINT 0.08 + 0.5 + 0.01 * 24.842 = 0.82842 A.
    EXPECT_NEAR(get("/api/report")["supplies"]["regulators"][0]["load"].get<double>(), 0.82842, 1e-5);
    // At 200 MHz: 0.16 A dynamic, logic 0.143 W, t = 50 - 0.286 = 49.714; 0.16 + 0.5 + 0.01 * 24.714
    // = 0.90714 A, over the 0.85 A rating: a new warning, so the answer carries the warnings.
    Json answer = clock("200");
    EXPECT_NEAR(answer["report"]["supplies"]["regulators"][0]["load"].get<double>(), 0.90714, 1e-5);
    EXPECT_TRUE(answer["report"]["supplies"]["regulators"][0]["over_rating"].get<bool>());
    EXPECT_FALSE(answer["warnings_unchanged"].get<bool>());
    EXPECT_EQ(answer["report"]["warnings"].size(), 1u);
    // Still over at 210 MHz, but the warning's load moved: sent again. 210 again moves nothing.
    EXPECT_FALSE(clock("210")["warnings_unchanged"].get<bool>());
    answer = clock("210");
    EXPECT_TRUE(answer["warnings_unchanged"].get<bool>());
    EXPECT_TRUE(answer["report"]["warnings"].empty());
    EXPECT_EQ(get("/api/report")["warnings"].size(), 1u);  // the whole report still has it

    // The leakage chart of the design as edited: at 210 MHz the logic draws 1000e-12 * 0.64 * 210e6
    // = 0.1344 W + 0.015 W = 0.1494 W, so t = Tj - 0.2988 and 0.55 + 0.011 (Tj - 25.2988) W: 1.371713 W
    // at 100 degC, 0.821713 W at the design's 50 degC. The file as opened (100 MHz) gives 1.373262 W.
    Json const curve = get("/api/static-curve");
    ASSERT_EQ(curve["points"].size(), 11u);
    EXPECT_EQ(curve["points"][10][0], 100);
    EXPECT_NEAR(curve["points"][10][1].get<double>(), 1.371713, 1e-5);
    EXPECT_EQ(curve["junction_temperature"], 50);
    EXPECT_NEAR(curve["static_power"].get<double>(), 0.821713, 1e-5);
}

using LoadOnly = ServeFixture;

TEST_F(LoadOnly, ADesignWithoutStaticSheetOrRegulatorsHasNoCurveAndNoSupplies) {
    Json const curve = get("/api/static-curve");
    EXPECT_TRUE(curve["points"].empty());
    EXPECT_TRUE(curve["static_power"].is_null());
    EXPECT_FALSE(get("/api/report").contains("supplies"));
}

}  // namespace
}  // namespace prsm::host::serve::test

#endif
