// The CSV fields every report and comparison writes: RFC 4180 quoting, and figures that read back exactly.
#include <prsm/design/CsvText.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <limits>

namespace {

using namespace prsm::design;

TEST(CsvText, QuotesOnlyWhatNeedsItAndWritesFiguresThatReadBack) {
    EXPECT_EQ(csvField("VCCINT"), "VCCINT");
    EXPECT_EQ(csvField(""), "");
    EXPECT_EQ(csvField("a,b"), "\"a,b\"");
    EXPECT_EQ(csvField("the \"core\""), "\"the \"\"core\"\"\"");
    EXPECT_EQ(csvField("two\nlines"), "\"two\nlines\"");

    // Nine significant digits: 0.1f is 0.100000001490116..., which %.9g writes as 0.100000001.
    EXPECT_EQ(csvNumber(0.1f), "0.100000001");
    EXPECT_EQ(csvNumber(25), "25");
    EXPECT_EQ(csvNumber(1.5e-7), "1.5e-07");
    float const awkward = 1.0f / 3.0f;
    EXPECT_EQ(static_cast<float>(std::strtod(csvNumber(awkward).c_str(), nullptr)), awkward);

    // A figure that does not exist is an empty field, not "nan".
    EXPECT_EQ(csvFigure(std::nan("")), "");
    EXPECT_EQ(csvFigure(std::numeric_limits<double>::infinity()), "");
    EXPECT_EQ(csvFigure(0.5), "0.5");
    EXPECT_EQ(csvNumber(std::nan("")), "nan");
}

}  // namespace
