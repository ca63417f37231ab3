#include <prsm/design/DeclaredWarnings.h>
#include <prsm/framework/PRSMNumberText.h>
#include <prsm/framework/PRSMReservedValues.h>

#include <cmath>
#include <cstdlib>
#include <optional>

namespace prsm::design {

namespace {

// The number a cell's text holds; none for text that is not a number or for a reserved value.
std::optional<double> numberOf(CellType type, std::string const& text) {
    if (type == CellType::String) return std::nullopt;
    char* end = nullptr;
    double const value = std::strtod(text.c_str(), &end);
    if (end == text.c_str() || *end != '\0' || std::isnan(value)) return std::nullopt;
    if (type == CellType::Int && (value == kIntNotSet || value == kIntUnset)) return std::nullopt;
    if (type == CellType::Float) {
        float const narrow = static_cast<float>(value);
        if (narrow == kFloatNotSet || narrow == kFloatAbsent) return std::nullopt;
    }
    return value;
}

std::string shown(CellType type, double value, std::string const& text) {
    return type == CellType::Float ? shortestFloatText(static_cast<float>(value)) : text;
}

void replaceAll(std::string& message, std::string const& field, std::string const& by) {
    for (std::size_t at = message.find(field); at != std::string::npos;
         at = message.find(field, at + by.size()))
        message.replace(at, field.size(), by);
}

// A bound of the expected range: a number's text, or a cell of the sheet evaluated on the instance.
std::optional<double> boundOf(std::string const& bound, SheetInstance& instance) {
    if (bound.empty()) return std::nullopt;
    DecimalText number;
    if (parseDecimalText(bound, number)) return std::strtod(bound.c_str(), nullptr);
    return numberOf(CellType::Float, instance.evaluate(bound));
}

}  // namespace

bool hasDeclaredWarnings(CellInfo const& cell) {
    return !cell.belowZeroWarning.empty() || !cell.aboveZeroWarning.empty() || !cell.noValueWarning.empty() ||
           !cell.outside.message.empty();
}

std::vector<std::string> declaredWarnings(CellInfo const& cell, std::string const& text,
                                          SheetInstance& instance) {
    std::vector<std::string> lines;
    if (cell.type == CellType::String || !hasDeclaredWarnings(cell)) return lines;
    std::optional<double> const value = numberOf(cell.type, text);
    auto add = [&](std::string message, std::string const& low = {}, std::string const& high = {}) {
        // "{value} {unit}" loses its blank when the cell has no unit.
        replaceAll(message, " {unit}", cell.unit.empty() ? "" : " " + cell.unit);
        replaceAll(message, "{unit}", cell.unit);
        replaceAll(message, "{value}", value ? shown(cell.type, *value, text) : text);
        replaceAll(message, "{low}", low);
        replaceAll(message, "{high}", high);
        lines.push_back(std::move(message));
    };
    if (!value) {
        bool const noValue =
            text == std::to_string(kIntNotSet) || text == std::to_string(kIntUnset) ||
            (cell.type == CellType::Float && std::strtof(text.c_str(), nullptr) == kFloatNotSet);
        if (noValue && !cell.noValueWarning.empty()) add(cell.noValueWarning);
        return lines;
    }
    if (*value < 0 && !cell.belowZeroWarning.empty()) add(cell.belowZeroWarning);
    if (*value > 0 && !cell.aboveZeroWarning.empty()) add(cell.aboveZeroWarning);
    if (!cell.outside.message.empty()) {
        std::optional<double> const low = boundOf(cell.outside.low, instance);
        std::optional<double> const high = boundOf(cell.outside.high, instance);
        // Cells that give no range (their fallback when the data has no row: 0 .. 0) check nothing.
        bool const ranged = !(low && high) || *low < *high;
        if (ranged && ((low && *value < *low) || (high && *value > *high)))
            add(cell.outside.message, low ? shortestFloatText(static_cast<float>(*low)) : "?",
                high ? shortestFloatText(static_cast<float>(*high)) : "?");
    }
    return lines;
}

std::vector<std::pair<std::string, std::string>> declaredWarnings(Sheet const& sheet,
                                                                  SheetInstance& instance) {
    std::vector<std::pair<std::string, std::string>> warnings;
    for (CellInfo const& cell : sheet.cells()) {
        if (!hasDeclaredWarnings(cell)) continue;
        for (std::string& message : declaredWarnings(cell, instance.evaluate(cell.name), instance))
            warnings.emplace_back(cell.name, std::move(message));
    }
    return warnings;
}

}  // namespace prsm::design
