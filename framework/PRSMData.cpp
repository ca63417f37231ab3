#include <prsm/framework/PRSMData.h>

#include <prsm/framework/PRSMException.h>

#include <algorithm>
#include <boost/filesystem.hpp>
#include <boost/iostreams/device/array.hpp>
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

// The whole file, read once: its first bytes tell its kind, and the text is parsed from memory.
std::string readAll(fs::path const& path) {
    std::ifstream in(path.string(), std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
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
        std::string const content = readAll(path);
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
