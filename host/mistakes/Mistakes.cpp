#include "host/mistakes/Mistakes.h"

#include <cmath>
#include <initializer_list>
#include <numbers>
#include <utility>

#include "support/Principles.h"

namespace kiv::host {

namespace {

constexpr double toDegrees = 180 / std::numbers::pi;

void scale(std::initializer_list<float*> readings, double factor) {
    for (float* reading : readings)
        *reading = static_cast<float>(*reading * factor);
}

const std::vector<Mistake>& ofReadings() {
    static const std::vector<Mistake> all{
        {"levels_exchanged", "level_x and level_y exchanged",
         [](KIV_RAWINFO& r) { std::swap(r.levelXRaw, r.levelYRaw); }},
        {"level_x_sign", "the sign of level_x turned",
         [](KIV_RAWINFO& r) { r.levelXRaw = -r.levelXRaw; }},
        {"level_y_sign", "the sign of level_y turned",
         [](KIV_RAWINFO& r) { r.levelYRaw = -r.levelYRaw; }},
        {"azimuth_sign", "the sign of azimuth_deg turned",
         [](KIV_RAWINFO& r) { r.azimuthRaw = -r.azimuthRaw; }},
        {"elevation_sign", "the sign of elevation_deg turned",
         [](KIV_RAWINFO& r) { r.elevationRaw = -r.elevationRaw; }},
        {"all_in_radians", "encoders and levels taken from radians to degrees",
         [](KIV_RAWINFO& r) {
             scale({&r.azimuthRaw, &r.elevationRaw, &r.levelXRaw, &r.levelYRaw}, toDegrees);
         }},
        {"encoders_in_radians", "the encoders taken from radians to degrees",
         [](KIV_RAWINFO& r) {
             scale({&r.azimuthRaw, &r.elevationRaw}, toDegrees);
         }},
        {"levels_in_radians", "the levels taken from radians to degrees",
         [](KIV_RAWINFO& r) {
             scale({&r.levelXRaw, &r.levelYRaw}, toDegrees);
         }},
        {"degrees_converted_twice", "encoders and levels taken from degrees to radians",
         [](KIV_RAWINFO& r) {
             scale({&r.azimuthRaw, &r.elevationRaw, &r.levelXRaw, &r.levelYRaw}, 1 / toDegrees);
         }},
        {"x_y_exchanged", "x and y exchanged",
         [](KIV_RAWINFO& r) { std::swap(r.vector[0], r.vector[1]); }},
        {"y_sign", "the sign of y turned", [](KIV_RAWINFO& r) { r.vector[1] = -r.vector[1]; }},
    };
    return all;
}

// The two modes of some models are one geometry, and fit together.
std::string modeText(int mode) {
    const PrincipleTraits& traits = traitsOf(principleOf(mode));
    const bool one =
        traits.principle == Principle::dualLevel || traits.principle == Principle::polarizer;
    return "mount mode "
           + (one ? std::to_string(traits.modes[0]) + " or " + std::to_string(traits.modes[1])
                  : std::to_string(mode))
           + " in the file";
}

} // namespace

std::vector<Mistake> mistakesFor(int mountMode, bool withTrueAngles) {
    std::vector<Mistake> all = ofReadings();
    for (int mode = 1; mode <= lastMountMode; ++mode)
        if (mode != mountMode && (withTrueAngles || hasSpareReading(mode)))
            all.push_back({.name = "mount_mode_" + std::to_string(mode),
                           .change = modeText(mode),
                           .mountMode = mode});
    if (withTrueAngles) {
        all.push_back({.name = "local_as_machine",
                       .change = "the true angles taken as those of the local frame",
                       .localFrame = true});
        all.push_back({.name = "machine_inverted",
                       .change = "the file's machine matrix inverted",
                       .machineInverted = true});
    }
    return all;
}

} // namespace kiv::host
