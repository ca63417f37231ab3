// The load-time table index alone, at the scale of the largest sheet: a table of 10 x 10 x 10 x 2
// four-part keys (device.process.rail.kind), looked up by parts as a generated getter does.
#include "BenchSupport.h"

#include <prsm/framework/PRSMTableIndex.h>

#include <array>
#include <string>
#include <unordered_map>
#include <vector>

namespace prsm::bench {
namespace {

struct FourPartTable {
    std::unordered_map<std::string, float> map;
    prsm::data::TableIndex<float> index;
    std::vector<std::array<std::string, 4>> keys;

    FourPartTable() {
        for (int d = 0; d < 10; ++d)
            for (int p = 0; p < 10; ++p)
                for (int r = 0; r < 10; ++r)
                    for (char const* kind : {"STATIC", "DYNAMIC_PER_MHZ"}) {
                        std::array<std::string, 4> key{"ZQVC" + std::to_string(1200 + d),
                                                       "PROCESS_" + std::to_string(p),
                                                       "VCC_RAIL_" + std::to_string(r), kind};
                        map[key[0] + "." + key[1] + "." + key[2] + "." + key[3]] =
                            static_cast<float>(keys.size());
                        keys.push_back(key);
                    }
        index.build(map, 4);
    }
};

// One lookup per iteration, cycling through every key of the table.
void fourPartIndex(benchmark::State& state) {
    FourPartTable const table;
    std::size_t i = 0;
    AllocMeter const meter;
    for (auto _ : state) {
        auto const& key = table.keys[i];
        float const* value = table.index.find(table.map, std::string_view(key[0]), std::string_view(key[1]),
                                              std::string_view(key[2]), std::string_view(key[3]));
        benchmark::DoNotOptimize(value);
        if (++i == table.keys.size()) i = 0;
    }
    meter.report(state);
}

// The same lookups the way the getters made them before the index: the key composed in the
// per-thread buffer, then the map's own find.
void fourPartComposed(benchmark::State& state) {
    FourPartTable const table;
    std::size_t i = 0;
    AllocMeter const meter;
    for (auto _ : state) {
        auto const& key = table.keys[i];
        auto const it = table.map.find(prsm::lookupKey(std::string_view(key[0]), std::string_view(key[1]),
                                                       std::string_view(key[2]), std::string_view(key[3])));
        benchmark::DoNotOptimize(it);
        if (++i == table.keys.size()) i = 0;
    }
    meter.report(state);
}

}  // namespace

void registerIndexBenchmarks() {
    benchmark::RegisterBenchmark("parts/index/four_part_key", fourPartIndex);
    benchmark::RegisterBenchmark("parts/index/four_part_key_composed", fourPartComposed);
}

}  // namespace prsm::bench
