#pragma once

#include <array>
#include <optional>

namespace kiv::host {

// Angles rx, ry, rz in degrees, and their standard uncertainties where these are known.
struct Orientation {
    std::array<double, 3> angles{};
    std::optional<std::array<double, 3>> uncertainty;
};

// The second of two orientations against the first.
struct OrientationDifference {
    std::array<double, 3> angles{}; // of each angle, degrees, within half a turn
    double angle = 0;               // of the rotation R1^T R2, degrees, 0 to 180
    std::array<double, 3> axis{};   // its unit axis in the first's own frame; zero without a turn
    std::optional<std::array<double, 3>> uncertainty; // combined, of the angles

    // Whether an angle is beyond twice its uncertainty.
    bool isBeyond(std::size_t i) const;
    // Whether the rotation's angle is beyond what the three together allow, with the same
    // probability where they do not depend on each other.
    bool isBeyondTurn() const;
};

// In the local frame the rotation is Rz(rz) Ry(ry) Rx(rx), else Rx(rx) Ry(ry) Rz(rz).
OrientationDifference differenceOf(const Orientation& first, const Orientation& second,
                                   bool localFrame);

} // namespace kiv::host
