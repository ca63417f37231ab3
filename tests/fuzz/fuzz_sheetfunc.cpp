// The spreadsheet functions on arbitrary arguments: the first byte picks a function, the rest of the
// bytes become its texts and numbers. Only the text-to-number conversions document exceptions
// (std::invalid_argument and std::out_of_range); anything else that ends the process is a finding.
#include "FuzzSupport.h"

#include <prsm/sheetfunc/PRSMHelperUtils.h>

#include <fuzzer/FuzzedDataProvider.h>

#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using namespace PRSMHelperUtils;

std::string text(FuzzedDataProvider& in) {
    return in.ConsumeRandomLengthString(256);
}

std::vector<std::string> words(FuzzedDataProvider& in) {
    std::vector<std::string> list(in.ConsumeIntegralInRange<int>(0, 12));
    for (std::string& word : list) word = in.ConsumeRandomLengthString(24);
    return list;
}

template <typename T>
std::vector<T> numbers(FuzzedDataProvider& in) {
    std::vector<T> list(in.ConsumeIntegralInRange<int>(0, 12));
    for (T& value : list) {
        if constexpr (std::is_same_v<T, float>)
            value = in.ConsumeFloatingPoint<float>();
        else
            value = in.ConsumeIntegral<int>();
    }
    return list;
}

// Widths stay within what a formula could ask for: a field of a billion blanks is an allocation, not a
// fault.
int width(FuzzedDataProvider& in) {
    return in.ConsumeIntegralInRange<int>(-8, 400);
}

void textFunction(int which, FuzzedDataProvider& in) {
    switch (which) {
        case 0: {
            float const value = in.ConsumeFloatingPoint<float>();
            (void)TEXT(value, text(in));
            break;
        }
        case 1: {
            int const count = in.ConsumeIntegral<int>();
            (void)LEFT(text(in), count);
            (void)RIGHT(text(in), count);
            break;
        }
        case 2: {
            int const start = in.ConsumeIntegral<int>();
            std::string const wanted = text(in);
            std::string const within = text(in);
            (void)FIND(wanted, within, start);
            (void)SEARCH(wanted, within, start);
            (void)LEN(within);
            break;
        }
        case 3: {
            int const n = in.ConsumeIntegral<int>();
            std::string const original = text(in);
            std::string const old = text(in);
            std::string const replacement = text(in);
            (void)SUBSTITUTE(original, old, replacement);
            (void)SUBSTITUTE_N(original, old, replacement, n);
            break;
        }
        case 4: {
            std::string value = text(in);
            (void)ToUpper(value);
            (void)ToLower(value);
            std::string a = value, b = value, c = value, d = value, e = value;
            ltrim(a);
            rtrim(b);
            trim(c);
            removeWhiteSpaces(d);
            convertToCamelString(e);
            (void)getFirstNumericSubStr(value);
            (void)lineToWords(value);
            (void)ISNUMBER(value);
            break;
        }
        case 5: {
            (void)ToString(in.ConsumeFloatingPoint<float>());
            (void)ToString(in.ConsumeIntegral<int>());
            (void)ToString(text(in));
            int const value = in.ConsumeIntegral<int>();
            int const w = width(in);
            (void)i2s(value, w, in.ConsumeIntegral<char>());
            break;
        }
        case 6: {
            float const value = in.ConsumeFloatingPoint<float>();
            float const tolerance = in.ConsumeFloatingPoint<float>();
            std::string out = text(in);
            try {
                numToTightStr(value, out, tolerance);
            } catch (std::invalid_argument const&) {
            } catch (std::out_of_range const&) {
            }
            break;
        }
        case 7: {
            std::vector<std::string> const list = words(in);
            unsigned int const start = in.ConsumeIntegralInRange<unsigned int>(0, 16);
            (void)mergeStrVect(list, start, text(in));
            int const w = width(in);
            (void)leftJustify(list, w);
            (void)fullJustify(list, w);
            break;
        }
        case 8: {
            int const w = width(in);
            (void)wrapToHtml(text(in), w);
            break;
        }
        case 9: {
            std::string const value = text(in);
            try {
                (void)s2f(value);
            } catch (std::invalid_argument const&) {
            } catch (std::out_of_range const&) {
            }
            try {
                (void)s2i(value);
            } catch (std::invalid_argument const&) {
            } catch (std::out_of_range const&) {
            }
            break;
        }
    }
}

void numericFunction(int which, FuzzedDataProvider& in) {
    switch (which) {
        case 0: {
            float const value = in.ConsumeFloatingPoint<float>();
            unsigned int const digits = in.ConsumeIntegral<unsigned int>();
            (void)ROUND(value, digits);
            (void)ROUNDUP(value, digits);
            break;
        }
        case 1: {
            float const value = in.ConsumeFloatingPoint<float>();
            (void)MROUND(value, in.ConsumeFloatingPoint<float>());
            break;
        }
        case 2: {
            int const numerator = in.ConsumeIntegral<int>();
            (void)QUOTIENT(numerator, in.ConsumeIntegral<int>());
            break;
        }
        case 3: {
            float a[9];
            for (float& value : a) value = in.ConsumeFloatingPoint<float>();
            (void)MIN(a[0], a[1], a[2], a[3], a[4], a[5], a[6], a[7], a[8]);
            (void)MAX(a[0], a[1], a[2], a[3], a[4], a[5], a[6], a[7], a[8]);
            (void)AVERAGE(a[0], a[1], a[2], a[3], a[4], a[5], a[6], a[7], a[8]);
            break;
        }
        case 4: {
            std::vector<float> const floats = numbers<float>(in);
            std::vector<int> const ints = numbers<int>(in);
            std::vector<std::string> const texts = words(in);
            (void)SUM(floats);
            (void)SUM(ints);
            (void)SUM(texts);
            bool const keep = in.ConsumeBool();
            std::vector<float> f;
            std::vector<int> i;
            std::vector<std::string> s;
            UNIQUE(floats, f, keep);
            UNIQUE(ints, i, keep);
            UNIQUE(texts, s, keep);
            break;
        }
        case 5: {
            float const x = in.ConsumeFloatingPoint<float>();
            (void)LOG(x, in.ConsumeFloatingPoint<float>());
            break;
        }
        case 6: {
            int const count = in.ConsumeIntegralInRange<int>(0, 16);
            std::vector<double> y(static_cast<std::size_t>(count) + 1),
                x(static_cast<std::size_t>(count) + 1);
            for (int k = 0; k < count; ++k) {
                y[k] = in.ConsumeFloatingPoint<double>();
                x[k] = in.ConsumeFloatingPoint<double>();
            }
            (void)forecast(in.ConsumeFloatingPoint<double>(), y.data(), x.data(), count);
            break;
        }
        case 7: {
            int const i = in.ConsumeIntegral<int>();
            float const f = in.ConsumeFloatingPoint<float>();
            std::string const s = text(in);
            (void)IFERROR(i, in.ConsumeIntegral<int>());
            (void)IFERROR(f, in.ConsumeFloatingPoint<float>());
            (void)IFERROR(f, in.ConsumeIntegral<int>());
            (void)IFERROR(f, in.ConsumeFloatingPoint<double>());
            (void)IFERROR(s, text(in));
            (void)IFERROR(s, "fallback");
            (void)IFERROR(in.ConsumeBool(), in.ConsumeBool());
            (void)ISERROR(i);
            (void)ISERROR(f);
            (void)ISERROR(s);
            (void)ISERROR(in.ConsumeBool());
            (void)ISNUMBER(i);
            break;
        }
    }
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    prsm::fuzz::quietStreams();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* bytes, std::size_t size) {
    FuzzedDataProvider in(bytes, size);
    int const which = in.ConsumeIntegralInRange<int>(0, 17);
    if (which < 10)
        textFunction(which, in);
    else
        numericFunction(which - 10, in);
    return 0;
}
