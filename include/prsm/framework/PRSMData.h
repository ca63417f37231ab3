#pragma once
#include <cstddef>
#include <cstdint>
#include <string>

namespace libconfig {
class Config;
}

// Base of every data class: the characterisation tables of one block, loaded from its configuration
// file. Slot order: className, reflect, then the destructor (unlike PRSMParams).
class PRSMData {
public:
    virtual std::string className() const;
    virtual std::string reflect() const = 0;
    virtual ~PRSMData();

    // The first directory of the ':'-separated QDI_DATADIR under which `relative` exists, or an empty
    // string when none holds it. QDI_DATADIR must be set: an unset variable throws std::logic_error.
    static std::string getQDIDataDir(std::string const& relative);

    // Locates <dir>/powercfg/<relative> through getQDIDataDir and parses it into `cfg`. A gzip file is
    // decompressed first; any other file that is not text is refused. An @include names a file relative
    // to the including file's folder, inside the data directories. A failure is reported on standard
    // error in one line ("Parse error at <file>:<line> - <text>", "I/O error while reading file.",
    // "PRS Data Exception: <message>") and rethrown unchanged; lastLoadFailure() holds the detail.
    static void readFile(libconfig::Config* cfg, std::string relative);

    // Why the last readFile on this thread failed, in one line that names the file (and, for a file
    // not found, the directories searched); empty when it succeeded. Hosts use it to explain the
    // configuration library's exceptions, which carry no file name for text parsed from memory.
    static std::string lastLoadFailure();

    // Limits on what readFile accepts, for every thread; a file beyond them fails with a PRSMException
    // that names it. The text of a file with everything it includes, after decompression, may hold at
    // most maxDataBytes bytes. The parser compares each new setting's name with every earlier one of
    // its group, so the pairs of settings sharing a group, summed over the groups, are capped too (the
    // default admits one group of 8,192 settings, or 1,024 groups of 256).
    static constexpr std::size_t kDefaultMaxDataBytes = std::size_t{32} << 20;
    static constexpr std::uint64_t kDefaultMaxGroupPairs = std::uint64_t{1} << 25;
    static void setMaxDataBytes(std::size_t bytes);
    static std::size_t maxDataBytes();
    static void setMaxGroupPairs(std::uint64_t pairs);
    static std::uint64_t maxGroupPairs();
};
