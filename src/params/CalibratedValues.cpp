#include "params/CalibratedValues.h"

#include <cmath>

#include "params/BlockNames.h"

namespace kiv {

namespace {

constexpr const char* turnNames[] = {"turn_x_deg", "turn_y_deg", "turn_z_deg"};
constexpr const char* harmonicNames[] = {"sine_1_deg", "cosine_1_deg", "sine_2_deg",
                                         "cosine_2_deg"};
constexpr const char* elevationNames[] = {"linear_deg", "quadratic_deg"};
constexpr const char* tiltCurveNames[] = {"quadratic_deg", "cubic_deg"};

} // namespace

std::span<const char* const> calibratedNamesOf(Block block) {
    switch (block) {
    case Block::machineMatrix:
        return turnNames;
    case Block::azCalibration:
        return harmonicNames;
    case Block::elCalibration:
        return elevationNames;
    case Block::tiltXCalibration:
    case Block::tiltYCalibration:
        return tiltCurveNames;
    default:
        return valueNamesOf(block);
    }
}

double tableForm(Block table, std::size_t form, double at) {
    if (table == Block::azCalibration) {
        const std::size_t harmonic = form / 2 + 1;
        const double angle = static_cast<double>(harmonic) * at * degToRad;
        return form % 2 == 0 ? std::sin(angle) : std::cos(angle);
    }
    if (table == Block::elCalibration) {
        const double part = std::remainder(at, 360) / 30;
        return form == 0 ? part : part * part;
    }
    const double part = at / 10;
    return form == 0 ? part * part : part * part * part;
}

} // namespace kiv
