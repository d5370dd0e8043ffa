#include "simulator/Trajectory.h"

#include <cmath>

namespace kiv::simulator {

namespace {

constexpr double lowest = 3; // elevation, degrees
constexpr double highest = 9;
constexpr double swings = 20;

} // namespace

Trajectory::Trajectory(Motion m, std::uint64_t seed, double tilt, bool inverted)
    : motion(m), mostTilt(tilt), roll0(inverted ? 180 : 0),
      anywhere(seed, {tilt, lowest, highest, inverted}) {
    Random random(seed);
    for (double& p : phase)
        p = random.uniform(0, 360 * radians);
}

Pose Trajectory::at(double part) {
    if (motion == Motion::random)
        return anywhere.next();
    const double way = motion == Motion::turn ? part : 0;
    const auto wave = [&](int i, double turns) {
        return std::sin(360 * radians * turns * way + phase[i]);
    };
    const auto swing = [&](int i) { return std::sin(360 * radians * swings * part + phase[i]); };
    const bool swinging = motion == Motion::swing;

    const double azimuth = 20 + 50 * way + 2 * wave(0, 3); // degrees, of the line of sight
    const double elevation = 6 + 3 * wave(1, 2);           // degrees
    const double distance = 4000 + 1200 * wave(2, 1);      // mm
    const double yaw = azimuth + 15 * wave(3, 1.5);        // degrees
    const double pitch = mostTilt * (swinging ? swing(4) : wave(4, 4));
    const double roll = roll0 + mostTilt * (swinging ? swing(5) : wave(5, 5));

    Pose pose;
    rotationFromYawPitchRoll(yaw, pitch, roll, pose.rotation);
    const double horizontal = distance * std::cos(elevation * radians);
    pose.position[0] = horizontal * std::cos(azimuth * radians);
    pose.position[1] = horizontal * std::sin(azimuth * radians);
    pose.position[2] = distance * std::sin(elevation * radians);
    return pose;
}

} // namespace kiv::simulator
