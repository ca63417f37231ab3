// The static-power sheet under load: every leaking block in use, dynamic power that sets a temperature
// rise, 100 degrees, worst process. Every rail and block then reads its coefficients, the path the
// default calculate (no blocks in use) leaves out.
#include "BenchSupport.h"

#include <prsm/models/talvex/PRSMTalvexStaticModel.h>

namespace prsm::bench {
namespace {

using Model = PRSMTalvexStaticModel;
using Params = PRSMTalvexStaticParams;

void busyCalculate(benchmark::State& state) {
    Params params;
    for (int cell = Params::FirstUIInt + 1; cell < Params::LastUIInt; ++cell)
        params[static_cast<Params::IntEnum>(cell)] = 4;
    params[Params::JUNCTION_TEMPERATURE] = 100.0f;
    params[Params::PROCESS] = "MAX";
    params[Params::ALL_VCCINT_DYN_POWER_MINUS_AIE] = 20.0f;
    params[Params::AIE_DYN_POWER] = 5.0f;
    params[Params::LUT_USED_PCT] = 60.0f;
    Model const& model = Model::getGlobal();
    model.calculate(params);
    AllocMeter const meter;
    for (auto _ : state) {
        model.calculate(params);
        benchmark::DoNotOptimize(params[Params::TOTAL_STATIC_POWER]);
    }
    meter.report(state);
}

}  // namespace

void registerStaticBenchmarks() {
    benchmark::RegisterBenchmark("static/busy_calculate/TalvexStatic", busyCalculate)
        ->Unit(benchmark::kMicrosecond);
}

}  // namespace prsm::bench
