// The numeric library and the encoder against Eigen, GSL and ERFA.

#include <algorithm>
#include <cmath>
#include <memory>

#include <Eigen/Dense>
#include <erfa.h>
#include <gsl/gsl_spline.h>

#include "KIVInterface/Encoder.h"
#include "bench/Benchmark.h"
#include "simulator/RandomPoses.h"
#include "support/ZelUtil.h"

namespace kiv::bench {

namespace {

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

void productLibrary(benchmark::State& state) {
    const std::vector<Matrix> m = rotations();
    forEachCase(state, [&](std::size_t i) {
        Matrix product;
        MatrixMultiply(m[i].data(), m[i + 1].data(), 3, 3, 3, product.data());
        return product;
    });
}
BENCHMARK(productLibrary)->Name("matrix_product/library");

void productEigen(benchmark::State& state) {
    const std::vector<EigenMatrix> m = rotationsForEigen();
    forEachCase(state, [&](std::size_t i) { return EigenMatrix(m[i] * m[i + 1]); });
}
BENCHMARK(productEigen)->Name("matrix_product/Eigen");

void inverseLibrary(benchmark::State& state) {
    const std::vector<Matrix> m = rotations();
    forEachCase(state, [&](std::size_t i) {
        Matrix inverse = m[i];
        MatrixInverse(inverse.data(), 3);
        return inverse;
    });
}
BENCHMARK(inverseLibrary)->Name("matrix_inverse/library");

void inverseEigen(benchmark::State& state) {
    const std::vector<EigenMatrix> m = rotationsForEigen();
    forEachCase(state, [&](std::size_t i) { return EigenMatrix(m[i].inverse()); });
}
BENCHMARK(inverseEigen)->Name("matrix_inverse/Eigen");

std::vector<std::array<double, 3>> angleTriples() {
    simulator::RandomPoses random(3, {});
    std::vector<std::array<double, 3>> made(caseCount);
    for (auto& angles : made)
        for (double& angle : angles)
            angle = random.uniform(-3.14, 3.14);
    return made;
}

void rotationLibrary(benchmark::State& state) {
    const auto angles = angleTriples();
    forEachCase(state, [&](std::size_t i) {
        Matrix rx, ry, rz, rxRy, rotation;
        rotation_x(rx.data(), angles[i][0]);
        rotation_y(ry.data(), angles[i][1]);
        rotation_z(rz.data(), angles[i][2]);
        MatrixMultiply(rx.data(), ry.data(), 3, 3, 3, rxRy.data());
        MatrixMultiply(rxRy.data(), rz.data(), 3, 3, 3, rotation.data());
        return rotation;
    });
}
BENCHMARK(rotationLibrary)->Name("rotation_from_angles/library");

void rotationErfa(benchmark::State& state) {
    const auto angles = angleTriples();
    forEachCase(state, [&](std::size_t i) {
        struct {
            double r[3][3];
        } rotation;
        eraIr(rotation.r);
        eraRx(angles[i][0], rotation.r);
        eraRy(angles[i][1], rotation.r);
        eraRz(angles[i][2], rotation.r);
        return rotation;
    });
}
BENCHMARK(rotationErfa)->Name("rotation_from_angles/ERFA");

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
    }

    int last() const { return static_cast<int>(y.size()) - 1; }
    void setUp() { CubicSplines(x.data(), y.data(), last(), coef.data()); }

    std::vector<float> x, y;
    std::vector<double> coef;
};

struct GslSpline {
    explicit GslSpline(const TiltTable& table)
        : x(table.x.begin(), table.x.end() - 3), y(table.y.begin(), table.y.end()),
          spline(gsl_spline_alloc(gsl_interp_cspline, y.size())) {}
    ~GslSpline() {
        gsl_spline_free(spline);
        gsl_interp_accel_free(accelerator);
    }
    GslSpline(const GslSpline&) = delete;
    GslSpline& operator=(const GslSpline&) = delete;

    void setUp() { gsl_spline_init(spline, x.data(), y.data(), y.size()); }

    std::vector<double> x, y;
    gsl_spline* spline;
    gsl_interp_accel* accelerator = gsl_interp_accel_alloc();
};

enum class Readings { random, slow };

// More than the processor's branch prediction learns by heart.
constexpr std::size_t readingCount = 1 << 14;

// Within the table. Slow: there and back again in small steps.
std::vector<float> readingsIn(const TiltTable& table, Readings kind) {
    simulator::RandomPoses random(5, {});
    std::vector<float> made(readingCount);
    for (std::size_t i = 0; i < readingCount; ++i) {
        const double way = 2 * static_cast<double>(i) / static_cast<double>(readingCount);
        const double part = kind == Readings::random ? random.uniform(0, 1) : std::abs(1 - way);
        made[i] = std::lerp(table.x[0], table.x[table.y.size() - 1], static_cast<float>(part));
    }
    return made;
}

void splineLibrary(benchmark::State& state, Readings kind, std::size_t knots) {
    TiltTable table(knots);
    table.setUp();
    const std::vector<float> readings = readingsIn(table, kind);
    const auto value = [&](std::size_t i) {
        bool outside;
        return CalcSpline(true, table.x.data(), table.coef.data(), table.last(), readings[i],
                          &outside);
    };
    forEachCase(state, value, readingCount);
}

void splineGsl(benchmark::State& state, Readings kind, std::size_t knots) {
    const TiltTable table(knots);
    GslSpline gsl(table);
    gsl.setUp();
    const std::vector<float> single = readingsIn(table, kind);
    const std::vector<double> readings(single.begin(), single.end());
    const auto value = [&](std::size_t i) {
        return gsl_spline_eval(gsl.spline, readings[i], gsl.accelerator);
    };
    forEachCase(state, value, readingCount);
}

// Of as many different tables as there are cases.
template <typename Spline>
void setUpSplines(benchmark::State& state, std::size_t knots) {
    std::vector<std::unique_ptr<Spline>> splines;
    simulator::RandomPoses random(6, {});
    for (std::size_t i = 0; i < caseCount; ++i) {
        TiltTable table(knots);
        for (float& y : table.y)
            y += static_cast<float>(random.uniform(-0.05, 0.05));
        splines.push_back(std::make_unique<Spline>(table));
    }
    forEachCase(state, [&](std::size_t i) {
        splines[i]->setUp();
        benchmark::ClobberMemory();
        return i;
    });
}

void encoder(benchmark::State& state, std::size_t rows) {
    simulator::RandomPoses random(7, {});
    std::vector<float> table;
    for (std::size_t i = 0; i < rows; ++i) {
        table.push_back(360.0F * static_cast<float>(i) / static_cast<float>(rows));
        table.push_back(static_cast<float>(random.uniform(-0.02, 0.02)));
    }
    CEncoder encoder;
    encoder.setCalTable(table.data(), static_cast<int>(rows));
    std::vector<float> readings(readingCount);
    for (float& reading : readings)
        reading = static_cast<float>(random.uniform(-180, 180));
    const auto corrected = [&](std::size_t i) {
        encoder.setRawReading(readings[i]);
        return encoder.encCalibration(readings[i]);
    };
    forEachCase(state, corrected, readingCount);
}

[[maybe_unused]] const bool registered = [] {
    const auto add = [](const std::string& name, auto... arguments) {
        benchmark::RegisterBenchmark(name.c_str(), arguments...);
    };
    for (const std::size_t knots : {4U, 50U, 600U, 7200U, 86400U}) {
        const std::string size = std::to_string(knots);
        add("spline_value_random/library/" + size, splineLibrary, Readings::random, knots);
        if (knots != 50)
            continue;
        add("spline_value_random/GSL/" + size, splineGsl, Readings::random, knots);
        add("spline_value_slow/library/" + size, splineLibrary, Readings::slow, knots);
        add("spline_value_slow/GSL/" + size, splineGsl, Readings::slow, knots);
        add("spline_set_up/library/" + size, setUpSplines<TiltTable>, knots);
        add("spline_set_up/GSL/" + size, setUpSplines<GslSpline>, knots);
    }
    for (const std::size_t rows : {4U, 60U, 360U, 3600U, 86400U})
        add("encoder/library/" + std::to_string(rows), encoder, rows);
    return true;
}();

} // namespace

} // namespace kiv::bench
