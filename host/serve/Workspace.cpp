#include <prsm/host/HostError.h>
#include <prsm/host/serve/Workspace.h>

#include <algorithm>
#include <fstream>
#include <sstream>

namespace prsm::host::serve {

namespace fs = std::filesystem;

Workspace::Workspace(fs::path const& root) : m_root(fs::canonical(root)) {}

fs::path Workspace::resolve(std::string const& name) const {
    fs::path const given(name);
    if (name.empty()) throw HostError(kExitBadInput, "no file name given");
    // Absolute names are refused even when they point inside: the page names files relative to the folder.
    if (given.is_absolute() || given.has_root_name())
        throw HostError(kExitBadInput,
                        "file " + name + ": give a name relative to the folder prsm serve runs in");
    if (std::any_of(given.begin(), given.end(), [](fs::path const& part) { return part == ".."; }))
        throw HostError(kExitBadInput, "file " + name + ": \"..\" is not allowed in a file name");
    // weakly_canonical follows every link that exists, so a link out of the folder is caught here.
    fs::path const resolved = fs::weakly_canonical(m_root / given);
    auto const [rootEnd, unused] =
        std::mismatch(m_root.begin(), m_root.end(), resolved.begin(), resolved.end());
    if (rootEnd != m_root.end() || resolved == m_root)
        throw HostError(kExitBadInput, "file " + name + " lies outside the folder prsm serve runs in");
    return resolved;
}

std::string readDesignText(Workspace const& workspace, std::string const& name) {
    std::ifstream in(workspace.resolve(name), std::ios::binary);
    std::ostringstream text;
    if (!(in && text << in.rdbuf()))
        throw HostError(kExitBadInput, name + ": cannot be read");  // as `prsm estimate` says it
    return text.str();
}

}  // namespace prsm::host::serve
