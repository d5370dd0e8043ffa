// The same measurements through the models on two platforms.
//   kiv_platform_cases make             seeded measurements of every mount mode, to standard output
//   kiv_platform_cases compute CASES    the rotation matrix of each, to standard output
//   kiv_platform_cases compare A B      fails where two sets of matrices differ
// The measurements are made once: only what the models compute may differ.

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <string>
#include <vector>

#include "simulator/RandomPoses.h"
#include "simulator/TypicalMounting.h"
#include "tests/ModelCases.h"

using namespace kiv::simulator;
using kiv::test::Matrix;

namespace {

constexpr int casesPerMode = 200;
constexpr double tolerance = 1e-12; // per matrix entry

struct Case {
    int mode = 0;
    Matrix m = {}; // a measurement, or the rotation that came of it
};

bool operator>>(std::istream& in, Case& c) {
    in >> c.mode;
    for (double& value : c.m)
        in >> value;
    return static_cast<bool>(in);
}

void print(const Case& c) {
    std::printf("%d", c.mode);
    for (const double value : c.m)
        std::printf(" %.17g", value);
    std::printf("\n");
}

std::vector<Case> casesFrom(const char* path) {
    std::vector<Case> cases;
    std::ifstream file(path);
    for (Case c; file >> c;)
        cases.push_back(c);
    return cases;
}

double largestDifference(const Matrix& a, const Matrix& b) {
    double largest = 0;
    for (std::size_t i = 0; i < a.size(); ++i) {
        const double difference = std::abs(a[i] - b[i]);
        if (std::isnan(difference))
            return difference;
        largest = std::max(largest, difference);
    }
    return largest;
}

bool rotationOf(const Case& c, Matrix& rotation) {
    const Mounting mounting = typicalMounting(c.mode);
    rotation = c.m;
    return kiv::test::modelOf(mounting)->CalTranxMatrix(rotation.data(), mounting.encoderOffset[0],
                                                        mounting.encoderOffset[1], 3, false, false);
}

// A hair's breadth in a reading moves the rotation by no more than that: the pendulum's last pass
// is far from one more, and the pose is well-conditioned.
bool isSteady(const Case& c) {
    constexpr double hair = 1e-9; // degrees
    Matrix rotation;
    if (!rotationOf(c, rotation))
        return false;
    for (std::size_t reading = 3; reading <= 6; ++reading)
        for (const double step : {-hair, hair}) {
            Case moved = c;
            moved.m[reading] += step;
            Matrix other;
            if (!rotationOf(moved, other) || !(largestDifference(rotation, other) < 10 * hair))
                return false;
        }
    return true;
}

int make() {
    for (int mode = 1; mode <= 10; ++mode) {
        const Mounting mounting = typicalMounting(mode);
        RandomPoses poses(static_cast<unsigned>(mode), {10, -30, 30, invertedIn(mode)});
        for (int made = 0; made < casesPerMode;) {
            const Pose pose = poses.next();
            CorrectedReadings readings;
            if (!readingsOf(mounting, pose, readings))
                continue;
            Case c{mode, kiv::test::measurementOf(pose, readings)};
            for (std::size_t reading = 3; reading <= 6; ++reading)
                c.m[reading] += poses.uniform(-0.05, 0.05);
            if (!isSteady(c))
                continue;
            print(c);
            ++made;
        }
    }
    return 0;
}

int compute(const char* path) {
    for (Case& c : casesFrom(path)) {
        Case solved = c;
        if (!rotationOf(c, solved.m))
            return std::fprintf(stderr, "a case of mode %d has no result\n", c.mode), 1;
        print(solved);
    }
    return 0;
}

int compare(const char* pathA, const char* pathB) {
    const std::vector<Case> a = casesFrom(pathA);
    const std::vector<Case> b = casesFrom(pathB);
    if (a.size() != 10 * casesPerMode || b.size() != a.size())
        return std::fprintf(stderr, "expected %d cases, found %zu and %zu\n", 10 * casesPerMode,
                            a.size(), b.size()),
               1;
    int failures = 0;
    double largest = 0;
    for (std::size_t i = 0; i < a.size(); ++i) {
        const double difference = largestDifference(a[i].m, b[i].m);
        largest = std::max(largest, difference);
        if (!(difference <= tolerance)) {
            ++failures;
            std::fprintf(stderr, "line %zu, mode %d: an entry differs by %g\n", i + 1, a[i].mode,
                         difference);
        }
    }
    std::printf("%zu matrices, largest difference of an entry %.2g\n", a.size(), largest);
    return failures != 0;
}

} // namespace

int main(int argc, char** argv) {
    const std::string task = argc > 1 ? argv[1] : "";
    if (task == "make" && argc == 2)
        return make();
    if (task == "compute" && argc == 3)
        return compute(argv[2]);
    if (task == "compare" && argc == 4)
        return compare(argv[2], argv[3]);
    return std::fprintf(stderr, "usage: make | compute CASES | compare A B\n"), 2;
}
