#include <prsm/framework/PRSMReservedValues.h>
#include <prsm/host/Values.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace prsm::host {

bool isReservedValue(CellType type, std::string const& text) {
    switch (type) {
        case CellType::Int:
            return text == std::to_string(kIntNotSet) || text == std::to_string(kIntUnset);
        case CellType::Float: {
            char* end = nullptr;
            float const value = std::strtof(text.c_str(), &end);
            return end != text.c_str() && *end == '\0' && (value == kFloatNotSet || value == kFloatAbsent);
        }
        case CellType::String:
            break;
    }
    return text == kStringNotSet;
}

std::string displayValue(CellType type, std::string const& text) {
    if (isReservedValue(type, text)) return kNoValueText;
    if (type != CellType::Float) return text;
    char* end = nullptr;
    float const value = std::strtof(text.c_str(), &end);
    return end != text.c_str() && *end == '\0' ? shortestFloatText(value) : text;
}

nlohmann::ordered_json jsonValue(CellType type, std::string const& text) {
    if (isReservedValue(type, text)) return nullptr;
    switch (type) {
        case CellType::Int: {
            char* end = nullptr;
            long long const value = std::strtoll(text.c_str(), &end, 10);
            if (end != text.c_str() && *end == '\0') return value;
            break;
        }
        case CellType::Float: {
            char* end = nullptr;
            float const value = std::strtof(text.c_str(), &end);
            if (end == text.c_str() || *end != '\0') break;
            if (!std::isfinite(value)) return nullptr;
            // Through the shortest text, so 0.1f becomes the double 0.1 rather than 0.100000001490116.
            return std::strtod(shortestFloatText(value).c_str(), nullptr);
        }
        case CellType::String:
            break;
    }
    return text;
}

}  // namespace prsm::host
