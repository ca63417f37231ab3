#pragma once
// Numeric and aggregate spreadsheet functions used by the cell formulas of every model.
//
// These are not faithful copies of the spreadsheet's functions: rounding, sign rules, the markers for
// left-out arguments and the error values are this library's own. The small ones are inline because
// they sit on the innermost path of every cell evaluation; none of them allocates.

#include <prsm/framework/PRSMReservedValues.h>

#include <climits>
#include <cmath>
#include <string>
#include <vector>

namespace PRSMHelperUtils {

namespace detail {

// Every power of ten up to 1e22 is exact in double, so the table gives the same values as pow().
inline constexpr double kPowersOfTen[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                          1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                          1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};

// 10^digits, formed in double and narrowed to float.
inline float powerOfTen(unsigned int digits) {
    constexpr unsigned int kTableSize = sizeof(kPowersOfTen) / sizeof(kPowersOfTen[0]);
    return static_cast<float>(digits < kTableSize ? kPowersOfTen[digits] : std::pow(10.0, digits));
}

}  // namespace detail

// Rounds to `digits` decimals. Halves go toward plus infinity, also for negative numbers:
// ROUND(2.5, 0) is 3, ROUND(-2.5, 0) is -2. The product value * 10^digits is formed in float and only
// then widened to double for the +0.5 and the floor: 2.675f (2.67499995...) times 100 is 267.5 in float,
// so ROUND(2.675f, 2) is 2.68.
inline float ROUND(float value, unsigned int digits) {
    float const scale = detail::powerOfTen(digits);
    float const product = value * scale;
    return static_cast<float>(std::floor(static_cast<double>(product) + 0.5) / static_cast<double>(scale));
}

// Ceiling to `digits` decimals, all in float: toward plus infinity, not away from zero
// (ROUNDUP(-1.2, 0) is -1, ROUNDUP(-0.5, 0) is -0.0).
inline float ROUNDUP(float value, unsigned int digits) {
    float const scale = detail::powerOfTen(digits);
    return std::ceil(value * scale) / scale;
}

// The one conversion of a number to int in the library, defined for every value: it truncates toward
// zero like a plain conversion inside the int range and saturates outside it. 2147483647.0 and above
// (+inf too) give 2147483647, which is also the int error value, so IFERROR catches an overflowed
// count; -2147483648.0 and below (-inf too) give -2147483648; a NaN gives 2147483647, the error value.
inline int toIntSaturated(double value) {
    if (!(value < 2147483647.0)) {  // also a NaN
        return prsm::kIntNotSet;
    }
    if (value <= -2147483648.0) {
        return INT_MIN;
    }
    return static_cast<int>(value);
}

// Nearest multiple, with halves up as in ROUND, returned as an int truncated toward zero (saturated as
// toIntSaturated does). No sign check: a negative multiple acts like its absolute value. A zero
// multiple gives 0.
inline int MROUND(float value, float multiple) {
    if (multiple == 0.0f) {
        return 0;
    }
    return toIntSaturated(multiple * ROUND(value / multiple, 0));
}

// Integer division truncated toward zero; 0 for a zero or negative denominator.
inline int QUOTIENT(int numerator, int denominator) {
    return denominator <= 0 ? 0 : numerator / denominator;
}

// Smallest argument. Left-out arguments hold kFloatNotSet and never win; a NaN is never taken.
// The fold runs from the ninth argument to the first and only a strictly smaller value replaces the
// running one, so among equal values (0.0 and -0.0) the later argument stays.
inline float MIN(float a1 = prsm::kFloatNotSet, float a2 = prsm::kFloatNotSet, float a3 = prsm::kFloatNotSet,
                 float a4 = prsm::kFloatNotSet, float a5 = prsm::kFloatNotSet, float a6 = prsm::kFloatNotSet,
                 float a7 = prsm::kFloatNotSet, float a8 = prsm::kFloatNotSet,
                 float a9 = prsm::kFloatNotSet) {
    float const args[] = {a9, a8, a7, a6, a5, a4, a3, a2, a1};
    float result = prsm::kFloatNotSet;
    for (float const arg : args) {
        if (arg < result) {
            result = arg;
        }
    }
    return result;
}

// Largest argument; the mirror of MIN, starting from kFloatAbsent (also the default of left-out ones).
inline float MAX(float a1 = prsm::kFloatAbsent, float a2 = prsm::kFloatAbsent, float a3 = prsm::kFloatAbsent,
                 float a4 = prsm::kFloatAbsent, float a5 = prsm::kFloatAbsent, float a6 = prsm::kFloatAbsent,
                 float a7 = prsm::kFloatAbsent, float a8 = prsm::kFloatAbsent,
                 float a9 = prsm::kFloatAbsent) {
    float const args[] = {a9, a8, a7, a6, a5, a4, a3, a2, a1};
    float result = prsm::kFloatAbsent;
    for (float const arg : args) {
        if (arg > result) {
            result = arg;
        }
    }
    return result;
}

// Mean of the arguments that are not kFloatAbsent, summed in float in argument order; 0.0 if all are
// absent. Zero is a present value, and kFloatNotSet is not treated as absent.
inline float AVERAGE(float a1 = prsm::kFloatAbsent, float a2 = prsm::kFloatAbsent,
                     float a3 = prsm::kFloatAbsent, float a4 = prsm::kFloatAbsent,
                     float a5 = prsm::kFloatAbsent, float a6 = prsm::kFloatAbsent,
                     float a7 = prsm::kFloatAbsent, float a8 = prsm::kFloatAbsent,
                     float a9 = prsm::kFloatAbsent) {
    float const args[] = {a1, a2, a3, a4, a5, a6, a7, a8, a9};
    float sum = 0.0f;
    int count = 0;
    for (float const arg : args) {
        if (arg != prsm::kFloatAbsent) {
            sum += arg;
            ++count;
        }
    }
    return count == 0 ? 0.0f : sum / static_cast<float>(count);
}

// Sum in float, in order, skipping kFloatNotSet (NaN and kFloatAbsent are added).
float SUM(std::vector<float> const& values);
// Sum in 32-bit arithmetic that wraps on overflow, skipping kIntUnset.
int SUM(std::vector<int> const& values);
// Concatenation without separator.
std::string SUM(std::vector<std::string> const& values);

// Logarithm of x to the given base. For x <= 0, base <= 0 or base == 1 prints
// "Error: For log b(x), x>0, b>0 and b!=1" (no line end) and returns 0.
float LOG(float x, float base);

// Least-squares linear forecast at x from `count` known points (y values first, x values second).
// 0.0 for count < 1. A zero spread of the known x values is not guarded (NaN or infinity).
double forecast(double x, double* knownY, double* knownX, int count);

// Distinct values of `in` in the order of their first occurrence; `out` is cleared first. The type's
// not-set value (empty string, kFloatNotSet, kIntUnset) is dropped unless keepUnset, when it is kept
// once like any other value. Floats compare with ==, so 0.0 and -0.0 are one value and every NaN stays.
template <typename T>
void _UNIQUE(std::vector<T> const& in, std::vector<T>& out, bool keepUnset);

void UNIQUE(std::vector<std::string> const& in, std::vector<std::string>& out, bool keepUnset);
void UNIQUE(std::vector<float> const& in, std::vector<float>& out, bool keepUnset);
void UNIQUE(std::vector<int> const& in, std::vector<int>& out, bool keepUnset);

// True when the text is non-empty and made only of the digits 0-9 (no sign, point, exponent or blank).
bool ISNUMBER(std::string const& text);

// True for zero and every positive value.
inline bool ISNUMBER(int value) {
    return value >= 0;
}

// Text to float with std::stof; the empty text gives kFloatNotSet without parsing. Throws
// std::invalid_argument / std::out_of_range with the message "stof".
float s2f(std::string const& text);

// Text to int with std::stoi in base 10; the empty text gives kIntUnset without parsing. Throws
// std::invalid_argument / std::out_of_range with the message "stoi".
int s2i(std::string const& text);

// IFERROR(value, fallback): fallback when value is its type's error value (exact equality), else value.
// ISERROR(value): whether value is its type's error value. Only the instances below exist; any other
// type combination is rejected at compile time. Error values: kIntNotSet for int (not kIntUnset),
// kFloatNotSet for float, kStringNotSet for strings. The bool instances have no error value: they
// print "Boolean error issues" (no line end) on every call.
template <typename T, typename U>
T IFERROR(T value, U fallback) = delete;

template <typename T>
bool ISERROR(T value) = delete;

// Prints the diagnostic, then value if it is true, else fallback.
template <>
bool IFERROR<bool, bool>(bool value, bool fallback);

template <>
inline int IFERROR<int, int>(int value, int fallback) {
    return value == prsm::kIntNotSet ? fallback : value;
}

template <>
inline float IFERROR<float, float>(float value, float fallback) {
    return value == prsm::kFloatNotSet ? fallback : value;
}

template <>
inline float IFERROR<float, int>(float value, int fallback) {
    return value == prsm::kFloatNotSet ? static_cast<float>(fallback) : value;
}

template <>
inline float IFERROR<float, double>(float value, double fallback) {
    return value == prsm::kFloatNotSet ? static_cast<float>(fallback) : value;
}

template <>
inline std::string IFERROR<std::string, std::string>(std::string value, std::string fallback) {
    if (value == prsm::kStringNotSet) {
        return fallback;
    }
    return value;
}

template <>
inline std::string IFERROR<std::string, char const*>(std::string value, char const* fallback) {
    if (value == prsm::kStringNotSet) {
        return std::string(fallback);
    }
    return value;
}

// Prints the diagnostic, then returns !value.
template <>
bool ISERROR<bool>(bool value);

template <>
inline bool ISERROR<int>(int value) {
    return value == prsm::kIntNotSet;
}

// A NaN is not an error.
template <>
inline bool ISERROR<float>(float value) {
    return value == prsm::kFloatNotSet;
}

template <>
inline bool ISERROR<std::string>(std::string value) {
    return value == prsm::kStringNotSet;
}

}  // namespace PRSMHelperUtils
