// A thousand updates in one mount mode, for a tool that counts instructions: those of
// countedUpdates.

#include <cstdlib>

#include "bench/Cases.h"

extern "C" void countedUpdates(kiv::bench::SensorCases& cases, KIV_INFO& info) {
    for (std::size_t i = 0; i < 1000; ++i)
        cases.sensor.updateKIVData(cases.readings[i], info);
}

int main(int, char** argv) {
    KIV_INFO info;
    void (*volatile const run)(kiv::bench::SensorCases&, KIV_INFO&) = countedUpdates; // not inlined
    run(kiv::bench::casesOf(std::atoi(argv[1])), info);
}
