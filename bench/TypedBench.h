#pragma once
// Benchmarks written against a sheet's generated classes: the typed calculate, the float dispatch
// table, a typed input write, and the construction of a fresh data object (loading its file). CMake
// instantiates them for every class the library was built with (GeneratedSheetBenchmarks.cpp).

#include "BenchSupport.h"

#include <exception>
#include <filesystem>
#include <string>

namespace prsm::bench {

// Loading a data file through its class: constructing a fresh object reads and parses the file and
// fills the tables, as the singleton does on first use.
template <typename Data>
void registerDataLoad(char const* className, char const* dataFile) {
    std::string const file = dataFile;
    std::string const name = "load/data_object/" + (file.empty() ? std::string(className) : file);
    std::string problem;
    if (file.empty())
        problem = "no data_file in the sheet table";
    else if (!std::filesystem::is_regular_file(dataRoot() + "/powercfg/" + file))
        problem = "data file not found under " + dataRoot() + "/powercfg";
    std::string const label = className;
    benchmark::RegisterBenchmark(name.c_str(), [problem, label](benchmark::State& state) {
        std::string error = problem;
        if (error.empty()) {
            try {
                Data const probe;
            } catch (std::exception const& e) {
                error = std::string("loading throws: ") + e.what();
            }
        }
        if (!error.empty()) {
            state.SkipWithError(error.c_str());
            for (auto _ : state) {
            }
            return;
        }
        AllocMeter const meter;
        for (auto _ : state) {
            Data data;
            benchmark::DoNotOptimize(&data);
        }
        meter.report(state);
        state.SetLabel(label);
    })->Unit(benchmark::kMicrosecond);
}

namespace detail {

// Writes one typed input cell, alternating between two values, then calculates.
template <typename Model, typename Cell, typename Value>
void writeAndCalculate(benchmark::State& state, Cell cell, Value first, Value second) {
    typename Model::Params params;
    Model const& model = Model::getGlobal();
    model.calculate(params);
    params[cell] = second;
    model.calculate(params);
    Value const values[2] = {first, second};
    unsigned which = 0;
    AllocMeter const meter;
    for (auto _ : state) {
        params[cell] = values[which];
        model.calculate(params);
        which ^= 1u;
    }
    meter.report(state);
}

}  // namespace detail

template <typename Model>
void registerTypedModel(char const* stem) {
    using Params = typename Model::Params;
    using Data = typename Model::Data;
    SheetPlan const* plan = findPlan(stem);
    if (plan == nullptr || !plan->error.empty()) return;
    std::string const suffix = std::string("/") + stem;

    benchmark::RegisterBenchmark(("typed/calculate" + suffix).c_str(), [](benchmark::State& state) {
        Params params;
        Model const& model = Model::getGlobal();
        model.calculate(params);
        model.calculate(params);
        AllocMeter const meter;
        for (auto _ : state) model.calculate(params);
        meter.report(state);
    });

    if (static_cast<int>(Params::FirstMOFloat) + 1 < static_cast<int>(Params::LastMOFloat)) {
        std::string const output =
            Params::enum_to_string(static_cast<typename Params::FloatEnum>(Params::FirstMOFloat + 1));
        benchmark::RegisterBenchmark(("typed/float_dispatch" + suffix).c_str(),
                                     [output](benchmark::State& state) {
                                         Params params;
                                         Model const& model = Model::getGlobal();
                                         Data const& data = Data::getGlobal();
                                         model.calculate(params);
                                         AllocMeter const meter;
                                         for (auto _ : state) {
                                             float value = model.floatDispatchTable(params, data, output);
                                             benchmark::DoNotOptimize(value);
                                         }
                                         meter.report(state);
                                     });
    }

    if (plan->hasToggle) {
        std::string const name = ("typed/write_calculate" + suffix);
        auto const intCell = Params::string_to_int_enum(plan->toggleInput);
        auto const floatCell = Params::string_to_float_enum(plan->toggleInput);
        if (intCell < Params::LastInt) {
            int const first = std::stoi(plan->toggleText[0]);
            int const second = std::stoi(plan->toggleText[1]);
            benchmark::RegisterBenchmark(name.c_str(),
                                         detail::writeAndCalculate<Model, typename Params::IntEnum, int>,
                                         intCell, first, second);
        } else if (floatCell < Params::LastFloat) {
            float const first = std::stof(plan->toggleText[0]);
            float const second = std::stof(plan->toggleText[1]);
            benchmark::RegisterBenchmark(name.c_str(),
                                         detail::writeAndCalculate<Model, typename Params::FloatEnum, float>,
                                         floatCell, first, second);
        }
    }
}

}  // namespace prsm::bench
