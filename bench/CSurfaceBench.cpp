// A million readings in one call through the C surface, against a loop over the class.

#include <cstring>
#include <stdexcept>

#include "bench/Benchmark.h"
#include "kiv.h"

namespace kiv::bench {

namespace {

constexpr std::size_t readingCount = 1'000'000;

std::vector<KIV_RAWINFO> recordingOf(int mode) {
    const std::vector<KIV_RAWINFO>& cases = casesOf(mode).readings;
    std::vector<KIV_RAWINFO> recording(readingCount);
    for (std::size_t i = 0; i < readingCount; ++i)
        recording[i] = cases[i % cases.size()];
    return recording;
}

void loopOverClass(benchmark::State& state, int mode) {
    const auto readings = recordingOf(mode);
    std::vector<KIV_INFO> results(readingCount);
    CKiv& sensor = casesOf(mode).sensor;
    for (auto _ : state) {
        for (std::size_t i = 0; i < readingCount; ++i)
            sensor.updateKIVData(readings[i], results[i]);
        benchmark::DoNotOptimize(results.data());
    }
    countItems(state, readingCount);
}

void oneCall(benchmark::State& state, int mode, bool withStates) {
    std::vector<kiv_reading> readings(readingCount);
    std::memcpy(readings.data(), recordingOf(mode).data(), readingCount * sizeof(kiv_reading));
    std::vector<kiv_result> results(readingCount);
    std::vector<std::uint8_t> states(readingCount);
    kiv_parameters* parameters = nullptr;
    kiv_sensor* sensor = nullptr;
    if (kiv_parameters_new(&parameters) != KIV_STATUS_OK
        || kiv_parameters_load(parameters, parameterFile(mode).c_str()) != KIV_STATUS_OK
        || kiv_sensor_new(parameters, &sensor) != KIV_STATUS_OK)
        throw std::runtime_error("cannot use " + parameterFile(mode));
    for (auto _ : state) {
        kiv_sensor_update_many(sensor, readings.data(), readingCount, results.data(), nullptr,
                               withStates ? states.data() : nullptr);
        benchmark::DoNotOptimize(results.data());
    }
    countItems(state, readingCount);
    kiv_sensor_free(sensor);
    kiv_parameters_free(parameters);
}

[[maybe_unused]] const bool registered = [] {
    for (int mode = 2; mode <= 10; mode += 2) {
        const std::string name = "million_readings/mode_" + std::to_string(mode);
        benchmark::RegisterBenchmark((name + "/library").c_str(), oneCall, mode, false);
        benchmark::RegisterBenchmark((name + "/with_states").c_str(), oneCall, mode, true);
        benchmark::RegisterBenchmark((name + "/loop").c_str(), loopOverClass, mode);
    }
    return true;
}();

} // namespace

} // namespace kiv::bench
