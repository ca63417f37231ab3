#include <prsm/framework/PRSMData.h>

#include <prsm/framework/PRSMException.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <boost/filesystem.hpp>
#include <boost/iostreams/device/array.hpp>
#include <boost/iostreams/filter/gzip.hpp>
#include <boost/iostreams/filtering_stream.hpp>
#include <cerrno>
#include <cstdlib>
#include <iostream>
#include <iterator>
#include <libconfig.h++>
#include <stdexcept>

namespace fs = boost::filesystem;

namespace {

// Reads the whole file at `path` into `content`, once: its first bytes tell its kind, and the text is
// parsed from memory. False when the file cannot be opened or is not a regular file (it is opened
// without blocking, so that a FIFO is refused rather than waited on).
bool readRegularFile(std::string const& path, std::string& content) {
    int const fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (fd < 0) return false;
    struct stat info {};
    bool const regular = ::fstat(fd, &info) == 0 && S_ISREG(info.st_mode);
    if (regular) {
        content.resize(static_cast<std::size_t>(info.st_size));
        std::size_t done = 0;
        for (;;) {
            if (done == content.size()) content.resize(done + 4096);  // the file grew since fstat
            ssize_t const n = ::read(fd, &content[done], content.size() - done);
            if (n < 0 && errno == EINTR) continue;
            if (n <= 0) break;
            done += static_cast<std::size_t>(n);
        }
        content.resize(done);
    }
    ::close(fd);
    return regular;
}

bool isGzip(std::string const& content) {
    return content.size() >= 2 && static_cast<unsigned char>(content[0]) == 0x1f &&
           static_cast<unsigned char>(content[1]) == 0x8b;
}

// Any other file with a NUL byte near its start is not text.
bool isBinary(std::string const& content) {
    return content.find('\0') < std::min<std::size_t>(content.size(), 512);
}

std::string decompressGzip(fs::path const& path, std::string const& content) {
    try {
        boost::iostreams::filtering_istream in;
        in.push(boost::iostreams::gzip_decompressor());
        in.push(boost::iostreams::array_source(content.data(), content.size()));
        return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    } catch (std::exception const& e) {
        throw PRSMException(("cannot decompress data file " + path.string() + ": " + e.what()).c_str(),
                            "PRSMData::readFile");
    }
}

}  // namespace

std::string PRSMData::getQDIDataDir(std::string const& relative) {
    char const* variable = std::getenv("QDI_DATADIR");
    // Constructing a string from a null pointer fails with this logic error; the variable is required.
    if (variable == nullptr) throw std::logic_error("basic_string::_M_construct null not valid");
    std::string const dirs(variable);
    std::string::size_type begin = 0;
    while (begin <= dirs.size()) {
        std::string::size_type end = dirs.find(':', begin);
        if (end == std::string::npos) end = dirs.size();
        std::string const dir = dirs.substr(begin, end - begin);
        struct stat info {};
        if (!dir.empty() && ::stat((dir + "/" + relative).c_str(), &info) == 0) return dir;
        begin = end + 1;
    }
    return std::string();
}

void PRSMData::readFile(libconfig::Config* cfg, std::string relative) {
    std::string const underDataDir = "powercfg/" + relative;
    std::string const dir = getQDIDataDir(underDataDir);
    fs::path const path = dir.empty() ? fs::path() : fs::path(dir + "/" + underDataDir);
    cfg->setAutoConvert(true);
    try {
        std::string content;
        if (path.empty() || !readRegularFile(path.string(), content)) throw libconfig::FileIOException();
        if (isGzip(content))
            cfg->readString(decompressGzip(path, content));
        else if (isBinary(content))
            throw PRSMException(("data file " + path.string() + " is neither text nor gzip").c_str(),
                                "PRSMData::readFile");
        else
            cfg->readString(content);
    } catch (libconfig::ParseException const& e) {
        // The text is parsed from memory, so the parser knows no file name: name the file here.
        std::cerr << "Parse error at " << path.string() << ":" << e.getLine() << " - " << e.getError()
                  << std::endl;
        throw;
    } catch (libconfig::FileIOException const&) {
        std::cerr << "I/O error while reading file." << std::endl;
        throw;
    } catch (PRSMException const& e) {
        std::cerr << "PRS Data Exception: " << e.what() << std::endl;
        throw;
    }
}
