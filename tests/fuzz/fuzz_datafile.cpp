// A data file made of arbitrary bytes, read through the library's loader: PRSMData::readFile parses it
// (text or gzip), every table of every top-level group is flattened into each kind of table the
// generated classes use, and a generated data class loads it as its own file and dumps it.
//
// The loader's documented failures are PRSMException and the configuration library's exceptions;
// anything else that ends the process is a finding.
#include "FuzzSupport.h"

#include <prsm/framework/PRSMConfigHelpers.h>
#include <prsm/framework/PRSMData.h>
#include <prsm/framework/PRSMException.h>
#include <prsm/models/talvex/PRSMTalvexCleLogicData.h>

#include <sys/stat.h>
#include <unistd.h>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <libconfig.h++>
#include <string>
#include <unordered_map>
#include <vector>

namespace {

// The data file the bytes become: the one the sheet's data class reads.
char const* const kRelative = "talvex/PRSMTalvexCleLogicData.cfg";
std::string g_root;  // a private QDI_DATADIR
std::string g_file;

void removeRoot() {
    std::remove(g_file.c_str());
    ::rmdir((g_root + "/powercfg/talvex").c_str());
    ::rmdir((g_root + "/powercfg").c_str());
    ::rmdir(g_root.c_str());
}

template <typename T>
void loadAs(libconfig::Config& cfg, std::vector<std::string> path) {
    std::unordered_map<std::string, T> table;
    PRSMHelperUtils::loadCfgDataToVar(&cfg, path, table, true);
    for (std::string const& key : PRSMHelperUtils::getCfgKeyVectorFromList(table))
        (void)PRSMHelperUtils::getCfgDataFromVar(table, key, "fuzz");
}

void loadEveryTable(libconfig::Config& cfg) {
    libconfig::Setting const& root = cfg.getRoot();
    for (int i = 0; i < root.getLength(); ++i) {
        libconfig::Setting const& top = root[i];
        if (!top.isGroup()) continue;
        for (int j = 0; j < top.getLength(); ++j) {
            std::vector<std::string> const path{top.getName(), top[j].getName()};
            loadAs<float>(cfg, path);
            loadAs<int>(cfg, path);
            loadAs<bool>(cfg, path);
            loadAs<std::string>(cfg, path);
            std::unordered_map<std::string, PRSMHelperUtils::CfgList> lists;
            std::vector<std::string> listPath = path;
            PRSMHelperUtils::loadCfgDataToList(&cfg, listPath, lists, true);
            for (std::string const& key : PRSMHelperUtils::getCfgKeyVectorFromList(lists))
                (void)PRSMHelperUtils::getCfgDataFromList(lists, key, "fuzz");
        }
    }
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    char pattern[] = "/tmp/prsm-fuzz-data-XXXXXX";
    if (::mkdtemp(pattern) == nullptr) std::abort();
    g_root = pattern;
    ::mkdir((g_root + "/powercfg").c_str(), 0700);
    ::mkdir((g_root + "/powercfg/talvex").c_str(), 0700);
    g_file = g_root + "/powercfg/" + kRelative;
    ::setenv("QDI_DATADIR", g_root.c_str(), 1);
    std::atexit(removeRoot);
    prsm::fuzz::quietStreams();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* bytes, std::size_t size) {
    std::FILE* file = std::fopen(g_file.c_str(), "wb");
    if (file == nullptr) std::abort();
    if (size != 0 && std::fwrite(bytes, 1, size, file) != size) std::abort();
    std::fclose(file);

    try {
        libconfig::Config cfg;
        PRSMData::readFile(&cfg, kRelative);
        loadEveryTable(cfg);
    } catch (PRSMException const&) {
    } catch (libconfig::ConfigException const&) {
    }
    try {
        PRSMTalvexCleLogicData const data;
        (void)data.reflect();
        std::vector<std::string> keys;
        data.getCfgKeys(keys);
        (void)data.getLutCapOrError("LUT_LOGIC");
        (void)data.getBlockPowerScaleOrError("DEFAULT", "LOGIC");
    } catch (PRSMException const&) {
    } catch (libconfig::ConfigException const&) {
    }
    return 0;
}
