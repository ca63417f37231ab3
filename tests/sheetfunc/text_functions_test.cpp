#include <prsm/sheetfunc/PRSMHelperUtils.h>

#include <gtest/gtest.h>

#include <cfloat>
#include <regex>
#include <string>
#include <vector>

using namespace PRSMHelperUtils;
using Lines = std::vector<std::string>;

TEST(TextFunctions, Text) {
    EXPECT_EQ("1.234", TEXT(1.23456f, "0.000"));
    EXPECT_EQ("2.99", TEXT(2.999f, "0.00"));  // cut, not rounded
    EXPECT_EQ("3.141", TEXT(3.14159f, "#,##0.000"));
    EXPECT_EQ("5.000000", TEXT(5.0f, ""));
    EXPECT_EQ("5.", TEXT(5.0f, "0."));
    EXPECT_EQ("2", TEXT(2.7f, "0"));
    EXPECT_EQ("-2", TEXT(-2.7f, "0"));
}

TEST(TextFunctions, LeftRightLenFindSearch) {
    EXPECT_EQ("", LEFT("abc", 5));
    EXPECT_EQ("", RIGHT("abc", 5));
    EXPECT_EQ("", LEFT("abc", 0));
    EXPECT_EQ("", LEFT("abc", -1));
    EXPECT_EQ("abc", LEFT("abc", 3));
    EXPECT_EQ("bc", RIGHT("abc", 2));
    EXPECT_EQ(3u, LEN("abc"));

    EXPECT_EQ(3u, FIND("b", "abcb", 2));
    EXPECT_EQ(-1, static_cast<int>(FIND("z", "abc", 0)));
    EXPECT_EQ(-1, static_cast<int>(FIND("A", "abc", 0)));
    EXPECT_EQ(1u, SEARCH("B", "abc", 0));
    EXPECT_EQ(-1, static_cast<int>(SEARCH("?", "abc", 0)));  // no wildcards
}

TEST(TextFunctions, Substitute) {
    EXPECT_EQ("ba", SUBSTITUTE("aaa", "aa", "b"));
    EXPECT_EQ("aab", SUBSTITUTE("ab", "a", "aa"));

    EXPECT_EQ("a-b.c", SUBSTITUTE_N("a.b.c", ".", "-", 1));
    EXPECT_EQ("a-b-c", SUBSTITUTE_N("a.b.c", ".", "-", 2));
    EXPECT_EQ("a-b-c", SUBSTITUTE_N("a.b.c", ".", "-", 0));
    EXPECT_EQ("a.b.c", SUBSTITUTE_N("a.b.c", ".", "-", -1));
    // Overlapping occurrences: after a replacement the search goes on behind it.
    EXPECT_EQ("baa", SUBSTITUTE_N("aaaa", "aa", "b", 1));
    EXPECT_EQ("bb", SUBSTITUTE_N("aaaa", "aa", "b", 2));
    // The inserted text is not searched again.
    EXPECT_EQ("ab", SUBSTITUTE_N("abb", "ab", "a", 0));
    EXPECT_EQ("ab", SUBSTITUTE_N("abb", "ab", "a", 2));
    EXPECT_EQ("abc", SUBSTITUTE_N("abc", "", "x", 1));
}

TEST(TextFunctions, CaseAndWhiteSpace) {
    EXPECT_EQ("ABC1_", ToUpper("aBc1_"));
    EXPECT_EQ("abc1_", ToLower("aBc1_"));

    std::string text = " \t \t";
    trim(text);
    EXPECT_EQ("", text);
    text = "\n x y\r\v\f";
    trim(text);
    EXPECT_EQ("x y", text);
    text = "a b\tc ";
    removeWhiteSpaces(text);
    EXPECT_EQ("ab\tc", text);

    for (auto const& [before, after] :
         std::vector<std::pair<std::string, std::string>>{{"BRAM_TYPE", "Bram Type"},
                                                          {"CLOCK_FREQ_MHZ", "Clock Freq Mhz"},
                                                          {"X__Y", "X _y"},
                                                          {"_", "_"}}) {
        text = before;
        convertToCamelString(text);
        EXPECT_EQ(after, text);
    }
}

TEST(TextFunctions, NumberToText) {
    EXPECT_EQ("", ToString(FLT_MAX));
    EXPECT_EQ("", ToString(2147483646));
    EXPECT_EQ("2147483647", ToString(2147483647));
    EXPECT_EQ("0.1", ToString(0.1f));
    EXPECT_EQ("2", ToString(2.0f));
    EXPECT_EQ("-1.5", ToString(-1.5f));
    EXPECT_EQ("x", ToString(std::string("x")));

    EXPECT_EQ("007", i2s(7, 3, '0'));
    EXPECT_EQ("00-7", i2s(-7, 4, '0'));

    std::string out;
    // At three decimals the error is 1.0000169 thousandths, just over 1.0.
    numToTightStr(1.0f / 3.0f, out, 1.0f);
    EXPECT_EQ("0.3333", out);
    numToTightStr(0.25f, out, 0.001f);
    EXPECT_EQ("0.25", out);
    numToTightStr(1e-7f, out, 0.001f);
    EXPECT_EQ("0.00000", out);  // never more than five decimals
    out = "kept";
    numToTightStr(1.0f, out, 1000.0f);
    EXPECT_EQ("kept", out);
}

TEST(TextFunctions, LeadingNumber) {
    EXPECT_EQ("12.5", getFirstNumericSubStr("12.5MHz"));
    EXPECT_EQ("-3", getFirstNumericSubStr("-3x"));
    EXPECT_EQ("1", getFirstNumericSubStr("1."));
    EXPECT_EQ("", getFirstNumericSubStr(" 12"));
    EXPECT_EQ("", getFirstNumericSubStr(".5"));
    EXPECT_EQ("", getFirstNumericSubStr(""));
    // The leading number is the first group of the anchored pattern below.
    std::regex const pattern("^([-+]?[0-9]+(\\.[0-9]+)?)(.*)");
    for (std::string const text : {"+7.25.3", "1.x", "-", "+-1", "007", "12\nabc", "3\r", "4.5\tV", "9e3"}) {
        std::smatch match;
        std::string const expected = std::regex_match(text, match, pattern) ? match[1].str() : "";
        EXPECT_EQ(expected, getFirstNumericSubStr(text)) << text;
    }
}

TEST(TextFunctions, WordsAndLines) {
    EXPECT_EQ((Lines{"a", "bb", "c"}), lineToWords(" a\tbb \n c "));
    EXPECT_TRUE(lineToWords(" \t ").empty());

    Lines const parts = {"a", "b", "c"};
    EXPECT_EQ("a, b, c", mergeStrVect(parts, 0, ", "));
    EXPECT_EQ("b, c", mergeStrVect(parts, 1, ", "));
    EXPECT_EQ("", mergeStrVect(parts, 3, ", "));
    EXPECT_EQ("ab", mergeStrVect({"a", "", "b"}, 0, ", "));
    EXPECT_EQ("a, b", mergeStrVect({"a", "b", ""}, 0, ", "));

    EXPECT_TRUE(leftJustify({}, 5).empty());
    EXPECT_EQ((Lines{"aaa bb", "cccc d"}), leftJustify({"aaa", "bb", "cccc", "d"}, 6));
    // Line 1 keeps abcdef (overshoot 2 <= 3) and lifts the target to 6, which line 2 then fills.
    EXPECT_EQ((Lines{"abcdef", "gh ijk", "l"}), leftJustify({"abcdef", "gh", "ijk", "l"}, 4));
    // A word far too long for the line stands alone.
    EXPECT_EQ((Lines{"abcdefgh", "x"}), leftJustify({"abcdefgh", "x"}, 2));

    EXPECT_EQ((Lines{"a  bb  ccc", "dd       e"}), fullJustify({"a", "bb", "ccc", "dd", "e"}, 10));
    EXPECT_EQ((Lines{"aa  b ccc"}), fullJustify({"aa", "b", "ccc"}, 9));
    EXPECT_EQ((Lines{"a bbb  cc"}), fullJustify({"a", "bbb", "cc"}, 9));
    EXPECT_EQ((Lines{"abcdefgh", "ab cd"}), fullJustify({"abcdefgh", "ab", "cd"}, 5));

    EXPECT_EQ("<html>aaa bb<br>cccc d<br></html>", wrapToHtml("aaa bb\ncccc  d", 6));
    EXPECT_EQ("<html></html>", wrapToHtml("", 6));
}
