// The numeric library against Eigen and GSL.

#include <algorithm>

#include <Eigen/Dense>
#include <gsl/gsl_spline.h>

#include "bench/Cases.h"
#include "simulator/RandomPoses.h"
#include "support/ZelUtil.h"

namespace kiv::bench {

namespace {

using benchmark::State;
using Matrix = std::array<double, 9>;
using EigenMatrix = Eigen::Matrix<double, 3, 3, Eigen::RowMajor>;

// Rotations, each followed by the next.
std::vector<Matrix> rotations() {
    simulator::RandomPoses poses(2, {});
    std::vector<Matrix> made(caseCount + 1);
    for (Matrix& m : made)
        std::copy_n(poses.next().rotation, 9, m.begin());
    return made;
}

std::vector<EigenMatrix> rotationsForEigen() {
    std::vector<EigenMatrix> made;
    for (const Matrix& m : rotations())
        made.emplace_back(m.data());
    return made;
}

// A tilt table: knots over -20 to 20 degrees, unevenly spaced, with their values.
struct TiltTable {
    explicit TiltTable(std::size_t knots) : x(knots + 3), y(knots), coef(4 * knots) {
        simulator::RandomPoses random(4, {});
        const double step = 40.0 / static_cast<double>(knots - 1);
        for (std::size_t i = 0; i < knots; ++i) {
            const double at = -20 + step * (static_cast<double>(i) + random.uniform(-0.3, 0.3));
            x[i] = static_cast<float>(at);
            y[i] = static_cast<float>(at + random.uniform(-0.05, 0.05));
        }
        CubicSplines(x.data(), y.data(), last(), coef.data());
    }

    int last() const { return static_cast<int>(y.size()) - 1; }

    std::vector<float> x, y;
    std::vector<double> coef;
};

// More than the processor's branch prediction learns by heart.
constexpr std::size_t readingCount = 1 << 14;

std::vector<float> randomReadings() {
    simulator::RandomPoses random(5, {});
    std::vector<float> made(readingCount);
    std::generate(made.begin(), made.end(),
                  [&] { return static_cast<float>(random.uniform(-19, 19)); });
    return made;
}

void splineLibrary(State& state, std::size_t knots) {
    TiltTable table(knots);
    const auto readings = randomReadings();
    const auto value = [&](std::size_t i) {
        bool outside;
        return CalcSpline(true, table.x.data(), table.coef.data(), table.last(), readings[i],
                          &outside);
    };
    forEachCase(state, value, readingCount);
}

void splineGsl(State& state, std::size_t knots) {
    const TiltTable table(knots);
    const std::vector<double> x(table.x.begin(), table.x.end() - 3),
        y(table.y.begin(), table.y.end());
    gsl_spline* spline = gsl_spline_alloc(gsl_interp_cspline, knots);
    gsl_interp_accel* accelerator = gsl_interp_accel_alloc();
    gsl_spline_init(spline, x.data(), y.data(), knots);
    const auto readings = randomReadings();
    const auto value = [&](std::size_t i) {
        return gsl_spline_eval(spline, static_cast<double>(readings[i]), accelerator);
    };
    forEachCase(state, value, readingCount);
    gsl_interp_accel_free(accelerator);
    gsl_spline_free(spline);
}

[[maybe_unused]] const bool registered = [] {
    add("matrix product|library", [](State& state) {
        const std::vector<Matrix> m = rotations();
        forEachCase(state, [&](std::size_t i) {
            Matrix product;
            MatrixMultiply(m[i].data(), m[i + 1].data(), 3, 3, 3, product.data());
            return product;
        });
    });
    add("matrix product|Eigen", [](State& state) {
        const std::vector<EigenMatrix> m = rotationsForEigen();
        forEachCase(state, [&](std::size_t i) { return EigenMatrix(m[i] * m[i + 1]); });
    });
    for (const std::size_t size : {50U, 86400U}) {
        const std::string spline = "spline value of " + std::to_string(size) + " knots";
        add(spline + "|library", [=](State& s) { splineLibrary(s, size); });
        add(spline + "|GSL with accelerator", [=](State& s) { splineGsl(s, size); });
    }
    return true;
}();

} // namespace

} // namespace kiv::bench
