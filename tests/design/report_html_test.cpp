// The report's HTML page: every text escaped, figures and chart bars as the report gives them, and the
// leakage curve of the test static sheet by hand.
#include <prsm/design/HtmlText.h>
#include <prsm/design/ReportHtml.h>
#include <prsm/design/StaticCurve.h>
#include <prsm/design/SvgChart.h>

#include <gtest/gtest.h>

#include <cmath>
#include <string>

namespace {

using namespace prsm::design;

bool has(std::string const& text, std::string const& part) {
    return text.find(part) != std::string::npos;
}

TEST(HtmlText, EscapesMarkupAndWritesFixedFigures) {
    EXPECT_EQ(escapeHtml("a<b>&\"c'"), "a&lt;b&gt;&amp;&quot;c&#39;");
    EXPECT_EQ(fixedText(1.23456, 4), "1.2346");
    EXPECT_EQ(fixedText(std::nan(""), 2), "-");
    // Steps of 1, 2 or 5 times a power of ten: 100/5 = 20; 0.37/5 = 0.074 rounds up to 0.1; 7/5 = 1.4 to 2.
    EXPECT_DOUBLE_EQ(tickStep(100, 5), 20);
    EXPECT_DOUBLE_EQ(tickStep(0.37, 5), 0.1);
    EXPECT_DOUBLE_EQ(tickStep(7, 5), 2);
    EXPECT_DOUBLE_EQ(tickStep(0, 5), 1);
}

Report hostileReport() {
    Report report;
    report.source = "<b>design</b>.json";
    report.voltageCorner = "nominal";
    report.rails.push_back({"VCCINT", 0.8, VoltageSource::Design, 1.0, 0.5, 1.5, 1.2, 1.0, true, 2.0, ""});
    report.blocks.push_back(
        {"<script>alert(1)</script>", "TestLoad", "logic", 2, 0.75, {{"VCCINT", 0.75}}, ""});
    report.regions.push_back({"logic", 3.0, 1.0});
    report.regions.push_back({"io", 1.0, 1.0});
    report.warnings.push_back({"core & co", "CLOCK_FREQ", "is invalid (valid when > 0)"});
    report.dynamicPower = 4.0;
    report.staticPower = 2.0;
    report.totalPower = 6.0;
    return report;
}

TEST(ReportHtml, EscapesEveryTextAndShowsTheFigures) {
    Design design;
    design.description = "Filters & \"friends\"";
    design.device.fields.emplace_back("part", "P<1>");
    std::string const page = toHtml(hostileReport(), design);

    EXPECT_FALSE(has(page, "<script>")) << "a block name reached the page as markup";
    EXPECT_TRUE(has(page, "&lt;script&gt;alert(1)&lt;/script&gt;"));
    EXPECT_TRUE(has(page, "<title>Power estimate: &lt;b&gt;design&lt;/b&gt;.json</title>"));
    EXPECT_TRUE(has(page, "Filters &amp; &quot;friends&quot;"));
    EXPECT_TRUE(has(page, "<td>P&lt;1&gt;</td>"));
    EXPECT_TRUE(
        has(page, "block &quot;core &amp; co&quot;, cell CLOCK_FREQ: is invalid (valid when &gt; 0)"));
    EXPECT_TRUE(has(page, "<td class=\"num\">6.0000</td>"));  // the total
    EXPECT_TRUE(has(page, "<tr class=\"over\"><td>VCCINT</td>")) << "a rail over its limit stands out";
    EXPECT_TRUE(has(page, "@media print"));
    EXPECT_FALSE(has(page, "src=")) << "the page loads nothing from outside";
    for (char const* section : {"summary", "warnings", "charts", "rails", "regions", "blocks", "thermal"})
        EXPECT_TRUE(has(page, std::string("<section id=\"") + section + "\">")) << section;
    EXPECT_FALSE(has(page, "id=\"supplies\"")) << "no board, no regulators";

    // Region bars share a 380-wide scale (640 less 170 of labels and 90 of figures) whose full length is
    // the largest region, logic at 3 + 1 = 4 W: logic's dynamic part 3/4 * 380 = 285, io's 1/4 * 380 = 95.
    EXPECT_TRUE(has(page, "width=\"285.0\" height=\"16.0\" fill=\"#0072B2\""));
    EXPECT_TRUE(has(page, "width=\"95.0\" height=\"16.0\" fill=\"#0072B2\""));
}

TEST(ReportHtml, AnIncompleteReportListsItsFailuresAndNoTotals) {
    Report report = hostileReport();
    report.complete = false;
    report.failures.push_back("block \"core\": calculating TestLoad failed: <bad>");
    BoardResult board;
    board.model = "TestBoard";
    RegulatorResult core;
    core.name = "VCC_CORE";
    core.label = "VCC CORE (VCCINT)";
    core.load = 2.0;
    core.efficiency = 0.9;
    core.loss = 0.2;
    core.overLimit = 150.0;
    board.regulators.push_back(core);
    report.board = board;
    std::string const page = toHtml(report, Design{});

    EXPECT_TRUE(has(page, "<li>block &quot;core&quot;: calculating TestLoad failed: &lt;bad&gt;</li>"));
    EXPECT_FALSE(has(page, "total power (W)"));
    EXPECT_TRUE(has(page, "<section id=\"supplies\">"));
    EXPECT_TRUE(has(page, "<tr class=\"over\"><td>VCC CORE (VCCINT)</td>"))
        << "a regulator over its rating stands out";
}

TEST(StaticCurve, FollowsTheTestLeakageByHand) {
    Design const design = readDesignFile(std::string(PRSM_TEST_DESIGNDIR) + "/small.json");
    // The leakage is taken at t = Tj - 2 degC/W * 0.174 W of logic dynamic power = Tj - 0.348:
    // 0.8 V * (0.5 + 0.01 (t - 25)) + 1.5 V * (0.1 + 0.002 (t - 25)) = 0.55 + 0.011 (t - 25) W.
    // At Tj 25: 0.55 - 0.011 * 0.348 = 0.546172; at Tj 75: 0.55 + 0.011 * 49.652 = 1.096172.
    auto const curve = staticAgainstJunction(design, {25, 75});
    ASSERT_EQ(curve.size(), 2u);
    EXPECT_NEAR(curve[0].second, 0.546172, 1e-6);
    EXPECT_NEAR(curve[1].second, 1.096172, 1e-6);

    Design withoutStatic = design;
    withoutStatic.staticSheet.reset();
    EXPECT_TRUE(staticAgainstJunction(withoutStatic, {25}).empty());
}

}  // namespace
