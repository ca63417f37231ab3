// A design's grades and voltage corner reaching the static sheet in its own spelling, on the test
// static-power data (ZQVP1502: SKU_A for speed 2, LP, LOW_POWER, EXTENDED; VCCINT 0.78 V at NOM and
// 0.8 V at MAX, VCCAUX 1.5 V at MAX only; the catalogue's nominal VCCAUX is 1.5 V).
#include <prsm/design/Estimate.h>
#include <prsm/design/Grades.h>

#include "ReportLookup.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using namespace prsm::design;
using prsm::test::rail;
using List = std::vector<std::string>;

TEST(DesignGrades, DesignWordsMatchEachSheetsList) {
    List const staticVoltage{"LP", "MP", "HP"}, groupingVoltage{"H", "M", "M_OD", "L", "L_OD"};
    EXPECT_EQ(sheetSpellings("M", staticVoltage), List{"MP"});
    EXPECT_EQ(sheetSpellings("M", groupingVoltage), List{"M"});  // equal beats longer
    EXPECT_EQ(sheetSpellings("MP", groupingVoltage), List{"M"});
    EXPECT_EQ(sheetSpellings("low power", List({"LOW_POWER", "STANDARD"})), List{"LOW_POWER"});
    EXPECT_EQ(sheetSpellings("-2", List({"1", "2", "3"})), List{"2"});
    EXPECT_TRUE(sheetSpellings("12", List({"1", "2"})).empty());  // a number is not its first digit
    List const corners{"MIN", "NOM", "MAX"};
    EXPECT_EQ(sheetSpellings("nominal", corners), List{"NOM"});
    EXPECT_EQ(sheetSpellings("m", corners), List({"MIN", "MAX"}));  // ambiguous

    std::optional<GradeParts> const full = splitGrade("-S2M-E"), older = splitGrade("-2-E");
    ASSERT_TRUE(full && older);
    EXPECT_EQ(full->speed + full->voltage + full->temperature, "2ME");
    EXPECT_EQ(older->speed + "/" + older->voltage + "/" + older->temperature, "2//E");
    EXPECT_FALSE(splitGrade("S2M-E"));
}

std::string design(std::string const& device) {
    return R"({"schema_version": 1, "device": {"part": "ZQVP1502", )" + device + R"(},
      "thermal": {"junction_temperature": 25}, "static": {"model": "TalvexStatic"},
      "blocks": [{"name": "core", "model": "TestLoad"}]})";
}

// The warnings about the grades and voltages: the test data's leakage is not the shipped device's, so
// its rails may pass the shipped catalogue's maximum currents, which these cases do not check.
std::vector<Warning> gradeWarnings(Report const& report) {
    std::vector<Warning> kept;
    for (Warning const& w : report.warnings)
        if (w.cell.rfind("/rails/", 0) != 0) kept.push_back(w);
    return kept;
}

TEST(DesignGrades, GradesSelectTheSkuAndTheCornerItsVoltages) {
    // No corner stated: nominal. The grade's letters find SKU_A, whose NOM VCCINT is 0.78 V; VCCAUX
    // has no NOM row (the sheet gives 0 V), so it is the catalogue's nominal. The test block's core
    // power follows: 1000 pF * 0.78^2 V^2 * 100 MHz = 0.06084 W.
    Report const nominal = Estimator(parseDesign(design(R"("grade": "-S2L-E")"), "n.json")).estimate();
    EXPECT_TRUE(gradeWarnings(nominal).empty()) << gradeWarnings(nominal)[0].message;
    EXPECT_EQ(nominal.voltageCorner, "nominal");
    EXPECT_DOUBLE_EQ(rail(nominal, "VCCINT").voltage, 0.78);
    EXPECT_EQ(rail(nominal, "VCCINT").voltageSource, VoltageSource::Corner);
    EXPECT_DOUBLE_EQ(rail(nominal, "VCCAUX").voltage, 1.5);
    EXPECT_EQ(rail(nominal, "VCCAUX").voltageSource, VoltageSource::CatalogueNominal);
    EXPECT_NEAR(nominal.blocks[0].rails[0].second, 0.06084, 1e-7);

    // The maximum corner: VCCINT 0.8 V, 1000 pF * 0.64 * 100 MHz = 0.064 W; VCCAUX has its row now.
    Report const max = Estimator(parseDesign(design(R"("speed_grade": "2", "voltage_grade": "L",
        "temperature_grade": "extended", "voltage_corner": "max")"),
                                             "m.json"))
                           .estimate();
    EXPECT_TRUE(gradeWarnings(max).empty()) << gradeWarnings(max)[0].message;
    EXPECT_DOUBLE_EQ(rail(max, "VCCINT").voltage, 0.8);
    EXPECT_EQ(rail(max, "VCCAUX").voltageSource, VoltageSource::Corner);
    EXPECT_NEAR(max.blocks[0].rails[0].second, 0.064, 1e-7);

    // A grade the sheet's list lacks is named with the list; the sheet keeps its default (LP).
    Report const high = Estimator(parseDesign(design(R"("grade": "-S2H-E")"), "h.json")).estimate();
    std::vector<Warning> const named = gradeWarnings(high);
    ASSERT_EQ(named.size(), 1u);
    EXPECT_EQ(named[0].block, "static");
    EXPECT_EQ(named[0].cell, "VOLTAGE_GRADE");
    EXPECT_NE(named[0].message.find("LP, MP"), std::string::npos) << named[0].message;

    // Refused: a grade given whole and by parts, a grade of neither form, a corner the engine lacks.
    EXPECT_THROW(parseDesign(design(R"("grade": "-S2L-E", "speed_grade": "2")"), "x.json"), DesignError);
    EXPECT_THROW(parseDesign(design(R"("grade": "S2L")"), "x.json"), DesignError);
    EXPECT_THROW(parseDesign(design(R"("voltage_corner": "typical")"), "x.json"), DesignError);
}

}  // namespace
