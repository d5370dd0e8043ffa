// kiv run, less its updates with trust (SensorBench.cpp), against the conversions of its numbers
// alone; and of angles and trust alone against the whole row.

#include <charconv>
#include <fstream>
#include <sstream>

#include "bench/Cases.h"
#include "host/base/Cli.h"
#include "kiv.h"
#include "support/Numbers.h"
#include "support/Principles.h"

namespace kiv::bench {

namespace {

constexpr std::size_t rowCount = 20 * caseCount;

using Cells = std::vector<std::string>;

// Readings behind the status.
Cells cellsOf(const KIV_RAWINFO& raw) {
    Cells cells;
    for (const float value :
         {raw.vector[0], raw.vector[1], raw.vector[2], raw.azimuthRaw, raw.elevationRaw,
          raw.levelXRaw, raw.levelYRaw, raw.temperature, raw.refMetric}) {
        char text[32];
        cells.emplace_back(text, std::to_chars(text, std::end(text), value).ptr);
    }
    return cells;
}

void run(benchmark::State& state, int mode, const std::vector<const char*>& more = {}) {
    const std::string parameters = parameterFile(mode), readings = parameters + ".readings.csv";
    {
        std::ofstream file(readings, std::ios::binary);
        file << "status,x,y,z,azimuth_deg,elevation_deg,level_x,level_y,temperature,ref_metric,ref_"
                "blocked\n";
        for (std::size_t i = 0; i < rowCount; ++i) {
            file << '2';
            for (const std::string& cell : cellsOf(casesOf(mode).readings[i % caseCount]))
                file << ',' << cell;
            file << ",0\n";
        }
    }
    std::vector<const char*> command{
        "kiv", "run", "-q", "-j", "1", parameters.c_str(), readings.c_str(), "-o", "/dev/null"};
    command.insert(command.end(), more.begin(), more.end());
    std::istringstream in;
    std::ostringstream out;
    for (auto _ : state)
        if (host::runTool(static_cast<int>(command.size()), command.data(), {in, out, out})
            != host::allGood)
            state.SkipWithError(out.str().c_str());
    countItems(state, rowCount);
}

void numbers(benchmark::State& state, int mode) {
    SensorCases& cases = casesOf(mode);
    std::vector<Cells> rows;
    std::vector<KIV_INFO> results(caseCount);
    std::vector<std::array<double, 9>> matrices(caseCount);
    for (std::size_t i = 0; i < caseCount; ++i) {
        rows.push_back(cellsOf(cases.readings[i]));
        cases.sensor.updateKIVData(cases.readings[i], results[i]);
        cases.sensor.ReadMatrix(matrices[i].data());
    }
    forEachCase(state, [&](std::size_t i) {
        for (const std::string& cell : rows[i])
            benchmark::DoNotOptimize(numberIn<float>(cell));
        char text[1024];
        char* end = text;
        const auto append = [&](auto value) {
            end = std::to_chars(end, std::end(text), value).ptr;
        };
        const KIV_INFO& info = results[i];
        for (const float value :
             {info.azimuth, info.elevation, info.levelX, info.levelY, info.rx, info.ry, info.rz,
              1e-6F * info.rx}) // as long as the model's error
            append(value);
        if (reportsOwnMatrix(mode))
            for (const float value : info.qvc)
                append(value);
        else
            for (const double value : matrices[i])
                append(value);
        benchmark::DoNotOptimize(text);
        return end;
    });
}

[[maybe_unused]] const bool registered = [] {
    for (int mode = 2; mode <= 10; mode += 2) {
        const std::string name = "kiv run, a row in mode " + std::to_string(mode);
        add(name + "|library", [=](benchmark::State& s) { run(s, mode); });
        add(name + "|its numbers alone", [=](benchmark::State& s) { numbers(s, mode); });
        const std::string chosen = "kiv run, angles and trust, mode " + std::to_string(mode);
        add(chosen + "|library", [=](benchmark::State& s) {
            run(s, mode, {"--results", "angles,trust"});
        });
        add(chosen + "|whole row", [=](benchmark::State& s) { run(s, mode); });
    }
    return true;
}();

} // namespace

} // namespace kiv::bench
