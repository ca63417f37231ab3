#pragma once
// The `prsm` command line run in process, as main() runs it, on the test process's data directory.
#include <prsm/host/Commands.h>
#include <prsm/host/Request.h>

#include <sstream>
#include <string>
#include <vector>

namespace prsm::host {

// `args` follow the program's name ({"estimate", "small.json", "--json"}); returns the exit status and
// writes what the command printed into `out` and `err`.
inline int runCommandLine(std::vector<char const*> args, std::string& out, std::string& err) {
    args.insert(args.begin(), "prsm");
    std::ostringstream outStream, errStream;
    ParsedCommandLine const parsed =
        parseCommandLine(static_cast<int>(args.size()), args.data(), outStream, errStream);
    int const status =
        parsed.request ? runRequest(*parsed.request, {}, outStream, errStream) : parsed.exitCode;
    out = outStream.str();
    err = errStream.str();
    return status;
}

}  // namespace prsm::host
