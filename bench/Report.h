#pragma once

#include <map>
#include <string>

#include <benchmark/benchmark.h>

namespace kiv::bench {

// Takes the median of each benchmark's repetitions and prints, at the end, each goal's ratio and
// state, and how costs grow with size. Goals of benchmarks that were left out do not appear.
class Report : public benchmark::BenchmarkReporter {
public:
    bool ReportContext(const Context&) override { return true; }
    void ReportRuns(const std::vector<Run>& runs) override;
    void Finalize() override;

private:
    std::map<std::string, double> nanoseconds; // for each item, by the benchmark's name
};

} // namespace kiv::bench
