#pragma once
// The text of a data file as the parser gets it, and where each of its lines came from.
//
// A data file is read whole into memory (decompressed when it is gzip), its @include directives are
// replaced by the text of the files they name, and integer literals that the parser would wrap are
// widened first. The assembly also enforces the loader's limits on size and on settings per group.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace libconfig {
class Config;
class Setting;
}  // namespace libconfig

namespace prsm::data {

// Which file and line each line of the assembled text came from.
class SourceMap {
public:
    struct Place {
        std::string const* file;
        int line;
    };

    // Lines from `textLine` on come from `file`, starting at its line `fileLine`.
    void start(int textLine, std::string const& file, int fileLine);
    Place locate(int textLine) const;
    std::string describe(int textLine) const;  // "<file>:<line>"

private:
    struct Segment {
        int textLine;
        std::size_t file;
        int fileLine;
    };
    std::vector<std::string> m_files;
    std::vector<Segment> m_segments;
};

struct Limits {
    std::size_t maxBytes;         // text of a file and everything it includes, after decompression
    std::uint64_t maxGroupPairs;  // pairs of settings sharing a group, summed over the groups
};

struct AssembledText {
    std::string text;
    std::shared_ptr<SourceMap> sources;
};

// The text of `file`, whose bytes are `content`, with everything it includes. Throws PRSMException
// naming the file for a damaged or oversized compressed file, binary content, a file beyond the
// limits, and an include that cannot be read or leaves `dataDirs`.
AssembledText assembleDataText(std::string const& file, std::string const& content,
                               std::vector<std::string> const& dataDirs, Limits const& limits);

// Remembers, for the current thread, where the settings of `cfg` came from (the last few files read).
void rememberSources(libconfig::Config const* cfg, std::shared_ptr<SourceMap> sources);

// "<file>:<line>" of a setting of `cfg`, when PRSMData::readFile filled cfg on this thread; else "line
// <n>" (or "" without a line).
std::string describeSource(libconfig::Config const* cfg, libconfig::Setting const& setting);

}  // namespace prsm::data
