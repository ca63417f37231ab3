// Warnings a sheet's table declares ([warnings]) as the host gives them after a calculation: the larger
// module board on tests/data/powercfg/dravik/PRSMDravikS26Data.cfg, whose ratings are in
// docs/models/DravikS26.md (core output 6.5 A at 0.72 V, buck 4 0.6 A at 1.8 V).
#ifdef PRSM_HOST_CORE_LINKED

#include <prsm/host/Calculation.h>
#include <prsm/host/Inputs.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <string>
#include <vector>

namespace prsm::host {
namespace {

Sheet const& board() {
    Sheet const* sheet = SheetRegistry::instance().find("DravikS26");
    EXPECT_NE(sheet, nullptr);
    return *sheet;
}

CalcResult calculate(std::vector<std::string> const& assignments) {
    std::vector<Assignment> parsed;
    for (std::string const& text : assignments) parsed.push_back(parseAssignment(text));
    return runCalculation(board(), resolveInputs(board(), parsed));
}

std::string outputText(CalcResult const& result, std::string const& name) {
    for (CellValue const& output : result.outputs)
        if (output.name == name) return output.text;
    ADD_FAILURE() << "no output " << name;
    return std::string();
}

// The figure a warning starting with `head` gives right after it; NaN when there is no such warning.
double figureAfter(std::vector<std::string> const& warnings, std::string const& head) {
    for (std::string const& line : warnings)
        if (line.rfind(head, 0) == 0) return std::strtod(line.c_str() + head.size(), nullptr);
    return std::nan("");
}

TEST(HostDeclaredWarnings, ADesignWithinEveryRatingGivesNone) {
    // Defaults: the device draws nothing; memory, storage and parts stay far below every rating.
    EXPECT_TRUE(calculate({}).warnings.empty());
    EXPECT_TRUE(calculate({"FPGA_VCCINT_CURRENT=6.5", "FPGA_VCCAUX_CURRENT=0.6"}).warnings.empty());  // at
}

TEST(HostDeclaredWarnings, ANegativeCurrentWarnsAndIsCalculatedAsGiven) {
    // The 1.5 V banks feed no module output and count in FPGA_POWER only: -2 A x 1.5 V = -3 W.
    CalcResult const result = calculate({"FPGA_VCCO15_CURRENT=-2"});
    ASSERT_EQ(result.warnings.size(), 1u);
    EXPECT_EQ(result.warnings[0],
              "FPGA_VCCO15_CURRENT = -2 A is a negative supply current; calculated as given");
    EXPECT_DOUBLE_EQ(std::strtod(outputText(result, "FPGA_POWER").c_str(), nullptr), -3.0);
}

TEST(HostDeclaredWarnings, EachRegulatorOverItsRatingIsNamedWithItsExcessInMilliwatts) {
    CalcResult const result = calculate({"FPGA_VCCINT_CURRENT=7.5", "FPGA_VCCAUX_CURRENT=0.85"});
    ASSERT_EQ(result.warnings.size(), 2u);
    // Core output: (7.5 - 6.5) A x 0.72 V x 1000 = 720 mW; buck 4: (0.85 - 0.6) A x 1.8 V x 1000 = 450 mW.
    EXPECT_NEAR(figureAfter(result.warnings, "DA9130 is over its rating by "), 720.0, 0.01);
    EXPECT_NEAR(figureAfter(result.warnings, "DA9062_BUCK4 is over its rating by "), 450.0, 0.01);
    for (std::string const& line : result.warnings)
        EXPECT_NE(line.find(" mW (DA9"), std::string::npos) << line;
}

TEST(HostDeclaredWarnings, ACountThatDoesNotFitSaysWhy) {
    // 1000 fanout / 1e-7 per site = 1e10 sites, beyond the 2147483647 an int holds: the flip-flop and
    // clocked slice counts saturate to "no value"; the LUT RAM and SRL shares are 0 (none use the clock),
    // and the non-slice fanout is 1e10 - 1e10 = 0.
    Sheet const* clock = SheetRegistry::instance().find("TalvexClock");
    ASSERT_NE(clock, nullptr);
    CalcResult const result =
        runCalculation(*clock, resolveInputs(*clock, {parseAssignment("FANOUT_PER_SITE=1e-7")}));
    ASSERT_EQ(result.warnings.size(), 2u);
    EXPECT_EQ(result.warnings[0].rfind("NUM_CLOCKED_SLICES has no value: FANOUT / FANOUT_PER_SITE", 0), 0u)
        << result.warnings[0];
    EXPECT_EQ(result.warnings[1].rfind("NUM_FF_SLICES has no value", 0), 0u) << result.warnings[1];
    EXPECT_TRUE(runCalculation(*clock, resolveInputs(*clock, {})).warnings.empty());
}

}  // namespace
}  // namespace prsm::host

#endif
