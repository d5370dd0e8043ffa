#pragma once

#include <array>
#include <cstddef>
#include <vector>

#include "simulator/Noise.h"
#include "tests/proofs/AnySensor.h"
#include "tests/proofs/PoseErrors.h"

// Long simulations that try what the library says of its own results: the bounds and the
// uncertainties of src/uncertainty/. All go the whole way of a host, in machine coordinates, with
// the example sensor's encoders and tilt tables from -35 to 35 whose limits are 29 degrees.
namespace kiv::docs {

// The reported angles' own rounding, degrees: no error above the bound is smaller.
inline constexpr double singlePrecision = 2e-5;

// Exact readings.
struct BoundTrial {
    std::size_t rows = 0; // with an orientation
    std::size_t good = 0;
    std::size_t wronglyGood = 0; // their error is above the bound and 2e-5 degrees
    std::size_t right = 0;       // error below 0.001 degrees
    std::size_t rightNotGood = 0;
    // Of good rows, degrees.
    double largestError = 0;
    double largestExcess = 0; // of the error over the bound
};

BoundTrial tryBound(const Case& which, const Range& range, std::size_t count);

// Exact readings of sensors drawn at random, 100 poses each in machine and local frames by turns.
struct WideTrial : BoundTrial {
    std::size_t farAbove = 0; // of good rows: by more than 0.01 degrees
};

WideTrial tryAnySensor(int mode, Dead dead, std::size_t count);

// Of the size that makes the angles' uncertainties 0.005 degrees and more at tilts to 5 and sights
// to 45, and of the size of single precision's own steps.
inline constexpr simulator::Noise usualNoise{0.3, 0.01, 0.01};
inline constexpr simulator::Noise leastNoise{0.001, 1e-5, 1e-6};

// Noisy readings: residuals of good rows over their standard uncertainty.
struct NoiseTrial {
    std::size_t rows = 0;
    std::size_t good = 0;
    double leastUncertainty = 0;          // degrees
    std::array<double, 3> deviation = {}; // rx, ry, rz; 1 where the uncertainty is right
    std::array<double, 3> within2 = {};   // share within twice the uncertainty
};

NoiseTrial tryNoise(int mode, const simulator::Noise& noise, const Range& range, std::size_t count);

// A Monte Carlo evaluation (JCGM 101) with the usual noise beside the propagation, at good rows:
// the difference of the two's standard uncertainties as a part of the Monte Carlo's, of each row's
// three angles.
std::vector<double> tryMonteCarlo(int mode, const Range& range, std::size_t poses,
                                  std::size_t draws);

} // namespace kiv::docs
