#include <prsm/sheetfunc/PRSMNumericFunctions.h>

#include <cmath>
#include <cstdint>
#include <iostream>
#include <unordered_set>

namespace PRSMHelperUtils {

namespace {

char const kBooleanErrorMessage[] = "Boolean error issues";

// The value that UNIQUE drops unless asked to keep it.
template <typename T>
T unsetValue();

template <>
std::string unsetValue<std::string>() {
    return std::string();
}

template <>
float unsetValue<float>() {
    return prsm::kFloatNotSet;
}

template <>
int unsetValue<int>() {
    return prsm::kIntUnset;
}

}  // namespace

float SUM(std::vector<float> const& values) {
    float sum = 0.0f;
    for (float const value : values) {
        if (value != prsm::kFloatNotSet) {
            sum += value;
        }
    }
    return sum;
}

int SUM(std::vector<int> const& values) {
    // Unsigned arithmetic wraps without undefined behaviour; the cast back keeps the low 32 bits.
    std::uint32_t sum = 0;
    for (int const value : values) {
        if (value != prsm::kIntUnset) {
            sum += static_cast<std::uint32_t>(value);
        }
    }
    return static_cast<int>(sum);
}

std::string SUM(std::vector<std::string> const& values) {
    std::string::size_type total = 0;
    for (std::string const& value : values) {
        total += value.size();
    }
    std::string result;
    result.reserve(total);
    for (std::string const& value : values) {
        result += value;
    }
    return result;
}

float LOG(float x, float base) {
    if (x <= 0.0f || base <= 0.0f || base == 1.0f) {
        std::cout << "Error: For log b(x), x>0, b>0 and b!=1";
        return 0.0f;
    }
    double const logBase = std::log(static_cast<double>(base));
    if (logBase == 0.0) {
        return 0.0f;
    }
    return static_cast<float>(std::log(static_cast<double>(x)) / logBase);
}

double forecast(double x, double* knownY, double* knownX, int count) {
    if (count < 1) {
        return 0.0;
    }
    double sumX = 0.0;
    double sumY = 0.0;
    for (int i = 0; i < count; ++i) {
        sumX += knownX[i];
        sumY += knownY[i];
    }
    double const meanX = sumX / count;
    double const meanY = sumY / count;
    double numerator = 0.0;
    double denominator = 0.0;
    for (int i = 0; i < count; ++i) {
        double const dx = knownX[i] - meanX;
        numerator += (knownY[i] - meanY) * dx;
        denominator += dx * dx;
    }
    double const slope = numerator / denominator;
    return x * slope + (meanY - meanX * slope);
}

template <typename T>
void _UNIQUE(std::vector<T> const& in, std::vector<T>& out, bool keepUnset) {
    out.clear();
    T const unset = unsetValue<T>();
    std::unordered_set<T> seen;
    for (T const& value : in) {
        if (!keepUnset && value == unset) {
            continue;
        }
        if (seen.insert(value).second) {
            out.push_back(value);
        }
    }
}

template void _UNIQUE<std::string>(std::vector<std::string> const&, std::vector<std::string>&, bool);
template void _UNIQUE<float>(std::vector<float> const&, std::vector<float>&, bool);
template void _UNIQUE<int>(std::vector<int> const&, std::vector<int>&, bool);

void UNIQUE(std::vector<std::string> const& in, std::vector<std::string>& out, bool keepUnset) {
    _UNIQUE<std::string>(in, out, keepUnset);
}

void UNIQUE(std::vector<float> const& in, std::vector<float>& out, bool keepUnset) {
    _UNIQUE<float>(in, out, keepUnset);
}

void UNIQUE(std::vector<int> const& in, std::vector<int>& out, bool keepUnset) {
    _UNIQUE<int>(in, out, keepUnset);
}

bool ISNUMBER(std::string const& text) {
    if (text.empty()) {
        return false;
    }
    for (char const c : text) {
        if (c < '0' || c > '9') {
            return false;
        }
    }
    return true;
}

float s2f(std::string const& text) {
    if (text.empty()) {
        return prsm::kFloatNotSet;
    }
    return std::stof(text);
}

int s2i(std::string const& text) {
    if (text.empty()) {
        return prsm::kIntUnset;
    }
    return std::stoi(text);
}

template <>
bool IFERROR<bool, bool>(bool value, bool fallback) {
    std::cout << kBooleanErrorMessage;
    return value ? value : fallback;
}

template <>
bool ISERROR<bool>(bool value) {
    std::cout << kBooleanErrorMessage;
    return !value;
}

}  // namespace PRSMHelperUtils
