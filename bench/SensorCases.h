#pragma once

#include <array>
#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "KIVInterface/CKiv.h"
#include "KIVInterface/CKivModel.h"
#include "KIVInterface/Records.h"
#include "simulator/Mounting.h"

namespace kiv::bench {

// Every benchmark runs through this many different cases and begins again.
constexpr std::size_t caseCount = 1024;

// The parameter file of the example sensor in a mount mode.
std::string parameterFile(int mode);

// The example sensor in one mount mode, its reference captured, with readings of random poses, each
// of which its model solves.
struct SensorCases {
    explicit SensorCases(int mode);

    simulator::Mounting mounting;
    CKiv sensor;
    std::unique_ptr<CKivModel> model;
    std::vector<KIV_RAWINFO> readings;
    std::vector<std::array<double, 9>> measurements; // what an update hands to the model
};

SensorCases& casesOf(int mode);

} // namespace kiv::bench
