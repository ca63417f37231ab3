// prsm: list the registered models, describe their cells and calculate one from the command line.

#include <prsm/host/Commands.h>
#include <prsm/host/DataDir.h>
#include <prsm/host/Failures.h>
#include <prsm/host/HostError.h>
#include <prsm/host/Request.h>

#include <iostream>

int main(int argc, char** argv) {
    using namespace prsm::host;
    try {
        ParsedCommandLine const parsed = parseCommandLine(argc, argv, std::cout, std::cerr);
        if (!parsed.request)
            return parsed.exitCode == kExitOk ? checkWritten(std::cout, std::cerr) : parsed.exitCode;
        DataDirChoice const dataDir =
            applyDataDir(argc > 0 ? argv[0] : nullptr, parsed.request->verbose, std::cerr);
        return runRequest(*parsed.request, dataDir, std::cout, std::cerr);
    } catch (...) {
        std::cerr << "prsm: error: " << describeCurrentException() << "\n";
        return kExitDataFailure;
    }
}
