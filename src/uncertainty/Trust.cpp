#include "uncertainty/Trust.h"

#include <algorithm>
#include <cmath>

#include "models/ModelFactory.h"
#include "sensor/SensorAccess.h"
#include "support/AngleConstants.h"
#include "uncertainty/RollCheck.h"

namespace kiv {

namespace {

constexpr double largestError = 180; // degrees
constexpr double goodError = 0.005;  // degrees; the model's own error of a row that is good
constexpr double levelsAgree = 0.05; // degrees; half the difference of two levels' rolls
constexpr double levelSight = 1e-4;  // sine of the elevation, below which z cancels
constexpr double usualLimit = 35;    // degrees; where the record's do not count
constexpr double exactError = 1e-9;  // degrees; of the truncated constants

// Of single precision, a rounding's largest error relative to the number.
constexpr double halfUlp = 0x1p-24;
constexpr double encoderRoundings = 2 * halfUlp; // the raw reading and the corrected one
constexpr double levelRoundings = 6 * halfUlp;   // the same, and the curve, offset and gain between
constexpr double directionRounding = halfUlp * radToDeg; // degrees

bool usable(float low, float high) {
    return low < high;
}

bool beyond(const float* table, int count, float reading) {
    const auto [low, high] = std::minmax(table[0], table[count - 1]);
    return reading < low || reading > high;
}

bool beyond(float low, float high, float tilt) {
    return usable(low, high) && (tilt < low || tilt > high);
}

} // namespace

// A result with what it was made of.
struct TrustJudge::Sight {
    double u[3];            // the measured direction
    double horizontal;      // cosine of its elevation
    const double* m;        // the model's matrix
    double cosine, sine;    // of the turn from the sensor to the yoke
    double azimuthRounding; // degrees
    double sightRounding;   // of elevation encoder and direction, degrees
};

// Degrees.
struct TrustJudge::Roll {
    RollCheck check;
    double error;    // the model's
    double rounding; // what the rounding of the readings makes of it
};

TrustJudge::Axis TrustJudge::levelAxis(const float* parameters) {
    const double t3 = std::tan(parameters[3] * degToRad);
    const double t4 = std::tan(parameters[4] * degToRad);
    const double length = std::sqrt(1 + t3 * t3 + t4 * t4);
    return {1 / length, t3 / length, t4 / length, parameters[5], -parameters[6] * degToRad};
}

TrustJudge::TrustJudge(const CKiv& sensor, const F_VECTOR4& levelLimits)
    : principle(principleOf(*SensorAccess::model(sensor))), readsLevelX(false), up(1),
      azimuthOffset(SensorAccess::encoderOffset(sensor)[0]), azimuthGain(1),
      sightAcross(0), axes{}, limits{levelLimits.x, levelLimits.y, levelLimits.z, levelLimits.w} {
    const CKivModel& model = *SensorAccess::model(sensor);
    const float* factors = ModelAccess::factorsOf(model);
    const double sense = ModelAccess::parityOf(model) == 1 ? -1 : 1;
    switch (principle) {
    case Principle::dualLevel:
        axes[0] = {0, 1, 0, 0, degToRad};
        readsLevelX = true;
        break;
    case Principle::pendulum: {
        const double s2 = factors[2] * degToRad;
        const double s3 = factors[3] * degToRad;
        axes[0] = {std::sin(s3) * std::cos(s2), std::cos(s3) * std::cos(s2), std::sin(s2),
                   factors[1], sense * factors[6] * degToRad};
        azimuthGain = sense * factors[4];
        sightAcross = std::cos(factors[0] * degToRad + halfPi);
        break;
    }
    case Principle::polarizer:
        azimuthGain = factors[4];
        break;
    case Principle::threeVectors:
    case Principle::twoLevels:
        axes[0] = levelAxis(ModelAccess::level1Of(model));
        axes[1] = levelAxis(ModelAccess::level2Of(model));
        readsLevelX = principle == Principle::twoLevels;
        up = sense;
        break;
    }
    // A sensor is taken to be tilted no further than its levels may show.
    double most = 0;
    for (int i = readsLevelX ? 0 : 2; i < 4; i += 2)
        most = std::max({most, static_cast<double>(std::abs(limits[i])),
                         static_cast<double>(std::abs(limits[i + 1]))});
    if (!usable(limits[2], limits[3]))
        most = usualLimit;
    lowestUp = std::cos(std::min(most, 90.0) * degToRad);
}

void TrustJudge::configure(const CKiv& sensor) {
    const RowTrust reference = ofReference;
    *this = TrustJudge(sensor, {limits[0], limits[1], limits[2], limits[3]});
    ofReference = reference;
}

bool TrustJudge::outside(const CKiv& sensor, const KIV_RAWINFO& raw, const KIV_INFO& info) const {
    return beyond(SensorAccess::levelYTable(sensor), SensorAccess::levelYCount(sensor),
                  raw.levelYRaw)
           || beyond(limits[2], limits[3], info.levelY)
           || (readsLevelX
               && (beyond(SensorAccess::levelXTable(sensor), SensorAccess::levelXCount(sensor),
                          raw.levelXRaw)
                   || beyond(limits[0], limits[1], info.levelX)));
}

TrustJudge::Roll TrustJudge::rollOf(const Sight& sight, const Axis& axis, double reading) const {
    const double x = sight.cosine * axis.x - sight.sine * axis.y;
    const double y = sight.sine * axis.x + sight.cosine * axis.y;
    const double* m = sight.m;
    const double inInstrument[3] = {m[0] * x + m[1] * y + m[2] * axis.z,
                                    m[3] * x + m[4] * y + m[5] * axis.z,
                                    m[6] * x + m[7] * y + m[8] * axis.z};
    const double rise = (reading + axis.offset) * axis.gain;
    Roll roll{checkRoll(sight.u, inInstrument, std::sin(rise)), 0, 0};
    roll.error = std::abs(roll.check.error) * radToDeg;
    const double roundings =
        sight.sightRounding
        + levelRoundings * (std::abs(reading) + 1) * std::abs(axis.gain) * radToDeg;
    roll.rounding =
        std::min(roundings / std::max(std::abs(roll.check.sensitivity), 1e-9), largestError);
    return roll;
}

bool TrustJudge::mirrorWithinLimits(const Sight& sight, const Roll& roll) const {
    const double z[3] = {sight.m[2], sight.m[5], sight.m[8]};
    return up * heightAfterRoll(sight.u, z, roll.check.mirrorCosine, roll.check.mirrorSine)
           >= lowestUp;
}

RowTrust TrustJudge::polarizer(const Sight& sight) const {
    const double error = sight.sightRounding / std::max(sight.horizontal, 1e-9);
    return {error > goodError ? Trust::rollUnseen : Trust::good, error};
}

RowTrust TrustJudge::oneLevel(const Sight& sight, const KIV_INFO& info) const {
    const Roll roll = rollOf(sight, axes[0], info.levelY);
    double error = roll.error + roll.rounding;
    if (principle == Principle::pendulum) {
        // Close to z = 0 the transverse axis is not where it should be to the line of sight.
        const double* m = sight.m;
        const double t[3] = {sight.cosine * m[1] - sight.sine * m[0],
                             sight.cosine * m[4] - sight.sine * m[3],
                             sight.cosine * m[7] - sight.sine * m[6]};
        const double across = sight.u[0] * t[0] + sight.u[1] * t[1] + sight.u[2] * t[2];
        error += 2 * std::abs(across - sightAcross) * radToDeg;
    }
    if (mirrorWithinLimits(sight, roll)) {
        const double apart = std::acos(std::clamp(roll.check.mirrorCosine, -1.0, 1.0)) * radToDeg;
        return {Trust::mirrorNear, error + apart};
    }
    if (error <= goodError)
        return {Trust::good, error};
    if (principle == Principle::dualLevel && sight.u[2] * info.levelY < 0)
        return {Trust::twoSigns, error};
    if (principle == Principle::pendulum && std::abs(sight.u[2]) < levelSight)
        return {Trust::nearLevelSight, error};
    return {std::abs(roll.check.sensitivity) < 0.3 ? Trust::rollUnseen : Trust::notSettled, error};
}

RowTrust TrustJudge::twoLevels(const Sight& sight, const CKiv& sensor, const KIV_RAWINFO& raw,
                               const KIV_INFO& info) const {
    // A level beyond its table was left out.
    const bool useX = !beyond(SensorAccess::levelXTable(sensor), SensorAccess::levelXCount(sensor),
                              raw.levelXRaw);
    const bool useY = !beyond(SensorAccess::levelYTable(sensor), SensorAccess::levelYCount(sensor),
                              raw.levelYRaw);
    double error = 0;
    double rounding = 0;
    for (int i = 0; i < 2; ++i) {
        if (!(i == 0 ? useX : useY))
            continue;
        const Roll roll = rollOf(sight, axes[i], i == 0 ? info.levelX : info.levelY);
        error = std::max(error, roll.error);
        rounding = std::max(rounding, roll.rounding);
        if (useX != useY && mirrorWithinLimits(sight, roll))
            return {Trust::mirrorNear, largestError};
    }
    // The mean of angles from both sides of the seam turns the sensor over or back to front.
    const double* m = sight.m;
    const double* u = sight.u;
    const double forward = sight.cosine * (u[0] * m[0] + u[1] * m[3] + u[2] * m[6])
                           + sight.sine * (u[0] * m[1] + u[1] * m[4] + u[2] * m[7]);
    if (useX && useY && (up * m[8] < 0 || forward < 0))
        return {Trust::seam, largestError};
    if (error > levelsAgree)
        return {Trust::levelsDisagree, error + rounding};
    return {rounding > goodError ? Trust::rollUnseen : Trust::good, error + rounding};
}

RowTrust TrustJudge::ofModel(const CKiv& sensor, const KIV_RAWINFO& raw,
                             const KIV_INFO& info) const {
    Sight sight;
    const double x = raw.vector[0];
    const double y = raw.vector[1];
    const double z = raw.vector[2];
    const double rho2 = x * x + y * y;
    const double inverse = 1 / std::sqrt(rho2 + z * z);
    sight.u[0] = x * inverse;
    sight.u[1] = y * inverse;
    sight.u[2] = z * inverse;
    sight.horizontal = std::sqrt(rho2) * inverse;
    sight.m = SensorAccess::transform(sensor);
    const double turn = (info.azimuth * degToRad - azimuthOffset) * azimuthGain;
    sight.cosine = std::cos(turn);
    sight.sine = std::sin(turn);
    sight.azimuthRounding = encoderRoundings * std::abs(info.azimuth * azimuthGain);
    sight.sightRounding = encoderRoundings * std::abs(info.elevation) + directionRounding;

    RowTrust row = principle == Principle::polarizer   ? polarizer(sight)
                   : principle == Principle::twoLevels ? twoLevels(sight, sensor, raw, info)
                                                       : oneLevel(sight, info);
    row.modelError = row.modelError + sight.azimuthRounding + exactError;
    return row;
}

RowTrust TrustJudge::judge(const CKiv& sensor, const KIV_RAWINFO& raw, const KIV_INFO& info,
                           bool becameReference) {
    RowTrust row = ofModel(sensor, raw, info);
    if (outside(sensor, raw, info))
        row.trust = Trust::outsideLimits;
    if (becameReference) {
        ofReference = row;
        return row;
    }
    const bool own = reportsOwnMatrix(SensorAccess::mountMode(sensor));
    const bool local = !own && !SensorAccess::inMachineFrame(sensor);
    if (local) {
        row.modelError += ofReference.modelError;
        if (row.trust == Trust::good && ofReference.trust != Trust::good)
            row.trust = Trust::reference;
    }
    // A turn of the rotation changes rx and rz by up to its size over the cosine of ry.
    const double* r = own ? SensorAccess::transform(sensor) : SensorAccess::result(sensor);
    const double sinRy = local ? r[6] : r[2];
    const double cosRy = std::sqrt(std::max(1 - sinRy * sinRy, 1e-12));
    row.modelError = std::min(row.modelError / cosRy, largestError);
    return row;
}

} // namespace kiv
