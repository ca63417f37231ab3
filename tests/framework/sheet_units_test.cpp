// Units declared in a sheet table: how a cell's unit is resolved. The tables the generator refuses are
// tests/sheetgen/test_refusals.py's.

#include <prsm/framework/PRSMSheetRegistry.h>

#include <gtest/gtest.h>

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

}  // namespace
