#pragma once
// Input values from the command line and from a JSON file, checked against a sheet before anything is
// calculated: every problem is found up front so that a rejected run prints no result at all.

#include <prsm/framework/PRSMSheetRegistry.h>

#include <cstddef>
#include <iosfwd>
#include <string>
#include <vector>

namespace prsm::host {

// How a value was written: command-line text takes the cell's type; JSON says what it is.
enum class ValueKind { Text, JsonInteger, JsonNumber, JsonString };

struct Assignment {
    std::string name;
    std::string text;
    ValueKind kind = ValueKind::Text;
    std::string origin;  // "command line" or the input file's path
};

struct ResolvedInput {
    CellInfo const* cell;
    std::string text;  // ready for SheetInstance::set
};

// "NAME=VALUE" (the value may be empty and may hold '='). Throws HostError(kExitBadInput).
Assignment parseAssignment(std::string const& argument);

// Every NAME: value of a JSON object, numbers (as written) or strings, in the object's order. Throws
// HostError(kExitBadInput) when the file is missing or a directory, is not valid JSON, repeats a name or
// holds anything else. A number beyond the double range ends the reading: it is returned as written,
// last, for the cell to refuse. The path "-" reads standard input.
// At most this many problems are listed, one a line; the rest are counted.
inline constexpr std::size_t kReportedProblems = 50;

// An input file holds one object of inputs; anything larger than this is refused unread.
inline constexpr std::size_t kInputFileLimit = std::size_t{16} << 20;

std::vector<Assignment> parseInputJson(std::string const& content, std::string const& origin);
std::vector<Assignment> readInputStream(std::istream& in, std::string const& origin);
std::vector<Assignment> readInputFile(std::string const& path);

// The file's values overridden by the command line's, a name appearing once, at its first place.
std::vector<Assignment> mergeAssignments(std::vector<Assignment> const& fromFile,
                                         std::vector<Assignment> const& fromCommandLine);

// Checks every assignment against the sheet: the cell exists, is a user input and the value parses as
// its type. Throws HostError(kExitBadInput) listing every problem, one a line.
std::vector<ResolvedInput> resolveInputs(Sheet const& sheet, std::vector<Assignment> const& assignments);

}  // namespace prsm::host
