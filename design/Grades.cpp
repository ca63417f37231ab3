#include <prsm/design/Grades.h>
#include <prsm/framework/PRSMException.h>
#include <prsm/framework/PRSMValueList.h>

#include <algorithm>
#include <cctype>
#include <exception>

namespace prsm::design {

namespace {

char const* const kGradeFields[] = {"speed_grade",  "temperature_grade", "voltage_grade",
                                    "power_screen", "process",           "voltage_corner"};

// Upper case, blanks and '-' as '_', without a leading '_': "-2" -> "2", "low power" -> "LOW_POWER".
std::string normalised(std::string const& text) {
    std::string out;
    for (char c : text) {
        char const up =
            c == ' ' || c == '-' ? '_' : static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
        if (!(out.empty() && up == '_')) out += up;
    }
    return out;
}

bool isDigit(char c) {
    return std::isdigit(static_cast<unsigned char>(c)) != 0;
}

// `shorter` begins `longer`, which does not go on with a digit ("1" does not begin "12").
bool begins(std::string const& shorter, std::string const& longer) {
    return shorter.size() < longer.size() && longer.compare(0, shorter.size(), shorter) == 0 &&
           !isDigit(longer[shorter.size()]);
}

std::string joined(std::vector<std::string> const& items) {
    std::string text;
    for (std::string const& item : items) text += (text.empty() ? "" : ", ") + item;
    return text;
}

}  // namespace

bool isGradeField(std::string const& field) {
    return std::find(std::begin(kGradeFields), std::end(kGradeFields), field) != std::end(kGradeFields);
}

std::vector<std::string> const& voltageCorners() {
    static std::vector<std::string> const corners{"nominal", "max", "min"};
    return corners;
}

std::optional<GradeParts> splitGrade(std::string const& grade) {
    if (grade.size() < 4 || grade[0] != '-') return std::nullopt;
    std::size_t const dash = grade.find('-', 1);
    if (dash == std::string::npos) return std::nullopt;
    std::string const first = grade.substr(1, dash - 1), temperature = grade.substr(dash + 1);
    std::size_t digits = first.size() > 0 && (first[0] == 'S' || first[0] == 's') ? 1 : 0;
    std::size_t const speedStart = digits;
    while (digits < first.size() && isDigit(first[digits])) ++digits;
    GradeParts parts{first.substr(speedStart, digits - speedStart), first.substr(digits), temperature};
    auto letters = [](std::string const& text) {
        return std::all_of(text.begin(), text.end(),
                           [](char c) { return std::isalpha(static_cast<unsigned char>(c)); });
    };
    if (parts.speed.empty() || !letters(parts.voltage) || parts.temperature.empty() ||
        !letters(parts.temperature))
        return std::nullopt;
    return parts;
}

std::vector<std::string> sheetSpellings(std::string const& stated, std::vector<std::string> const& accepted) {
    std::string const want = normalised(stated);
    std::vector<std::string> matches;
    for (std::string const& entry : accepted)
        if (normalised(entry) == want) return {entry};
    for (std::string const& entry : accepted) {
        std::string const have = normalised(entry);
        if (begins(want, have) || begins(have, want)) matches.push_back(entry);
    }
    return matches;
}

std::vector<std::pair<std::string, std::string>> deviceInputs(Device const& device, Sheet const& sheet,
                                                              SheetInstance& instance,
                                                              std::string const& block,
                                                              std::vector<Warning>& warnings) {
    std::vector<std::pair<std::string, std::string>> inputs;
    for (auto const& [cell, field] : sheet.design().deviceInputs) {
        std::string const* stated = device.find(field);
        if (stated == nullptr) continue;
        CellInfo const* info = sheet.findCell(cell);
        if (!isGradeField(field) || info == nullptr || !info->hasValidValues) {
            inputs.emplace_back(cell, *stated);
            continue;
        }
        std::vector<std::string> accepted;
        try {
            accepted = validValueEntries(instance.validValues(cell));
        } catch (PRSMException const&) {  // no data: the sheet's calculation reports it
        } catch (std::exception const&) {
        }
        if (accepted.empty()) {
            inputs.emplace_back(cell, *stated);
            continue;
        }
        std::vector<std::string> const spellings = sheetSpellings(*stated, accepted);
        if (spellings.size() == 1) {
            inputs.emplace_back(cell, spellings[0]);
            continue;
        }
        std::string const value = field + " \"" + *stated + "\"";
        warnings.push_back({block, cell,
                            spellings.empty()
                                ? "the device's " + value + " is none of the accepted values " +
                                      joined(accepted) + "; the sheet keeps its default"
                                : "the device's " + value + " could be any of " + joined(spellings) +
                                      " (accepted: " + joined(accepted) + "); the sheet keeps its default"});
    }
    return inputs;
}

}  // namespace prsm::design
