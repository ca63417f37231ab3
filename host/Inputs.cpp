#include <prsm/host/HostError.h>
#include <prsm/host/Inputs.h>
#include <prsm/host/Numbers.h>
#include <prsm/host/Suggest.h>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>
#include <unordered_map>
#include <unordered_set>

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
    bool const jsonNumber =
        assignment.kind == ValueKind::JsonInteger || assignment.kind == ValueKind::JsonNumber;
    if (cell.type == CellType::String && jsonNumber) {
        problem =
            cell.name + " is a string cell; write its value as a JSON string, \"" + assignment.text + "\"";
        return false;
    }
    problem = checkCellText(cell, assignment.text, text);
    return problem.empty();
}

// Reads the top-level object of an input file event by event, so that each number keeps the text it
// was written with, a repeated name is seen, and a number too large for any type still names its cell.
class InputObjectReader final : public nlohmann::json_sax<nlohmann::json> {
public:
    explicit InputObjectReader(std::string const& origin) : m_origin(origin) {}

    bool null() override { return scalar("null"); }
    bool boolean(bool) override { return scalar("boolean"); }
    bool number_integer(number_integer_t value) override {
        return assign(std::to_string(value), ValueKind::JsonInteger, "number");
    }
    bool number_unsigned(number_unsigned_t value) override {
        return assign(std::to_string(value), ValueKind::JsonInteger, "number");
    }
    bool number_float(number_float_t, string_t const& text) override {
        return assign(text, ValueKind::JsonNumber, "number");
    }
    bool string(string_t& text) override { return assign(text, ValueKind::JsonString, "string"); }
    bool binary(binary_t&) override { return scalar("binary"); }
    bool start_object(std::size_t) override { return open("object"); }
    bool start_array(std::size_t) override { return open("array"); }
    bool end_object() override { return close(); }
    bool end_array() override { return close(); }

    bool key(string_t& name) override {
        if (m_depth != 1) return true;
        m_key = name;
        if (!m_names.insert(name).second) problem(name + " is given more than once");
        return true;
    }

    bool parse_error(std::size_t, std::string const& token, nlohmann::json::exception const& error) override {
        // A number beyond the double range: kept as written, so that the cell's own range is reported.
        if (error.id == 406 && m_depth == 1 && !m_key.empty() && isNumberText(token)) {
            m_assignments.push_back({m_key, token, ValueKind::JsonNumber, m_origin});
            return false;
        }
        std::string const at = m_depth >= 1 && !m_key.empty() ? " (at " + m_key + ")" : std::string();
        // The parser's text without its "[json.exception.parse_error.101] " tag.
        std::string reason = error.what();
        if (std::size_t const tag = reason.find("] ");
            reason.rfind("[json.exception.", 0) == 0 && tag != std::string::npos)
            reason.erase(0, tag + 2);
        m_problems.push_back("input file " + m_origin + " is not valid JSON" + at + ": " + reason);
        return false;
    }

    // The assignments read; throws HostError listing every problem found.
    std::vector<Assignment> result() const {
        if (!m_topKind.empty() && m_topKind != "object")
            throw HostError(kExitBadInput, "input file " + m_origin +
                                               " must hold one JSON object of NAME: value, not " + m_topKind);
        std::vector<std::string> problems = m_problems;
        if (m_unreported > 0)
            problems.push_back("... and " + std::to_string(m_unreported) + " more problems");
        if (!problems.empty()) throw HostError(kExitBadInput, joinLines(problems));
        return m_assignments;
    }

private:
    void problem(std::string const& text) {
        if (m_problems.size() < kReportedProblems)
            m_problems.push_back("input file " + m_origin + ": " + text);
        else
            ++m_unreported;
    }

    // A value: of the top level (not an object), of a name, or nested (already reported).
    bool value(char const* kind) {
        if (m_depth == 0) {
            m_topKind = kind;
            return false;
        }
        return true;
    }

    bool scalar(char const* kind) {
        if (!value(kind)) return false;
        if (m_depth == 1) problem(m_key + " must be a number or a string, not " + kind);
        return true;
    }

    bool assign(std::string const& text, ValueKind valueKind, char const* kind) {
        if (!value(kind)) return false;
        if (m_depth == 1) m_assignments.push_back({m_key, text, valueKind, m_origin});
        return true;
    }

    bool open(char const* kind) {
        if (m_depth == 0) {
            m_topKind = kind;
            if (m_topKind != "object") return false;
        } else if (m_depth == 1) {
            problem(m_key + " must be a number or a string, not " + kind);
        }
        ++m_depth;
        return true;
    }

    bool close() {
        --m_depth;
        return true;
    }

    std::string m_origin;
    int m_depth = 0;
    std::string m_topKind;
    std::string m_key;
    std::unordered_set<std::string> m_names;
    std::size_t m_unreported = 0;
    std::vector<Assignment> m_assignments;
    std::vector<std::string> m_problems;
};

}  // namespace

Assignment parseAssignment(std::string const& argument) {
    std::string::size_type const equals = argument.find('=');
    if (equals == std::string::npos || equals == 0)
        throw HostError(kExitBadInput, "expected NAME=VALUE, not \"" + argument + "\"");
    return {argument.substr(0, equals), argument.substr(equals + 1), ValueKind::Text, "command line"};
}

std::vector<Assignment> parseInputJson(std::string const& content, std::string const& origin) {
    InputObjectReader reader(origin);
    nlohmann::json::sax_parse(content, &reader);
    return reader.result();
}

std::vector<Assignment> readInputStream(std::istream& in, std::string const& origin) {
    std::string content;
    char buffer[65536];
    while (in.read(buffer, sizeof buffer) || in.gcount() > 0) {
        content.append(buffer, static_cast<std::size_t>(in.gcount()));
        if (content.size() > kInputFileLimit)
            throw HostError(kExitBadInput, "input file " + origin + " is larger than " +
                                               std::to_string(kInputFileLimit >> 20) + " MiB");
    }
    if (in.bad()) throw HostError(kExitBadInput, "cannot read input file " + origin);
    return parseInputJson(content, origin);
}

std::vector<Assignment> readInputFile(std::string const& path) {
    if (path == "-") return readInputStream(std::cin, "standard input");
    std::error_code failed;
    if (std::filesystem::is_directory(path, failed))
        throw HostError(kExitBadInput, "input file " + path + " is a directory, not a JSON file");
    std::ifstream file(path, std::ios::binary);
    if (!file) throw HostError(kExitBadInput, "cannot open input file " + path + ": " + std::strerror(errno));
    return readInputStream(file, path);
}

std::vector<Assignment> mergeAssignments(std::vector<Assignment> const& fromFile,
                                         std::vector<Assignment> const& fromCommandLine) {
    std::vector<Assignment> merged;
    std::unordered_map<std::string, std::size_t> place;
    for (auto const* list : {&fromFile, &fromCommandLine}) {
        for (Assignment const& assignment : *list) {
            auto const [it, added] = place.emplace(assignment.name, merged.size());
            if (added)
                merged.push_back(assignment);
            else
                merged[it->second] = assignment;
        }
    }
    return merged;
}

std::vector<ResolvedInput> resolveInputs(Sheet const& sheet, std::vector<Assignment> const& assignments) {
    std::vector<ResolvedInput> resolved;
    std::vector<std::string> problems;
    std::size_t unchecked = 0;
    for (Assignment const& assignment : assignments) {
        // Enough said: a hostile file of a million names is not answered name by name.
        if (problems.size() >= kReportedProblems) {
            ++unchecked;
            continue;
        }
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
    if (unchecked > 0)
        problems.push_back("... and " + std::to_string(unchecked) + " more inputs not checked");
    if (!problems.empty()) throw HostError(kExitBadInput, joinLines(problems));
    return resolved;
}

}  // namespace prsm::host
