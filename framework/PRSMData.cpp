#include <prsm/framework/PRSMData.h>

#include <prsm/framework/PRSMException.h>

#include <boost/filesystem.hpp>
#include <boost/iostreams/filter/gzip.hpp>
#include <boost/iostreams/filtering_stream.hpp>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <iterator>
#include <libconfig.h++>
#include <stdexcept>

namespace fs = boost::filesystem;

namespace {

enum class FileKind { Text, Gzip, Binary };

// gzip is recognised by its magic bytes; any other file with a NUL byte near its start is not text.
FileKind classify(fs::path const& path) {
    std::ifstream in(path.string(), std::ios::binary);
    char head[512];
    in.read(head, sizeof head);
    std::streamsize const n = in.gcount();
    if (n >= 2 && static_cast<unsigned char>(head[0]) == 0x1f && static_cast<unsigned char>(head[1]) == 0x8b)
        return FileKind::Gzip;
    for (std::streamsize i = 0; i < n; ++i)
        if (head[i] == '\0') return FileKind::Binary;
    return FileKind::Text;
}

std::string decompressGzip(fs::path const& path) {
    try {
        std::ifstream file(path.string(), std::ios::binary);
        boost::iostreams::filtering_istream in;
        in.push(boost::iostreams::gzip_decompressor());
        in.push(file);
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
        boost::system::error_code ignored;
        if (!dir.empty() && fs::exists(fs::path(dir) / relative, ignored)) return dir;
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
        boost::system::error_code ignored;
        if (path.empty() || !fs::is_regular_file(path, ignored)) throw libconfig::FileIOException();
        switch (classify(path)) {
            case FileKind::Gzip:
                cfg->readString(decompressGzip(path));
                break;
            case FileKind::Binary:
                throw PRSMException(("data file " + path.string() + " is neither text nor gzip").c_str(),
                                    "PRSMData::readFile");
            case FileKind::Text:
                cfg->readFile(path.string().c_str());
                break;
        }
    } catch (libconfig::ParseException const& e) {
        char const* file = e.getFile();  // null when the text came from a decompressed buffer
        std::cerr << "Parse error at " << (file != nullptr ? file : path.string().c_str()) << ":" << e.getLine() << " - " << e.getError()
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
