#include <prsm/framework/PRSMData.h>

#include <prsm/framework/PRSMDataText.h>
#include <prsm/framework/PRSMException.h>

#include <atomic>
#include <boost/filesystem.hpp>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iostream>
#include <iterator>
#include <libconfig.h++>
#include <stdexcept>

namespace fs = boost::filesystem;

namespace {

std::atomic<std::size_t> g_maxDataBytes{PRSMData::kDefaultMaxDataBytes};
std::atomic<std::uint64_t> g_maxGroupPairs{PRSMData::kDefaultMaxGroupPairs};

thread_local std::string t_lastLoadFailure;

// QDI_DATADIR split at ':' (empty parts dropped). The variable must be set: constructing a string from
// a null pointer fails with this logic error.
std::vector<std::string> dataDirectories() {
    char const* variable = std::getenv("QDI_DATADIR");
    if (variable == nullptr) throw std::logic_error("basic_string::_M_construct null not valid");
    std::string const dirs(variable);
    std::vector<std::string> result;
    std::string::size_type begin = 0;
    while (begin <= dirs.size()) {
        std::string::size_type end = dirs.find(':', begin);
        if (end == std::string::npos) end = dirs.size();
        if (end > begin) result.push_back(dirs.substr(begin, end - begin));
        begin = end + 1;
    }
    return result;
}

// Why no data directory offers `underDataDir` as a file: the first thing found in its place (a
// directory, a link to nothing, a link loop), or the list of directories searched.
std::string whyNotFound(std::string const& underDataDir, std::vector<std::string> const& dirs) {
    if (dirs.empty()) return "data file " + underDataDir + " not found: QDI_DATADIR names no directory";
    std::string searched;
    for (std::string const& dir : dirs) {
        fs::path const candidate = fs::path(dir) / underDataDir;
        boost::system::error_code error;
        fs::file_status const link = fs::symlink_status(candidate, error);
        if (fs::exists(link)) {
            fs::file_status const target = fs::status(candidate, error);
            if (error && error.value() == ELOOP) return "data file " + candidate.string() + " is a link loop";
            if (fs::is_symlink(link) && !fs::exists(target))
                return "data file " + candidate.string() + " is a link to a missing file";
            if (fs::is_directory(target)) return "data file " + candidate.string() + " is a directory";
            if (!fs::is_regular_file(target))
                return "data file " + candidate.string() + " is not a regular file";
        }
        searched += (searched.empty() ? "" : ", ") + dir;
    }
    return "data file " + underDataDir + " not found in the data directories (QDI_DATADIR): " + searched;
}

}  // namespace

std::string PRSMData::getQDIDataDir(std::string const& relative) {
    for (std::string const& dir : dataDirectories()) {
        boost::system::error_code ignored;
        if (fs::exists(fs::path(dir) / relative, ignored)) return dir;
    }
    return std::string();
}

void PRSMData::readFile(libconfig::Config* cfg, std::string relative) {
    std::string const underDataDir = "powercfg/" + relative;
    std::string const dir = getQDIDataDir(underDataDir);
    fs::path const path = dir.empty() ? fs::path() : fs::path(dir + "/" + underDataDir);
    cfg->setAutoConvert(true);
    t_lastLoadFailure.clear();
    std::shared_ptr<prsm::data::SourceMap> sources;
    try {
        boost::system::error_code error;
        if (path.empty() || !fs::is_regular_file(path, error)) {
            t_lastLoadFailure = whyNotFound(underDataDir, dataDirectories());
            throw libconfig::FileIOException();
        }
        std::uintmax_t const size = fs::file_size(path, error);
        std::size_t const limit = maxDataBytes();
        if (!error && size > limit)
            throw PRSMException(("data file " + path.string() + " is larger than " + std::to_string(limit) +
                                 " bytes, the loader's limit for a data file (PRSMData::setMaxDataBytes)")
                                    .c_str(),
                                "PRSMData::readFile");
        std::ifstream in(path.string(), std::ios::binary);
        if (!in) {
            t_lastLoadFailure = "data file " + path.string() + " cannot be read: " + std::strerror(errno);
            throw libconfig::FileIOException();
        }
        std::string const content{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
        prsm::data::AssembledText assembled =
            prsm::data::assembleDataText(path.string(), content, dataDirectories(), {limit, maxGroupPairs()});
        sources = assembled.sources;
        // Every include is already in the text; one that the parser would still find fails, since no
        // path can lie below a regular file.
        cfg->setIncludeDir(path.c_str());
        cfg->readString(assembled.text);
        prsm::data::rememberSources(cfg, sources);
    } catch (libconfig::ParseException const& e) {
        // The text is parsed from memory, so the parser knows no file name: the source map does.
        std::string const where = sources != nullptr ? sources->describe(e.getLine())
                                                     : path.string() + ":" + std::to_string(e.getLine());
        std::cerr << "Parse error at " << where << " - " << e.getError() << std::endl;
        prsm::data::SourceMap::Place const place = sources != nullptr
                                                       ? sources->locate(e.getLine())
                                                       : prsm::data::SourceMap::Place{nullptr, e.getLine()};
        t_lastLoadFailure = "data file " + (place.file != nullptr ? *place.file : path.string()) +
                            " does not parse at line " + std::to_string(place.line) + ": " + e.getError();
        throw;
    } catch (libconfig::FileIOException const&) {
        // The report is this one line; which file, and what stands in its place, is for hosts to show.
        std::cerr << "I/O error while reading file." << std::endl;
        if (t_lastLoadFailure.empty()) t_lastLoadFailure = "data file " + path.string() + " cannot be read";
        throw;
    } catch (PRSMException const& e) {
        std::cerr << "PRS Data Exception: " << e.what() << std::endl;
        t_lastLoadFailure = e.what();
        throw;
    }
}

std::string PRSMData::lastLoadFailure() {
    return t_lastLoadFailure;
}

void PRSMData::setMaxDataBytes(std::size_t bytes) {
    g_maxDataBytes = bytes;
}

std::size_t PRSMData::maxDataBytes() {
    return g_maxDataBytes;
}

void PRSMData::setMaxGroupPairs(std::uint64_t pairs) {
    g_maxGroupPairs = pairs;
}

std::uint64_t PRSMData::maxGroupPairs() {
    return g_maxGroupPairs;
}
