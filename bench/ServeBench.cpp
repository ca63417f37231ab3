// `prsm serve` on a 1,000-block design, through its API without a socket: a block input edited (the
// engine's update and the answer holding the blocks that moved), the whole report as the page first
// reads it, a block added (the engine rebuilt from the design), and the leakage chart the page asks for
// once the typing pauses. Run from the build tree:
//   build-bench/bench/prsm_serve_bench [Google Benchmark options]
#include <prsm/host/serve/Api.h>

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

namespace {

using namespace prsm::host::serve;

std::string designJson() {
    std::string text = R"({"schema_version": 1, "device": {"part": "ZQVC1902"},
        "thermal": {"ambient_temperature": 40, "theta_ja": 0.5}, "rails": {"VCCINT": 0.8},
        "static": {"model": "TalvexStatic"}, "blocks": [)";
    for (int i = 0; i < 1000; ++i) {
        char block[200];
        std::snprintf(block, sizeof block,
                      R"({"name": "b%d", "model": "TalvexCleLogic", "inputs": {"INSTANCE_TYPE": "LUT_LOGIC",
                      "INSTANCE_COUNT": %d, "CLOCK_FREQ": %d}})",
                      i, 100 + (37 * i) % 900, 150 + i % 300);
        text += (i ? "," : "") + std::string(block);
    }
    return text + "]}";
}

Api makeApi() {
    return Api(Workspace(std::filesystem::temp_directory_path()), DesignSession(designJson(), "bench.json"));
}

void editInput(benchmark::State& state) {
    Api api = makeApi();
    bool flip = false;
    for (auto _ : state) {
        ApiResponse const answer =
            api.handle({"POST", "/api/input",
                        (flip = !flip) ? R"({"block": "b500", "cell": "CLOCK_FREQ", "value": "250"})"
                                       : R"({"block": "b500", "cell": "CLOCK_FREQ", "value": "300"})"});
        if (answer.status != 200) state.SkipWithError(answer.body.c_str());
        state.counters["bytes"] = static_cast<double>(answer.body.size());
    }
}

void wholeReport(benchmark::State& state) {
    Api api = makeApi();
    for (auto _ : state) benchmark::DoNotOptimize(api.handle({"GET", "/api/report", ""}).body.size());
}

void addBlock(benchmark::State& state) {
    Api api = makeApi();
    for (auto _ : state) {
        state.PauseTiming();
        api.handle({"POST", "/api/blocks/remove", R"({"block": "extra"})"});
        state.ResumeTiming();
        api.handle({"POST", "/api/blocks/add", R"({"model": "TalvexCleLogic", "name": "extra"})"});
    }
}

// The design as edited read again, estimated afresh, and the static sheet at eleven junction temperatures.
void staticCurve(benchmark::State& state) {
    Api api = makeApi();
    for (auto _ : state) benchmark::DoNotOptimize(api.handle({"GET", "/api/static-curve", ""}).body.size());
}

BENCHMARK(editInput)->Unit(benchmark::kMicrosecond);
BENCHMARK(wholeReport)->Unit(benchmark::kMillisecond);
BENCHMARK(addBlock)->Unit(benchmark::kMillisecond);
BENCHMARK(staticCurve)->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
    if (std::getenv("QDI_DATADIR") == nullptr) setenv("QDI_DATADIR", PRSM_BENCH_SOURCE_DATADIR, 1);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
