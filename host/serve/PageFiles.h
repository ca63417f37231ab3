#pragma once
// The page `prsm serve` sends to the browser (its HTML, script and styles), built into the program
// from host/serve/page/ when it is compiled.

#include <string_view>
#include <vector>

namespace prsm::host::serve {

struct PageFile {
    std::string_view name;  // "index.html", "app.js", "style.css"
    std::string_view content;
};

extern std::vector<PageFile> const kPageFiles;

// The file of that name, or null.
PageFile const* findPageFile(std::string_view name);
// The Content-Type of a file by its extension.
char const* contentType(std::string_view name);

}  // namespace prsm::host::serve
