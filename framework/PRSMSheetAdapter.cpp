#include <prsm/framework/PRSMSheetAdapter.h>

#include <cerrno>
#include <climits>
#include <cmath>

namespace prsm {

int parseIntCell(std::string const& name, std::string const& text) {
    char* end = nullptr;
    errno = 0;
    long const value = std::strtol(text.c_str(), &end, 10);
    if (text.empty() || *end != '\0' || errno == ERANGE || value < INT_MIN || value > INT_MAX)
        throw std::invalid_argument("cell " + name + " takes a whole number, not \"" + text + "\"");
    return static_cast<int>(value);
}

float parseFloatCell(std::string const& name, std::string const& text) {
    char* end = nullptr;
    errno = 0;
    float const value = std::strtof(text.c_str(), &end);
    if (text.empty() || *end != '\0' || errno == ERANGE)
        throw std::invalid_argument("cell " + name + " takes a number, not \"" + text + "\"");
    return value;
}

// Nine significant digits: the text reads back as the same float.
std::string formatFloatCell(float value) {
    char text[32];
    std::snprintf(text, sizeof text, "%.9g", static_cast<double>(value));
    return text;
}

std::string_view keyPart(std::string_view key, std::size_t position) {
    for (; position > 0; --position) {
        std::size_t const dot = key.find('.');
        if (dot == std::string_view::npos) return std::string_view();
        key.remove_prefix(dot + 1);
    }
    return key.substr(0, key.find('.'));
}

void throwUnknownCell(std::string const& sheet, std::string const& name) {
    throw std::invalid_argument("sheet " + sheet + " has no cell " + name);
}

}  // namespace prsm
