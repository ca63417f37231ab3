// The logic-element sheet against its straight-line limit, and the price of the operations its
// calculate is made of (to explain the distance between the two).
#include "BenchSupport.h"
#include "CleLogicLimit.h"

#include <prsm/framework/PRSMCellSupport.h>
#include <prsm/sheetfunc/PRSMHelperUtils.h>

#include <cmath>

namespace prsm::bench {
namespace {

using Model = PRSMTalvexCleLogicModel;
using Params = PRSMTalvexCleLogicParams;
using Data = PRSMTalvexCleLogicData;

void straightLine(benchmark::State& state) {
    Params params;
    Model::getGlobal().calculate(params);
    CleLogicInputs inputs = cleLogicInputsOf(params);
    CleLogicTables tables =
        lookUpCleLogicTables(Data::getGlobal(), params[Params::DEVICE], params[Params::INSTANCE_TYPE]);
    CleLogicOutputs outputs{};
    AllocMeter const meter;
    for (auto _ : state) {
        benchmark::DoNotOptimize(inputs.clockFreq);
        cleLogicStraightLine(inputs, tables, outputs);
        benchmark::DoNotOptimize(outputs);
    }
    meter.report(state);
}

// A calculated parameter set, for the part benchmarks.
struct Calculated {
    Params params;
    Model const& model = Model::getGlobal();
    Data const& data = Data::getGlobal();
    Calculated() { model.calculate(params); }
};

void lookupOnePart(benchmark::State& state) {
    Calculated c;
    for (auto _ : state) {
        float value = c.data.getLutCap("A1");
        benchmark::DoNotOptimize(value);
    }
}

// A key the formulas write out, resolved when the data loaded.
void lookupConstantKey(benchmark::State& state) {
    Calculated c;
    for (auto _ : state) {
        float value = c.data.getLutCap(Data::LutCapKey::A1INT);
        benchmark::DoNotOptimize(value);
    }
}

void lookupConcatenated(benchmark::State& state) {
    Calculated c;
    for (auto _ : state) {
        float value = c.data.getLutCap(prsm::concatKey("A1", "INT"));
        benchmark::DoNotOptimize(value);
    }
}

void lookupTwoParts(benchmark::State& state) {
    Calculated c;
    for (auto _ : state) {
        float value = c.data.getBlockPowerScaleOrError("ZQVC1902", "CLE_LOGIC_VCCINT");
        benchmark::DoNotOptimize(value);
    }
}

void powerFunction(benchmark::State& state) {
    float v = 0.72f, e = 2.0f;
    for (auto _ : state) {
        benchmark::DoNotOptimize(v);
        benchmark::DoNotOptimize(e);
        float value = std::pow(v, e);
        benchmark::DoNotOptimize(value);
    }
}

void resetCells(benchmark::State& state) {
    Calculated c;
    for (auto _ : state) {
        c.params.resetIntermediateCalculations();
        c.params.resetModelOutputs();
        benchmark::ClobberMemory();
    }
}

// The instance-type test every gated formula makes: copy the cell, then LEFT and compare.
void instanceTypeTest(benchmark::State& state) {
    Calculated c;
    for (auto _ : state) {
        std::string const type = c.model.getInstanceType(c.params, c.data);
        bool value = PRSMHelperUtils::LEFT(type, 3) == "LUT";
        benchmark::DoNotOptimize(value);
    }
}

// The same test as the formulas make it now: the cell by reference, compared as a string_view.
void instanceTypeReference(benchmark::State& state) {
    Calculated c;
    for (auto _ : state) {
        std::string_view const type = c.model.refInstanceType(c.params, c.data);
        bool value = type.substr(0, 3) == "LUT";
        benchmark::DoNotOptimize(value);
    }
}

// A cell function that finds its value cached.
void cachedCell(benchmark::State& state) {
    Calculated c;
    for (auto _ : state) {
        float value = c.model.calculateLogicPower(c.params, c.data);
        benchmark::DoNotOptimize(value);
    }
}

}  // namespace

void registerCleLogicBenchmarks() {
    benchmark::RegisterBenchmark("limit/straight_line/TalvexCleLogic", straightLine);
    benchmark::RegisterBenchmark("parts/TalvexCleLogic/lookup_one_part", lookupOnePart);
    benchmark::RegisterBenchmark("parts/TalvexCleLogic/lookup_constant_key", lookupConstantKey);
    benchmark::RegisterBenchmark("parts/TalvexCleLogic/lookup_concatenated", lookupConcatenated);
    benchmark::RegisterBenchmark("parts/TalvexCleLogic/lookup_two_parts", lookupTwoParts);
    benchmark::RegisterBenchmark("parts/TalvexCleLogic/pow", powerFunction);
    benchmark::RegisterBenchmark("parts/TalvexCleLogic/reset_cells", resetCells);
    benchmark::RegisterBenchmark("parts/TalvexCleLogic/instance_type_test", instanceTypeTest);
    benchmark::RegisterBenchmark("parts/TalvexCleLogic/instance_type_reference", instanceTypeReference);
    benchmark::RegisterBenchmark("parts/TalvexCleLogic/cached_cell", cachedCell);
}

}  // namespace prsm::bench
