#pragma once

#include <cstdint>

#include <benchmark/benchmark.h>

#include "bench/SensorCases.h"

// Names of benchmarks are operation/whose: library, or the peer or limit that it is compared with.
// The items of each are what it does once: one case, one row, one set-up.
namespace kiv::bench {

inline void countItems(benchmark::State& state, std::size_t perIteration) {
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(perIteration));
}

// Times f(0) to f(cases - 1), again and again; what f returns counts as used.
template <typename Function>
void forEachCase(benchmark::State& state, Function f, std::size_t cases = caseCount) {
    for (auto _ : state)
        for (std::size_t i = 0; i < cases; ++i)
            benchmark::DoNotOptimize(f(i));
    countItems(state, cases);
}

} // namespace kiv::bench
