#pragma once
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
    // decompressed first; any other file that is not text is refused. Failures are reported on
    // standard error and rethrown unchanged.
    static void readFile(libconfig::Config* cfg, std::string relative);
};
