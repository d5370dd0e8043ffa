#include "simulator/RandomPoses.h"

#include <cmath>

namespace kiv::simulator {

Pose RandomPoses::next() {
    Pose pose;
    const double yaw = uniform(-180, 180);
    const double pitch = uniform(-range.mostTilt, range.mostTilt);
    const double roll = uniform(-range.mostTilt, range.mostTilt) + (range.inverted ? 180 : 0);
    rotationFromYawPitchRoll(yaw, pitch, roll, pose.rotation);
    const double azimuth = uniform(-180, 180) * radians;
    const double elevation = uniform(range.lowest, range.highest) * radians;
    const double distance = uniform(1000, 20000);
    pose.position[0] = distance * std::cos(elevation) * std::cos(azimuth);
    pose.position[1] = distance * std::cos(elevation) * std::sin(azimuth);
    pose.position[2] = distance * std::sin(elevation);
    return pose;
}

} // namespace kiv::simulator
