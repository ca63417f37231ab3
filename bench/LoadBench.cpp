// Loading the shipped data files: libconfig's own parse of each file, the library's file reader (which
// also finds the file through QDI_DATADIR and checks its kind) and two of its steps alone, and, in
// TypedBench.h, the construction of a fresh data object, which adds filling the tables.
#include "BenchSupport.h"

#include <prsm/framework/PRSMData.h>

#include <algorithm>
#include <exception>
#include <filesystem>
#include <fstream>
#include <libconfig.h++>

namespace prsm::bench {
namespace {

namespace fs = std::filesystem;

// Every file under <data root>/powercfg/<folder>/, as "<folder>/<file>".
std::vector<std::string> shippedDataFiles() {
    std::vector<std::string> files;
    fs::path const root = fs::path(dataRoot()) / "powercfg";
    std::error_code ignored;
    for (auto const& folder : fs::directory_iterator(root, ignored)) {
        if (!folder.is_directory()) continue;
        for (auto const& file : fs::directory_iterator(folder.path(), ignored))
            if (file.is_regular_file())
                files.push_back(folder.path().filename().string() + "/" + file.path().filename().string());
    }
    std::sort(files.begin(), files.end());
    return files;
}

void libconfigParse(benchmark::State& state, std::string const& path) {
    try {
        libconfig::Config probe;
        probe.readFile(path.c_str());
    } catch (std::exception const& e) {
        state.SkipWithError((std::string("libconfig cannot read the file: ") + e.what()).c_str());
        for (auto _ : state) {
        }
        return;
    }
    AllocMeter const meter;
    for (auto _ : state) {
        libconfig::Config cfg;
        cfg.readFile(path.c_str());
        benchmark::DoNotOptimize(&cfg);
    }
    meter.report(state);
}

void libraryReadFile(benchmark::State& state, std::string const& relative) {
    try {
        libconfig::Config probe;
        PRSMData::readFile(&probe, relative);
    } catch (std::exception const& e) {
        state.SkipWithError((std::string("the library cannot read the file: ") + e.what()).c_str());
        for (auto _ : state) {
        }
        return;
    }
    AllocMeter const meter;
    for (auto _ : state) {
        libconfig::Config cfg;
        PRSMData::readFile(&cfg, relative);
        benchmark::DoNotOptimize(&cfg);
    }
    meter.report(state);
}

// Finding the file through QDI_DATADIR alone, the first step of the library's reader.
void libraryLocate(benchmark::State& state, std::string const& relative) {
    std::string const underDataDir = "powercfg/" + relative;
    for (auto _ : state) {
        std::string dir = PRSMData::getQDIDataDir(underDataDir);
        benchmark::DoNotOptimize(dir);
    }
}

// Opening the file and reading its first 512 bytes, as the library's reader does to tell text from a
// compressed or binary file before it lets libconfig open the file again.
void headRead(benchmark::State& state, std::string const& path) {
    for (auto _ : state) {
        std::ifstream in(path, std::ios::binary);
        char head[512];
        in.read(head, sizeof head);
        benchmark::DoNotOptimize(head);
    }
}

}  // namespace

void registerLoadBenchmarks() {
    for (std::string const& file : shippedDataFiles()) {
        std::string const path = dataRoot() + "/powercfg/" + file;
        benchmark::RegisterBenchmark(("load/libconfig_parse/" + file).c_str(), libconfigParse, path)
            ->Unit(benchmark::kMicrosecond);
        benchmark::RegisterBenchmark(("load/data_readFile/" + file).c_str(), libraryReadFile, file)
            ->Unit(benchmark::kMicrosecond);
        benchmark::RegisterBenchmark(("load/data_locate/" + file).c_str(), libraryLocate, file)
            ->Unit(benchmark::kMicrosecond);
        benchmark::RegisterBenchmark(("load/head_read/" + file).c_str(), headRead, path)
            ->Unit(benchmark::kMicrosecond);
    }
}

}  // namespace prsm::bench
