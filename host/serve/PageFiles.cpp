#include <prsm/host/serve/PageFiles.h>

namespace prsm::host::serve {

namespace {

bool endsWith(std::string_view text, std::string_view end) {
    return text.size() >= end.size() && text.substr(text.size() - end.size()) == end;
}

}  // namespace

PageFile const* findPageFile(std::string_view name) {
    for (PageFile const& file : kPageFiles)
        if (file.name == name) return &file;
    return nullptr;
}

char const* contentType(std::string_view name) {
    if (endsWith(name, ".html")) return "text/html; charset=utf-8";
    if (endsWith(name, ".js")) return "text/javascript; charset=utf-8";
    if (endsWith(name, ".css")) return "text/css; charset=utf-8";
    return "application/octet-stream";
}

}  // namespace prsm::host::serve
