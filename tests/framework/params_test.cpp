// Parameter sets, on the test-only sheet: layout, sentinels, reset ranges, names and the reflect text.
#include <prsm/framework/PRSMCommonParamControlParams.h>
#include <prsm/tests/framework/PRSMTestSamplerParams.h>

#include <gtest/gtest.h>

#include <cfloat>
#include <climits>
#include <stdexcept>

namespace {

using Params = PRSMTestSamplerParams;

TEST(Params, EnumerationsAndListsAgree) {
    // int: FirstUIInt, COUNT, LastUIInt, FirstMOInt, COUNT_OUT, LastMOInt, FirstICInt, 2 flags, LastICInt.
    EXPECT_EQ(Params::COUNT, 1);
    EXPECT_EQ(Params::COUNT_OUT, 4);
    EXPECT_EQ(Params::LastInt, 10);
    EXPECT_STREQ(
        Params::StringEnumList,
        "FirstUIString, MODE,LastUIString, FirstMOString, LABEL,LastMOString, FirstICString, LastICString, "
        "LastString");
    EXPECT_EQ(Params::LastString, 8);  // the empty intermediate category still owns its two markers
    EXPECT_EQ(Params::enum_to_string(Params::FirstICString), "FirstICString");
    EXPECT_EQ(Params::enum_to_string(Params::LastString), "StringError");
    EXPECT_EQ(Params::enum_to_string(static_cast<Params::FloatEnum>(999)), "StringError");
    EXPECT_EQ(Params::string_to_float_enum("RATE"), Params::RATE);
    EXPECT_EQ(Params::string_to_float_enum("RATE "), Params::LastFloat);
    EXPECT_EQ(Params::string_to_int_enum("LastInt"), Params::LastInt);
    EXPECT_EQ(Params::string_to_int_enum("count"), Params::LastInt);
    EXPECT_EQ(Params::string_to_enum("TOTAL"), static_cast<unsigned>(Params::TOTAL));
    EXPECT_EQ(Params::string_to_enum("NOPE"), 0xFFFFFFFFu);

    std::vector<std::string> names{"stale"};
    Params().getFloatIntermediateCalculationNames(names);
    EXPECT_EQ(names, (std::vector<std::string>{"GET_MAX_RATE", "GET_MIN_RATE", "LANE_A_POWER", "LANE_B_POWER",
                                               "PLACEHOLDER"}));
    Params().getStringIntermediateCalculationNames(names);
    EXPECT_TRUE(names.empty());

    std::vector<std::string> table;
    Params::populateE2S(table, "First, A , B,Last");
    EXPECT_EQ(table, (std::vector<std::string>{"First", "A", "B"}));
    Params::populateE2S(table, "X,Y,Z");  // filled once
    EXPECT_EQ(table.size(), 3u);
}

TEST(Params, SentinelsAndResetRanges) {
    Params p;
    EXPECT_EQ(p[Params::FirstUIInt], INT_MAX);
    EXPECT_EQ(p[Params::LastICFloat], FLT_MAX);
    EXPECT_EQ(p[Params::LastMOString], "UninitializedString");
    EXPECT_THROW(p[Params::LastInt], std::out_of_range);

    for (int i = 0; i < Params::LastInt; ++i) p[static_cast<Params::IntEnum>(i)] = 1;
    for (int i = 0; i < Params::LastFloat; ++i) p[static_cast<Params::FloatEnum>(i)] = 1.0f;
    for (int i = 0; i < Params::LastString; ++i) p[static_cast<Params::StringEnum>(i)] = "x";
    p.resetUserInputs();
    EXPECT_EQ(p[Params::FirstUIInt], INT_MAX);
    EXPECT_EQ(p[Params::LastUIInt], INT_MAX);  // ints: both markers included
    EXPECT_EQ(p[Params::FirstMOInt], 1);
    EXPECT_EQ(p[Params::FirstUIFloat], FLT_MAX);
    EXPECT_EQ(p[Params::LastUIFloat], 1.0f);  // floats and strings stop before the closing marker
    EXPECT_EQ(p[Params::LastUIString], "x");
    p.resetModelOutputs();
    EXPECT_EQ(p[Params::COUNT_OUT], INT_MAX);
    EXPECT_EQ(p[Params::LastMOInt], INT_MAX);
    EXPECT_EQ(p[Params::TOTAL], FLT_MAX);
    EXPECT_EQ(p[Params::LastMOFloat], 1.0f);
    EXPECT_EQ(p[Params::LABEL], "UninitializedString");
    EXPECT_EQ(p[Params::FirstICInt], 1);
    p.resetIntermediateCalculations();
    EXPECT_EQ(p[Params::LastICInt], INT_MAX);
    EXPECT_EQ(p[Params::LastICFloat], 1.0f);
    EXPECT_EQ(p[Params::LastICString], "x");
    p.reset();
    EXPECT_EQ(p[Params::LastICString], "UninitializedString");
}

TEST(Params, ReflectListsInputsThenIntermediatesThenOutputs) {
    Params p;
    p[Params::RATE] = 0.25f;
    p[Params::SCALE] = 1234567.0f;
    p[Params::MODE] = "SLOW";
    EXPECT_EQ(p.reflect(),
              "COUNT = 2147483647\n"
              "LANE_A_LOAD = 3.40282e+38\nLANE_B_LOAD = 3.40282e+38\nRATE = 0.25\nSCALE = 1.23457e+06\n"
              "MODE = SLOW\n"
              "IS_VALID_COUNT = 2147483647\nIS_VALID_RATE = 2147483647\n"
              "GET_MAX_RATE = 3.40282e+38\nGET_MIN_RATE = 3.40282e+38\nLANE_A_POWER = 3.40282e+38\n"
              "LANE_B_POWER = 3.40282e+38\nPLACEHOLDER = 3.40282e+38\n"
              "COUNT_OUT = 2147483647\nTOTAL = 3.40282e+38\nLABEL = UninitializedString\n");
    EXPECT_EQ(p.className(), "PRSMTestSamplerParams");
}

TEST(Params, CommonSettingsHaveAnEmptyCellSet) {
    using Common = PRSMCommonParamControlParams;
    EXPECT_EQ(Common::LastInt, 6);
    EXPECT_EQ(Common::LastString, 6);
    Common c;
    EXPECT_EQ(c.reflect(), "");
    EXPECT_EQ(c.className(), "PRSMCommonParamControlParams");
    EXPECT_EQ(Common::enum_to_string(Common::FirstMOFloat), "FirstMOFloat");
    std::vector<std::string> names{"x"};
    c.getIntUserInputNames(names);
    EXPECT_TRUE(names.empty());
}

}  // namespace
