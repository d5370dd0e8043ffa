// A thousand updates in one mount mode, for a tool that counts instructions: those of
// countedUpdates.

#include <cstdio>
#include <cstdlib>

#include "bench/SensorCases.h"

extern "C" void countedUpdates(kiv::bench::SensorCases& cases, KIV_INFO& info) {
    for (std::size_t i = 0; i < 1000; ++i)
        cases.sensor.updateKIVData(cases.readings[i], info);
}

int main(int argc, char** argv) {
    const int mode = argc == 2 ? std::atoi(argv[1]) : 0;
    if (mode < 1 || mode > 10)
        return std::fprintf(stderr, "usage: %s MODE (1 to 10)\n", argv[0]), 2;
    KIV_INFO info;
    void (*volatile const run)(kiv::bench::SensorCases&, KIV_INFO&) = countedUpdates; // not inlined
    run(kiv::bench::casesOf(mode), info);
    std::printf("%d %g %g %g\n", mode, info.rx, info.ry, info.rz);
}
