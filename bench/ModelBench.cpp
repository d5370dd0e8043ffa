// Each model against the calls of the C library's functions that it cannot avoid.

#include <algorithm>
#include <cmath>
#include <random>
#include <utility>
#include <vector>

#include "bench/Benchmark.h"

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

// What one evaluation calls of the C library, each argument once and a sine and a cosine of the
// same angle together; where the number depends on the measurement (the pendulum's passes), its
// mean over the cases.
struct ModelCalls {
    int mode;
    int sines, cosines, sinesAndCosines, tangents;
    int arcSines, arcCosines, arcTangents, arcTangentsOfPoints;
};
constexpr ModelCalls callsOfModels[] = {{2, 2, 1, 5, 2, 2, 3, 1, 0},
                                        {4, 16, 2, 20, 16, 16, 16, 1, 0},
                                        {6, 0, 0, 6, 0, 1, 0, 0, 1},
                                        {8, 0, 2, 5, 4, 0, 0, 0, 2},
                                        {10, 0, 3, 10, 5, 0, 0, 0, 8}};

// Of different size, as the processor foresees the branches of repeated ones. Radians.
std::vector<double> randomArguments(double largest) {
    std::mt19937 random(1);
    std::uniform_real_distribution<double> argument(-largest, largest);
    std::vector<double> all(caseCount);
    std::generate(all.begin(), all.end(), [&] { return argument(random); });
    return all;
}

// Overlapping: the processor works on several calls at once. Otherwise each waits for the result of
// the one before, which adds nothing to its argument.
template <bool overlapping>
void runCalls(benchmark::State& state, const ModelCalls& calls) {
    const std::vector<double> azimuths = randomArguments(3.14), tilts = randomArguments(0.12);
    double result = 0;
    std::size_t next = 0;
    const auto repeat = [&](int times, const std::vector<double>& arguments, auto function) {
        for (int i = 0; i < times; ++i) {
            const double x = arguments[next++ % caseCount];
            result = function(overlapping ? x : x + 0 * result);
            benchmark::DoNotOptimize(std::as_const(result));
        }
    };
    forEachCase(state, [&](std::size_t) {
        repeat(calls.sines, tilts, [](double x) { return std::sin(x); });
        repeat(calls.cosines, azimuths, [](double x) { return std::cos(x); });
        repeat(calls.sinesAndCosines, azimuths, [](double x) { return std::sin(x) + std::cos(x); });
        repeat(calls.tangents, tilts, [](double x) { return std::tan(x); });
        repeat(calls.arcSines, tilts, [](double x) { return std::asin(x); });
        repeat(calls.arcCosines, tilts, [](double x) { return std::acos(x); });
        repeat(calls.arcTangents, azimuths, [](double x) { return std::atan(x); });
        repeat(calls.arcTangentsOfPoints, azimuths, [](double y) { return std::atan2(y, 0.7); });
        return result;
    });
}

[[maybe_unused]] const bool registered = [] {
    const auto name = [](int mode) { return "model/mode_" + std::to_string(mode); };
    for (int mode = 1; mode <= 10; ++mode)
        benchmark::RegisterBenchmark((name(mode) + "/library").c_str(), runModel, mode);
    for (const ModelCalls& calls : callsOfModels) {
        benchmark::RegisterBenchmark((name(calls.mode) + "/calls").c_str(), runCalls<false>, calls);
        benchmark::RegisterBenchmark((name(calls.mode) + "/overlapping_calls").c_str(),
                                     runCalls<true>, calls);
    }
    return true;
}();

} // namespace

} // namespace kiv::bench
