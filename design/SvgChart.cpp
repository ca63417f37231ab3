#include <prsm/design/HtmlText.h>
#include <prsm/design/SvgChart.h>

#include <algorithm>
#include <cmath>
#include <sstream>

namespace prsm::design {

namespace {

// The same colour-blind-safe palette as the sweep pictures.
char const* const kColours[] = {"#0072B2", "#D55E00", "#009E73", "#CC79A7", "#E69F00", "#56B4E9"};

char const* colour(std::size_t i) {
    return kColours[i % std::size(kColours)];
}

std::string px(double value) {
    return fixedText(value, 1);
}

// An axis from `low` to `high` widened to whole steps, so that the ends carry ticks.
struct Scale {
    double low, high, step;
    std::vector<double> ticks() const {
        std::vector<double> out;
        for (double t = low; t <= high + step * 1e-9; t += step)
            out.push_back(std::abs(t) < step * 1e-9 ? 0.0 : t);
        return out;
    }
};

Scale scale(double low, double high) {
    double const step = tickStep(high - low, 5);
    double const from = std::floor(low / step + 1e-9) * step;
    return {from, std::max(std::ceil(high / step - 1e-9) * step, from + step), step};
}

// Enough decimals to tell the ticks of `step` apart.
int decimalsFor(double step) {
    return std::max(0, static_cast<int>(std::ceil(-std::log10(step) - 1e-9)));
}

}  // namespace

double tickStep(double span, int parts) {
    if (!(span > 0)) return 1.0;
    double const raw = span / parts;
    double const power = std::pow(10.0, std::floor(std::log10(raw)));
    for (double m : {1.0, 2.0, 5.0})
        if (raw <= m * power * (1 + 1e-9)) return m * power;
    return 10.0 * power;
}

std::string barChartSvg(std::string const& title, std::string const& unit,
                        std::vector<std::string> const& partNames, std::vector<Bar> const& bars) {
    double const width = 640, labelWidth = 170, valueWidth = 90, rowHeight = 22, top = 34;
    double const keyHeight = partNames.size() > 1 ? 22 : 0;
    double const plotWidth = width - labelWidth - valueWidth;
    double const height = top + keyHeight + rowHeight * static_cast<double>(bars.size()) + 8;
    double largest = 0;
    for (Bar const& bar : bars) {
        double sum = 0;
        for (double part : bar.parts) sum += std::max(0.0, part);
        largest = std::max(largest, sum);
    }

    std::ostringstream svg;
    svg << "<svg class=\"chart\" xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 " << px(width) << " "
        << px(height) << "\" width=\"" << px(width) << "\" height=\"" << px(height) << "\" role=\"img\">\n"
        << "<title>" << escapeHtml(title) << "</title>\n"
        << "<text x=\"0\" y=\"18\" class=\"chart-title\">" << escapeHtml(title) << " (" << escapeHtml(unit)
        << ")</text>\n";
    for (std::size_t p = 0; p < partNames.size() && partNames.size() > 1; ++p) {
        double const x = labelWidth + 110.0 * static_cast<double>(p);
        svg << "<rect x=\"" << px(x) << "\" y=\"" << px(top) << "\" width=\"12\" height=\"12\" fill=\""
            << colour(p) << "\"/><text x=\"" << px(x + 16) << "\" y=\"" << px(top + 11) << "\">"
            << escapeHtml(partNames[p]) << "</text>\n";
    }
    for (std::size_t b = 0; b < bars.size(); ++b) {
        double const y = top + keyHeight + rowHeight * static_cast<double>(b);
        svg << "<text x=\"" << px(labelWidth - 6) << "\" y=\"" << px(y + 15) << "\" text-anchor=\"end\">"
            << escapeHtml(bars[b].label) << "</text>\n";
        double x = labelWidth, sum = 0;
        for (std::size_t p = 0; p < bars[b].parts.size(); ++p) {
            double const value = std::max(0.0, bars[b].parts[p]);
            double const length = largest > 0 ? value / largest * plotWidth : 0;
            svg << "<rect x=\"" << px(x) << "\" y=\"" << px(y + 3) << "\" width=\"" << px(length)
                << "\" height=\"" << px(rowHeight - 6) << "\" fill=\"" << colour(p) << "\"/>\n";
            x += length;
            sum += value;
        }
        svg << "<text x=\"" << px(x + 4) << "\" y=\"" << px(y + 15) << "\">" << fixedText(sum, 4)
            << "</text>\n";
    }
    svg << "</svg>\n";
    return svg.str();
}

std::string lineChartSvg(std::string const& title, std::string const& xLabel, std::string const& yLabel,
                         std::vector<std::pair<double, double>> const& points) {
    double const width = 640, height = 320, left = 70, right = 20, top = 34, bottom = 50;
    double const plotWidth = width - left - right, plotHeight = height - top - bottom;
    // The x axis spans the points; the y axis starts at zero, so that the rise reads at its true size.
    double xLow = points.empty() ? 0 : points.front().first, xHigh = xLow;
    double yLow = 0, yHigh = 0;
    for (auto const& [x, y] : points) {
        xLow = std::min(xLow, x), xHigh = std::max(xHigh, x);
        yLow = std::min(yLow, y), yHigh = std::max(yHigh, y);
    }
    Scale const xs = scale(xLow, xHigh), ys = scale(yLow, yHigh);
    std::vector<double> const xTicks = xs.ticks(), yTicks = ys.ticks();
    auto sx = [&](double x) { return left + (x - xs.low) / (xs.high - xs.low) * plotWidth; };
    auto sy = [&](double y) { return top + plotHeight - (y - ys.low) / (ys.high - ys.low) * plotHeight; };

    std::ostringstream svg;
    svg << "<svg class=\"chart\" xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 " << px(width) << " "
        << px(height) << "\" width=\"" << px(width) << "\" height=\"" << px(height) << "\" role=\"img\">\n"
        << "<title>" << escapeHtml(title) << "</title>\n"
        << "<text x=\"0\" y=\"18\" class=\"chart-title\">" << escapeHtml(title) << "</text>\n";
    int const xDecimals = decimalsFor(xs.step), yDecimals = decimalsFor(ys.step);
    for (double t : xTicks)
        svg << "<line class=\"grid\" x1=\"" << px(sx(t)) << "\" y1=\"" << px(top) << "\" x2=\"" << px(sx(t))
            << "\" y2=\"" << px(top + plotHeight) << "\"/><text x=\"" << px(sx(t)) << "\" y=\""
            << px(top + plotHeight + 16) << "\" text-anchor=\"middle\">" << fixedText(t, xDecimals)
            << "</text>\n";
    for (double t : yTicks)
        svg << "<line class=\"grid\" x1=\"" << px(left) << "\" y1=\"" << px(sy(t)) << "\" x2=\""
            << px(left + plotWidth) << "\" y2=\"" << px(sy(t)) << "\"/><text x=\"" << px(left - 6)
            << "\" y=\"" << px(sy(t) + 4) << "\" text-anchor=\"end\">" << fixedText(t, yDecimals)
            << "</text>\n";
    svg << "<text x=\"" << px(left + plotWidth / 2) << "\" y=\"" << px(height - 8)
        << "\" text-anchor=\"middle\">" << escapeHtml(xLabel) << "</text>\n"
        << "<text transform=\"translate(14," << px(top + plotHeight / 2) << ") rotate(-90)\" "
        << "text-anchor=\"middle\">" << escapeHtml(yLabel) << "</text>\n";
    svg << "<polyline fill=\"none\" stroke=\"" << colour(0) << "\" stroke-width=\"2\" points=\"";
    for (auto const& [x, y] : points) svg << px(sx(x)) << "," << px(sy(y)) << " ";
    svg << "\"/>\n";
    for (auto const& [x, y] : points)
        svg << "<circle cx=\"" << px(sx(x)) << "\" cy=\"" << px(sy(y)) << "\" r=\"3\" fill=\"" << colour(0)
            << "\"/>\n";
    svg << "</svg>\n";
    return svg.str();
}

}  // namespace prsm::design
