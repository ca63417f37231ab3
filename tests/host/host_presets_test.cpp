// Presets applied by the host: `prsm calc TalvexPss --preset NAME` with command-line overrides, and the
// preset listing. The processor-subsystem sheet runs on tests/data; the presets are the shipped ones.
#ifdef PRSM_HOST_CORE_LINKED

#include <prsm/host/Commands.h>
#include <prsm/host/DataDir.h>
#include <prsm/host/HostError.h>
#include <prsm/host/Request.h>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <sstream>

namespace prsm::host {
namespace {

struct HostRun {
    int status;
    std::string out;
    std::string err;
};

HostRun run(Request const& request) {
    std::ostringstream out, err;
    DataDirChoice const environment{DataDirSource::Environment, "", {}};  // the test process sets QDI_DATADIR
    int const status = runRequest(request, environment, out, err);
    return {status, out.str(), err.str()};
}

Request calcWithPreset(std::string const& preset, std::vector<std::string> assignments) {
    Request request;
    request.command = Command::Calc;
    request.model = "TalvexPss";
    request.preset = preset;
    request.assignments = std::move(assignments);
    request.format = OutputFormat::Json;
    return request;
}

TEST(HostPresets, ParsesThePresetOptionAndCommand) {
    std::ostringstream out, err;
    char const* calc[] = {"prsm", "calc", "TalvexPss", "--preset", "LINUX_IDLE", "CPU_LOAD=5"};
    ParsedCommandLine const parsed = parseCommandLine(6, calc, out, err);
    ASSERT_TRUE(parsed.request) << err.str();
    EXPECT_EQ(parsed.request->preset, "LINUX_IDLE");
    EXPECT_EQ(parsed.request->assignments, std::vector<std::string>{"CPU_LOAD=5"});
    char const* presets[] = {"prsm", "presets", "TalvexPss"};
    ParsedCommandLine const listing = parseCommandLine(3, presets, out, err);
    ASSERT_TRUE(listing.request) << err.str();
    EXPECT_EQ(listing.request->command, Command::Presets);
    EXPECT_EQ(listing.request->model, "TalvexPss");
}

TEST(HostPresets, ApplyAPresetUnderTheCommandLine) {
    // RPU_REALTIME power-gates the application cores and runs two real-time cores at 800 MHz from a
    // 0.8 V supply; the command line raises their load to 100 %: 2 x (0.0005 + 0.002) x 800 = 4 for the
    // cores and 0.0003 x 800 = 0.24 for the tie-off wrapper.
    HostRun const result = run(calcWithPreset("RPU_REALTIME", {"DUAL_R5_LOAD=100"}));
    ASSERT_EQ(result.status, kExitOk) << result.err;
    nlohmann::json const json = nlohmann::json::parse(result.out);
    EXPECT_EQ(json["inputs"]["DUAL_R5_LOAD"].get<double>(), 100.0);
    EXPECT_EQ(json["inputs"]["CPU_POWER_GATED"].get<int>(), 1);
    EXPECT_EQ(json["inputs"]["RPU_CORES"].get<int>(), 2);
    EXPECT_EQ(json["outputs"]["CPU_DYNAMIC_POWER"].get<double>(), 0.0);
    EXPECT_NEAR(json["outputs"]["DUAL_RP_DYNAMIC_POWER"].get<double>(), 4.24, 1e-5);

    // Without the override the preset's own load holds.
    nlohmann::json const plain = nlohmann::json::parse(run(calcWithPreset("RPU_REALTIME", {})).out);
    EXPECT_EQ(plain["inputs"]["DUAL_R5_LOAD"].get<double>(), 70.0);
}

TEST(HostPresets, ListsPresetsAndRejectsUnknownOnes) {
    Request list;
    list.command = Command::Presets;
    list.model = "TalvexPss";
    HostRun const listed = run(list);
    ASSERT_EQ(listed.status, kExitOk) << listed.err;
    for (char const* name : {"LINUX_IDLE", "LINUX_LIGHT", "LINUX_HEAVY", "RPU_REALTIME"})
        EXPECT_NE(listed.out.find(name), std::string::npos) << listed.out;
    EXPECT_EQ(run(calcWithPreset("list", {})).out, listed.out);

    HostRun const misspelt = run(calcWithPreset("LINUX_HEVY", {}));
    EXPECT_EQ(misspelt.status, kExitBadInput);
    EXPECT_TRUE(misspelt.out.empty());
    EXPECT_NE(misspelt.err.find("did you mean LINUX_HEAVY"), std::string::npos) << misspelt.err;

    list.model = "TalvexNoc";
    HostRun const none = run(list);
    EXPECT_EQ(none.status, kExitBadInput);
    EXPECT_NE(none.err.find("has no presets"), std::string::npos) << none.err;
}

// Every shipped preset sets every input of the sheet and calculates.
TEST(HostPresets, EveryShippedPresetIsComplete) {
    for (char const* name : {"LINUX_IDLE", "LINUX_LIGHT", "LINUX_HEAVY", "RPU_REALTIME"}) {
        HostRun const result = run(calcWithPreset(name, {}));
        ASSERT_EQ(result.status, kExitOk) << name << ": " << result.err;
        EXPECT_TRUE(result.err.empty()) << name << ": " << result.err;  // no invalid input either
    }
}

}  // namespace
}  // namespace prsm::host

#endif
