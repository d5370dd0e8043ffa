#pragma once

#include <array>
#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "KIVInterface/CKiv.h"
#include "KIVInterface/CKivModel.h"
#include "KIVInterface/Records.h"
#include "simulator/Mounting.h"

// Names of benchmarks are operation|whose: library, or the peer or limit that it is compared with;
// what is less goes off the library's cost first. The items of each are what it does once.
namespace kiv::bench {

// Every benchmark runs through this many different cases and begins again.
constexpr std::size_t caseCount = 1024;

// The parameter file of the example sensor in a mount mode.
std::string parameterFile(int mode);

// The example sensor in one mount mode, its reference captured, with readings of random poses, each
// of which its model solves.
struct SensorCases {
    explicit SensorCases(int mode);

    simulator::Mounting mounting;
    CKiv sensor;
    std::unique_ptr<CKivModel> model;
    std::vector<KIV_RAWINFO> readings;
    std::vector<std::array<double, 9>> measurements; // what an update hands to the model
};

SensorCases& casesOf(int mode);

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

template <typename Function>
benchmark::internal::Benchmark* add(const std::string& name, Function f) {
    return benchmark::RegisterBenchmark(name.c_str(), f);
}

} // namespace kiv::bench
