// The benchmark program. Run it from the build tree (see bench/README.md):
//   build-bench/bench/prsm_bench [--trace-allocs] [Google Benchmark options]
// --trace-allocs prints the call stack of every heap allocation made by one steady-state calculate of
// each sheet, then exits without running the benchmarks.
#include "BenchSupport.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>

namespace {

using namespace prsm::bench;

void describePlans() {
    for (SheetPlan const& plan : sheetPlans()) {
        if (!plan.error.empty()) {
            std::fprintf(stderr, "sheet %s: not benchmarked: %s\n", plan.name.c_str(), plan.error.c_str());
            continue;
        }
        std::fprintf(stderr, "sheet %s: ", plan.name.c_str());
        if (plan.hasToggle)
            std::fprintf(stderr, "input %s toggles %s <-> %s%s", plan.toggleInput.c_str(),
                         plan.toggleText[0].c_str(), plan.toggleText[1].c_str(),
                         plan.toggleChecked ? "" : " (no candidate passed its rule)");
        else
            std::fprintf(stderr, "no numeric input");
        std::fprintf(stderr, "; reads %s\n",
                     plan.hasFloatOutput ? plan.floatOutput.c_str() : "no float output");
    }
}

int traceAllocations() {
    for (SheetPlan const& plan : sheetPlans()) {
        if (!plan.error.empty()) continue;
        auto instance = plan.sheet->create();
        instance->calculate();
        instance->calculate();
        std::fprintf(stderr, "==== %s: steady-state calculate\n", plan.name.c_str());
        std::uint64_t const before = allocationCount();
        setAllocationTracing(true);
        instance->calculate();
        setAllocationTracing(false);
        std::fprintf(stderr, "==== %s: %llu allocations\n", plan.name.c_str(),
                     static_cast<unsigned long long>(allocationCount() - before));
    }
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    if (std::getenv("QDI_DATADIR") == nullptr) setenv("QDI_DATADIR", PRSM_BENCH_SOURCE_DATADIR, 1);
    bool trace = false;
    int kept = 1;
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--trace-allocs") == 0)
            trace = true;
        else
            argv[kept++] = argv[i];
    }
    argc = kept;

    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;

    if (!allocationCounterSeesLibrary())
        std::fprintf(stderr, "warning: the replaced operator new does not see the library's allocations\n");
    try {
        describePlans();
    } catch (std::exception const& e) {
        std::fprintf(stderr, "cannot prepare the sheets: %s\n", e.what());
        return 1;
    }
    if (trace) return traceAllocations();

#ifdef PRSM_BENCH_CLE_LOGIC
    std::string message;
    bool const agrees = checkCleLogicLimit(message);
    std::fprintf(stderr, "straight-line limit of TalvexCleLogic: %s\n", message.c_str());
    if (!agrees) return 1;
#endif

    registerRegistryBenchmarks();
    registerGeneratedSheets();
#ifdef PRSM_BENCH_CLE_LOGIC
    registerCleLogicBenchmarks();
#endif
#ifdef PRSM_BENCH_STATIC
    registerStaticBenchmarks();
#endif
    registerIndexBenchmarks();
    registerThroughputBenchmarks();
    registerLoadBenchmarks();

    benchmark::RunSpecifiedBenchmarks(&summaryReporter());
    benchmark::Shutdown();
    return 0;
}
