#pragma once
// The commands (models, cells, calc, presets, sweep, estimate, serve), from a parsed request to text on the
// two streams and an exit status.

#include <prsm/framework/PRSMSheetRegistry.h>
#include <prsm/host/DataDir.h>
#include <prsm/host/Request.h>

#include <iosfwd>
#include <string>

namespace prsm::host {

// The registered sheet of that name. Throws HostError(kExitBadInput) naming the closest names.
Sheet const& findSheet(std::string const& name);

// Runs the request. Results go to `out` only when complete; errors and warnings go to `err`, each line
// prefixed with "prsm: ". `dataDir` only feeds hints on data failures.
// Every failure ends as a message and exit status 2 or 3; a result that cannot be written ends with 3.
int runRequest(Request const& request, DataDirChoice const& dataDir, std::ostream& out, std::ostream& err);

// Flushes `out`; when it has failed, says so on `err` and returns kExitDataFailure, else kExitOk.
int checkWritten(std::ostream& out, std::ostream& err);

}  // namespace prsm::host
