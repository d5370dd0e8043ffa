#include "uncertainty/Trust.h"

#include <algorithm>
#include <cmath>

#include "models/ModelFactory.h"
#include "models/ThreeVectors.h"
#include "sensor/SensorAccess.h"
#include "support/AngleConstants.h"
#include "support/RotationCheck.h"
#include "uncertainty/RollCheck.h"

namespace kiv {

namespace {

constexpr double largestError = 180;  // degrees
constexpr double goodError = 0.005;   // degrees; the model's own error of a row that is good
constexpr double levelsAgree = 0.05;  // degrees; half the difference of two levels' rolls
constexpr double mirroredApart = 0.1; // degrees; two levels' mirrored solutions
constexpr double spareAgrees = 0.05;  // degrees
constexpr double spareDeviations = 4;
constexpr double nearRy90 = 0.05;    // degrees; the error that division by cos ry comes to
constexpr double steepCosine = 0.5;  // of an ry from which that division is to blame
constexpr double levelSight = 1e-4;  // sine of the elevation, below which z cancels
constexpr double exactError = 1e-9;  // degrees; of the truncated constants
constexpr double leastTurn = 1;      // degrees; of a reading that has an effect
constexpr double leastHeight = 1e-6; // by which the mirrored solution may miss its limit

constexpr double directionRounding = halfUlp * radToDeg; // degrees
constexpr double matrixRounding = 4 * halfUlp;           // of a rotation in single precision

} // namespace

// A result with what it was made of.
struct TrustJudge::Sight {
    double u[3];            // the measured direction
    double length;          // of the measured vector
    double horizontal;      // cosine of its elevation
    const double* m;        // the model's matrix
    double cosine, sine;    // of the turn from the sensor to the yoke, where it is needed
    double azimuthRounding; // degrees
    double sightRounding;   // of elevation encoder and direction, degrees

    void toInstrument(const double* inYoke, double* out) const {
        const double x = cosine * inYoke[0] - sine * inYoke[1];
        const double y = sine * inYoke[0] + cosine * inYoke[1];
        for (int i = 0; i < 3; ++i)
            out[i] = m[3 * i] * x + m[3 * i + 1] * y + m[3 * i + 2] * inYoke[2];
    }
};

// Degrees.
struct TrustJudge::Roll {
    RollCheck check;
    double sineRise; // of that axis, as the level shows it
    double error;    // the model's
    double rounding; // what the rounding of the readings makes of it
};

namespace {

// Within 1e-14; the C library's takes several times as long.
double sineOf(double angle) {
    if (!(std::abs(angle) < 0.75))
        return std::sin(angle);
    constexpr double factors[] = {
        1.0 / 6227020800, -1.0 / 39916800, 1.0 / 362880, -1.0 / 5040, 1.0 / 120, -1.0 / 6, 1};
    double sum = 0;
    for (const double factor : factors)
        sum = sum * (angle * angle) + factor;
    return angle * sum;
}

// Of neighbours in the table; the file may give its rows in any order, as it hardly does.
double steepestOf(const float* table, int count) {
    double steepest = 1;
    for (int i = 0; i < count; ++i) {
        const float* row = table + 2 * static_cast<std::ptrdiff_t>(i);
        const float* next = i + 1 < count ? row + 2 : table;
        const double apart = std::remainder(static_cast<double>(next[0]) - row[0], 360);
        if (apart != 0)
            steepest =
                std::max(steepest, std::abs(1 + (static_cast<double>(next[1]) - row[1]) / apart));
    }
    return steepest;
}

} // namespace

double TrustJudge::Encoder::rounding(float raw, float corrected) const {
    const float size = std::abs(corrected);
    return halfUlp * std::abs(gain) * (std::max<double>(steepest * std::abs(raw), size) + size);
}

TrustJudge::Frame::Frame(const double* matrix, double times) {
    const RotationCheck check = checkRotation(matrix);
    rotation = check.departure <= rotationTolerance && check.determinant > 0;
    stretch = check.stretch > matrixRounding ? times * check.stretch * radToDeg : 0;
}

JudgedLevel::Axis TrustJudge::levelAxis(const float* parameters) {
    JudgedLevel::Axis axis{{}, parameters[5], -parameters[6]};
    tiltedAxis(parameters + 3, 0, axis.to);
    return axis;
}

// The local matrix stands on both sides of the result.
TrustJudge::TrustJudge(const CKiv& sensor, const F_VECTOR4& levelLimits)
    : principle(principleOf(*SensorAccess::model(sensor))),
      azimuth{SensorAccess::encoderOffset(sensor)[0], 1,
              steepestOf(SensorAccess::azimuthComp(sensor), SensorAccess::azimuthCount(sensor))},
      elevation{
          SensorAccess::encoderOffset(sensor)[1], 1,
          steepestOf(SensorAccess::elevationComp(sensor), SensorAccess::elevationCount(sensor))},
      machine(SensorAccess::machineMatrix(sensor), 1),
      local(SensorAccess::localMatrix(sensor), 2), limits{levelLimits.x, levelLimits.y,
                                                          levelLimits.z, levelLimits.w} {
    const CKivModel& model = *SensorAccess::model(sensor);
    const float* factors = ModelAccess::factorsOf(model);
    const float sense = ModelAccess::parityOf(model) == 1 ? -1 : 1;
    JudgedLevel::Axis ofX{};
    JudgedLevel::Axis ofY{};
    switch (principle) {
    case Principle::dualLevel: {
        const double f0 = factors[0] * degToRad;
        sinF0 = std::sin(f0);
        cosF0 = std::cos(f0);
        ofX = {{cosF0, -sinF0, 0}, 0, -1};
        ofY = {{0, 1, 0}, 0, 1};
        break;
    }
    case Principle::pendulum: {
        const double s2 = factors[2] * degToRad;
        const double s3 = factors[3] * degToRad;
        ofY = {{std::sin(s3) * std::cos(s2), std::cos(s3) * std::cos(s2), std::sin(s2)},
               factors[1],
               sense * factors[6]};
        azimuth.gain = sense * factors[4];
        elevation.gain = sense * factors[5];
        sightAcross = std::cos(factors[0] * degToRad + halfPi);
        break;
    }
    case Principle::polarizer:
        ofY = {{}, factors[1], factors[6]};
        azimuth.gain = factors[4];
        elevation.gain = factors[5];
        break;
    case Principle::threeVectors:
        ofY = levelAxis(ModelAccess::level1Of(model));
        up = sense;
        break;
    case Principle::twoLevels: {
        ofX = levelAxis(ModelAccess::level1Of(model));
        ofY = levelAxis(ModelAccess::level2Of(model));
        up = sense;
        tiltedAxis(ModelAccess::qvcOf(model) + 3, 1, elevationAxis);
        break;
    }
    }
    encoderLost =
        !(std::abs(azimuth.gain) * 360 >= leastTurn && std::abs(elevation.gain) * 360 >= leastTurn);
    levelY = JudgedLevel(sensor, JudgedLevel::y, ofY, limits + 2);
    if (traitsOf(principle).levelX)
        levelX.emplace(sensor, JudgedLevel::x, ofX, limits);
    setLimits();
}

// A sensor is taken to be tilted no further than its levels may show; across the only level no
// further than along it.
void TrustJudge::setLimits() {
    const double sineY = levelY.sineOfMostRise();
    double squared = 2 * sineY * sineY;
    if (levelX) {
        const double sineX = levelX->sineOfMostRise();
        const double* a = levelX->to();
        const double* b = levelY.to();
        const double lengths = (a[0] * a[0] + a[1] * a[1]) * (b[0] * b[0] + b[1] * b[1]);
        const double along = a[0] * b[0] + a[1] * b[1];
        const double across = a[0] * b[1] - a[1] * b[0];
        const double cosine = std::abs(along) / std::sqrt(lengths);
        squared = (sineX * sineX + sineY * sineY + 2 * cosine * sineX * sineY)
                  / (across * across / lengths);
    }
    lowestUp = squared < 1 ? std::sqrt(1 - squared) : 0;
}

void TrustJudge::configure(const CKiv& sensor) {
    const RowTrust reference = ofReference;
    const std::optional<Uncertainties> given = uncertainties;
    *this = TrustJudge(sensor, {limits[0], limits[1], limits[2], limits[3]});
    ofReference = reference;
    uncertainties = given;
}

void TrustJudge::expect(const Uncertainties& ofReadings) {
    const auto& of = ofReadings.of;
    uncertainties.reset();
    if (std::any_of(of.begin(), of.end(), [](double each) { return each > 0; }))
        uncertainties = ofReadings;
}

bool TrustJudge::lost(const CKiv& sensor, const KIV_RAWINFO& raw) const {
    return encoderLost || levelY.lost(sensor, raw) || (levelX && levelX->lost(sensor, raw));
}

// axis: of the level, in the instrument's frame.
TrustJudge::Roll TrustJudge::rollOf(const Sight& sight, const JudgedLevel& level,
                                    const double* axis, const KIV_RAWINFO& raw,
                                    const KIV_INFO& info) const {
    Roll roll;
    roll.sineRise = sineOf(level.rise(info));
    roll.check = checkRoll(sight.u, axis, roll.sineRise);
    roll.error = std::abs(roll.check.error) * radToDeg;
    roll.rounding = std::min((sight.sightRounding + level.rounding(raw, info))
                                 / std::max(std::abs(roll.check.sensitivity), 1e-9),
                             largestError);
    return roll;
}

bool TrustJudge::mirrorWithinLimits(const Sight& sight, const Roll& roll) const {
    const double z[3] = {sight.m[2], sight.m[5], sight.m[8]};
    return up * heightAfterRoll(sight.u, z, roll.check.mirrorCosine, roll.check.mirrorSine)
           >= lowestUp - leastHeight - 2 * roll.rounding * degToRad;
}

RowTrust TrustJudge::polarizer(const Sight& sight, const KIV_RAWINFO& raw,
                               const KIV_INFO& info) const {
    const double error =
        sight.sightRounding / std::max(sight.horizontal, 1e-9) + levelY.rounding(raw, info);
    return {error > goodError ? Trust::rollUnseen : Trust::good, error};
}

// Where none of a model's own reasons holds.
RowTrust TrustJudge::fromRoll(const Roll& roll, double error, Trust otherwise) {
    if (error <= goodError)
        return {Trust::good, error};
    if (otherwise != Trust::good)
        return {otherwise, error};
    const bool unseen = std::abs(roll.check.sensitivity) < 0.3 || roll.rounding > goodError;
    return {unseen ? Trust::rollUnseen : Trust::notSettled, error};
}

RowTrust TrustJudge::mirrored(const Roll& roll, double error) {
    const double apart = std::acos(std::clamp(roll.check.mirrorCosine, -1.0, 1.0)) * radToDeg;
    return {Trust::mirrorNear, error + apart};
}

RowTrust TrustJudge::oneLevel(const Sight& sight, const KIV_RAWINFO& raw,
                              const KIV_INFO& info) const {
    double axis[3];
    sight.toInstrument(levelY.to(), axis);
    const Roll roll = rollOf(sight, levelY, axis, raw, info);
    double error = roll.error + roll.rounding;
    Trust otherwise = Trust::good;
    if (principle == Principle::pendulum) {
        // Close to z = 0 the transverse axis is not where it should be to the line of sight.
        const double* m = sight.m;
        const double t[3] = {sight.cosine * m[1] - sight.sine * m[0],
                             sight.cosine * m[4] - sight.sine * m[3],
                             sight.cosine * m[7] - sight.sine * m[6]};
        const double across = sight.u[0] * t[0] + sight.u[1] * t[1] + sight.u[2] * t[2];
        error += 2 * std::abs(across - sightAcross) * radToDeg;
        if (std::abs(sight.u[2]) < levelSight)
            otherwise = Trust::nearLevelSight;
    }
    if (mirrorWithinLimits(sight, roll))
        return mirrored(roll, error);
    return fromRoll(roll, error, otherwise);
}

// Level X shows the result and not its mirrored one. across: the yoke's y axis.
bool TrustJudge::levelXExcludesMirror(const Sight& sight, const double* across, const Roll& roll,
                                      const KIV_RAWINFO& raw, const KIV_INFO& info) const {
    const double* m = sight.m;
    const double up3[3] = {m[2], m[5], m[8]};
    double axis[3];
    for (int i = 0; i < 3; ++i) {
        const int k = (i + 1) % 3;
        const int l = (i + 2) % 3;
        axis[i] = cosF0 * (across[k] * up3[l] - across[l] * up3[k]) - sinF0 * across[i];
    }
    const double shown = sineOf(levelX->rise(info));
    const double other =
        heightAfterRoll(sight.u, axis, roll.check.mirrorCosine, roll.check.mirrorSine);
    const double most =
        (mirroredApart + levelX->rounding(raw, info) + 2 * roll.rounding) * degToRad;
    return std::abs(axis[2] - shown) <= most && std::abs(other - shown) > most;
}

RowTrust TrustJudge::dualLevel(const Sight& sight, const CKiv& sensor, const KIV_RAWINFO& raw,
                               const KIV_INFO& info) const {
    // The yoke's y axis is square to the line of sight; the head turns about it, and beyond 90
    // degrees looks back over the yoke.
    const double* m = sight.m;
    const double* u = sight.u;
    double across[3] = {m[5] * u[2] - m[8] * u[1], m[8] * u[0] - m[2] * u[2],
                        m[2] * u[1] - m[5] * u[0]};
    double cosG = std::sqrt(across[0] * across[0] + across[1] * across[1] + across[2] * across[2]);
    const double turn = std::abs(info.elevation * degToRad - elevation.offset);
    if (turn > halfPi && std::cos(turn) < 0)
        cosG = -cosG;
    for (double& each : across)
        each /= cosG;
    const Roll roll = rollOf(sight, levelY, across, raw, info);
    const double own = roll.error + roll.rounding;
    RowTrust row =
        mirrorWithinLimits(sight, roll) && !levelXExcludesMirror(sight, across, roll, raw, info)
            ? mirrored(roll, own)
            : fromRoll(roll, own, u[2] * info.levelY < 0 ? Trust::twoSigns : Trust::good);

    const DualLevelSpare spare{-sineOf(levelX->rise(info)),
                               roll.sineRise,
                               sinF0,
                               cosF0,
                               -(u[0] * m[2] + u[1] * m[5] + u[2] * m[8]),
                               cosG,
                               u[2],
                               sight.horizontal};
    row.spare = spare.value();
    if (std::abs(row.spare) <= spareAgrees && !uncertainties)
        return row;
    const Uncertainties* given = uncertainties ? &*uncertainties : nullptr;
    const SpareError error =
        spare.error(levelX->riseError(sensor, raw, info, given),
                    levelY.riseError(sensor, raw, info, given), sightError(sight));
    row.spareDeviation = std::sqrt(error.variance);
    if (row.trust == Trust::good
        && std::abs(row.spare)
               > std::max(spareAgrees, spareDeviations * row.spareDeviation) + error.rounding)
        row.trust = Trust::spareDisagrees;
    return row;
}

bool TrustJudge::mirrorsAgree(const Roll& x, const Roll& y) {
    const double cosine =
        x.check.mirrorCosine * y.check.mirrorCosine + x.check.mirrorSine * y.check.mirrorSine;
    const double sine =
        x.check.mirrorSine * y.check.mirrorCosine - x.check.mirrorCosine * y.check.mirrorSine;
    return cosine > 0
           && std::abs(sine - x.check.error + y.check.error)
                  <= (mirroredApart + x.rounding + y.rounding) * degToRad;
}

RowTrust TrustJudge::twoLevels(const Sight& sight, const CKiv& sensor, const KIV_RAWINFO& raw,
                               const KIV_INFO& info) const {
    double axisX[3];
    double axisY[3];
    sight.toInstrument(levelX->to(), axisX);
    sight.toInstrument(levelY.to(), axisY);
    const Roll ofX = rollOf(sight, *levelX, axisX, raw, info);
    const Roll ofY = rollOf(sight, levelY, axisY, raw, info);
    // A level beyond its table was left out.
    const bool useX = !levelX->beyondTable(raw);
    if (!useX || levelY.beyondTable(raw)) {
        const Roll& roll = useX ? ofX : ofY;
        return {Trust::outsideLimits,
                mirrorWithinLimits(sight, roll) ? largestError : roll.error + roll.rounding};
    }
    // The mean of angles from both sides of the seam turns the sensor over or back to front.
    const double* m = sight.m;
    const double* u = sight.u;
    const double forward = sight.cosine * (u[0] * m[0] + u[1] * m[3] + u[2] * m[6])
                           + sight.sine * (u[0] * m[1] + u[1] * m[4] + u[2] * m[7]);
    if (up * m[8] < 0 || forward < 0)
        return {Trust::seam, largestError};
    const double error = std::max(ofX.error, ofY.error);
    const double rounding = std::max(ofX.rounding, ofY.rounding);
    RowTrust row{Trust::good, error + rounding};
    row.spare = (ofX.check.error - ofY.check.error) / 2 * radToDeg;
    if (uncertainties)
        row.spareDeviation = std::sqrt(
            errorOfRolls(levelRoll(sight, ofX, axisX), levelRoll(sight, ofY, axisY),
                         levelX->riseError(sensor, raw, info, &*uncertainties),
                         levelY.riseError(sensor, raw, info, &*uncertainties), sightError(sight))
                .variance);
    if (mirrorsAgree(ofX, ofY) && mirrorWithinLimits(sight, ofX)
        && mirrorWithinLimits(sight, ofY)) {
        row.trust = Trust::mirrorNear;
        row.modelError = largestError;
    } else if (error > levelsAgree) {
        row.trust = Trust::levelsDisagree;
    } else if (rounding > goodError) {
        row.trust = Trust::rollUnseen;
    }
    return row;
}

LevelRoll TrustJudge::levelRoll(const Sight& sight, const Roll& roll, const double* axis) const {
    const double* u = sight.u;
    double turn[3];
    sight.toInstrument(elevationAxis, turn);
    return {std::copysign(std::max(std::abs(roll.check.sensitivity), 1e-9), roll.check.sensitivity),
            turn[0] * axis[1] - turn[1] * axis[0],
            (u[0] * axis[0] + u[1] * axis[1]) / std::max(sight.horizontal, 1e-9),
            std::sqrt(1 - roll.sineRise * roll.sineRise)};
}

SightError TrustJudge::sightError(const Sight& sight) const {
    SightError error{sight.sightRounding, 0, 0, 0};
    if (!uncertainties)
        return error;
    const Uncertainties& u = *uncertainties;
    error.elevation =
        std::abs(elevation.gain) * std::hypot(u[Source::elevation], u[Source::elevationOffset]);
    error.temperature = u[Source::temperature];
    double above = u[Source::vector3];
    if (!u.bySight) {
        const double rise = sight.u[2] / std::max(sight.horizontal, 1e-9);
        above = std::hypot(u[Source::vector1] * sight.u[0] * rise,
                           u[Source::vector2] * sight.u[1] * rise,
                           u[Source::vector3] * sight.horizontal);
    }
    error.above = above / sight.length * radToDeg;
    return error;
}

RowTrust TrustJudge::ofModel(const CKiv& sensor, const KIV_RAWINFO& raw,
                             const KIV_INFO& info) const {
    Sight sight;
    const double vx = raw.vector[0];
    const double vy = raw.vector[1];
    const double vz = raw.vector[2];
    const double rho2 = vx * vx + vy * vy;
    sight.length = std::sqrt(rho2 + vz * vz);
    const double inverse = 1 / sight.length;
    sight.u[0] = vx * inverse;
    sight.u[1] = vy * inverse;
    sight.u[2] = vz * inverse;
    sight.horizontal = std::sqrt(rho2) * inverse;
    sight.m = SensorAccess::transform(sensor);
    if (principle != Principle::dualLevel && principle != Principle::polarizer) {
        const double turn = (info.azimuth * degToRad - azimuth.offset) * azimuth.gain;
        sight.cosine = std::cos(turn);
        sight.sine = std::sin(turn);
    }
    sight.azimuthRounding = azimuth.rounding(raw.azimuthRaw, info.azimuth);
    sight.sightRounding = elevation.rounding(raw.elevationRaw, info.elevation) + directionRounding;

    RowTrust row;
    switch (principle) {
    case Principle::polarizer:
        row = polarizer(sight, raw, info);
        break;
    case Principle::twoLevels:
        row = twoLevels(sight, sensor, raw, info);
        break;
    case Principle::dualLevel:
        row = dualLevel(sight, sensor, raw, info);
        break;
    case Principle::pendulum:
    case Principle::threeVectors:
        row = oneLevel(sight, raw, info);
        break;
    }
    row.modelError += sight.azimuthRounding + exactError;
    return row;
}

RowTrust TrustJudge::judge(const CKiv& sensor, const KIV_RAWINFO& raw, const KIV_INFO& info,
                           bool becameReference) {
    const bool own = reportsOwnMatrix(SensorAccess::mountMode(sensor));
    const bool inLocal = !own && !SensorAccess::inMachineFrame(sensor);
    const Frame& frame = inLocal ? local : machine;
    RowTrust row;
    if (!own && !frame.rotation) {
        row = {Trust::noRotation, largestError};
    } else if (lost(sensor, raw)) {
        row = {Trust::readingLost, largestError};
    } else {
        row = ofModel(sensor, raw, info);
        if (levelY.outside(raw, info) || (levelX && levelX->outside(raw, info))) {
            row.trust = Trust::outsideLimits;
            row.spare = std::numeric_limits<double>::quiet_NaN();
        }
    }
    if (becameReference) {
        ofReference = row;
        return row;
    }
    // A turn of the rotation changes rx and rz by up to its size over the cosine of ry.
    const double* r = own ? SensorAccess::transform(sensor) : SensorAccess::result(sensor);
    const double sinRy = inLocal ? r[6] : r[2];
    const double cosRy = std::sqrt(std::max(1 - sinRy * sinRy, 1e-12));
    if (!own)
        row.modelError += frame.stretch;
    const bool sound = row.trust == Trust::good || row.trust == Trust::spareDisagrees;
    const bool spoiled = inLocal && ofReference.trust != Trust::good;
    if (inLocal && !spoiled)
        row.modelError += ofReference.modelError;
    if (sound && cosRy < steepCosine && row.modelError > nearRy90 * cosRy)
        row.trust = Trust::ryNear90;
    if (spoiled) {
        row.modelError += ofReference.modelError;
        if (row.trust == Trust::good)
            row.trust = Trust::reference;
    }
    row.modelError = std::min(row.modelError / cosRy, largestError);
    return row;
}

} // namespace kiv
