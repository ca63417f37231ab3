#include <prsm/design/CsvText.h>

#include <cmath>
#include <cstdio>

namespace prsm::design {

std::string csvField(std::string const& text) {
    if (text.find_first_of(",\"\n") == std::string::npos) return text;
    std::string out = "\"";
    for (char c : text) out += c == '"' ? std::string("\"\"") : std::string(1, c);
    return out + "\"";
}

std::string csvNumber(double value) {
    char buffer[32];
    std::snprintf(buffer, sizeof buffer, "%.9g", value);
    return buffer;
}

std::string csvFigure(double value) {
    return std::isfinite(value) ? csvNumber(value) : std::string();
}

}  // namespace prsm::design
