#pragma once

#include <string>
#include <utility>
#include <vector>

#include "host/base/Sha256.h"
#include "host/poses/PoseSummary.h"
#include "host/report/Envelope.h"

namespace kiv::host {

// What a page of poses shows beside what is said of all of them.
struct PosesPage {
    struct Input {
        std::string role; // as "Parameter file"
        std::string name;
        Sha256 digest;
    };
    std::string commandLine;
    std::vector<Input> inputs;
    bool localFrame = false;
    bool truth = false;
    // Over the poses, of rx, ry, rz each: the mean rotation, its standard uncertainty, a row's
    // standard deviation, and the mean less the true one.
    Envelope envelope{12, 4096};

    void add(const Pose& pose);
};

// The whole page as one HTML file that loads nothing.
std::string posesPage(const PosesPage& content, const PoseSummary& summary);

} // namespace kiv::host
