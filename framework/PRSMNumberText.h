#pragma once
// Numbers written as text, under one rule wherever a cell takes one by name: an optional '-', decimal
// digits with at most one '.', and an optional exponent ('e' or 'E', an optional sign, digits).
// Nothing else: no blanks, no '+' in front, no hexadecimal, no inf or nan.

#include <string>
#include <string_view>

namespace prsm {

// A number as sign, significant digits and a power of ten: value = -/+ digits * 10^exponent. `digits`
// has neither leading nor trailing zeros; it is empty for zero. Exponents saturate far beyond any
// float or int.
struct DecimalText {
    bool negative = false;
    std::string digits;
    long long exponent = 0;
};

// False when `text` breaks the rule above.
bool parseDecimalText(std::string_view text, DecimalText& number);

// The whole number `number` stands for, when it is one and fits an int.
bool decimalToInt(DecimalText const& number, int& value);

// The shortest decimal text that reads back as the same float ("0.1", not "0.100000001").
std::string shortestFloatText(float value);

}  // namespace prsm
