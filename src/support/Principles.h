#pragma once

#include <array>
#include <cstddef>

// The ways to mount a sensor, each with an orientation model of its own, and what follows from a
// sensor's mount mode. A new one is a name and a row here, a class in models/ModelFactory.cpp, and
// a case wherever the compiler then misses one.
namespace kiv {

enum class Principle : unsigned char { dualLevel, pendulum, polarizer, threeVectors, twoLevels };

struct PrincipleTraits {
    Principle principle;
    const char* name;           // of its model, as people call it
    std::array<int, 2> modes;   // mount modes; the odd one has parity 1
    bool levelX;                // the model reads it
    bool readingGains;          // scale factors 4 to 6 multiply encoders and level Y
    bool startVector;           // from the QVC parameters; the odd mode hangs upside down
    int levelAxes;              // from Level_X and Level_Y parameters: 0, the first, or both
    bool tiltXUnlimited{false}; // a load sets the limits of tilt X to 0
};

inline constexpr std::array<PrincipleTraits, 5> principles{{
    {Principle::dualLevel, "dual-level", {1, 2}, true, false, false, 0},
    {Principle::pendulum, "pendulum", {3, 4}, false, true, false, 0},
    {Principle::polarizer, "polarizer", {5, 6}, false, true, false, 0},
    {Principle::threeVectors, "three-vector", {7, 8}, false, false, true, 1, true},
    {Principle::twoLevels, "two-level", {9, 10}, true, false, true, 2},
}};

static_assert([] {
    for (std::size_t i = 0; i < principles.size(); ++i)
        if (principles[i].principle != static_cast<Principle>(i))
            return false;
    return true;
}());

constexpr const PrincipleTraits& traitsOf(Principle principle) {
    return principles[static_cast<std::size_t>(principle)];
}

// The modes are counted from 1.
inline constexpr int lastMountMode = principles.back().modes.back();

constexpr bool hasModel(int mountMode) {
    return mountMode >= 1 && mountMode <= lastMountMode;
}

// Any other mode is a pendulum's.
constexpr Principle principleOf(int mountMode) {
    for (const PrincipleTraits& traits : principles)
        for (const int mode : traits.modes)
            if (mode == mountMode)
                return traits.principle;
    return Principle::pendulum;
}

constexpr const char* modelName(int mountMode) {
    return traitsOf(principleOf(mountMode)).name;
}

// 1 or 0; -1 for an odd mode below 0, which leaves a model's parity as it is.
constexpr int parityOf(int mountMode) {
    return mountMode % 2;
}

// The tilt X curve is read at the ratio of the two raw levels. Goes by the number.
constexpr bool readsTiltRatio(int mountMode) {
    return mountMode == 5 || mountMode == 6;
}

// Two levels and both encoders are one reading more than an orientation needs.
constexpr bool hasSpareReading(int mountMode) {
    return traitsOf(principleOf(mountMode)).levelX;
}

// An update reports the angles of the model's own matrix and its QVC vector. Goes by the number:
// the pendulum of a mode above 10 does so, too.
constexpr bool reportsOwnMatrix(int mountMode) {
    return mountMode >= 7;
}

} // namespace kiv
