#include <prsm/framework/PRSMNumberText.h>

#include <climits>
#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace prsm {

namespace {

constexpr long long kExponentLimit = 1000000000LL;

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

}  // namespace

bool parseDecimalText(std::string_view text, DecimalText& number) {
    number = DecimalText{};
    std::size_t i = 0;
    std::size_t const n = text.size();
    if (i < n && text[i] == '-') {
        number.negative = true;
        ++i;
    }
    std::string digits;
    std::size_t fractionDigits = 0;
    while (i < n && isDigit(text[i])) digits += text[i++];
    bool const wholePart = !digits.empty();
    if (i < n && text[i] == '.') {
        ++i;
        while (i < n && isDigit(text[i])) {
            digits += text[i++];
            ++fractionDigits;
        }
    }
    if (!wholePart && fractionDigits == 0) return false;
    long long exponent = 0;
    if (i < n && (text[i] == 'e' || text[i] == 'E')) {
        ++i;
        bool negativeExponent = false;
        if (i < n && (text[i] == '+' || text[i] == '-')) negativeExponent = text[i++] == '-';
        if (i == n || !isDigit(text[i])) return false;
        for (; i < n && isDigit(text[i]); ++i)
            if (exponent < kExponentLimit) exponent = exponent * 10 + (text[i] - '0');
        if (negativeExponent) exponent = -exponent;
    }
    if (i != n) return false;

    std::size_t const first = digits.find_first_not_of('0');
    if (first == std::string::npos) return true;  // zero
    std::size_t const last = digits.find_last_not_of('0');
    number.digits = digits.substr(first, last - first + 1);
    number.exponent =
        exponent - static_cast<long long>(fractionDigits) + static_cast<long long>(digits.size() - 1 - last);
    return true;
}

bool decimalToInt(DecimalText const& number, int& value) {
    if (number.digits.empty()) {
        value = 0;
        return true;
    }
    if (number.exponent < 0) return false;  // a fraction
    if (static_cast<long long>(number.digits.size()) + number.exponent > 10) return false;
    long long magnitude = 0;
    for (char c : number.digits) magnitude = magnitude * 10 + (c - '0');
    for (long long e = 0; e < number.exponent; ++e) magnitude *= 10;
    long long const signedValue = number.negative ? -magnitude : magnitude;
    if (signedValue < INT_MIN || signedValue > INT_MAX) return false;
    value = static_cast<int>(signedValue);
    return true;
}

std::string shortestFloatText(float value) {
    double const wide = value;
    char text[32];
    int digits = 1;
    while (digits < 9) {  // nine significant digits are exact for every float
        std::snprintf(text, sizeof text, "%.*g", digits, wide);
        if (std::strtof(text, nullptr) == value) break;
        ++digits;
    }
    // Whole numbers below 1e9 are written out ("200", not "2e+02").
    if (std::isfinite(wide) && wide != 0) {
        int const exponent = static_cast<int>(std::floor(std::log10(std::fabs(wide))));
        if (exponent >= digits && exponent < 9) digits = exponent + 1;
    }
    std::snprintf(text, sizeof text, "%.*g", digits, wide);
    return text;
}

}  // namespace prsm
