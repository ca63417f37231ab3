#include <prsm/host/TextTable.h>

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace prsm::host {

namespace {

void appendLine(std::string& out, TextRow const& cells, std::vector<std::size_t> const& widths) {
    std::string line;
    for (std::size_t column = 0; column < widths.size(); ++column) {
        std::string const& cell = column < cells.size() ? cells[column] : std::string();
        line += cell;
        if (column + 1 < widths.size()) line += std::string(widths[column] - cell.size() + 2, ' ');
    }
    line.erase(line.find_last_not_of(' ') + 1);
    out += line + "\n";
}

}  // namespace

std::string formatTable(TextRow const& header, std::vector<TextRow> const& rows) {
    std::vector<std::size_t> widths(header.size());
    for (std::size_t column = 0; column < header.size(); ++column) {
        widths[column] = header[column].size();
        for (TextRow const& row : rows)
            if (column < row.size()) widths[column] = std::max(widths[column], row[column].size());
    }
    std::string out;
    appendLine(out, header, widths);
    TextRow rule;
    for (std::size_t width : widths) rule.push_back(std::string(width, '-'));
    appendLine(out, rule, widths);
    for (TextRow const& row : rows) appendLine(out, row, widths);
    return out;
}

std::string fixed(double value, int decimals) {
    if (!std::isfinite(value)) return "-";
    char buffer[48];
    std::snprintf(buffer, sizeof buffer, "%.*f", decimals, value);
    return buffer;
}

}  // namespace prsm::host
