#include "host/calibration/Weights.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "support/ZelUtil.h"

namespace kiv::host {

namespace {

constexpr const char* equationNames[mostEquations] = {"azimuth_deg", "elevation_deg", "level_y",
                                                      "level_x"};
constexpr double smallTurn = 1e-6; // radians

struct Direction {
    double of[3];
    double u;
};

// The three of the vector's uncertainties with their directions. What is along the line of sight
// has no effect.
std::array<Direction, 3> directionsOf(const Observation& row, const Uncertainties& u) {
    const double u1 = u[Source::vector1], u2 = u[Source::vector2], u3 = u[Source::vector3];
    if (!u.bySight)
        return {{{{1, 0, 0}, u1}, {{0, 1, 0}, u2}, {{0, 0, 1}, u3}}};
    const double* v = row.vector;
    const double length = std::hypot(v[0], v[1], v[2]);
    const double rho = std::max(std::hypot(v[0], v[1]), 1e-9 * length);
    const double side[3] = {-v[1] / rho, v[0] / rho, 0};
    const double above[3] = {-v[2] * v[0] / rho / length, -v[2] * v[1] / rho / length,
                             rho / length};
    return {
        {{{0, 0, 0}, 0}, {{side[0], side[1], side[2]}, u2}, {{above[0], above[1], above[2]}, u3}}};
}

} // namespace

bool Whitening::set(const Prediction& prediction, const Observation& row,
                    const RowUncertainties& given, std::size_t equations) {
    count = equations;
    bare = nullptr;
    simulator::Pose pose;
    Residual here;
    if (!prediction.poseOf(row, pose) || !prediction.residual(row, pose, here))
        return false;

    double covariance[mostEquations][mostEquations]{};
    const auto add = [&](const Residual& effect) {
        for (std::size_t i = 0; i < count; ++i)
            for (std::size_t j = 0; j <= i; ++j)
                covariance[i][j] += effect[i] * effect[j];
    };
    const Uncertainties& u = given.readings;
    const Prediction::LevelSlopes levels = prediction.levelSlopes(row);
    add({row.azimuthSlope * u[Source::azimuth], 0, 0, 0});
    add({0, row.elevationSlope * u[Source::elevation], 0, 0});
    add({0, 0, levels.y * u[Source::levelY], 0});
    add({0, 0, 0, levels.x * u[Source::levelX]});
    const double temperature = u[Source::temperature];
    add({0, 0, levels.yTemperature * temperature, levels.xTemperature * temperature});

    // Moves the pose a little; the effect of so many times as much.
    const auto addOfPose = [&](const simulator::Pose& moved, double times) {
        Residual there;
        if (!prediction.residual(row, moved, there))
            return false;
        for (std::size_t i = 0; i < count; ++i)
            there[i] = std::remainder(there[i] - here[i], 360) * times;
        add(there);
        return true;
    };
    const double step = smallTurn * std::hypot(row.vector[0], row.vector[1], row.vector[2]);
    for (const Direction& direction : directionsOf(row, u)) {
        simulator::Pose moved = pose;
        for (int i = 0; i < 3; ++i)
            moved.position[i] += step * direction.of[i];
        if (direction.u > 0 && !addOfPose(moved, direction.u / step))
            return false;
    }
    for (int axis = 0; given.pose > 0 && axis < 3; ++axis) {
        double turns[3] = {};
        turns[axis] = smallTurn / degToRad;
        PoseFrame::Rotation rotation;
        std::copy_n(pose.rotation, 9, rotation.data());
        simulator::Pose moved = pose;
        std::copy_n(turned(rotation, turns).data(), 9, moved.rotation);
        if (!addOfPose(moved, given.pose / turns[axis]))
            return false;
    }

    // Cholesky's decomposition.
    for (std::size_t i = 0; i < count; ++i)
        for (std::size_t j = 0; j <= i; ++j) {
            double rest = covariance[i][j];
            for (std::size_t k = 0; k < j; ++k)
                rest -= root[i][k] * root[j][k];
            if (i == j && !(rest > 1e-9 * covariance[i][i])) {
                bare = equationNames[i];
                return true;
            }
            root[i][j] = i == j ? std::sqrt(rest) : rest / root[j][j];
        }
    return true;
}

void Whitening::apply(Residual& residual) const {
    for (std::size_t i = 0; i < count; ++i) {
        for (std::size_t k = 0; k < i; ++k)
            residual[i] -= root[i][k] * residual[k];
        residual[i] /= root[i][i];
    }
}

} // namespace kiv::host
