#include "bench/MathCalls.h"

#include <algorithm>
#include <cmath>

#include "tests/ModelCases.h"

namespace kiv::bench {

namespace {

using enum MathFunction;

std::vector<MathCall> callsOfCase;

// One result gives the other, but for its sign.
bool sameArgument(const MathCall& a, const MathCall& b) {
    const bool evenOrOdd = a.function != arcCosine && a.function != arcTangentOfPoint;
    return evenOrOdd ? std::abs(a.argument) == std::abs(b.argument)
                     : a.argument == b.argument && a.x == b.x;
}

bool isSineOrCosine(MathFunction f) {
    return f == sine || f == cosine || f == sineAndCosine;
}

void note(const MathCall& call) {
    for (MathCall& earlier : callsOfCase) {
        if (!sameArgument(call, earlier))
            continue;
        if (earlier.function == call.function)
            return;
        if (isSineOrCosine(earlier.function) && isSineOrCosine(call.function)) {
            earlier.function = sineAndCosine;
            return;
        }
    }
    callsOfCase.push_back(call);
}

} // namespace

std::vector<MathCall> unavoidableCalls(const SensorCases& cases) {
    std::vector<MathCall> all;
    const auto model = test::modelOf(cases.mounting);
    for (std::array<double, 9> M : cases.measurements) {
        callsOfCase.clear();
        model->CalTranxMatrix(M.data(), cases.mounting.encoderOffset[0],
                              cases.mounting.encoderOffset[1], 3, false, false);
        all.insert(all.end(), callsOfCase.begin(), callsOfCase.end());
    }
    return all;
}

// The linker leads the models' calls of f to __wrap_f, and those of __real_f to f.
extern "C" {

#define RECORDED(name, function)                                                                   \
    double __real_##name(double x);                                                                \
    double __wrap_##name(double x) {                                                               \
        note({MathFunction::function, x, 0});                                                      \
        return __real_##name(x);                                                                   \
    }
RECORDED(sin, sine)
RECORDED(cos, cosine)
RECORDED(tan, tangent)
RECORDED(asin, arcSine)
RECORDED(acos, arcCosine)
RECORDED(atan, arcTangent)
#undef RECORDED

void __real_sincos(double x, double* s, double* c);
double __real_atan2(double y, double x);

void __wrap_sincos(double x, double* s, double* c) {
    note({MathFunction::sineAndCosine, x, 0});
    __real_sincos(x, s, c);
}

double __wrap_atan2(double y, double x) {
    note({MathFunction::arcTangentOfPoint, y, x});
    return __real_atan2(y, x);
}
} // extern "C"

} // namespace kiv::bench
