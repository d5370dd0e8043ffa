#include "uncertainty/SpareReading.h"

#include <algorithm>
#include <cmath>

#include "support/AngleConstants.h"

namespace kiv {

namespace {

double squared(double value) {
    return value * value;
}

} // namespace

struct DualLevelSpare::Vertical {
    explicit Vertical(const DualLevelSpare& r)
        : s1((r.sinY * r.sinF0 - r.sinX) / r.cosF0), s2(r.sinY),
          s3(std::sqrt(std::max(1 - s1 * s1 - s2 * s2, 1e-18))),
          perTurn(s1 * r.sinG + s3 * r.cosG) {}

    double s1, s2, s3; // the heights of the yoke's axes
    double perTurn;    // what a turn makes of the height of the line of sight
};

double DualLevelSpare::value() const {
    const Vertical v(*this);
    return (v.s1 * cosG - v.s3 * sinG - height) / v.perTurn * radToDeg;
}

SpareError DualLevelSpare::error(const RiseError& x, const RiseError& y,
                                 const SightError& sight) const {
    const Vertical v(*this);
    const double along = (cosG + sinG * v.s1 / v.s3) / (cosF0 * v.perTurn);
    const double perX = along * std::sqrt(1 - squared(sinX));
    const double perY =
        (along * sinF0 + sinG * v.s2 / (v.s3 * v.perTurn)) * std::sqrt(1 - squared(sinY));
    const double perLift = horizontal / v.perTurn;
    return {std::abs(perX) * x.rounding + std::abs(perY) * y.rounding
                + (1 + std::abs(perLift)) * sight.rounding,
            squared(perX * x.deviation) + squared(perY * y.deviation)
                + squared((perX * x.perTemperature - perY * y.perTemperature) * sight.temperature)
                + squared(sight.elevation) + squared(perLift * sight.above)};
}

SpareError errorOfRolls(const LevelRoll& x, const LevelRoll& y, const RiseError& ofX,
                        const RiseError& ofY, const SightError& sight) {
    const double perX = x.cosRise / x.perRoll / 2;
    const double perY = y.cosRise / y.perRoll / 2;
    const double perTurn = (x.perTurn / x.perRoll - y.perTurn / y.perRoll) / 2;
    const double perLift = (x.perLift / x.perRoll - y.perLift / y.perRoll) / 2;
    return {
        std::abs(perX) * ofX.rounding + std::abs(perY) * ofY.rounding
            + (std::abs(perTurn) + std::abs(perLift)) * sight.rounding,
        squared(perX * ofX.deviation) + squared(perY * ofY.deviation)
            + squared((perX * ofX.perTemperature - perY * ofY.perTemperature) * sight.temperature)
            + squared(perTurn * sight.elevation) + squared(perLift * sight.above)};
}

} // namespace kiv
