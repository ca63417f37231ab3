// Benchmarks that drive every registered sheet by name through the type-erased registry, so that a
// new sheet is measured as soon as it is built.
#include "BenchSupport.h"

#include <memory>

namespace prsm::bench {
namespace {

std::unique_ptr<SheetInstance> warmInstance(SheetPlan const& plan) {
    auto instance = plan.sheet->create();
    instance->calculate();  // applies the defaults and fills every lazily built table
    instance->calculate();
    return instance;
}

// Full calculate of a parameter set whose inputs stay at their defaults.
void calculateDefaults(benchmark::State& state, SheetPlan const* plan) {
    auto instance = warmInstance(*plan);
    AllocMeter const meter;
    for (auto _ : state) instance->calculate();
    meter.report(state);
}

// Writes the first numeric input by name, alternating between two valid values, then calculates.
void setAndCalculate(benchmark::State& state, SheetPlan const* plan) {
    auto instance = warmInstance(*plan);
    std::string const& input = plan->toggleInput;
    std::string const* texts = plan->toggleText;
    unsigned which = 0;
    instance->set(input, texts[1]);
    instance->calculate();
    AllocMeter const meter;
    for (auto _ : state) {
        instance->set(input, texts[which]);
        instance->calculate();
        which ^= 1u;
    }
    meter.report(state);
}

// Writing the input by name alone: the text parse and the name lookups of the type-erased setter.
void setByName(benchmark::State& state, SheetPlan const* plan) {
    auto instance = warmInstance(*plan);
    std::string const& input = plan->toggleInput;
    std::string const* texts = plan->toggleText;
    unsigned which = 0;
    AllocMeter const meter;
    for (auto _ : state) {
        instance->set(input, texts[which]);
        which ^= 1u;
    }
    meter.report(state);
}

// Reading the first float output by name after a calculate: the registry's evaluate, which goes
// through the float dispatch table and then formats the value as text.
void evaluateByName(benchmark::State& state, SheetPlan const* plan) {
    auto instance = warmInstance(*plan);
    std::string const& output = plan->floatOutput;
    AllocMeter const meter;
    for (auto _ : state) {
        std::string text = instance->evaluate(output);
        benchmark::DoNotOptimize(text);
    }
    meter.report(state);
}

void skipped(benchmark::State& state, SheetPlan const* plan) {
    state.SkipWithError(plan->error.c_str());
    for (auto _ : state) {
    }
}

}  // namespace

void registerRegistryBenchmarks() {
    for (SheetPlan const& plan : sheetPlans()) {
        SheetPlan const* p = &plan;
        if (!plan.error.empty()) {
            benchmark::RegisterBenchmark(("calculate/" + plan.name).c_str(), skipped, p);
            continue;
        }
        benchmark::RegisterBenchmark(("calculate/" + plan.name).c_str(), calculateDefaults, p);
        if (plan.hasToggle) {
            benchmark::RegisterBenchmark(("set_calculate/" + plan.name).c_str(), setAndCalculate, p);
            benchmark::RegisterBenchmark(("set_by_name/" + plan.name).c_str(), setByName, p);
        }
        if (plan.hasFloatOutput)
            benchmark::RegisterBenchmark(("evaluate_by_name/" + plan.name).c_str(), evaluateByName, p);
    }
}

}  // namespace prsm::bench
