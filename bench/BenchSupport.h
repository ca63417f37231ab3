#pragma once
// What the benchmark files share: the plan of each registered sheet (which input to change and which
// output to read), the allocation meter, the data directory and the registration entry points.

#include "AllocCounter.h"

#include <prsm/framework/PRSMSheetRegistry.h>

#include <benchmark/benchmark.h>

#include <cstdint>
#include <string>
#include <vector>

namespace prsm::bench {

// How the benchmarks drive one registered sheet, worked out once before any benchmark runs.
struct SheetPlan {
    Sheet const* sheet = nullptr;
    std::string name;
    std::string error;  // why the sheet cannot be benchmarked (its default calculate threw), or empty

    // The first numeric user input and two values of it, as text: its default and another one that
    // its validity rule accepts (toggleChecked false when no candidate passed the rule).
    bool hasToggle = false;
    std::string toggleInput;
    CellType toggleType = CellType::Float;
    std::string toggleText[2];
    bool toggleChecked = false;

    // The first float model output.
    bool hasFloatOutput = false;
    std::string floatOutput;
};

// One plan per registered sheet, sorted by name. Computed on first use.
std::vector<SheetPlan> const& sheetPlans();
SheetPlan const* findPlan(std::string const& name);

// Counts the heap allocations of a timed loop; reported as "allocs" per iteration.
class AllocMeter {
public:
    AllocMeter() : m_start(allocationCount()) {}
    void report(benchmark::State& state) const {
        state.counters["allocs"] = benchmark::Counter(static_cast<double>(allocationCount() - m_start),
                                                      benchmark::Counter::kAvgIterations);
    }

private:
    std::uint64_t m_start;
};

// The first directory of QDI_DATADIR (set by main to the source tree's data folder when unset).
std::string dataRoot();

void registerRegistryBenchmarks();
void registerThroughputBenchmarks();
void registerLoadBenchmarks();
void registerGeneratedSheets();  // written by CMake: the typed benchmarks of every built class
void registerCleLogicBenchmarks();
void registerStaticBenchmarks();
void registerIndexBenchmarks();  // the load-time table index at the static-power sheet's scale
// Checks the straight-line limit against the model; false (with a message) when they disagree.
bool checkCleLogicLimit(std::string& message);

// The console reporter of the run: the usual table, then the figures that the targets compare.
benchmark::BenchmarkReporter& summaryReporter();

}  // namespace prsm::bench
