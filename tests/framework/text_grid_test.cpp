// The text grid: a two-part text table read into numbers at load, and what it leaves to the table's own
// lookup and parse.
#include <prsm/framework/PRSMReservedValues.h>
#include <prsm/framework/PRSMTextGrid.h>

#include <gtest/gtest.h>

#include <array>
#include <string_view>

namespace {

using prsm::data::TextGrid;

constexpr std::array<std::string_view, 1> kInts{"CORES"};
constexpr std::array<std::string_view, 2> kFloats{"CLOCK", "LOAD"};
constexpr std::array<std::string_view, 1> kTexts{"MODE"};

TextGrid::Map table() {
    return {{"IDLE.CORES", "1"},     {"IDLE.CLOCK", "400.0"}, {"IDLE.LOAD", "2.5"},   {"IDLE.MODE", "RGMII"},
            {"BUSY.CORES", "4"},     {"BUSY.CLOCK", "1.4e3"}, {"BUSY.LOAD", ""},      {"BUSY.MODE", "SGMII"},
            {"BUSY.OTHER", "9"},     {"ODD.CORES", "many"},   {"ODD.CLOCK", "0.1"},   {"DEEP.ER.CORES", "7"}};
}

TEST(TextGrid, HoldsEachColumnAsItsTypeByPosition) {
    TextGrid::Map const map = table();
    TextGrid grid;
    grid.build(map, kInts, kFloats, kTexts);
    ASSERT_NE(grid.intAt(map, "BUSY", 0), nullptr);
    EXPECT_EQ(*grid.intAt(map, "BUSY", 0), 4);
    EXPECT_EQ(*grid.floatAt(map, "IDLE", 0), 400.0f);
    EXPECT_EQ(*grid.floatAt(map, "IDLE", 1), 2.5f);
    EXPECT_EQ(*grid.floatAt(map, "BUSY", 0), 1400.0f);  // 1.4e3, read as s2f reads it
    EXPECT_EQ(*grid.floatAt(map, "ODD", 0), 0.1f);      // the float nearest 0.1, not the double
    // An empty entry is held as s2f gives it: the not-set float, without a parse.
    EXPECT_EQ(*grid.floatAt(map, "BUSY", 1), prsm::kFloatNotSet);
    // A text is the map's own string, not a copy.
    EXPECT_EQ(grid.textAt(map, "IDLE", 0), &map.at("IDLE.MODE"));
}

// Each of these is left to the table's getter and parse, which throw or read as they always did.
TEST(TextGrid, LeavesToTheTableWhatItDoesNotHold) {
    TextGrid::Map map = table();
    TextGrid grid;
    EXPECT_EQ(grid.floatAt(map, "IDLE", 0), nullptr);  // never built
    grid.build(map, kInts, kFloats, kTexts);
    EXPECT_EQ(grid.intAt(map, "ODD", 0), nullptr);       // "many": s2i throws
    EXPECT_EQ(grid.textAt(map, "ODD", 0), nullptr);      // no ODD.MODE entry
    EXPECT_EQ(grid.floatAt(map, "NONE", 0), nullptr);    // no such row
    EXPECT_EQ(grid.intAt(map, "DEEP.ER", 0), nullptr);   // a row holding '.': the map's lookup
    EXPECT_EQ(grid.intAt(map, "DEEP", 0), nullptr);      // DEEP.ER.CORES is no entry of row DEEP

    map["IDLE.LOAD"] = "3.5";  // changed in place: seen after the grid is built again
    EXPECT_EQ(*grid.floatAt(map, "IDLE", 1), 2.5f);
    map.erase("BUSY.OTHER");  // the map changed size: every read goes to the table
    EXPECT_EQ(grid.intAt(map, "BUSY", 0), nullptr);
    grid.build(map, kInts, kFloats, kTexts);
    EXPECT_EQ(*grid.intAt(map, "BUSY", 0), 4);
    EXPECT_EQ(*grid.floatAt(map, "IDLE", 1), 3.5f);
    grid.invalidate();
    EXPECT_EQ(grid.intAt(map, "BUSY", 0), nullptr);
}

}  // namespace
