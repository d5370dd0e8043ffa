#include "simulator/Trajectory.h"

#include <cmath>
#include <random>

namespace kiv::simulator {

SlowTurn::SlowTurn(std::uint64_t seed, double tilt, bool inverted)
    : mostTilt(tilt), roll0(inverted ? 180 : 0) {
    std::mt19937_64 random(seed);
    for (double& p :
         phase) // the top 53 bits: the standard's distributions differ between platforms
        p = 360 * radians * (static_cast<double>(random() >> 11) * 0x1p-53);
}

Pose SlowTurn::at(double part) const {
    const auto wave = [&](int i, double turns) {
        return std::sin(360 * radians * turns * part + phase[i]);
    };
    const double azimuth = 20 + 50 * part + 2 * wave(0, 3); // degrees, of the line of sight
    const double elevation = 6 + 3 * wave(1, 2);            // degrees
    const double distance = 4000 + 1200 * wave(2, 1);       // mm
    const double yaw = azimuth + 15 * wave(3, 1.5);         // degrees
    const double pitch = mostTilt * wave(4, 4);
    const double roll = roll0 + mostTilt * wave(5, 5);

    Pose pose;
    rotationFromYawPitchRoll(yaw, pitch, roll, pose.rotation);
    const double horizontal = distance * std::cos(elevation * radians);
    pose.position[0] = horizontal * std::cos(azimuth * radians);
    pose.position[1] = horizontal * std::sin(azimuth * radians);
    pose.position[2] = distance * std::sin(elevation * radians);
    return pose;
}

} // namespace kiv::simulator
