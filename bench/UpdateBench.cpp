// Updates of a sensor object in every mount mode, with readings that are not finite, and on
// threads.

#include <cmath>
#include <limits>
#include <memory>

#include "bench/Benchmark.h"
#include "simulator/RandomPoses.h"
#include "support/MountMode.h"
#include "uncertainty/Propagation.h"

namespace kiv::bench {

namespace {

KIV_INFO updated(CKiv& sensor, const KIV_RAWINFO& raw) {
    KIV_INFO info;
    sensor.updateKIVData(raw, info);
    return info;
}

void update(benchmark::State& state, int mode) {
    SensorCases& cases = casesOf(mode);
    forEachCase(state, [&](std::size_t i) { return updated(cases.sensor, cases.readings[i]); });
}

void updateInLocalFrame(benchmark::State& state, int mode) {
    SensorCases& cases = casesOf(mode);
    cases.sensor.setMcsFlag(false);
    update(state, mode);
    cases.sensor.setMcsFlag(true);
}

// The standard uncertainties of all that can have one.
void propagate(benchmark::State& state, int mode) {
    SensorCases& cases = casesOf(mode);
    Uncertainties uncertainties;
    uncertainties.of.fill(0.01);
    Propagation propagation(cases.sensor, uncertainties);
    forEachCase(state, [&](std::size_t i) {
        const KIV_INFO info = updated(cases.sensor, cases.readings[i]);
        AngleUncertainty out;
        propagation.of(cases.sensor, cases.readings[i], info, out);
        return out;
    });
}

// One of the readings that every mode uses is infinite or not a number.
void updateNotFinite(benchmark::State& state, int mode) {
    constexpr float infinity = std::numeric_limits<float>::infinity();
    constexpr float values[] = {std::numeric_limits<float>::quiet_NaN(), infinity, -infinity};
    SensorCases& cases = casesOf(mode);
    std::vector<KIV_RAWINFO> readings = cases.readings;
    for (std::size_t i = 0; i < caseCount; ++i) {
        KIV_RAWINFO& raw = readings[i];
        float* const fields[] = {&raw.vector[0],  &raw.vector[1],    &raw.vector[2],
                                 &raw.azimuthRaw, &raw.elevationRaw, &raw.levelYRaw,
                                 &raw.temperature};
        *fields[i % std::size(fields)] = values[i / std::size(fields) % std::size(values)];
    }
    forEachCase(state, [&](std::size_t i) { return updated(cases.sensor, readings[i]); });
}

void sineAndCosine(benchmark::State& state) {
    simulator::RandomPoses random(1, {});
    std::vector<double> angles(caseCount);
    for (double& angle : angles)
        angle = random.uniform(-3.14, 3.14);
    forEachCase(state, [&](std::size_t i) {
        return std::array{std::sin(angles[i]), std::cos(angles[i])};
    });
}

// Sensors of one mode, one for each thread or all threads on the first.
void updateOnThreads(benchmark::State& state, int mode, bool shared) {
    static std::unique_ptr<SensorCases> sensors[2];
    if (state.thread_index() == 0)
        for (auto& sensor : sensors)
            sensor = std::make_unique<SensorCases>(mode);
    for (auto _ : state) {
        SensorCases& cases = *sensors[shared ? 0 : state.thread_index()];
        for (const KIV_RAWINFO& raw : cases.readings)
            benchmark::DoNotOptimize(updated(cases.sensor, raw));
    }
    countItems(state, caseCount);
}

[[maybe_unused]] const bool registered = [] {
    const auto add = [](const std::string& name, auto... arguments) {
        return benchmark::RegisterBenchmark(name.c_str(), arguments...);
    };
    add("sine_and_cosine/C_library", sineAndCosine);
    for (int mode = 1; mode <= 10; ++mode) {
        const std::string ofMode = "/mode_" + std::to_string(mode);
        add("update" + ofMode + "/library", update, mode);
        if (mode % 2 == 1)
            continue;
        add("update_with_uncertainties" + ofMode + "/library", propagate, mode);
        if (!reportsOwnMatrix(mode))
            add("update_in_local_frame" + ofMode + "/library", updateInLocalFrame, mode);
        add("update_not_finite" + ofMode + "/library", updateNotFinite, mode);
        for (const int threads : {1, 2}) {
            add("sensors_of_their_own" + ofMode, updateOnThreads, mode, false)
                ->Threads(threads)
                ->UseRealTime();
            add("one_sensor" + ofMode, updateOnThreads, mode, true)
                ->Threads(threads)
                ->UseRealTime();
        }
    }
    return true;
}();

} // namespace

} // namespace kiv::bench
