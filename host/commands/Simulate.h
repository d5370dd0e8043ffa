#pragma once

#include <cstdint>
#include <string>

#include "host/base/Cli.h"
#include "host/rows/TableFormat.h"
#include "simulator/Noise.h"

class CKivPrm;

namespace kiv::host {

struct SimulateOptions {
    std::string parameterFile;
    std::string readings = "-";
    std::string poses; // a CSV file, - for standard input; empty: the trajectory
    TableFormat posesFormat;
    std::string trajectory = "turn";
    double tilt = 5; // largest pitch and largest roll along the trajectory, degrees
    long rows = 2000;
    double rate = 100; // rows a second of the time stamp
    simulator::Noise noise;
    double badShare = 0; // of the rows, 0 to 1
    std::uint64_t seed = 1;
};

// Writes readings of the sensor along a trajectory or in given poses, with the true angles beside
// them. An exit code.
int simulateReadings(const SimulateOptions& options, const Streams& streams);

// The same of a parameter file that was read.
int simulateReadings(const SimulateOptions& options, CKivPrm& record, const Streams& streams);

} // namespace kiv::host
