// Evaluations per second with one and with two threads. Each thread owns its parameter sets; the model
// and data singletons are shared, as a host with one parameter set per placed block would share them.
#include "BenchSupport.h"

#include <array>
#include <memory>

namespace prsm::bench {
namespace {

constexpr std::size_t kSetsPerThread = 4;

void throughput(benchmark::State& state, SheetPlan const* plan) {
    std::array<std::unique_ptr<SheetInstance>, kSetsPerThread> sets;
    for (std::size_t i = 0; i < sets.size(); ++i) {
        sets[i] = plan->sheet->create();
        if (plan->hasToggle)
            sets[i]->set(plan->toggleInput,
                         plan->toggleText[(i + static_cast<std::size_t>(state.thread_index())) & 1u]);
        sets[i]->calculate();
    }
    std::size_t next = 0;
    for (auto _ : state) {
        sets[next]->calculate();
        next = (next + 1) % kSetsPerThread;
    }
    state.SetItemsProcessed(state.iterations());
}

}  // namespace

void registerThroughputBenchmarks() {
    for (SheetPlan const& plan : sheetPlans()) {
        if (!plan.error.empty()) continue;
        benchmark::RegisterBenchmark(("throughput/" + plan.name).c_str(), throughput, &plan)
            ->Threads(1)
            ->Threads(2)
            ->UseRealTime();
    }
}

}  // namespace prsm::bench
