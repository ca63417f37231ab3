#pragma once
// Where the host finds data when the user has not said. The library never guesses: with QDI_DATADIR
// unset it fails. The host instead points the variable at the shipped data, preferring the installed
// copy beside the executable over the source tree it was built from.

#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

namespace prsm::host {

enum class DataDirSource { Environment, Installed, SourceTree, None };

struct DataDirChoice {
    DataDirSource source = DataDirSource::None;
    std::string path;                   // the QDI_DATADIR value to use; empty for None
    std::vector<std::string> searched;  // for None: the folders looked in for shipped data
};

// Decides without touching the environment. `environment` is QDI_DATADIR's value (null when unset),
// `exeDir` the folder of the running executable (may be empty), `installedRelative` the shipped data's
// path relative to that folder, `sourceDir` the source tree's data folder. A shipped candidate counts
// only when it holds a powercfg/ folder.
DataDirChoice chooseDataDir(char const* environment, std::string const& exeDir,
                            std::string const& installedRelative, std::string const& sourceDir);

// The folder of the running executable, or empty when it cannot be found.
std::string executableDir(char const* argv0);

// Chooses for this process, sets QDI_DATADIR when the choice is shipped data, and with `verbose`
// says on `log` what is used. Returns the choice.
DataDirChoice applyDataDir(char const* argv0, bool verbose, std::ostream& log);

// A hint for failure messages: where data was looked for.
std::string describeDataDir(DataDirChoice const& choice);

}  // namespace prsm::host
