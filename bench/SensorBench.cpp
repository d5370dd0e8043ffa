// Each model against the calls of the C library's functions that it cannot avoid; the update less
// its model against a sine and a cosine; threads; the C surface against a loop over the class.

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <stdexcept>
#include <utility>

#include "bench/Cases.h"
#include "kiv.h"
#include "support/Principles.h"

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

// Each call waits for the result of the one before, which adds nothing to its argument.
void runCalls(benchmark::State& state, const ModelCalls& calls) {
    const std::vector<double> azimuths = randomArguments(3.14), tilts = randomArguments(0.12);
    double result = 0;
    std::size_t next = 0;
    const auto repeat = [&](int times, const std::vector<double>& arguments, auto function) {
        for (int i = 0; i < times; ++i) {
            result = function(arguments[next++ % caseCount] + 0 * result);
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

void sineAndCosine(benchmark::State& state) {
    const std::vector<double> angles = randomArguments(3.14);
    forEachCase(state, [&](std::size_t i) {
        return std::array{std::sin(angles[i]), std::cos(angles[i])};
    });
}

void update(benchmark::State& state, SensorCases& cases, const std::vector<KIV_RAWINFO>& readings) {
    KIV_INFO info;
    forEachCase(state, [&](std::size_t i) {
        cases.sensor.updateKIVData(readings[i], info);
        return info;
    });
}

void update(benchmark::State& state, int mode, bool machineFrame = true) {
    SensorCases& cases = casesOf(mode);
    cases.sensor.setMcsFlag(machineFrame);
    update(state, cases, cases.readings);
    cases.sensor.setMcsFlag(true);
}

// One of the readings that every mode uses is infinite or not a number.
void updateNotFinite(benchmark::State& state, int mode) {
    constexpr float infinity = std::numeric_limits<float>::infinity();
    constexpr float values[] = {std::numeric_limits<float>::quiet_NaN(), infinity, -infinity};
    std::vector<KIV_RAWINFO> readings = casesOf(mode).readings;
    for (std::size_t i = 0; i < caseCount; ++i) {
        KIV_RAWINFO& raw = readings[i];
        float* const fields[] = {&raw.vector[0],  &raw.vector[1],    &raw.vector[2],
                                 &raw.azimuthRaw, &raw.elevationRaw, &raw.levelYRaw,
                                 &raw.temperature};
        *fields[i % std::size(fields)] = values[i / std::size(fields) % std::size(values)];
    }
    update(state, casesOf(mode), readings);
}

// One sensor for each thread, or all threads on the first.
void updateOnThreads(benchmark::State& state, int mode, bool shared) {
    static std::unique_ptr<SensorCases> sensors[2];
    if (state.thread_index() == 0)
        for (auto& sensor : sensors)
            sensor = std::make_unique<SensorCases>(mode);
    KIV_INFO info;
    for (auto _ : state) {
        SensorCases& cases = *sensors[shared ? 0 : state.thread_index()];
        for (const KIV_RAWINFO& raw : cases.readings) {
            cases.sensor.updateKIVData(raw, info);
            benchmark::DoNotOptimize(info);
        }
    }
    countItems(state, caseCount);
}

struct Asked {
    bool trust, uncertainties;
};

void oneCall(benchmark::State& state, int mode, Asked asked) {
    std::vector<kiv_reading> readings(caseCount);
    std::memcpy(readings.data(), casesOf(mode).readings.data(), caseCount * sizeof(kiv_reading));
    std::vector<kiv_result> results(caseCount);
    std::vector<std::uint8_t> states(caseCount);
    std::vector<kiv_trust> trust(caseCount);
    std::vector<kiv_uncertainty> uncertainties(caseCount);
    kiv_parameters* parameters = nullptr;
    kiv_sensor* sensor = nullptr;
    if (kiv_parameters_new(&parameters) != KIV_STATUS_OK
        || kiv_parameters_load(parameters, parameterFile(mode).c_str()) != KIV_STATUS_OK
        || kiv_sensor_new(parameters, &sensor) != KIV_STATUS_OK)
        throw std::runtime_error("cannot use " + parameterFile(mode));
    for (auto _ : state) {
        kiv_sensor_judge_many(sensor, readings.data(), caseCount, results.data(), nullptr,
                              states.data(), asked.trust ? trust.data() : nullptr,
                              asked.uncertainties ? uncertainties.data() : nullptr);
        benchmark::DoNotOptimize(results.data());
    }
    countItems(state, caseCount);
    kiv_sensor_free(sensor);
    kiv_parameters_free(parameters);
}

[[maybe_unused]] const bool registered = [] {
    using State = benchmark::State;
    for (const ModelCalls& calls : callsOfModels) {
        const int mode = calls.mode;
        const std::string inMode = " in mode " + std::to_string(mode);
        const auto ordinary = [=](State& s) { update(s, mode); };
        const auto model = [=](State& s) { runModel(s, mode); };
        add("model" + inMode + "|library", model);
        add("model" + inMode + "|its calls", [=](State& s) { runCalls(s, calls); });
        add("update less its model" + inMode + "|library", ordinary);
        add("update less its model" + inMode + "|less", model);
        add("update less its model" + inMode + "|a sine and a cosine", sineAndCosine);
        if (!reportsOwnMatrix(mode)) {
            const std::string local = "update less its model, local frame" + inMode;
            add(local + "|library", [=](State& s) { update(s, mode, false); });
            add(local + "|less", model);
            add(local + "|a sine and a cosine", sineAndCosine);
        }
        add("update, not finite" + inMode + "|library",
            [=](State& s) { updateNotFinite(s, mode); });
        add("update, not finite" + inMode + "|ordinary", ordinary);

        const auto call = [=](Asked a) { return [=](State& s) { oneCall(s, mode, a); }; };
        add("kiv.h, one call" + inMode + "|library", call({}));
        add("kiv.h, one call" + inMode + "|a loop of updates", ordinary);
        add("kiv.h, trust too" + inMode + "|library", call({true, false}));
        add("kiv.h, trust too" + inMode + "|without", call({}));
        add("kiv run, a row" + inMode + "|less", call({true, false}));
        add("kiv.h, uncertainties too" + inMode + "|library", call({true, true}));
        add("kiv.h, uncertainties too" + inMode + "|without", call({}));
    }
    for (const bool shared : {false, true}) {
        const std::string name = shared ? "threads, one sensor" : "threads, a sensor each";
        const auto onThreads = [=](State& s) { updateOnThreads(s, 6, shared); };
        add(name + "|library", onThreads)->Threads(2)->UseRealTime();
        add(name + "|one thread", onThreads)->Threads(1)->UseRealTime();
    }
    return true;
}();

} // namespace

} // namespace kiv::bench
