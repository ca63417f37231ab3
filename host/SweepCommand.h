#pragma once
// `prsm sweep`: its command-line options, and the run from a parsed request to rows on standard output,
// an optional picture, progress on standard error and an exit status.

#include <prsm/host/Request.h>
#include <prsm/host/Sweep.h>

#include <iosfwd>

namespace CLI {
class App;
}

namespace prsm::host {

// Exit status of a sweep stopped by Ctrl-C (the rows done so far are written): 128 + SIGINT.
constexpr int kExitInterrupted = 130;

// Adds the `sweep` subcommand, filling `request` when it is parsed.
CLI::App* addSweepSubcommand(CLI::App& app, Request& request);

// The sweep's rows as CSV, as JSON and as an aligned table.
std::string sweepCsv(SweepResult const& result);
std::string sweepJson(SweepResult const& result);
std::string sweepTable(SweepResult const& result);

// Runs the sweep of `request`. Throws HostError for rejected input and failed points.
int runSweepRequest(Request const& request, std::ostream& out, std::ostream& err);

}  // namespace prsm::host
