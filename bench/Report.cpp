// Runs the benchmarks and prints, at the end, the median cost of each operation and its ratio to
// its peers.

#include <cstdio>
#include <map>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

namespace {

class Report : public benchmark::BenchmarkReporter {
public:
    bool ReportContext(const Context&) override { return true; }

    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs) {
            const std::string name = run.run_name.function_name;
            const std::size_t bar = name.find('|');
            if (run.error_occurred)
                std::fprintf(stderr, "%s: %s\n", name.c_str(), run.error_message.c_str());
            else if (run.aggregate_name == "median")
                nanoseconds[name.substr(0, bar)][name.substr(bar + 1)] =
                    1e9 / run.counters.at("items_per_second").value;
        }
    }

    void Finalize() override {
        std::printf("%-60s %10s %7s\n", "operation", "ns", "ratio");
        for (auto& [operation, costs] : nanoseconds) {
            const double library = costs["library"] - costs["less"];
            std::printf("%-60s %10.1f\n", operation.c_str(), library);
            for (const auto& [whose, cost] : costs)
                if (whose != "library" && whose != "less")
                    std::printf("    / %-54s %10.1f %7.2f\n", whose.c_str(), cost, library / cost);
        }
    }

private:
    std::map<std::string, std::map<std::string, double>> nanoseconds; // for each item
};

} // namespace

// Repetitions take turns in random order, so that what slows the machine for a while slows all
// alike.
int main(int argc, char** argv) {
    char repetitions[] = "--benchmark_repetitions=9";
    char interleaving[] = "--benchmark_enable_random_interleaving=true";
    char time[] = "--benchmark_min_time=0.05";
    std::vector<char*> arguments{argv[0], repetitions, interleaving, time};
    arguments.insert(arguments.end(), argv + 1, argv + argc);
    int count = static_cast<int>(arguments.size());
    benchmark::Initialize(&count, arguments.data());
    if (benchmark::ReportUnrecognizedArguments(count, arguments.data()))
        return 2;
    Report report;
    benchmark::RunSpecifiedBenchmarks(&report);
}
