#pragma once
// The folder `prsm serve` was started in: the only place its page may open or save a design file.

#include <filesystem>
#include <string>

namespace prsm::host::serve {

class Workspace {
public:
    // `root` must exist; it is resolved once, links included.
    explicit Workspace(std::filesystem::path const& root);

    // The file `name` names inside the folder, with every link resolved. Throws HostError(kExitBadInput)
    // for an empty name, a name with a ".." part, an absolute name, or one that resolves (through a
    // link) outside the folder; the file itself need not exist.
    std::filesystem::path resolve(std::string const& name) const;

    std::filesystem::path const& root() const { return m_root; }

private:
    std::filesystem::path m_root;
};

// The text of the design file `name` names inside the folder. Throws HostError(kExitBadInput) when it
// is refused as above or cannot be read.
std::string readDesignText(Workspace const& workspace, std::string const& name);

}  // namespace prsm::host::serve
