#include <prsm/framework/PRSMSheetAdapter.h>
#include <prsm/host/HostError.h>
#include <prsm/host/Inputs.h>
#include <prsm/host/Suggest.h>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cmath>
#include <cstring>
#include <fstream>
#include <sstream>

namespace prsm::host {

namespace {

std::string joinLines(std::vector<std::string> const& lines) {
    std::string text;
    for (std::string const& line : lines) text += (text.empty() ? "" : "\n") + line;
    return text;
}

std::string fromWhere(Assignment const& assignment) {
    return assignment.origin == "command line" ? std::string() : " (in " + assignment.origin + ")";
}

std::vector<std::string> inputNames(Sheet const& sheet) {
    std::vector<std::string> names;
    for (CellInfo const& cell : sheet.cells())
        if (cell.category == CellCategory::UserInput) names.push_back(cell.name);
    return names;
}

// The text to hand to the sheet, or an error message.
bool valueText(CellInfo const& cell, Assignment const& assignment, std::string& text, std::string& problem) {
    text = assignment.text;
    bool const jsonNumber =
        assignment.kind == ValueKind::JsonInteger || assignment.kind == ValueKind::JsonNumber;
    if (cell.type == CellType::String) {
        if (!jsonNumber) return true;
        problem = cell.name + " is a string cell; write its value as a JSON string, \"" + text + "\"";
        return false;
    }
    if (cell.type == CellType::Int && assignment.kind == ValueKind::JsonNumber) {
        // JSON writes 2.0 and 2e3 as numbers that are whole; an int cell takes them.
        double const value = std::strtod(text.c_str(), nullptr);
        if (std::trunc(value) == value && value >= INT_MIN && value <= INT_MAX)
            text = std::to_string(static_cast<long long>(value));
    }
    try {
        if (cell.type == CellType::Int)
            parseIntCell(cell.name, text);
        else
            parseFloatCell(cell.name, text);
    } catch (std::invalid_argument const& e) {
        problem =
            std::string(e.what()) + " (a" + (cell.type == CellType::Int ? "n int" : " float") + " input)";
        return false;
    }
    return true;
}

}  // namespace

Assignment parseAssignment(std::string const& argument) {
    std::string::size_type const equals = argument.find('=');
    if (equals == std::string::npos || equals == 0)
        throw HostError(kExitBadInput, "expected NAME=VALUE, not \"" + argument + "\"");
    return {argument.substr(0, equals), argument.substr(equals + 1), ValueKind::Text, "command line"};
}

std::vector<Assignment> parseInputJson(std::string const& content, std::string const& origin) {
    nlohmann::json document;
    try {
        document = nlohmann::json::parse(content);
    } catch (nlohmann::json::parse_error const& e) {
        throw HostError(kExitBadInput, "input file " + origin + " is not valid JSON: " + e.what());
    }
    if (!document.is_object())
        throw HostError(kExitBadInput, "input file " + origin +
                                           " must hold one JSON object of NAME: value, not " +
                                           std::string(document.type_name()));
    std::vector<Assignment> assignments;
    std::vector<std::string> problems;
    for (auto const& [name, value] : document.items()) {
        if (value.is_number_integer())
            assignments.push_back({name, value.dump(), ValueKind::JsonInteger, origin});
        else if (value.is_number())
            assignments.push_back({name, value.dump(), ValueKind::JsonNumber, origin});
        else if (value.is_string())
            assignments.push_back({name, value.get<std::string>(), ValueKind::JsonString, origin});
        else
            problems.push_back("input file " + origin + ": " + name + " must be a number or a string, not " +
                               std::string(value.type_name()));
    }
    if (!problems.empty()) throw HostError(kExitBadInput, joinLines(problems));
    return assignments;
}

std::vector<Assignment> readInputFile(std::string const& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) throw HostError(kExitBadInput, "cannot open input file " + path + ": " + std::strerror(errno));
    std::ostringstream content;
    content << file.rdbuf();
    if (file.bad()) throw HostError(kExitBadInput, "cannot read input file " + path);
    return parseInputJson(content.str(), path);
}

std::vector<Assignment> mergeAssignments(std::vector<Assignment> const& fromFile,
                                         std::vector<Assignment> const& fromCommandLine) {
    std::vector<Assignment> merged;
    for (auto const* list : {&fromFile, &fromCommandLine}) {
        for (Assignment const& assignment : *list) {
            auto same = [&](Assignment const& other) { return other.name == assignment.name; };
            if (auto it = std::find_if(merged.begin(), merged.end(), same); it != merged.end())
                *it = assignment;
            else
                merged.push_back(assignment);
        }
    }
    return merged;
}

std::vector<ResolvedInput> resolveInputs(Sheet const& sheet, std::vector<Assignment> const& assignments) {
    std::vector<ResolvedInput> resolved;
    std::vector<std::string> problems;
    for (Assignment const& assignment : assignments) {
        CellInfo const* cell = sheet.findCell(assignment.name);
        if (cell == nullptr) {
            problems.push_back(sheet.name() + " has no cell " + assignment.name + fromWhere(assignment) +
                               didYouMean(suggestNames(assignment.name, inputNames(sheet))) +
                               "; `prsm cells " + sheet.name() + " --category input` lists the inputs");
            continue;
        }
        if (cell->category != CellCategory::UserInput) {
            problems.push_back(cell->name + " is an " + toString(cell->category) + " cell of " +
                               sheet.name() + fromWhere(assignment) + "; only input cells can be set");
            continue;
        }
        std::string text;
        std::string problem;
        if (valueText(*cell, assignment, text, problem))
            resolved.push_back({cell, text});
        else
            problems.push_back(problem + fromWhere(assignment));
    }
    if (!problems.empty()) throw HostError(kExitBadInput, joinLines(problems));
    return resolved;
}

}  // namespace prsm::host
