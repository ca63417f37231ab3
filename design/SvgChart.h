#pragma once
// Small charts as inline SVG, so that a report page needs no script and no file beside it.

#include <string>
#include <utility>
#include <vector>

namespace prsm::design {

// One bar: its label and its parts, stacked left to right in the order of the chart's part names.
struct Bar {
    std::string label;
    std::vector<double> parts;
};

// Horizontal stacked bars with the total written after each bar, and a key of the parts above the
// bars when there is more than one. Negative parts are drawn as zero. Labels and names are escaped.
std::string barChartSvg(std::string const& title, std::string const& unit,
                        std::vector<std::string> const& partNames, std::vector<Bar> const& bars);

// One line through (x, y) points, with labelled axes and rounded ticks.
std::string lineChartSvg(std::string const& title, std::string const& xLabel, std::string const& yLabel,
                         std::vector<std::pair<double, double>> const& points);

// A step of 1, 2 or 5 times a power of ten that cuts `span` into about `parts` pieces.
double tickStep(double span, int parts);

}  // namespace prsm::design
