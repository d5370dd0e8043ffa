// kiv run against the updates and number conversions of its rows alone.

#include <fstream>
#include <iostream>
#include <sstream>
#include <stdexcept>

#include "bench/Benchmark.h"
#include "host/commands/Run.h"
#include "host/commands/Simulate.h"
#include "host/tables/Numbers.h"
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
    options.readings = readings.path;
    options.output = "/dev/null";
    options.quiet = true;
    std::ostringstream messages;
    for (auto _ : state)
        if (host::runReadings(options, {std::cin, messages, messages}) != host::allGood)
            state.SkipWithError(messages.str().c_str());
    countItems(state, rowCount);
}

// From the cells of a row behind its time stamp to the text of its results.
class RowConversion {
public:
    explicit RowConversion(int mode) : cases(casesOf(mode)), threeVector(reportsOwnMatrix(mode)) {}

    void convert(const std::vector<std::string_view>& cells, std::string& text) {
        KIV_RAWINFO raw{};
        raw.status = number<int>(cells[1]);
        float* const fields[] = {&raw.vector[0],  &raw.vector[1],    &raw.vector[2],
                                 &raw.azimuthRaw, &raw.elevationRaw, &raw.levelXRaw,
                                 &raw.levelYRaw,  &raw.temperature,  &raw.refMetric};
        for (std::size_t i = 0; i < std::size(fields); ++i)
            *fields[i] = number<float>(cells[2 + i]);
        for (std::size_t i = 12; i < 15; ++i)
            benchmark::DoNotOptimize(number<double>(cells[i]));

        KIV_INFO info;
        cases.sensor.updateKIVData(raw, info);
        const RowTrust row = trust.judge(cases.sensor, raw, info, false);
        host::appendNumber(text, static_cast<float>(row.modelError));
        double matrix[9];
        const int code = cases.sensor.ReadMatrix(matrix);
        for (const float value :
             {info.azimuth, info.elevation, info.levelX, info.levelY, info.rx, info.ry, info.rz})
            host::appendNumber(text, value);
        if (threeVector)
            for (const float value : info.qvc)
                host::appendNumber(text, value);
        else
            for (const double value : matrix)
                host::appendNumber(text, value);
        host::appendNumber(text, code);
    }

private:
    template <typename Number>
    static Number number(std::string_view cell) {
        return *host::numberIn<Number>(cell);
    }

    SensorCases& cases;
    bool threeVector;
    TrustJudge trust{cases.sensor, {-9, 9, -9, 9}};
};

void updateAndConvert(benchmark::State& state, int mode) {
    std::ifstream file(ReadingsFile(mode).path, std::ios::binary);
    std::string header;
    std::getline(file, header);
    std::vector<std::string> lines(static_cast<std::size_t>(rowCount));
    std::vector<std::vector<std::string_view>> rows;
    for (std::string& line : lines) {
        std::getline(file, line);
        std::vector<std::string_view> cells;
        for (std::string_view rest = line;;) {
            const std::size_t comma = rest.find(',');
            cells.push_back(rest.substr(0, comma));
            if (comma == rest.npos)
                break;
            rest.remove_prefix(comma + 1);
        }
        rows.push_back(cells);
    }
    RowConversion conversion(mode);
    std::string text;
    for (auto _ : state)
        for (const auto& cells : rows) {
            text.clear();
            conversion.convert(cells, text);
            benchmark::DoNotOptimize(text.data());
        }
    countItems(state, rowCount);
}

[[maybe_unused]] const bool registered = [] {
    for (int mode = 2; mode <= 10; mode += 2) {
        const std::string name = "run_row/mode_" + std::to_string(mode);
        benchmark::RegisterBenchmark((name + "/library").c_str(), run, mode);
        benchmark::RegisterBenchmark((name + "/numbers").c_str(), updateAndConvert, mode);
    }
    return true;
}();

} // namespace

} // namespace kiv::bench
