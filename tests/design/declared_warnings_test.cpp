// The warnings a sheet's table declares, checked against a value: hand-made cell descriptions, with the
// range bounds that name cells read from a TestLeakage parameter set (its inputs VCCINT and VCCAUX).
#include <prsm/design/DeclaredWarnings.h>
#include <prsm/framework/PRSMSheetRegistry.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using prsm::CellInfo;
using prsm::CellType;
using prsm::design::declaredWarnings;
using Lines = std::vector<std::string>;

CellInfo cell(CellType type, std::string unit) {
    CellInfo info;
    info.name = "X";
    info.type = type;
    info.category = prsm::CellCategory::UserInput;
    info.unit = std::move(unit);
    return info;
}

TEST(DeclaredWarnings, SignsAndNoValueFillTheValueAndUnit) {
    auto const instance = prsm::SheetRegistry::instance().find("TestLeakage")->create();
    CellInfo info = cell(CellType::Float, "");
    info.belowZeroWarning = "{value} {unit} below";
    info.aboveZeroWarning = "{value}{unit} above";
    EXPECT_EQ(declaredWarnings(info, "-0.5", *instance), Lines{"-0.5 below"});  // no blank left
    info.unit = "mW";
    EXPECT_EQ(declaredWarnings(info, "0.100000001", *instance), Lines{"0.1mW above"});  // shortest float text
    EXPECT_TRUE(declaredWarnings(info, "0", *instance).empty());
    EXPECT_TRUE(
        declaredWarnings(info, "3.4028235e+38", *instance).empty());  // not computed: nothing to judge

    CellInfo count = cell(CellType::Int, "count");
    count.noValueWarning = "X did not fit";
    EXPECT_EQ(declaredWarnings(count, "2147483647", *instance), Lines{"X did not fit"});
    EXPECT_EQ(declaredWarnings(count, "2147483646", *instance), Lines{"X did not fit"});
    EXPECT_TRUE(declaredWarnings(count, "2147483645", *instance).empty());
}

TEST(DeclaredWarnings, ARangeOfNumbersOrOfCells) {
    auto const instance = prsm::SheetRegistry::instance().find("TestLeakage")->create();
    CellInfo rate = cell(CellType::Float, "");
    rate.outside = {"0.0", "1.0", "{value} outside {low} .. {high}"};
    EXPECT_EQ(declaredWarnings(rate, "12.5", *instance), Lines{"12.5 outside 0 .. 1"});
    EXPECT_EQ(declaredWarnings(rate, "-0.25", *instance), Lines{"-0.25 outside 0 .. 1"});
    EXPECT_TRUE(declaredWarnings(rate, "1", *instance).empty());  // the bounds belong to the range
    EXPECT_TRUE(declaredWarnings(rate, "0", *instance).empty());

    // Bounds held by cells: 0.75 .. 0.85 V.
    instance->set("VCCINT", "0.75");
    instance->set("VCCAUX", "0.85");
    CellInfo volts = cell(CellType::Float, "V");
    volts.outside = {"VCCINT", "VCCAUX", "{value} {unit} not in {low} .. {high} {unit}"};
    EXPECT_EQ(declaredWarnings(volts, "0.9", *instance), Lines{"0.9 V not in 0.75 .. 0.85 V"});
    EXPECT_TRUE(declaredWarnings(volts, "0.8", *instance).empty());
    // Cells whose low is not below their high (a sheet's 0 .. 0 for a rail its data has no row for)
    // give no range.
    instance->set("VCCAUX", "0.75");
    EXPECT_TRUE(declaredWarnings(volts, "0.9", *instance).empty());
}

}  // namespace
