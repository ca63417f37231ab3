#include <prsm/sheetfunc/PRSMHelperUtils.h>

#include <gtest/gtest.h>

#include <cfloat>
#include <climits>
#include <cmath>
#include <limits>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

using namespace PRSMHelperUtils;

namespace {

float const kNaN = std::numeric_limits<float>::quiet_NaN();

template <typename Exception, typename Call>
void expectThrowWithMessage(Call call, std::string const& message) {
    try {
        call();
        ADD_FAILURE() << "no exception";
    } catch (Exception const& e) {
        EXPECT_EQ(message, e.what());
    }
}

}  // namespace

TEST(NumericFunctions, Rounding) {
    EXPECT_EQ(3.0f, ROUND(2.5f, 0));
    EXPECT_EQ(-2.0f, ROUND(-2.5f, 0));  // halves go up, not away from zero
    EXPECT_EQ(-3.0f, ROUND(-2.6f, 0));
    EXPECT_EQ(1.0f, ROUND(0.5f, 0));
    EXPECT_EQ(0.0f, ROUND(-0.5f, 0));
    EXPECT_FLOAT_EQ(1.3f, ROUND(1.25f, 1));
    // 2.675f is 2.67499995...; times 100 in float rounds to exactly 267.5, so the result is 2.68 (a
    // product formed in double, 267.499995, would give 2.67).
    EXPECT_FLOAT_EQ(2.68f, ROUND(2.675f, 2));

    EXPECT_EQ(2.0f, ROUNDUP(1.2f, 0));
    EXPECT_EQ(-1.0f, ROUNDUP(-1.2f, 0));
    EXPECT_EQ(0.13f, ROUNDUP(0.123f, 2));
    EXPECT_EQ(3.0f, ROUNDUP(3.0f, 0));
    EXPECT_EQ(0.0f, ROUNDUP(-0.5f, 0));
    EXPECT_TRUE(std::signbit(ROUNDUP(-0.5f, 0)));

    EXPECT_EQ(10, MROUND(5.0f, 10.0f));
    EXPECT_EQ(0, MROUND(-5.0f, 10.0f));
    EXPECT_EQ(8, MROUND(7.0f, 2.0f));
    EXPECT_EQ(-6, MROUND(-7.0f, 2.0f));
    EXPECT_EQ(6, MROUND(7.0f, -2.0f));
    EXPECT_EQ(1, MROUND(1.3f, 0.5f));  // 1.5 truncated
    EXPECT_EQ(0, MROUND(12.0f, 0.0f));
    // Beyond the int range the result saturates: -1.85e38 rounds to itself times -1.
    EXPECT_EQ(INT_MIN, MROUND(-1.85e38f, -1.0f));
    EXPECT_EQ(INT_MAX, MROUND(3.0e9f, 1.0f));
    EXPECT_EQ(INT_MAX, MROUND(3.0e38f, 0.1f));  // 3e38 / 0.1 overflows float to inf

    EXPECT_EQ(3, QUOTIENT(7, 2));
    EXPECT_EQ(0, QUOTIENT(7, -2));
    EXPECT_EQ(0, QUOTIENT(5, 0));
}

TEST(NumericFunctions, ToIntSaturatedTruncatesAndSaturates) {
    EXPECT_EQ(2, toIntSaturated(2.9));
    EXPECT_EQ(-2, toIntSaturated(-2.9));
    EXPECT_EQ(2147483646, toIntSaturated(2147483646.5));
    EXPECT_EQ(INT_MAX, toIntSaturated(2147483647.0));
    EXPECT_EQ(INT_MAX, toIntSaturated(1e30));
    EXPECT_EQ(INT_MAX, toIntSaturated(HUGE_VAL));
    EXPECT_EQ(INT_MIN, toIntSaturated(-2147483648.9));  // truncates to -2147483648, in range
    EXPECT_EQ(INT_MIN, toIntSaturated(-2147483649.0));
    EXPECT_EQ(INT_MIN, toIntSaturated(-HUGE_VAL));
    EXPECT_EQ(INT_MAX, toIntSaturated(std::nan("")));  // the int error value
    EXPECT_EQ(INT_MAX, toIntSaturated(static_cast<double>(FLT_MAX)));
}

TEST(NumericFunctions, MinMaxAverage) {
    EXPECT_EQ(5.0f, MIN(5.0f));
    EXPECT_EQ(FLT_MAX, MIN());
    EXPECT_EQ(-FLT_MAX, MAX());
    EXPECT_EQ(-1.0f, MIN(-1.0f, kNaN));
    // Among equal values the later argument stays.
    EXPECT_TRUE(std::signbit(MIN(0.0f, -0.0f)));
    EXPECT_FALSE(std::signbit(MAX(-0.0f, 0.0f)));

    EXPECT_EQ(0.0f, AVERAGE());
    EXPECT_EQ(3.0f, AVERAGE(2.0f, -FLT_MAX, 4.0f));
    EXPECT_EQ(2.0f, AVERAGE(0.0f, 4.0f));
    EXPECT_EQ(FLT_MAX, AVERAGE(FLT_MAX));  // not set is not absent
}

TEST(NumericFunctions, Sum) {
    EXPECT_EQ(3.0f, SUM(std::vector<float>{1.0f, FLT_MAX, 2.0f}));
    EXPECT_TRUE(std::isnan(SUM(std::vector<float>{1.0f, kNaN})));
    EXPECT_EQ(5, SUM(std::vector<int>{2147483646, 5}));
    // The error value is not skipped, and the sum wraps.
    EXPECT_EQ(INT_MIN, SUM(std::vector<int>{2147483647, 1}));
    EXPECT_EQ("xy", SUM(std::vector<std::string>{"x", "", "y"}));
}

TEST(NumericFunctions, LogAndForecast) {
    std::string const message = "Error: For log b(x), x>0, b>0 and b!=1";
    EXPECT_FLOAT_EQ(3.0f, LOG(8.0f, 2.0f));
    testing::internal::CaptureStdout();
    EXPECT_EQ(0.0f, LOG(8.0f, 1.0f));
    EXPECT_EQ(0.0f, LOG(0.0f, 10.0f));
    EXPECT_EQ(0.0f, LOG(10.0f, -2.0f));
    EXPECT_EQ(message + message + message, testing::internal::GetCapturedStdout());

    double knownY[] = {2.0, 4.0, 6.0};
    double knownX[] = {1.0, 2.0, 3.0};
    EXPECT_DOUBLE_EQ(8.0, forecast(4.0, knownY, knownX, 3));
    EXPECT_EQ(0.0, forecast(4.0, knownY, knownX, 0));
    EXPECT_TRUE(std::isnan(forecast(4.0, knownY, knownX, 1)));
}

TEST(NumericFunctions, Unique) {
    std::vector<std::string> const words = {"b", "", "a", "b", ""};
    std::vector<std::string> wordsOut = {"stale"};
    UNIQUE(words, wordsOut, false);
    EXPECT_EQ((std::vector<std::string>{"b", "a"}), wordsOut);
    UNIQUE(words, wordsOut, true);
    EXPECT_EQ((std::vector<std::string>{"b", "", "a"}), wordsOut);

    std::vector<float> floatsOut;
    UNIQUE(std::vector<float>{1.0f, FLT_MAX, 0.0f, -0.0f, kNaN, kNaN, 1.0f}, floatsOut, false);
    ASSERT_EQ(4u, floatsOut.size());
    EXPECT_EQ(1.0f, floatsOut[0]);
    EXPECT_EQ(0.0f, floatsOut[1]);
    EXPECT_TRUE(std::isnan(floatsOut[2]) && std::isnan(floatsOut[3]));

    std::vector<int> const ints = {2147483646, 3, 2147483647, 3, 2147483646};
    std::vector<int> intsOut;
    UNIQUE(ints, intsOut, false);
    EXPECT_EQ((std::vector<int>{3, 2147483647}), intsOut);
    UNIQUE(ints, intsOut, true);
    EXPECT_EQ((std::vector<int>{2147483646, 3, 2147483647}), intsOut);
}

TEST(NumericFunctions, IsNumberAndConversions) {
    EXPECT_TRUE(ISNUMBER(std::string("007")));
    for (char const* text : {"+7", "-1", "1.5", " 12", "12 ", "1e3", ""}) {
        EXPECT_FALSE(ISNUMBER(std::string(text))) << text;
    }
    EXPECT_TRUE(ISNUMBER(0));
    EXPECT_FALSE(ISNUMBER(-1));

    EXPECT_EQ(FLT_MAX, s2f(""));
    EXPECT_EQ(2147483646, s2i(""));
    EXPECT_EQ(2.5f, s2f(" 2.5x"));
    EXPECT_EQ(12, s2i("12abc"));
    EXPECT_EQ(3, s2i("3.9"));
    expectThrowWithMessage<std::invalid_argument>([] { s2f(" "); }, "stof");
    expectThrowWithMessage<std::out_of_range>([] { s2f("1e39"); }, "stof");
    expectThrowWithMessage<std::invalid_argument>([] { s2i("x1"); }, "stoi");
    expectThrowWithMessage<std::out_of_range>([] { s2i("2147483648"); }, "stoi");
}

TEST(NumericFunctions, IfErrorAndIsError) {
    float const notSet = FLT_MAX;
    static_assert(std::is_same_v<float, decltype(IFERROR(notSet, 1))>);
    EXPECT_EQ(1.0f, IFERROR(notSet, 1));
    EXPECT_EQ(0.0f, (IFERROR<float, int>(notSet, 0)));
    EXPECT_EQ(0.5f, IFERROR(notSet, 0.5));
    EXPECT_TRUE(std::isnan(IFERROR(kNaN, 1.0f)));
    EXPECT_EQ(7, IFERROR(2147483647, 7));
    EXPECT_EQ(2147483646, IFERROR(2147483646, 7));
    EXPECT_EQ("x", IFERROR(std::string("UninitializedString"), "x"));
    EXPECT_EQ("ok", IFERROR(std::string("ok"), std::string("x")));

    EXPECT_TRUE(ISERROR(2147483647));
    EXPECT_FALSE(ISERROR(2147483646));
    EXPECT_TRUE(ISERROR(notSet));
    EXPECT_FALSE(ISERROR(kNaN));
    EXPECT_TRUE(ISERROR(std::string("UninitializedString")));

    testing::internal::CaptureStdout();
    EXPECT_TRUE(IFERROR(false, true));
    EXPECT_TRUE(IFERROR(true, false));
    EXPECT_FALSE(ISERROR(true));
    EXPECT_EQ("Boolean error issuesBoolean error issuesBoolean error issues",
              testing::internal::GetCapturedStdout());
}
