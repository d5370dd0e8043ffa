#pragma once

#include <string>
#include <vector>

#include "host/poses/PoseGathering.h"

namespace kiv::host {

struct PoseCell {
    std::string name;
    std::string text;
    bool number = true; // with a decimal point, or empty
};

// What a table of poses has beside its own columns.
struct PoseColumns {
    const Grouping& grouping;
    const std::vector<std::string>& tables; // named where there are several
    bool uncertainties = false;             // of the readings
    bool truth = false;
    bool trust = true; // rows tell theirs
};

// A pose's row, its cells in the order of the columns.
std::vector<PoseCell> cellsOf(const Pose& pose, const PoseColumns& columns);

} // namespace kiv::host
