#include "simulator/Random.h"

#include <cmath>

namespace kiv::simulator {

double Random::uniform(double low, double high) {
    return low + (high - low) * (static_cast<double>(bits() >> 11) * 0x1p-53);
}

// The ratio of two uniform numbers: the logarithm decides which pairs are taken and enters no
// result. Source: A. J. Kinderman, J. F. Monahan, ACM Transactions on Mathematical Software 3
// (1977), 257.
double Random::normal() {
    constexpr double most = 0.8577638849607068; // sqrt(2 / e)
    for (;;) {
        const double u = 1 - uniform(0, 1);
        const double x = most * uniform(-1, 1) / u;
        if (x * x <= -4 * std::log(u))
            return x;
    }
}

} // namespace kiv::simulator
