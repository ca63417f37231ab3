#include <prsm/framework/PRSMNumberText.h>
#include <prsm/framework/PRSMReservedValues.h>
#include <prsm/host/Numbers.h>
#include <prsm/host/Values.h>

#include <cfloat>
#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace prsm::host {

namespace {

bool isNonFiniteWord(std::string text) {
    if (!text.empty() && (text[0] == '-' || text[0] == '+')) text.erase(0, 1);
    for (char& c : text) c = static_cast<char>(c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c);
    return text == "inf" || text == "infinity" || text == "nan";
}

std::string notANumber(CellInfo const& cell, std::string const& text) {
    if (isNonFiniteWord(text))
        return "cell " + cell.name + " takes a finite number, not \"" + printable(text) + "\"";
    bool const whole = cell.type == CellType::Int;
    return "cell " + cell.name + " takes " + (whole ? "a whole number" : "a number") + ", not \"" +
           printable(text) + "\" (" + (whole ? "an int" : "a float") +
           " input: decimal digits with an optional leading '-', one '.' and an exponent; no blanks, "
           "'+' or hexadecimal)";
}

std::string reserved(CellInfo const& cell, std::string const& text) {
    return "cell " + cell.name + " = \"" + printable(text) +
           "\" is the library's reserved \"no value\"; leave the input out to use its default";
}

std::string checkInt(CellInfo const& cell, std::string const& text, std::string& canonical) {
    DecimalText number;
    if (!parseDecimalText(text, number)) return notANumber(cell, text);
    if (number.exponent < 0 && !number.digits.empty())
        return "cell " + cell.name + " takes a whole number, not \"" + printable(text) + "\" (an int input)";
    int value = 0;
    if (!decimalToInt(number, value))
        return "cell " + cell.name + " = " + printable(text) +
               " is out of the int range (-2147483648 .. 2147483647)";
    if (value == kIntNotSet || value == kIntUnset) return reserved(cell, text);
    canonical = std::to_string(value);
    return std::string();
}

std::string checkFloat(CellInfo const& cell, std::string const& text, std::string& canonical) {
    DecimalText number;
    if (!parseDecimalText(text, number)) return notANumber(cell, text);
    float const value = std::strtof(text.c_str(), nullptr);
    if (std::isinf(value))
        return "cell " + cell.name + " = " + printable(text) +
               " is out of the float range (at most 3.40282347e+38 either side of 0)";
    if (!number.digits.empty() && std::fabs(value) < FLT_MIN)
        return "cell " + cell.name + " = " + printable(text) +
               " is too close to 0 for a float (the smallest is 1.17549435e-38); write 0 for zero";
    if (value == kFloatNotSet || value == kFloatAbsent) return reserved(cell, text);
    canonical = shortestFloatText(value);
    return std::string();
}

std::string checkString(CellInfo const& cell, std::string const& text, std::string& canonical) {
    if (!isUtf8(text)) return "cell " + cell.name + " = \"" + printable(text) + "\" is not UTF-8 text";
    if (text.find('\0') != std::string::npos)
        return "cell " + cell.name + " = \"" + printable(text) + "\" holds a NUL character";
    if (text == kStringNotSet) return reserved(cell, text);
    canonical = text;
    return std::string();
}

}  // namespace

std::string checkCellText(CellInfo const& cell, std::string const& text, std::string& canonical) {
    switch (cell.type) {
        case CellType::Int:
            return checkInt(cell, text, canonical);
        case CellType::Float:
            return checkFloat(cell, text, canonical);
        case CellType::String:
            break;
    }
    return checkString(cell, text, canonical);
}

bool isNumberText(std::string const& text) {
    DecimalText ignored;
    return parseDecimalText(text, ignored);
}

bool isUtf8(std::string const& text) {
    auto const* bytes = reinterpret_cast<unsigned char const*>(text.data());
    std::size_t const n = text.size();
    for (std::size_t i = 0; i < n;) {
        unsigned char const lead = bytes[i];
        std::size_t length = 0;
        unsigned int codePoint = 0;
        if (lead < 0x80) {
            ++i;
            continue;
        } else if (lead >= 0xC2 && lead <= 0xDF) {
            length = 2;
            codePoint = lead & 0x1Fu;
        } else if (lead >= 0xE0 && lead <= 0xEF) {
            length = 3;
            codePoint = lead & 0x0Fu;
        } else if (lead >= 0xF0 && lead <= 0xF4) {
            length = 4;
            codePoint = lead & 0x07u;
        } else {
            return false;
        }
        if (i + length > n) return false;
        for (std::size_t k = 1; k < length; ++k) {
            if ((bytes[i + k] & 0xC0u) != 0x80u) return false;
            codePoint = (codePoint << 6) | (bytes[i + k] & 0x3Fu);
        }
        // Overlong forms, UTF-16 surrogates and code points beyond U+10FFFF are not UTF-8.
        static unsigned int const kSmallest[] = {0, 0, 0x80, 0x800, 0x10000};
        if (codePoint < kSmallest[length] || (codePoint >= 0xD800 && codePoint <= 0xDFFF) ||
            codePoint > 0x10FFFF)
            return false;
        i += length;
    }
    return true;
}

std::string printable(std::string const& text) {
    bool const utf8 = isUtf8(text);
    std::string shown;
    for (char c : text) {
        auto const byte = static_cast<unsigned char>(c);
        if (byte == 0) {
            shown += "\\0";
        } else if (byte < 0x20 || byte == 0x7F || (byte >= 0x80 && !utf8)) {
            char escaped[8];
            std::snprintf(escaped, sizeof escaped, "\\x%02X", byte);
            shown += escaped;
        } else {
            shown += c;
        }
    }
    return shown;
}

}  // namespace prsm::host
