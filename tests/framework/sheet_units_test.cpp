// Units declared in a sheet table: how a cell's unit is resolved, and the tables the generator refuses;
// likewise the [warnings] entries it refuses.

#include <prsm/framework/PRSMSheetRegistry.h>

#include <gtest/gtest.h>

#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

namespace {

std::string unitOf(std::string const& cell) {
    prsm::Sheet const* sheet = prsm::SheetRegistry::instance().find("TestSampler");
    EXPECT_NE(sheet, nullptr);
    prsm::CellInfo const* info = sheet != nullptr ? sheet->findCell(cell) : nullptr;
    EXPECT_NE(info, nullptr) << cell;
    return info != nullptr ? info->unit : "?";
}

TEST(SheetUnits, EveryShippedFractionInputWarnsOutsideZeroToOne) {
    // A rate typed as a percent (12.5 for 0.125) gives 100 times the power: each shipped sheet's
    // fraction inputs declare [warnings.outside] 0 .. 1, so a new sheet cannot forget one.
    int inputs = 0;
    for (prsm::Sheet const* sheet : prsm::SheetRegistry::instance().sheets()) {
        if (sheet->name().rfind("Test", 0) == 0) continue;  // this suite's own sheets
        for (prsm::CellInfo const& cell : sheet->cells()) {
            if (cell.category != prsm::CellCategory::UserInput || cell.unit != "fraction") continue;
            ++inputs;
            EXPECT_EQ(cell.outside.low + " .. " + cell.outside.high, "0.0 .. 1.0")
                << sheet->name() << " " << cell.name;
            EXPECT_NE(cell.outside.message.find("{value}"), std::string::npos)
                << sheet->name() << " " << cell.name;
        }
    }
    EXPECT_GE(
        inputs,
        15);  // 2 + 2 on the boards, 3 on the older static sheet, 3 + 3 on the AI engines, 2 on the logic
}

TEST(SheetUnits, ExactNamesBeatPatternsAndLongerPatternsBeatShorterOnes) {
    // TestSampler: W = ["TOTAL", "LANE_*_POWER"], mW = ["LANE_A_POWER"], uW = ["*_POWER"],
    // count = ["COUNT{,_OUT}"], fraction = ["*RATE", "LANE_{A,B}_LOAD"].
    EXPECT_EQ(unitOf("TOTAL"), "W");
    EXPECT_EQ(unitOf("LANE_A_POWER"), "mW");  // named exactly
    EXPECT_EQ(unitOf("LANE_B_POWER"), "W");   // "LANE_*_POWER" is longer than "*_POWER"
    EXPECT_EQ(unitOf("COUNT"), "count");      // an empty brace choice
    EXPECT_EQ(unitOf("COUNT_OUT"), "count");
    EXPECT_EQ(unitOf("RATE"), "fraction");
    EXPECT_EQ(unitOf("GET_MAX_RATE"), "fraction");
    EXPECT_EQ(unitOf("LANE_B_LOAD"), "fraction");
    EXPECT_EQ(unitOf("IS_VALID_RATE"), "");  // "*RATE" passes over the validity flags
    EXPECT_EQ(unitOf("PLACEHOLDER"), "");    // named by nothing
    EXPECT_EQ(unitOf("MODE"), "");
}

// Runs the generator on a table made of a fixed head and `units`; returns its standard error, or
// "accepted" when it succeeds.
std::string generate(std::string const& units) {
    namespace fs = std::filesystem;
    fs::path const root = fs::temp_directory_path() / ("prsm_units_" + std::to_string(::getpid()));
    fs::create_directories(root / "out");
    std::ofstream(root / "Probe.toml")
        << "[sheet]\ncalculate = [\"TOTAL_POWER\"]\n\n[descriptions]\n\"*\" = \"A probe cell\"\n\n[units]\n"
        << units
        << "\n\n[cells.float]\ninputs = [\"CLOCK_FREQ\"]\n"
           "outputs = [\"TOTAL_POWER\"]\n\n[inputs.CLOCK_FREQ]\ndefault = 1.0\n";
    std::string const command = std::string(PRSM_PYTHON) + " " + PRSM_SHEETGEN + " " +
                                (root / "Probe.toml").string() + " --out " + (root / "out").string() +
                                " --source-root " + root.string() + " 2>&1";
    std::string output;
    if (FILE* pipe = ::popen(command.c_str(), "r")) {
        char buffer[512];
        for (std::size_t n; (n = std::fread(buffer, 1, sizeof buffer, pipe)) > 0;) output.append(buffer, n);
        if (::pclose(pipe) == 0) output = "accepted";
    }
    fs::remove_all(root);
    return output;
}

TEST(SheetUnits, TheGeneratorRefusesUnitsThatNameNothingOrAreNotLists) {
    EXPECT_EQ(generate("W = [\"*_POWER\"]\nMHz = [\"CLOCK_FREQ\"]"), "accepted");
    EXPECT_NE(generate("W = [\"*_STATIC_POWER\"]").find("pattern *_STATIC_POWER matches no cell"),
              std::string::npos);
    EXPECT_NE(generate("V = [\"VCCINT\"]").find("no cell VCCINT"), std::string::npos);
    EXPECT_NE(generate("W = \"TOTAL_POWER\"").find("units.W: expected a list"), std::string::npos);
    EXPECT_NE(generate("W = [\"TOTAL_POWER\", 3]").find("units.W: expected a list"), std::string::npos);
    EXPECT_NE(generate("W = [\"TOTAL_POWER\"]\nmW = [\"TOTAL_POWER\"]").find("two values"),
              std::string::npos);
    EXPECT_NE(generate("W = [\"TOTAL_*\"]\nmW = [\"*_POWER\"]").find("equal length"), std::string::npos);
}

TEST(SheetWarnings, TheGeneratorRefusesWarningsItCannotPlace) {
    // `generate` writes its text under [units]; a [warnings] table may follow there.
    auto const warnings = [](std::string const& entries) {
        return generate("W = [\"TOTAL_POWER\"]\n\n[warnings]\n" + entries);
    };
    EXPECT_EQ(warnings("above_zero = { \"*_POWER\" = \"{*} is {value} {unit} ({cell})\" }"), "accepted");
    EXPECT_NE(warnings("above_zero = { \"TOTAL_POWER\" = \"{amount}\" }").find("unknown field {amount}"),
              std::string::npos);
    EXPECT_NE(
        warnings("below_zero = { \"*_CURRENT\" = \"x\" }").find("pattern *_CURRENT matches no number cell"),
        std::string::npos);
    EXPECT_NE(warnings("below_zero = { \"VCCINT\" = \"x\" }").find("no cell VCCINT"), std::string::npos);
    EXPECT_NE(warnings("negative = { \"CLOCK_FREQ\" = \"x\" }").find("unknown checks"), std::string::npos);
    EXPECT_NE(warnings("below_zero = [\"CLOCK_FREQ\"]").find("warnings.below_zero: expected a table"),
              std::string::npos);
}

}  // namespace
