// Each model against the calls of the C library's functions that it cannot avoid.

#include <algorithm>
#include <cmath>

#include "bench/Benchmark.h"
#include "bench/MathCalls.h"

namespace kiv::bench {

namespace {

void runModel(benchmark::State& state, int mode) {
    SensorCases& cases = casesOf(mode);
    const double* offset = cases.mounting.encoderOffset;
    forEachCase(state, [&](std::size_t i) {
        std::array<double, 9> M = cases.measurements[i];
        cases.model->CalTranxMatrix(M.data(), offset[0], offset[1], 3, false, false);
        return M;
    });
}

double resultOf(const MathCall& call, double argument) {
    switch (call.function) {
    case MathFunction::sine:
        return std::sin(argument);
    case MathFunction::cosine:
        return std::cos(argument);
    case MathFunction::sineAndCosine:
        return std::sin(argument) + std::cos(argument);
    case MathFunction::tangent:
        return std::tan(argument);
    case MathFunction::arcSine:
        return std::asin(argument);
    case MathFunction::arcCosine:
        return std::acos(argument);
    case MathFunction::arcTangent:
        return std::atan(argument);
    case MathFunction::arcTangentOfPoint:
        return std::atan2(argument, call.x);
    }
    return argument;
}

// Each call waits for the result of the one before; no result is below the bound.
void runCalls(benchmark::State& state, int mode) {
    const std::vector<MathCall> calls = unavoidableCalls(casesOf(mode));
    double result = 0;
    for (auto _ : state)
        for (const MathCall& call : calls)
            result = resultOf(call, std::max(call.argument, std::min(result, -1e300)));
    benchmark::DoNotOptimize(result);
    countItems(state, caseCount);
}

// The processor works on several calls at once.
void runOverlappingCalls(benchmark::State& state, int mode) {
    const std::vector<MathCall> calls = unavoidableCalls(casesOf(mode));
    for (auto _ : state)
        for (const MathCall& call : calls)
            benchmark::DoNotOptimize(resultOf(call, call.argument));
    countItems(state, caseCount);
}

[[maybe_unused]] const bool registered = [] {
    for (int mode = 1; mode <= 10; ++mode) {
        const std::string name = "model/mode_" + std::to_string(mode);
        benchmark::RegisterBenchmark((name + "/library").c_str(), runModel, mode);
        if (mode % 2 == 1)
            continue;
        benchmark::RegisterBenchmark((name + "/calls").c_str(), runCalls, mode);
        benchmark::RegisterBenchmark((name + "/overlapping_calls").c_str(), runOverlappingCalls,
                                     mode);
    }
    return true;
}();

} // namespace

} // namespace kiv::bench
