#include "uncertainty/JudgedLevel.h"

#include <limits>
#include <tuple>

#include "sensor/SensorAccess.h"
#include "support/AngleConstants.h"
#include "support/LookUp.h"

namespace kiv {

namespace {

constexpr double leastTurn = 1;    // degrees, of a table that has an effect
constexpr double levelPart = 1e-3; // of the whole table's slope
constexpr double usualLimit = 35;  // degrees; where the record's do not count

struct Curve {
    Curve(const CKiv& sensor, JudgedLevel::Which which)
        : knots(which == JudgedLevel::x ? SensorAccess::levelXTable(sensor)
                                        : SensorAccess::levelYTable(sensor)),
          spline(which == JudgedLevel::x ? SensorAccess::levelXSpline(sensor)
                                         : SensorAccess::levelYSpline(sensor)),
          last((which == JudgedLevel::x ? SensorAccess::levelXCount(sensor)
                                        : SensorAccess::levelYCount(sensor))
               - 1) {}

    // Value, slope, and the factors of t^2 and t^3 of a knot.
    const double* row(int knot) const { return spline + 4 * static_cast<std::ptrdiff_t>(knot); }
    double slope(int knot, double t) const {
        return row(knot)[1] + (2 * row(knot)[2] + 3 * row(knot)[3] * t) * t;
    }

    const float* knots;
    const double* spline;
    int last;
};

struct Range {
    double least = std::numeric_limits<double>::infinity();
    double most = -std::numeric_limits<double>::infinity();

    void add(double value) {
        least = std::min(least, value);
        most = std::max(most, value);
    }
};

} // namespace

JudgedLevel::JudgedLevel(const CKiv& sensor, Which level, const Axis& ofLevel, const float* limits)
    : which(level), axis(ofLevel), radians(axis.gain * degToRad),
      perUlp(halfUlp * std::abs(axis.gain)),
      tiltOffset(std::abs(SensorAccess::tiltOffset(sensor)[level])),
      slope(SensorAccess::thermalFactor(sensor)[2 * level]),
      intercept(SensorAccess::thermalFactor(sensor)[2 * level + 1]) {
    if (level == x) {
        raw = &KIV_RAWINFO::levelXRaw;
        corrected = &KIV_INFO::levelX;
    }
    const bool limited = limits[0] < limits[1];
    low = limited ? limits[0] : -std::numeric_limits<float>::infinity();
    high = limited ? limits[1] : std::numeric_limits<float>::infinity();

    const Curve curve(sensor, level);
    Range value;
    Range ofSlope;
    if (curve.knots && curve.last >= 0) {
        std::tie(firstKnot, lastKnot) = std::minmax(curve.knots[0], curve.knots[curve.last]);
        for (int i = 0; i <= curve.last; ++i) {
            value.add(curve.row(i)[0]);
            ofSlope.add(curve.row(i)[1]);
            if (i == curve.last)
                break;
            // The slope's own turning point.
            const double t = -curve.row(i)[2] / (3 * curve.row(i)[3]);
            const double part = t / (static_cast<double>(curve.knots[i + 1]) - curve.knots[i]);
            if (part > 0 && part < 1)
                ofSlope.add(curve.slope(i, t));
        }
    }
    const double span = value.most - value.least;
    leastGain = leastTurn / (std::max(span, 0.0) * std::abs(axis.gain));
    steepest = std::max(std::abs(ofSlope.least), std::abs(ofSlope.most));
    levelBelow = levelPart * span / (static_cast<double>(lastKnot) - firstKnot);
    levelPlaces = ofSlope.least <= levelBelow && ofSlope.most >= -levelBelow;
}

double JudgedLevel::slopeAt(const CKiv& sensor, float reading) const {
    const Curve curve(sensor, which);
    const bool rising = curve.knots[curve.last] >= curve.knots[0];
    const int knot = lastNotAbove(curve.last + 1, [&](int i) {
        return rising ? reading >= curve.knots[i] : reading <= curve.knots[i];
    });
    const double t = static_cast<double>(reading) - curve.knots[knot];
    const bool before = rising ? t < 0 : t > 0; // the first knot
    return curve.slope(knot, before ? 0 : t);
}

RiseError JudgedLevel::riseError(const CKiv& sensor, const KIV_RAWINFO& reading,
                                 const KIV_INFO& info, const Uncertainties* uncertainties) const {
    RiseError error{rounding(reading, info), 0, 0};
    if (!uncertainties)
        return error;
    const Uncertainties& u = *uncertainties;
    const double ofRaw =
        u[which == x ? Source::levelX : Source::levelY] * slopeAt(sensor, reading.*raw);
    const double ofOffset = u[which == x ? Source::tiltOffsetX : Source::tiltOffsetY];
    const double thermal = thermalGain(reading);
    error.deviation = std::abs(axis.gain * thermal) * std::hypot(ofRaw, ofOffset);
    error.perTemperature = axis.gain * slope * (info.*corrected) / thermal;
    return error;
}

double JudgedLevel::sineOfMostRise() const {
    double most = usualLimit * degToRad;
    if (std::isfinite(low))
        most =
            std::max(std::abs(low + axis.offset), std::abs(high + axis.offset)) * std::abs(radians);
    return std::sin(std::min(most + std::asin(std::abs(axis.to[2])), halfPi));
}

} // namespace kiv
