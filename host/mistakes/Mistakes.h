#pragma once

#include <string>
#include <vector>

#include "KIVInterface/Records.h"

namespace kiv::host {

// One thing that people get wrong when they set a recording up, as what would take it back.
struct Mistake {
    std::string name;
    std::string change; // in words, behind "with"
    void (*readings)(KIV_RAWINFO& raw) = nullptr;
    int mountMode = 0; // the parameter file's; 0: as it is
    bool localFrame = false;
    bool machineInverted = false;
};

// All that can be tried on a sensor: with true angles, or by the spare reading alone, which the
// frame does not change and which other modes do not have.
std::vector<Mistake> mistakesFor(int mountMode, bool withTrueAngles);

} // namespace kiv::host
