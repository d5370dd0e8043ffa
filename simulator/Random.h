#pragma once

#include <cstdint>
#include <random>

namespace kiv::simulator {

// Random numbers that one seed gives alike on every platform, which the standard's distributions
// do not.
class Random {
public:
    explicit Random(std::uint64_t seed) : bits(seed) {}

    // The number lies in [low, high).
    double uniform(double low, double high);
    // Mean 0, standard deviation 1.
    double normal();

private:
    std::mt19937_64 bits;
};

} // namespace kiv::simulator
