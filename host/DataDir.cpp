#include <prsm/host/DataDir.h>

#include <cstdlib>
#include <filesystem>
#include <ostream>
#include <system_error>

namespace fs = std::filesystem;

namespace prsm::host {

namespace {

bool holdsData(fs::path const& dir) {
    std::error_code ignored;
    return !dir.empty() && fs::is_directory(dir / "powercfg", ignored);
}

std::string tidy(fs::path const& path) {
    std::error_code failed;
    fs::path const canonical = fs::weakly_canonical(path, failed);
    return (failed ? path.lexically_normal() : canonical).string();
}

}  // namespace

DataDirChoice chooseDataDir(char const* environment, std::string const& exeDir,
                            std::string const& installedRelative, std::string const& sourceDir) {
    if (environment != nullptr) return {DataDirSource::Environment, environment, {}};
    DataDirChoice none{DataDirSource::None, std::string(), {}};
    if (!exeDir.empty()) {
        fs::path const installed = fs::path(exeDir) / installedRelative;
        if (holdsData(installed)) return {DataDirSource::Installed, tidy(installed), {}};
        none.searched.push_back(tidy(installed));
    }
    if (holdsData(sourceDir)) return {DataDirSource::SourceTree, tidy(sourceDir), {}};
    if (!sourceDir.empty()) none.searched.push_back(tidy(sourceDir));
    return none;
}

std::string executableDir(char const* argv0) {
    std::error_code failed;
    fs::path const self = fs::read_symlink("/proc/self/exe", failed);
    if (!failed && !self.empty()) return self.parent_path().string();
    // Without /proc, argv[0] names the executable when it holds a slash.
    std::string const invoked = argv0 != nullptr ? argv0 : "";
    if (invoked.find('/') == std::string::npos) return std::string();
    fs::path const absolute = fs::absolute(invoked, failed);
    return failed ? std::string() : absolute.parent_path().string();
}

DataDirChoice applyDataDir(char const* argv0, bool verbose, std::ostream& log) {
    DataDirChoice const choice = chooseDataDir(std::getenv("QDI_DATADIR"), executableDir(argv0),
                                               PRSM_HOST_INSTALLED_DATADIR, PRSM_HOST_SOURCE_DATADIR);
    if (choice.source == DataDirSource::Installed || choice.source == DataDirSource::SourceTree)
        ::setenv("QDI_DATADIR", choice.path.c_str(), 1);
    if (verbose) log << "prsm: " << describeDataDir(choice) << "\n";
    return choice;
}

std::string describeDataDir(DataDirChoice const& choice) {
    switch (choice.source) {
        case DataDirSource::Environment:
            return "data directory from QDI_DATADIR: " + choice.path;
        case DataDirSource::Installed:
            return "QDI_DATADIR unset; using the installed data: " + choice.path;
        case DataDirSource::SourceTree:
            return "QDI_DATADIR unset; using the source tree's data: " + choice.path;
        case DataDirSource::None:
            break;
    }
    std::string looked;
    for (std::string const& folder : choice.searched)
        looked += (looked.empty() ? " (looked in " : " and ") + folder;
    if (!looked.empty()) looked += ")";
    return "QDI_DATADIR is unset and no shipped data was found" + looked +
           ", so no model can read its data; set QDI_DATADIR to a folder holding powercfg/";
}

}  // namespace prsm::host
