#include <vector>

#include "bench/Report.h"

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
    kiv::bench::Report report;
    benchmark::RunSpecifiedBenchmarks(&report);
}
