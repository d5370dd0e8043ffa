#pragma once

#include <algorithm>
#include <cmath>

#include "KIVInterface/CKiv.h"
#include "uncertainty/SpareReading.h"
#include "uncertainty/Uncertainties.h"

namespace kiv {

// A rounding to single precision moves a number by at most this part of it.
inline constexpr double halfUlp = 0x1p-24;

// One level of a sensor as its results are judged: how its raw reading becomes the rise of an axis,
// ((curve - tilt offset) * thermal gain + offset) * gain, the first three steps in single
// precision. Reads its part of the sensor when made.
class JudgedLevel {
public:
    enum Which : unsigned char { x, y };
    struct Axis {
        double to[3];  // unit vector in the yoke's frame
        double offset; // degrees
        double gain;   // of the rise
    };

    JudgedLevel() = default;
    // limits: low and high of the corrected reading, degrees; without meaning where the first is
    // not below the second.
    JudgedLevel(const CKiv& sensor, Which which, const Axis& ofLevel, const float* limits);

    const double* to() const { return axis.to; }
    // Radians.
    double rise(const KIV_INFO& info) const { return (info.*corrected + axis.offset) * radians; }

    // The reading says nothing: the whole table turns the axis by less than 1 degree, or the curve
    // is level at the reading.
    bool lost(const CKiv& sensor, const KIV_RAWINFO& reading) const {
        return !(std::abs(thermalGain(reading)) >= leastGain)
               || (levelPlaces && std::abs(slopeAt(sensor, reading.*raw)) <= levelBelow);
    }
    bool beyondTable(const KIV_RAWINFO& reading) const {
        return reading.*raw < firstKnot || reading.*raw > lastKnot;
    }
    bool outside(const KIV_RAWINFO& reading, const KIV_INFO& info) const {
        return beyondTable(reading) || info.*corrected < low || info.*corrected > high;
    }

    // The most that all roundings make of the rise, degrees. Of a reading that is not lost.
    double rounding(const KIV_RAWINFO& reading, const KIV_INFO& info) const {
        const double thermal = slope * static_cast<double>(reading.temperature);
        const double sum = std::abs(thermal + intercept);
        const double size = std::abs(info.*corrected);
        // The raw reading and the curve's value; the curve, the difference, the product and the
        // gain's sum again; temperature and the gain's product.
        const double steps = sum * (steepest * std::abs(reading.*raw) + tiltOffset) + 4 * size
                             + 2 * size * std::abs(thermal) / sum;
        return perUlp * std::max(steps, usualSteps * (size + 1));
    }
    RiseError riseError(const CKiv& sensor, const KIV_RAWINFO& reading, const KIV_INFO& info,
                        const Uncertainties* uncertainties) const;

    // The sine of the largest rise within the limits, of the axis turned into the level plane.
    double sineOfMostRise() const;

private:
    double thermalGain(const KIV_RAWINFO& reading) const {
        return slope * static_cast<double>(reading.temperature) + intercept;
    }
    double slopeAt(const CKiv& sensor, float reading) const;

    static constexpr double usualSteps = 6; // of a raw reading in degrees

    float KIV_RAWINFO::*raw = &KIV_RAWINFO::levelYRaw;
    float KIV_INFO::*corrected = &KIV_INFO::levelY;
    Which which = y;
    bool levelPlaces = false; // the curve is level somewhere
    float firstKnot = 0, lastKnot = 0;
    float low = 0, high = 0; // without end where the limits do not count
    Axis axis{};
    double radians = 0;              // the gain, from degrees
    double perUlp = 0;               // of the rise per step of a reading, degrees
    double tiltOffset = 0;           // magnitude
    double slope = 0, intercept = 1; // of the thermal gain
    double leastGain = 0;            // the thermal one that gives a table an effect
    double steepest = 0;             // the curve's largest slope, degrees per raw unit
    double levelBelow = 0;           // a slope that counts as none
};

} // namespace kiv
