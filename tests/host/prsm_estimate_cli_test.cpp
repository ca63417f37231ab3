// The shipped example design through the `prsm` executable, on the shipped data: it estimates
// completely, and its JSON report adds up.
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>

namespace {

// The JSON report of a design file; fails the test when prsm does not end with status 0.
nlohmann::json estimate(std::string const& path) {
    std::string const command = std::string("QDI_DATADIR='") + PRSM_SHIPPED_DATADIR + "' '" +
                                PRSM_HOST_BINARY + "' estimate '" + path + "' --json 2>/dev/null";
    FILE* pipe = ::popen(command.c_str(), "r");
    EXPECT_NE(pipe, nullptr);
    std::string out;
    char buffer[4096];
    for (std::size_t n; pipe && (n = std::fread(buffer, 1, sizeof buffer, pipe)) > 0;) out.append(buffer, n);
    EXPECT_EQ(pipe ? ::pclose(pipe) : -1, 0) << out;
    return out.empty() ? nlohmann::json::object() : nlohmann::json::parse(out);
}

nlohmann::json estimateExample(std::string const& name) {
    return estimate(std::string(PRSM_EXAMPLESDIR) + "/" + name);
}

TEST(PrsmEstimateCli, ShippedExampleEstimatesCompletely) {
    nlohmann::json const report = estimateExample("accelerator.json");
    EXPECT_TRUE(report["complete"].get<bool>());
    EXPECT_TRUE(report["warnings"].empty()) << report["warnings"].dump();
    // Every block and load is listed, and their power is the dynamic total.
    double blocks = 0;
    for (auto const& block : report["blocks"]) blocks += block["power"].get<double>();
    double const dynamic = report["totals"]["dynamic_power"].get<double>();
    EXPECT_EQ(report["blocks"].size(), 25u);  // 25 blocks, no extra load
    EXPECT_NEAR(blocks, dynamic, 1e-9 * dynamic);
    if (!report.contains("static")) {
        // No leakage sheet named: the rails carry the dynamic power alone, and Tj = 40 + 1.3 P.
        double rails = 0;
        for (auto const& rail : report["rails"]) rails += rail["power"].get<double>();
        EXPECT_NEAR(rails, dynamic, 1e-9 * dynamic);
        EXPECT_NEAR(report["thermal"]["junction_temperature"].get<double>(), 40.0 + 1.3 * dynamic,
                    1e-9 * dynamic);
    } else {
        // With leakage, the solved temperature is the fixed point Tj = 40 + 1.3 (dynamic + static(Tj)).
        double const total = report["totals"]["total_power"].get<double>();
        EXPECT_NEAR(total, dynamic + report["totals"]["static_power"].get<double>(), 1e-9 * total);
        EXPECT_NEAR(report["thermal"]["junction_temperature"].get<double>(), 40.0 + 1.3 * total, 1e-3);
    }
}

// The video pipeline runs clean, and the static sheet's used-block counts are its blocks' sums:
// block RAMs awake 384 line buffers + 64 FIFOs, asleep the 96 spare blocks; UltraRAMs 192 awake;
// LUTs 160,000 + 45,000 over the part's 734,400.
TEST(PrsmEstimateCli, VideoPipelineFeedsItsBlockCounts) {
    nlohmann::json const report = estimateExample("video-pipeline.json");
    ASSERT_TRUE(report.value("complete", false));
    EXPECT_TRUE(report["warnings"].empty()) << report["warnings"].dump();
    nlohmann::json const& counts = report["static"]["counts"];
    EXPECT_EQ(counts["USED_BRAMS_ACTIVE"].get<double>(), 448.0);
    EXPECT_EQ(counts["USED_BRAMS_SLEEP"].get<double>(), 96.0);
    EXPECT_EQ(counts["USED_URAMS_ACTIVE"].get<double>(), 192.0);
    EXPECT_NEAR(counts["LUT_USED_PCT"].get<double>(), 100.0 * 205000 / 734400, 1e-4);
}

// The AI card is built from sheets alone and runs clean; its sixteen PCIe lanes power four
// transceiver quads of the part's one family, fed to the static sheet.
TEST(PrsmEstimateCli, AiCardEstimatesFromSheetsAlone) {
    nlohmann::json const report = estimateExample("ai-card.json");
    ASSERT_TRUE(report.value("complete", false));
    EXPECT_TRUE(report["warnings"].empty()) << report["warnings"].dump();
    for (auto const& block : report["blocks"]) EXPECT_NE(block["model"], "load") << block["name"];
    EXPECT_EQ(report["static"]["counts"]["USED_GTYP_POWER_QUADS"].get<double>(), 4.0);
}

// The module example, from the older architecture's block sheets alone: the board takes each rail's
// total current, and the module's total holds the device's power plus the memory, storage and
// regulators: more than the device, a few watts in all. The transceiver link's quad reaches the static
// sheet.
TEST(PrsmEstimateCli, ModuleExampleFeedsItsBoard) {
    nlohmann::json const report = estimateExample("module.json");
    ASSERT_TRUE(report.value("complete", false));
    EXPECT_TRUE(report["warnings"].empty()) << report["warnings"].dump();
    for (auto const& block : report["blocks"]) EXPECT_NE(block["model"], "load") << block["name"];
    EXPECT_EQ(report["static"]["counts"]["USED_GTH_QUAD"].get<double>(), 1.0);
    ASSERT_TRUE(report.contains("board"));
    nlohmann::json const& board = report["board"];
    // The board's regulators take the block-built rail currents: the 0.72 V core regulator feeds VCCINT
    // alone, the 0.85 V processor regulator the full-power, low-power and memory-controller domains.
    auto railCurrent = [&](char const* name) {
        for (auto const& rail : report["rails"])
            if (rail["rail"] == name) return rail["total_current"].get<double>();
        return -1.0;
    };
    auto regulatorLoad = [&](char const* name) {
        for (auto const& regulator : board["regulators"])
            if (regulator["name"] == name) return regulator["load"].get<double>();
        return -1.0;
    };
    EXPECT_NEAR(regulatorLoad("DA9130"), railCurrent("VCCINT"), 1e-6);
    EXPECT_NEAR(regulatorLoad("DA9131_CH1"),
                railCurrent("VCCPSINTFP") + railCurrent("VCCPSINTLP") + railCurrent("VCCPSINTDDR"), 1e-6);
    double const device = report["totals"]["total_power"].get<double>();
    double const module = board["total_power"].get<double>();
    EXPECT_GT(module, device + 0.5);
    EXPECT_LT(module, 10.0);
}

// The camera example on the smaller module, from block sheets alone: the board's core and processor
// regulators carry the block-built rail currents. On this board the 0.72 V channel feeds VCCINT alone;
// the 0.85 V channel the processor's full-power, low-power and memory-controller domains and, as
// branches, its transceivers' core (VCCPSGTA), VCCBRAM and VCCINTIO. The display link's lanes reach the
// 0.9 V transceiver regulator; the codec's rail reaches none, and is reported rather than dropped.
TEST(PrsmEstimateCli, CameraExampleOnTheSmallerModuleFeedsItsBoard) {
    nlohmann::json const report = estimateExample("camera-module.json");
    ASSERT_TRUE(report.value("complete", false)) << report["failures"].dump();
    for (auto const& block : report["blocks"]) EXPECT_NE(block["model"], "load") << block["name"];
    ASSERT_TRUE(report.contains("board"));
    nlohmann::json const& board = report["board"];
    EXPECT_EQ(board["model"], "DravikS24");
    auto railOf = [&](char const* name) {
        for (auto const& rail : report["rails"])
            if (rail["rail"] == name) return rail;
        return nlohmann::json();
    };
    auto railCurrent = [&](char const* name) {
        nlohmann::json const rail = railOf(name);
        return rail.is_null() ? 0.0 : rail["total_current"].get<double>();  // 0: not drawn from
    };
    auto regulator = [&](char const* name) {
        for (auto const& r : board["regulators"])
            if (r["name"] == name) return r;
        return nlohmann::json();
    };
    EXPECT_GT(railCurrent("VCCINT"), 0.1);
    EXPECT_NEAR(regulator("DA9131_CH2")["load"].get<double>(), railCurrent("VCCINT"), 1e-6);
    EXPECT_NEAR(regulator("DA9131_CH1")["load"].get<double>(),
                railCurrent("VCCPSINTFP") + railCurrent("VCCPSINTLP") + railCurrent("VCCPSINTDDR") +
                    railCurrent("VCCPSGTA") + railCurrent("VCCBRAM") + railCurrent("VCCINTIO"),
                1e-6);
    EXPECT_EQ(regulator("DA9131_CH2")["label"], "DA9131 CH2 (VCC_PL_0V72)");
    EXPECT_EQ(regulator("DA9062_LDO2")["input"], "DA9062_BUCK3");
    EXPECT_GT(railCurrent("MGTAVCC"), 0.05);
    EXPECT_NEAR(regulator("DA9062_LDO3")["load"].get<double>(), railCurrent("MGTAVCC"), 1e-6);

    // The encoder on VCCVCUINT, from the shipped codec table: 1920 x 1080 x 60 = 124.416 Mpixel/s;
    // (0.09 W standing + 0.0021 W per Mpixel/s x 124.416) x (0.9 V / 0.9 V)^2.3 x scale 1.0
    // = 0.3512736 W, over 0.9 V = 0.390304 A. The board has no input for the rail: it is listed as not
    // supplied with that current plus the rail's leakage, and is the one warning, naming rail and board.
    double const codec = (0.09 + 0.0021 * 1920 * 1080 * 60 / 1e6) / 0.9;
    nlohmann::json const vcu = railOf("VCCVCUINT");
    ASSERT_FALSE(vcu.is_null());
    EXPECT_NEAR(vcu["dynamic_current"].get<double>(), codec, 1e-6);
    ASSERT_FALSE(board["unsupplied"].empty());
    nlohmann::json unsupplied;
    double unsuppliedCurrent = 0, unsuppliedPower = 0;
    for (auto const& rail : board["unsupplied"]) {
        if (rail["rail"] == "VCCVCUINT") unsupplied = rail;
        unsuppliedCurrent += rail["current"].get<double>();
        unsuppliedPower += rail["power"].get<double>();
    }
    ASSERT_FALSE(unsupplied.is_null()) << board["unsupplied"].dump();
    EXPECT_NEAR(unsupplied["dynamic_current"].get<double>(), codec, 1e-6);
    EXPECT_NEAR(unsupplied["current"].get<double>(), codec + vcu["static_current"].get<double>(), 1e-6);
    EXPECT_NEAR(unsupplied["power"].get<double>(), 0.9 * unsupplied["current"].get<double>(), 1e-6);
    EXPECT_NEAR(board["unsupplied_power"].get<double>(), unsuppliedPower, 1e-9);
    ASSERT_EQ(report["warnings"].size(), 1u) << report["warnings"].dump();
    nlohmann::json const& warning = report["warnings"][0];
    EXPECT_EQ(warning["block"], "DravikS24");
    std::string const message = warning["message"].get<std::string>();
    EXPECT_EQ(message.rfind("rail VCCVCUINT draws 0.", 0), 0u) << message;
    EXPECT_NE(message.find("that board DravikS24 does not supply"), std::string::npos) << message;
    // Nothing is dropped: every rail's current reaches a board input or is listed as not supplied.
    double drawn = 0, placed = unsuppliedCurrent;
    for (auto const& rail : report["rails"]) drawn += rail["total_current"].get<double>();
    for (auto const& current : board["currents"]) placed += current.get<double>();
    EXPECT_NEAR(placed, drawn, 1e-6);

    // A camera-class design: a watt or two in the device, a few watts for the module.
    double const device = report["totals"]["total_power"].get<double>();
    EXPECT_GT(device, 0.5);
    EXPECT_LT(device, 4.0);
    EXPECT_GT(board["total_power"].get<double>(), device);
}

// The design file that docs/design-files.md shows runs clean: its grades reach the static sheet in the
// sheet's own spelling, so the SKU is found and the rails it leaves out take the SKU's nominal voltage.
TEST(PrsmEstimateCli, DocumentedDesignFileRunsClean) {
    std::ifstream doc(std::string(PRSM_EXAMPLESDIR) + "/../docs/design-files.md");
    std::string const text((std::istreambuf_iterator<char>(doc)), std::istreambuf_iterator<char>());
    std::size_t const start = text.find("```json\n", text.find("## The file"));
    ASSERT_NE(start, std::string::npos);
    std::string const path = ::testing::TempDir() + "documented-design.json";
    std::ofstream(path) << text.substr(start + 8, text.find("```", start + 8) - start - 8);
    nlohmann::json const report = estimate(path);
    EXPECT_TRUE(report.value("complete", false));
    EXPECT_TRUE(report["warnings"].empty()) << report["warnings"].dump();
    EXPECT_EQ(report["voltage_corner"], "nominal");
    // VCCPSFP, left out, is the data's nominal 0.8 V (its maximum corner is 1.03 times that).
    bool seen = false;
    for (auto const& rail : report["rails"])
        if (rail["rail"] == "VCCPSFP") {
            seen = true;
            EXPECT_NEAR(rail["voltage"].get<double>(), 0.8, 1e-6);
            EXPECT_EQ(rail["voltage_source"], "corner");
        } else if (rail["rail"] == "VCCINT") {
            EXPECT_EQ(rail["voltage_source"], "design");
        }
    EXPECT_TRUE(seen);
}

}  // namespace
