#include "uncertainty/Propagation.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "models/ModelFactory.h"
#include "sensor/SensorAccess.h"
#include "support/AngleConstants.h"
#include "support/ZelUtil.h"
#include "uncertainty/MatrixAngles.h"

namespace kiv {

namespace {

// An input is moved by no less than this many steps of single precision, so that their rounding
// stays below a hundredth of the difference.
constexpr double leastSteps = 128;

double ulp(float value) {
    const float size = std::abs(value);
    return static_cast<double>(std::nextafter(size, std::numeric_limits<float>::infinity()))
           - static_cast<double>(size);
}

// The variance of a rounding is that of a rectangular distribution one step wide.
double roundingVariance(float value) {
    return ulp(value) * ulp(value) / 12;
}

void addScaled(AngleTriple& sum, const AngleTriple& values, double factor) {
    for (std::size_t i = 0; i < 3; ++i)
        sum[i] += values[i] * factor;
}

} // namespace

// The measured direction, and across it to the left and upwards.
struct Propagation::Sight {
    explicit Sight(const KIV_RAWINFO& raw) : temperature(raw.temperature) {
        const double v[3] = {raw.vector[0], raw.vector[1], raw.vector[2]};
        const double rho = std::hypot(v[0], v[1]);
        length = std::hypot(rho, v[2]);
        const double x = rho > 0 ? v[0] / rho : 1;
        const double y = rho > 0 ? v[1] / rho : 0;
        const double rise = v[2] / length;
        const double level = rho / length;
        side = {-y, x, 0};
        above = {-rise * x, -rise * y, level};
    }

    double temperature;
    double length;
    AngleTriple side, above;
};

Propagation::Propagation(const CKiv& sensor, const Uncertainties& uncertainties)
    : work(sensor), given(uncertainties), principle(principleOf(*SensorAccess::model(sensor))),
      local(!reportsOwnMatrix(SensorAccess::mountMode(sensor))
            && !SensorAccess::inMachineFrame(sensor)) {
    std::copy_n(SensorAccess::thermalFactor(sensor), 4, thermalFactor);
    std::copy_n(SensorAccess::localMatrix(sensor), 9, localMatrix);
}

struct Propagation::Moved {
    AngleTriple angles; // radians
    double level[2];    // X and Y, corrected, degrees
    double matrix[9];   // the model's, for the local frame alone
};

bool Propagation::update(const KIV_RAWINFO& raw, Moved& out) {
    KIV_INFO info;
    if (!anglesAfter(work, raw, info, out.angles))
        return false;
    out.level[0] = info.levelX;
    out.level[1] = info.levelY;
    if (local)
        std::copy_n(SensorAccess::transform(work), 9, out.matrix);
    return true;
}

void Propagation::setTurn(Channel channel, const Moved& from, const Moved& to, double distance) {
    // The skew part of the difference times the mean's transpose.
    double skew[9];
    for (int row = 0; row < 3; ++row)
        for (int column = 0; column < 3; ++column) {
            double sum = 0;
            for (int k = 0; k < 3; ++k)
                sum += (to.matrix[3 * row + k] - from.matrix[3 * row + k])
                       * (to.matrix[3 * column + k] + from.matrix[3 * column + k]);
            skew[3 * row + column] = sum / 2;
        }
    slopes[channel].turn = {(skew[7] - skew[5]) / (2 * distance),
                            (skew[2] - skew[6]) / (2 * distance),
                            (skew[3] - skew[1]) / (2 * distance)};
}

bool Propagation::move(Channel channel, const KIV_RAWINFO& back, const KIV_RAWINFO& forth,
                       double distance) {
    Moved from;
    Moved to;
    if (!update(back, from) || !update(forth, to))
        return false;
    Slope& slope = slopes[channel];
    if (!slopeBetween(from.angles, to.angles, distance, slope.angles))
        return false;
    if (channel == lx || channel == ly)
        slope.level = (to.level[channel - lx] - from.level[channel - lx]) / distance;
    if (local)
        setTurn(channel, from, to, distance);
    return true;
}

// The vector moved across the line of sight.
bool Propagation::slopeAcross(Channel channel, const KIV_RAWINFO& raw, const Sight& sight,
                              double clearance) {
    const AngleTriple& way = channel == side ? sight.side : sight.above;
    const float z = raw.vector[2];
    double squared = 0;
    for (std::size_t i = 0; i < 3; ++i)
        squared += std::pow(given.of[at(Source::vector1) + i] * way[i], 2);
    double size = given.bySight ? given[channel == side ? Source::vector2 : Source::vector3]
                                : std::sqrt(squared);
    size = std::max(size, leastSteps * ulp(static_cast<float>(sight.length)));
    if (channel == above && std::abs(std::abs(z) - size * way[2]) < clearance)
        size = std::abs(z) / 2;
    KIV_RAWINFO forth = raw;
    KIV_RAWINFO back = raw;
    double distance = 0;
    for (std::size_t i = 0; i < 3; ++i) {
        forth.vector[i] = static_cast<float>(raw.vector[i] + size * way[i]);
        back.vector[i] = static_cast<float>(raw.vector[i] - size * way[i]);
        distance += (static_cast<double>(forth.vector[i]) - back.vector[i]) * way[i];
    }
    return move(channel, back, forth, distance);
}

// One of the other readings moved. Where it is exactly known its rounding counts.
bool Propagation::slopeOf(Channel channel, float KIV_RAWINFO::*reading, double uncertainty,
                          const KIV_RAWINFO& raw) {
    const float value = raw.*reading;
    const double size = std::max(uncertainty, leastSteps * ulp(value));
    KIV_RAWINFO forth = raw;
    KIV_RAWINFO back = raw;
    forth.*reading = static_cast<float>(value + size);
    back.*reading = static_cast<float>(value - size);
    return move(channel, back, forth, static_cast<double>(forth.*reading) - back.*reading);
}

bool Propagation::slopesAt(const KIV_RAWINFO& row, const Sight& sight) {
    const double clearance = levelSightClearance(principle, row);
    const KIV_RAWINFO raw = clearOfLevelSight(row, clearance);
    const auto both = [&](Source reading, Source offset) {
        return std::hypot(given[reading], given[offset]);
    };
    return slopeAcross(side, raw, sight, clearance) && slopeAcross(above, raw, sight, clearance)
           && slopeOf(az, &KIV_RAWINFO::azimuthRaw, both(Source::azimuth, Source::azimuthOffset),
                      raw)
           && slopeOf(el, &KIV_RAWINFO::elevationRaw,
                      both(Source::elevation, Source::elevationOffset), raw)
           && (!reads(principle, Source::levelX)
               || slopeOf(lx, &KIV_RAWINFO::levelXRaw, both(Source::levelX, Source::tiltOffsetX),
                          raw))
           && slopeOf(ly, &KIV_RAWINFO::levelYRaw, both(Source::levelY, Source::tiltOffsetY), raw)
           && (!(given[Source::temperature] > 0)
               || slopeOf(temp, &KIV_RAWINFO::temperature, given[Source::temperature], raw));
}

// A source's effect on angles or on the rotation: its uncertainty times the slope.
AngleTriple Propagation::part(Source source, const Sight& sight, AngleTriple Slope::*what) const {
    AngleTriple sum{};
    const double size = given[source];
    if (size == 0 || !reads(principle, source))
        return sum;
    const auto add = [&](Channel channel, double factor) {
        addScaled(sum, slopes[channel].*what, factor * size);
    };
    switch (source) {
    case Source::vector1: // along the line of sight nothing changes
    case Source::vector2:
    case Source::vector3: {
        const std::size_t i = at(source) - at(Source::vector1);
        add(side, given.bySight ? source == Source::vector2 : sight.side[i]);
        add(above, given.bySight ? source == Source::vector3 : sight.above[i]);
        break;
    }
    case Source::azimuth:
    case Source::azimuthOffset:
        add(az, source == Source::azimuth ? 1 : -1);
        break;
    case Source::elevation:
    case Source::elevationOffset:
        add(el, source == Source::elevation ? 1 : -1);
        break;
    case Source::levelX:
        add(lx, 1);
        break;
    case Source::levelY:
        add(ly, 1);
        break;
    case Source::temperature:
        add(temp, 1);
        break;
    case Source::tiltOffsetX:
    case Source::tiltOffsetY: {
        // Taken from the curve's value before the gain.
        const Channel channel = source == Source::tiltOffsetX ? lx : ly;
        const float* factor = thermalFactor + (channel == lx ? 0 : 2);
        const double gain = static_cast<double>(factor[0]) * sight.temperature + factor[1];
        if (slopes[channel].level != 0)
            add(channel, -gain / slopes[channel].level);
        break;
    }
    }
    return sum;
}

void Propagation::addRounding(const KIV_RAWINFO& raw, const Sight& sight, const KIV_INFO& info,
                              AngleUncertainty& out) const {
    double variance[channelCount] = {};
    for (std::size_t i = 0; i < 3; ++i) {
        variance[side] += sight.side[i] * sight.side[i] * roundingVariance(raw.vector[i]);
        variance[above] += sight.above[i] * sight.above[i] * roundingVariance(raw.vector[i]);
    }
    // Raw and corrected, of levels the value of the curve, too.
    variance[az] = 2 * roundingVariance(raw.azimuthRaw);
    variance[el] = 2 * roundingVariance(raw.elevationRaw);
    variance[lx] = 3 * roundingVariance(raw.levelXRaw);
    variance[ly] = 3 * roundingVariance(raw.levelYRaw);
    const float angles[] = {info.rx, info.ry, info.rz};
    for (std::size_t i = 0; i < 3; ++i) {
        // Of the angle itself in radians and in degrees.
        double sum = 2 * roundingVariance(angles[i]);
        for (std::size_t channel = 0; channel < channelCount; ++channel) {
            const double slope = slopes[channel].angles[i] * radToDeg;
            sum += slope * slope * variance[channel];
        }
        out.rounding[i] = std::sqrt(sum);
    }
}

// result = L * T * T0^-1 * L^-1: a rotation w of T0 turns it to result * exp(-L w).
void Propagation::addReference(const double* result, AngleUncertainty& out) const {
    constexpr double step = 1e-5; // radians
    double slope[3][3];           // of angle i per rotation about axis j of the local frame
    for (int j = 0; j < 3; ++j) {
        double angles[2][3];
        for (int way = 0; way < 2; ++way) {
            const double turn = way == 0 ? -step : step;
            double turned[9];
            const int k = (j + 1) % 3;
            const int l = (j + 2) % 3;
            for (int row = 0; row < 3; ++row) {
                turned[3 * row + j] = result[3 * row + j];
                turned[3 * row + k] = result[3 * row + k] + turn * result[3 * row + l];
                turned[3 * row + l] = result[3 * row + l] - turn * result[3 * row + k];
            }
            matrixAngles(turned, true, angles[way]);
        }
        for (int i = 0; i < 3; ++i)
            slope[i][j] = turnBetween(angles[0][i], angles[1][i]) / (2 * step);
    }
    AngleTriple variance{};
    for (std::size_t source = 0; source < sourceCount; ++source) {
        double turn[3];
        MatrixMultiply(localMatrix, referenceTurn[source].data(), 3, 3, 1, turn);
        const bool parameter = source >= at(Source::azimuthOffset);
        for (std::size_t i = 0; i < 3; ++i) {
            const double effect =
                -(slope[i][0] * turn[0] + slope[i][1] * turn[1] + slope[i][2] * turn[2]) * radToDeg;
            if (parameter)
                out.contribution[source][i] += effect;
            else
                variance[i] += effect * effect;
        }
    }
    for (std::size_t i = 0; i < 3; ++i)
        out.reference[i] = std::sqrt(variance[i]);
}

void Propagation::captured(const CKiv& sensor, const KIV_RAWINFO& raw) {
    SensorAccess::takeReference(work, sensor);
    referenceTurn = {};
    const Sight sight(raw);
    if (!local || !slopesAt(raw, sight))
        return;
    for (std::size_t source = 0; source < sourceCount; ++source)
        referenceTurn[source] = part(static_cast<Source>(source), sight, &Slope::turn);
}

bool Propagation::of(const CKiv& sensor, const KIV_RAWINFO& raw, const KIV_INFO& info,
                     AngleUncertainty& out) {
    SensorAccess::takeReference(work, sensor);
    const Sight sight(raw);
    if (!slopesAt(raw, sight))
        return false;
    for (std::size_t source = 0; source < sourceCount; ++source) {
        const AngleTriple radians = part(static_cast<Source>(source), sight, &Slope::angles);
        for (std::size_t i = 0; i < 3; ++i)
            out.contribution[source][i] = radians[i] * radToDeg;
    }
    addRounding(raw, sight, info, out);
    out.reference = {};
    if (local)
        addReference(SensorAccess::result(sensor), out);

    double covariance[3][3];
    for (std::size_t i = 0; i < 3; ++i)
        for (std::size_t j = 0; j < 3; ++j) {
            covariance[i][j] = i == j ? out.rounding[i] * out.rounding[i] : 0;
            for (const AngleTriple& each : out.contribution)
                covariance[i][j] += each[i] * each[j];
        }
    for (std::size_t i = 0; i < 3; ++i)
        out.standard[i] = std::sqrt(covariance[i][i]);
    constexpr std::size_t pairs[3][2] = {{0, 1}, {0, 2}, {1, 2}};
    for (std::size_t pair = 0; pair < 3; ++pair) {
        const auto [i, j] = pairs[pair];
        const double product = out.standard[i] * out.standard[j];
        out.correlation[pair] = product > 0 ? covariance[i][j] / product : 0;
    }
    return true;
}

} // namespace kiv
