#pragma once

// What follows from a sensor's mount mode.
namespace kiv {

// The ways to mount a sensor; each has an orientation model of its own.
enum class Principle { dualLevel, pendulum, polarizer, threeVectors, twoLevels };

constexpr Principle principleOf(int mountMode) {
    switch (mountMode) {
    case 1:
    case 2:
        return Principle::dualLevel;
    case 5:
    case 6:
        return Principle::polarizer;
    case 7:
    case 8:
        return Principle::threeVectors;
    case 9:
    case 10:
        return Principle::twoLevels;
    default:
        return Principle::pendulum;
    }
}

constexpr const char* modelName(int mountMode) {
    switch (principleOf(mountMode)) {
    case Principle::dualLevel:
        return "dual-level";
    case Principle::polarizer:
        return "polarizer";
    case Principle::threeVectors:
        return "three-vector";
    case Principle::twoLevels:
        return "two-level";
    case Principle::pendulum:
        break;
    }
    return "pendulum";
}

// 1 or 0; -1 for an odd mode below 0, which leaves a model's parity as it is.
constexpr int parityOf(int mountMode) {
    return mountMode % 2;
}

// The tilt X curve is read at the ratio of the two raw levels.
constexpr bool readsTiltRatio(int mountMode) {
    return principleOf(mountMode) == Principle::polarizer;
}

// An update reports the angles of the model's own matrix and its QVC vector. Goes by the number:
// the pendulum of a mode above 10 does so, too.
constexpr bool reportsOwnMatrix(int mountMode) {
    return mountMode >= 7;
}

// A load sets the limits of tilt X to 0.
constexpr bool leavesTiltXUnlimited(int mountMode) {
    return principleOf(mountMode) == Principle::threeVectors;
}

} // namespace kiv
