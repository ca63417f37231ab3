#include <prsm/framework/PRSMData.h>
#include <prsm/framework/PRSMNumberText.h>
#include <prsm/framework/PRSMSheetAdapter.h>

#include <libconfig.h++>

#include <cerrno>
#include <cmath>

namespace prsm {

int parseIntCell(std::string const& name, std::string const& text) {
    DecimalText number;
    int value = 0;
    if (!parseDecimalText(text, number) || !decimalToInt(number, value))
        throw std::invalid_argument(
            "cell " + name + " takes a whole number from -2147483648 to 2147483647, not \"" + text + "\"");
    return value;
}

float parseFloatCell(std::string const& name, std::string const& text) {
    DecimalText number;
    if (!parseDecimalText(text, number))
        throw std::invalid_argument("cell " + name + " takes a number, not \"" + text + "\"");
    errno = 0;
    float const value = std::strtof(text.c_str(), nullptr);
    if (std::isinf(value))
        throw std::invalid_argument("cell " + name + " = " + text + " is out of the float range");
    if (errno == ERANGE)
        throw std::invalid_argument("cell " + name + " = " + text +
                                    " is too close to 0 for a float; write 0 for zero");
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

void rethrowNamingTheDataFile() {
    try {
        throw;
    } catch (libconfig::FileIOException const&) {
        std::string const detail = PRSMData::lastLoadFailure();
        throw DataFileError(detail.empty() ? std::string("a data file cannot be read") : detail);
    } catch (libconfig::ParseException const& e) {
        std::string const detail = PRSMData::lastLoadFailure();
        throw DataFileError(detail.empty() ? std::string("a data file does not parse at line ") +
                                                 std::to_string(e.getLine()) + ": " + e.getError()
                                           : detail);
    }
}

}  // namespace prsm
