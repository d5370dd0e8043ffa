// Readings in one call through the C surface, against a loop over the class.

#include <cstring>
#include <stdexcept>
#include <utility>

#include "bench/Benchmark.h"
#include "kiv.h"

namespace kiv::bench {

namespace {

constexpr std::size_t million = 1'000'000;
constexpr std::size_t judgedCount = 20'000; // with uncertainties, 14 updates a reading

std::vector<KIV_RAWINFO> recordingOf(int mode, std::size_t readingCount) {
    const std::vector<KIV_RAWINFO>& cases = casesOf(mode).readings;
    std::vector<KIV_RAWINFO> recording(readingCount);
    for (std::size_t i = 0; i < readingCount; ++i)
        recording[i] = cases[i % cases.size()];
    return recording;
}

void loopOverClass(benchmark::State& state, int mode) {
    const auto readings = recordingOf(mode, million);
    std::vector<KIV_INFO> results(million);
    CKiv& sensor = casesOf(mode).sensor;
    for (auto _ : state) {
        for (std::size_t i = 0; i < million; ++i)
            sensor.updateKIVData(readings[i], results[i]);
        benchmark::DoNotOptimize(results.data());
    }
    countItems(state, million);
}

struct Asked {
    bool states, trust, uncertainties;
};

void oneCall(benchmark::State& state, int mode, Asked asked) {
    const std::size_t count = asked.uncertainties ? judgedCount : million;
    std::vector<kiv_reading> readings(count);
    std::memcpy(readings.data(), recordingOf(mode, count).data(), count * sizeof(kiv_reading));
    std::vector<kiv_result> results(count);
    std::vector<std::uint8_t> states(count);
    std::vector<kiv_trust> trust(count);
    std::vector<kiv_uncertainty> uncertainties(count);
    kiv_parameters* parameters = nullptr;
    kiv_sensor* sensor = nullptr;
    if (kiv_parameters_new(&parameters) != KIV_STATUS_OK
        || kiv_parameters_load(parameters, parameterFile(mode).c_str()) != KIV_STATUS_OK
        || kiv_sensor_new(parameters, &sensor) != KIV_STATUS_OK)
        throw std::runtime_error("cannot use " + parameterFile(mode));
    for (auto _ : state) {
        kiv_sensor_judge_many(sensor, readings.data(), count, results.data(), nullptr,
                              asked.states ? states.data() : nullptr,
                              asked.trust ? trust.data() : nullptr,
                              asked.uncertainties ? uncertainties.data() : nullptr);
        benchmark::DoNotOptimize(results.data());
    }
    countItems(state, count);
    kiv_sensor_free(sensor);
    kiv_parameters_free(parameters);
}

[[maybe_unused]] const bool registered = [] {
    for (int mode = 2; mode <= 10; mode += 2) {
        const std::string name = "million_readings/mode_" + std::to_string(mode);
        const std::pair<const char*, Asked> calls[] = {{"/library", {false, false, false}},
                                                       {"/with_states", {true, false, false}},
                                                       {"/with_trust", {true, true, false}},
                                                       {"/with_uncertainties", {true, true, true}}};
        for (const auto& [what, asked] : calls)
            benchmark::RegisterBenchmark((name + what).c_str(), oneCall, mode, asked);
        benchmark::RegisterBenchmark((name + "/loop").c_str(), loopOverClass, mode);
    }
    return true;
}();

} // namespace

} // namespace kiv::bench
