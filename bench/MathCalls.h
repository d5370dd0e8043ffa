#pragma once

#include <vector>

#include "bench/SensorCases.h"

namespace kiv::bench {

enum class MathFunction : unsigned char {
    sine,
    cosine,
    sineAndCosine,
    tangent,
    arcSine,
    arcCosine,
    arcTangent,
    arcTangentOfPoint,
};

struct MathCall {
    MathFunction function;
    double argument;
    double x; // of the point (x, argument)
};

// The calls of the C library that the model of these cases cannot avoid, in its own order, case
// after case: those that it makes, but each only once a case, where f(-x) follows from f(x) only
// one of the two, and sine and cosine of an angle together.
std::vector<MathCall> unavoidableCalls(const SensorCases& cases);

} // namespace kiv::bench
