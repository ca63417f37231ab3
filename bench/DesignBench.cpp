// Whole-design estimates: a 1,000-block design re-estimated in full, and re-estimated after one block's
// input changes (that block and the static sheet only); the `_supplies` cases add declared regulators,
// the rail-grouping sheet's regulator groups and budgets per supply, `_supplies_decoupling` the
// decoupling counts too, whose cost is theirs against the same case without. Run from the build tree:
//   build-bench/bench/prsm_design_bench [Google Benchmark options]
// The designs use the shipped sheets, with the Talvex static-power sheet for their leakage.
#include <prsm/design/Budget.h>
#include <prsm/design/Estimate.h>
#include <prsm/framework/PRSMSheetRegistry.h>

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

using namespace prsm::design;

char const* const kLogicTypes[] = {"LUT_LOGIC", "LUT_DRAM", "LUT_SRL", "REG_FF", "OFMUX", "LOOKAHEAD8"};

// The designs are on a Talvex part, so they take the Talvex static-power sheet when the library has it.
std::string staticSheetJson() {
    prsm::Sheet const* sheet = prsm::SheetRegistry::instance().find("TalvexStatic");
    if (sheet == nullptr || !sheet->design().isStatic()) return "";
    return R"("static": {"model": ")" + sheet->name() + R"("},)";
}

// 1,000 blocks of a device-sized design (about half a million logic elements, a steady junction
// temperature): all logic, or a mix in which every tenth block is of one of the other block sheets:
// clock managers, network-on-chip paths, AI-engine arrays, block RAM, UltraRAM, DSP, general-purpose
// I/O, and clock networks that take their distribution counts from a clock block by reference.
// `supplies`: regulators, the scheme's groups and budgets per supply; `decoupling`: the capacitor counts too.
std::string designJson(bool mixed, bool supplies = false, bool decoupling = false) {
    std::string text = R"({"schema_version": 1, "device": {"part": "ZQVC1902"},
        "thermal": {"ambient_temperature": 40, "theta_ja": 0.5}, "rails": {"VCCINT": 0.8}, )" +
                       staticSheetJson() + R"("blocks": [)";
    for (int i = 0; i < 1000; ++i) {
        char block[400];
        int const kind = mixed ? i % 20 : 0;
        if (kind < 10)
            std::snprintf(block, sizeof block,
                          R"({"name": "b%d", "model": "TalvexCleLogic", "inputs": {"INSTANCE_TYPE": "%s",
                          "INSTANCE_COUNT": %d, "CLOCK_FREQ": %d}})",
                          i, kLogicTypes[i % 6], 100 + (37 * i) % 900, 150 + i % 300);
        else if (kind == 10)
            std::snprintf(block, sizeof block, R"({"name": "b%d", "model": "TalvexMmcm"})", i);
        else if (kind == 11)
            std::snprintf(block, sizeof block,
                          R"({"name": "b%d", "model": "TalvexNoc", "inputs": {"BANDWITH_READ": %d}})", i,
                          100 + i);
        else if (kind == 12)
            std::snprintf(
                block, sizeof block,
                R"({"name": "b%d", "model": "TalvexAie", "inputs": {"AIE_CORES": 8, "CORE_LOAD": 0.5}})", i);
        else if (kind == 13)
            std::snprintf(block, sizeof block,
                          R"({"name": "b%d", "model": "TalvexBram", "inputs": {"INSTANCE_COUNT": 4,
                          "CLOCK_FREQ": %d}})",
                          i, 200 + i % 200);
        else if (kind == 14)
            std::snprintf(block, sizeof block,
                          R"({"name": "b%d", "model": "TalvexUram", "inputs": {"INSTANCE_COUNT": 2}})", i);
        else if (kind == 15)
            std::snprintf(block, sizeof block,
                          R"({"name": "b%d", "model": "TalvexDsp", "inputs": {"INSTANCE_COUNT": 8}})", i);
        else if (kind == 16)
            std::snprintf(block, sizeof block,
                          R"({"name": "b%d", "model": "TalvexIo", "inputs": {"PIN_COUNT": 16}})", i);
        else if (kind == 17)
            std::snprintf(block, sizeof block, R"({"name": "b%d", "model": "TalvexDpll"})", i);
        else if (kind == 18)
            std::snprintf(block, sizeof block,
                          R"({"name": "b%d", "model": "TalvexClock", "inputs": {"FFS_USING_CLK": 2000}})", i);
        else
            std::snprintf(block, sizeof block,
                          R"({"name": "b%d", "model": "TalvexLogicClock", "inputs": {"CLOCK_FREQ": 300,
                          "FFS_USING_CLK": {"from": "b%d"}, "HD_COUNT": {"from": "b%d"}}})",
                          i, i - 1, i - 1);
        text += (i ? "," : "") + std::string(block);
    }
    if (supplies)
        text +=
            R"(], "regulators": [
            {"name": "core", "rails": ["VCCINT", "VCCME", "VCCINTCPM"], "rating": 60,
             "efficiency": [[2, 0.8], [20, 0.9], [60, 0.87]]},
            {"name": "aux", "rails": ["VCCAUX", "VCCAUXPMC"], "rating": 4, "efficiency": 0.85},
            {"name": "ram", "rails": ["VCCRAM"], "rating": 6, "efficiency": 0.88}],
            "supplies": {}, "budget": {"supplies": {"core": 60, "PL_2": 50}})" +
            std::string(decoupling
                            ? R"(, "decoupling": {"model": "TalvexDecouplingCapXq", "step_fraction": 0.5}})"
                            : "}");
    return supplies ? text : text + "]}";
}

// `fromAmbient`: every thermal solve from the ambient, as a sweep's points are solved.
void full(benchmark::State& state, bool mixed, bool fromAmbient, bool supplies = false,
          bool decoupling = false) {
    Estimator estimator(parseDesign(designJson(mixed, supplies, decoupling), "bench.json"));
    if (fromAmbient) estimator.setThermalStart(Estimator::ThermalStartFrom::Ambient);
    if (!estimator.estimate().complete) state.SkipWithError("the bench design does not estimate");
    double calculations = 0;
    for (auto _ : state) {
        Report const& report = estimator.estimate();
        benchmark::DoNotOptimize(report.totalPower);
        if (supplies) benchmark::DoNotOptimize(checkBudget(estimator.design().budget, report));
        calculations += report.thermal.iterations;
    }
    state.counters["static_calcs"] = benchmark::Counter(calculations, benchmark::Counter::kAvgIterations);
}

void oneBlock(benchmark::State& state, bool mixed, bool supplies = false, bool decoupling = false) {
    Estimator estimator(parseDesign(designJson(mixed, supplies, decoupling), "bench.json"));
    if (!estimator.estimate().complete) state.SkipWithError("the bench design does not estimate");
    bool flip = false;
    double calculations = 0;
    for (auto _ : state) {
        estimator.setInput("b500", "CLOCK_FREQ", (flip = !flip) ? "250" : "300");
        Report const& report = estimator.update();
        benchmark::DoNotOptimize(report.totalPower);
        if (supplies) benchmark::DoNotOptimize(checkBudget(estimator.design().budget, report));
        calculations += report.thermal.iterations;
    }
    state.counters["static_calcs"] = benchmark::Counter(calculations, benchmark::Counter::kAvgIterations);
}

BENCHMARK_CAPTURE(full, logic_1000, false, false)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(full, mixed_1000, true, false)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(full, logic_1000_from_ambient, false, true)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(full, mixed_1000_from_ambient, true, true)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(oneBlock, logic_1000, false)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(oneBlock, mixed_1000, true)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(full, mixed_1000_supplies, true, false, true)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(oneBlock, mixed_1000_supplies, true, true)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(full, mixed_1000_supplies_decoupling, true, false, true, true)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(oneBlock, mixed_1000_supplies_decoupling, true, true, true)->Unit(benchmark::kMicrosecond);

}  // namespace

int main(int argc, char** argv) {
    if (std::getenv("QDI_DATADIR") == nullptr) setenv("QDI_DATADIR", PRSM_BENCH_SOURCE_DATADIR, 1);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
