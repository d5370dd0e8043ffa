// kiv run, less its updates, against the conversions of its numbers alone.

#include <charconv>
#include <fstream>
#include <iostream>
#include <sstream>
#include <stdexcept>
#include <utility>

#include "bench/Benchmark.h"
#include "host/base/Numbers.h"
#include "host/commands/Run.h"
#include "host/commands/Simulate.h"
#include "support/MountMode.h"
#include "uncertainty/Trust.h"

namespace kiv::bench {

namespace {

constexpr long rowCount = 20000;

// Simulated readings of a mode, as a file beside the sensor's parameter file.
struct ReadingsFile {
    explicit ReadingsFile(int mode) : path(parameterFile(mode) + ".readings.csv") {
        host::SimulateOptions options;
        options.parameterFile = parameterFile(mode);
        options.readings = path;
        options.rows = rowCount;
        std::ostringstream messages;
        if (host::simulateReadings(options, {std::cin, messages, messages}) != host::allGood)
            throw std::runtime_error(messages.str());
    }

    std::string path;
};

void run(benchmark::State& state, int mode) {
    const ReadingsFile readings(mode);
    host::RunOptions options;
    options.parameterFile = parameterFile(mode);
    options.readings = {readings.path};
    options.jobs = 1;
    options.output = "/dev/null";
    options.quiet = true;
    std::ostringstream messages;
    for (auto _ : state)
        if (host::runReadings(options, {std::cin, messages, messages}) != host::allGood)
            state.SkipWithError(messages.str().c_str());
    countItems(state, rowCount);
}

using Cells = std::vector<std::string_view>;

// The rows of such a file, cut into cells.
struct Rows {
    explicit Rows(int mode) : lines(static_cast<std::size_t>(rowCount)) {
        std::ifstream file(ReadingsFile(mode).path, std::ios::binary);
        std::string header;
        std::getline(file, header);
        for (std::string& line : lines) {
            std::getline(file, line);
            Cells cells;
            for (std::string_view rest = line;;) {
                const std::size_t comma = rest.find(',');
                cells.push_back(rest.substr(0, comma));
                if (comma == rest.npos)
                    break;
                rest.remove_prefix(comma + 1);
            }
            all.push_back(cells);
        }
    }

    std::vector<std::string> lines;
    std::vector<Cells> all;
};

template <typename Number>
Number number(std::string_view cell) {
    return *host::numberIn<Number>(cell);
}

// From the cells behind the time stamp.
KIV_RAWINFO readingsIn(const Cells& cells) {
    KIV_RAWINFO raw{};
    raw.status = number<int>(cells[1]);
    float* const fields[] = {&raw.vector[0],  &raw.vector[1],    &raw.vector[2],
                             &raw.azimuthRaw, &raw.elevationRaw, &raw.levelXRaw,
                             &raw.levelYRaw,  &raw.temperature,  &raw.refMetric};
    for (std::size_t i = 0; i < std::size(fields); ++i)
        *fields[i] = number<float>(cells[2 + i]);
    return raw;
}

struct Results {
    KIV_INFO info{};
    double matrix[9] = {};
    int code = 0;
    RowTrust trust{};
};

class Updates {
public:
    explicit Updates(int mode) : sensor(casesOf(mode).sensor) {}

    void run(const KIV_RAWINFO& raw, Results& results) {
        sensor.updateKIVData(raw, results.info);
        results.trust = trust.judge(sensor, raw, results.info, false);
        results.code = sensor.ReadMatrix(results.matrix);
    }

private:
    CKiv& sensor;
    TrustJudge trust{sensor, {-9, 9, -9, 9}};
};

// A row's updates alone.
void update(benchmark::State& state, int mode) {
    const Rows rows(mode);
    std::vector<KIV_RAWINFO> readings;
    for (const Cells& cells : rows.all)
        readings.push_back(readingsIn(cells));
    Updates updates(mode);
    Results results;
    for (auto _ : state)
        for (const KIV_RAWINFO& raw : readings) {
            updates.run(raw, results);
            benchmark::DoNotOptimize(std::as_const(results));
        }
    countItems(state, rowCount);
}

// A row's conversions of numbers alone, true angles included.
void numbers(benchmark::State& state, int mode) {
    const Rows rows(mode);
    const bool threeVector = reportsOwnMatrix(mode);
    Updates updates(mode);
    std::vector<Results> results(rows.all.size());
    for (std::size_t i = 0; i < results.size(); ++i)
        updates.run(readingsIn(rows.all[i]), results[i]);
    char text[1024];
    for (auto _ : state)
        for (std::size_t i = 0; i < results.size(); ++i) {
            const KIV_RAWINFO raw = readingsIn(rows.all[i]);
            benchmark::DoNotOptimize(raw);
            for (std::size_t truth = 12; truth < 15; ++truth)
                benchmark::DoNotOptimize(number<double>(rows.all[i][truth]));
            const KIV_INFO& info = results[i].info;
            char* end = text;
            const auto append = [&](auto value) {
                end = std::to_chars(end, std::end(text), value).ptr;
            };
            for (const float value : {info.azimuth, info.elevation, info.levelX, info.levelY,
                                      info.rx, info.ry, info.rz})
                append(value);
            if (threeVector)
                for (const float value : info.qvc)
                    append(value);
            else
                for (const double value : results[i].matrix)
                    append(value);
            append(results[i].code);
            append(static_cast<float>(results[i].trust.modelError));
            benchmark::DoNotOptimize(end);
        }
    countItems(state, rowCount);
}

[[maybe_unused]] const bool registered = [] {
    for (int mode = 2; mode <= 10; mode += 2) {
        const std::string name = "run_row/mode_" + std::to_string(mode);
        benchmark::RegisterBenchmark((name + "/library").c_str(), run, mode);
        benchmark::RegisterBenchmark((name + "/update").c_str(), update, mode);
        benchmark::RegisterBenchmark((name + "/numbers").c_str(), numbers, mode);
    }
    return true;
}();

} // namespace

} // namespace kiv::bench
