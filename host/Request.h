#pragma once
// The command line turned into one request; nothing here touches a sheet or the data.

#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

namespace prsm::host {

enum class Command { Models, Cells, Calc, Presets, Sweep, Estimate, Serve, Diff };
enum class OutputFormat { Table, Json, Reflect, Csv };

// `sweep`: which outputs, the output format and the picture.
struct SweepSettings {
    std::string outputs;  // comma-separated names or globs; empty for the target's default outputs
    bool csv = false;
    bool json = false;
    std::string plot;  // FILE.png or FILE.svg; empty for none
    unsigned threads = 0;
};

// `serve`: where the page is served, and the device of a design started from nothing.
struct ServeSettings {
    std::string host = "127.0.0.1";
    int port = 8080;
    std::string part = "ZQVC1902";
};

struct Request {
    Command command = Command::Models;
    std::string model;
    std::vector<std::string> assignments;  // NAME=VALUE, in command-line order
    std::string inputFile;                 // a JSON object of NAME: value; empty when none
    std::string preset;  // `calc --preset`: a preset of the model, or "list"; empty when none
    std::string designFile;  // `estimate`, `serve`, `diff A B` (A): the design file
    std::string htmlFile;    // `estimate --html`: where the report's page goes; empty when none
    bool corners = false;    // `estimate --corners`: typical and worst case side by side
    std::string secondDesignFile;  // `diff A B`: B (designFile is A)
    std::optional<double> maxJunction;  // `estimate --max-junction T`: degC
    OutputFormat format = OutputFormat::Table;
    std::string category;  // `cells`: "input", "output" or "intermediate"; empty for all
    std::string outputs;   // `calc`: comma-separated names or globs of the outputs shown; empty for all
    bool verbose = false;
    SweepSettings sweep;
    ServeSettings serve;
};

struct ParsedCommandLine {
    std::optional<Request> request;  // empty when the program should end with `exitCode`
    int exitCode = 0;
};

// Parses argv. Help and version text go to `out` (exit 0), usage errors to `err` (exit 2).
ParsedCommandLine parseCommandLine(int argc, char const* const* argv, std::ostream& out, std::ostream& err);

}  // namespace prsm::host
