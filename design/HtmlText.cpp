#include <prsm/design/HtmlText.h>

#include <cmath>
#include <cstdio>

namespace prsm::design {

std::string escapeHtml(std::string const& text) {
    std::string out;
    out.reserve(text.size());
    for (char c : text) {
        switch (c) {
            case '&':
                out += "&amp;";
                break;
            case '<':
                out += "&lt;";
                break;
            case '>':
                out += "&gt;";
                break;
            case '"':
                out += "&quot;";
                break;
            case '\'':
                out += "&#39;";
                break;
            default:
                out += c;
        }
    }
    return out;
}

std::string fixedText(double value, int decimals) {
    if (std::isnan(value)) return "-";
    char buffer[64];
    std::snprintf(buffer, sizeof buffer, "%.*f", decimals, value);
    return buffer;
}

}  // namespace prsm::design
