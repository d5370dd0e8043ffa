#include "simulator/Mounting.h"

#include <algorithm>
#include <cmath>
#include <iterator>

#include "KIVInterface/CKivPrm.h"
#include "support/ZelUtil.h"

namespace kiv::simulator {

namespace {

struct Vector {
    double x, y, z;
};

double dot(const Vector& a, const Vector& b) {
    return a.x * b.x + a.y * b.y + a.z * b.z;
}

Vector turnedAboutZ(const Vector& v, double angle) {
    const double s = std::sin(angle);
    const double c = std::cos(angle);
    return {c * v.x - s * v.y, s * v.x + c * v.y, v.z};
}

double azimuthOf(const Vector& v) {
    return std::atan2(v.y, v.x);
}

// The rise above the horizon, in degrees, of an axis of the sensor's frame turned about z by yoke.
double riseOf(const Vector& axis, double yoke, const double* rotation) {
    const Vector inSensor = turnedAboutZ(axis, yoke);
    return std::asin(dot({rotation[6], rotation[7], rotation[8]}, inSensor)) / radians;
}

// Turns of the head about z (first) and about its elevation axis (second) that lay the line of
// sight, given in the head's frame, onto the direction u in the sensor's frame.
struct HeadTurn {
    double azimuth;
    double elevation;
};

// Elevation axis y: Ry(g) * (a, b, 0) = (a cos g, b, -a sin g).
bool turnWithElevationAboutY(const Vector& u, double a, double b, HeadTurn& turn) {
    if (std::abs(u.z) > std::abs(a))
        return false;
    turn.elevation = -std::asin(u.z / a);
    turn.azimuth = azimuthOf(u) - azimuthOf({a * std::cos(turn.elevation), b, 0});
    return true;
}

// Elevation axis x: Rx(g) * (a, b, 0) = (a, b cos g, b sin g).
bool turnWithElevationAboutX(const Vector& u, double a, double b, HeadTurn& turn) {
    if (std::abs(u.z) > std::abs(b))
        return false;
    turn.elevation = std::asin(u.z / b);
    turn.azimuth = azimuthOf(u) - azimuthOf({a, b * std::cos(turn.elevation), 0});
    return true;
}

// Any unit elevation axis: the height of the start vector turned by g is A cos g + B sin g + C.
bool turnWithElevationAbout(const Vector& axis, const Vector& start, const Vector& u,
                            HeadTurn& turn) {
    const double along = dot(axis, start);
    const double c = axis.z * along;
    const double a = start.z - c;
    const double b = axis.x * start.y - axis.y * start.x;
    const double reach = std::hypot(a, b);
    if (std::abs(u.z - c) > reach)
        return false;
    const double middle = std::atan2(b, a);
    const double half = std::acos((u.z - c) / reach);
    const double g1 = std::remainder(middle + half, 4 * halfPi);
    const double g2 = std::remainder(middle - half, 4 * halfPi);
    turn.elevation = std::abs(g1) < std::abs(g2) ? g1 : g2;

    double v[3] = {start.x, start.y, start.z};
    double w[3] = {axis.x, axis.y, axis.z};
    double turned[3];
    mlaRotateAroundAxis(v, turn.elevation / radians, w, turned);
    turn.azimuth = azimuthOf(u) - azimuthOf({turned[0], turned[1], 0});
    return true;
}

// Modes 1 and 2: levels along the elevation axis and along the axis 90 degrees + scale factor 0
// before it, the one showing its rise, the other its fall.
bool dualLevel(const Mounting& m, const double* rotation, const Vector& u,
               CorrectedReadings& readings) {
    HeadTurn turn;
    if (!turnWithElevationAboutY(u, 1, 0, turn))
        return false;
    const double c = (m.scaleFactors[0] + 90.0) * radians;
    readings.levelX = -riseOf({std::sin(c), std::cos(c), 0}, turn.azimuth, rotation);
    readings.levelY = riseOf({0, 1, 0}, turn.azimuth, rotation);
    readings.azimuth = (turn.azimuth + m.encoderOffset[0]) / radians;
    readings.elevation = (m.encoderOffset[1] - turn.elevation) / radians;
    return true;
}

// Modes 3, 4 and all others: the line of sight at 90 degrees + scale factor 0 from the elevation
// axis, one inclination sensor along the axis that scale factors 2 and 3 give. An odd mode counts
// all three angles the other way round.
bool pendulum(const Mounting& m, const double* rotation, const Vector& u,
              CorrectedReadings& readings) {
    const double c0 = m.scaleFactors[0] * radians + halfPi;
    HeadTurn turn;
    if (!turnWithElevationAboutY(u, std::sin(c0), std::cos(c0), turn))
        return false;
    const double s2 = m.scaleFactors[2] * radians;
    const double s3 = m.scaleFactors[3] * radians;
    const Vector axis{std::sin(s3) * std::cos(s2), std::cos(s3) * std::cos(s2), std::sin(s2)};
    const double sense = parityOf(m.mode) == 1 ? -1 : 1;
    const double azimuth = sense * turn.azimuth / m.scaleFactors[4];
    const double elevation = sense * turn.elevation / m.scaleFactors[5];
    readings.levelY =
        sense * riseOf(axis, turn.azimuth, rotation) / m.scaleFactors[6] - m.scaleFactors[1];
    readings.azimuth = (azimuth + m.encoderOffset[0]) / radians;
    readings.elevation = (m.encoderOffset[1] - elevation) / radians;
    return true;
}

// Modes 5 and 6: an optical frame whose y axis is the line of sight and whose roll about it,
// against the frame with a horizontal x axis, the polarizer shows.
bool polarizer(const Mounting& m, const double* rotation, const Vector& u,
               CorrectedReadings& readings) {
    const double m0 = m.scaleFactors[0] * radians;
    HeadTurn turn;
    if (!turnWithElevationAboutX(u, std::sin(m0), std::cos(m0), turn))
        return false;
    // The optical frame's x and z axes in the sensor's frame; their heights give the roll.
    double rz[9];
    double rx[9];
    double mount[9];
    double head[9];
    double optical[9];
    rotation_z(rz, turn.azimuth);
    rotation_x(rx, turn.elevation);
    rotation_z(mount, -m0);
    MatrixMultiply(rz, rx, 3, 3, 3, head);
    MatrixMultiply(head, mount, 3, 3, 3, optical);
    const Vector down{-rotation[6], -rotation[7], -rotation[8]};
    const double roll = std::atan2(dot(down, {optical[0], optical[3], optical[6]}),
                                   -dot(down, {optical[2], optical[5], optical[8]}));
    readings.levelY = roll / radians / m.scaleFactors[6] - m.scaleFactors[1];
    readings.azimuth = (m.encoderOffset[0] + turn.azimuth / m.scaleFactors[4]) / radians;
    readings.elevation = (m.encoderOffset[1] + turn.elevation / m.scaleFactors[5]) / radians;
    return true;
}

// A level along (1, tan, tan) of its block's tilts shows the dip of its axis in the head's frame.
double levelReading(const double* level, const HeadTurn& turn, const double* rotation) {
    const double t3 = std::tan(level[3] * radians);
    const double t4 = std::tan(level[4] * radians);
    const double length = std::sqrt(1 + t3 * t3 + t4 * t4);
    const double dip = -riseOf({1 / length, t3 / length, t4 / length}, turn.azimuth, rotation);
    return dip / level[6] - level[5];
}

// Modes 7 to 10: the start vector turns about the elevation axis that the QVC parameters give; one
// level (Y) or two (X and Y).
bool threeVector(const Mounting& m, const double* rotation, const Vector& u,
                 CorrectedReadings& readings) {
    const double t3 = std::tan(m.qvcParameters[3] * radians);
    const double t4 = std::tan(m.qvcParameters[4] * radians);
    const double length = std::sqrt(t3 * t3 + 1 + t4 * t4);
    const double start = m.qvcParameters[5] * radians;
    HeadTurn turn;
    if (!turnWithElevationAbout({t3 / length, 1 / length, t4 / length},
                                {std::cos(start), 0, std::sin(start)}, u, turn))
        return false;
    if (principleOf(m.mode) == Principle::twoLevels) {
        readings.levelX = levelReading(m.level1Parameters, turn, rotation);
        readings.levelY = levelReading(m.level2Parameters, turn, rotation);
    } else {
        readings.levelY = levelReading(m.level1Parameters, turn, rotation);
    }
    readings.azimuth = (turn.azimuth + m.encoderOffset[0]) / radians;
    readings.elevation = (turn.elevation + m.encoderOffset[1]) / radians;
    return true;
}

} // namespace

SingleValues::SingleValues(const Mounting& mounting) {
    const auto round = [](const auto& values, float* singles) {
        std::transform(std::begin(values), std::end(values), singles,
                       [](double value) { return static_cast<float>(value); });
    };
    round(mounting.scaleFactors, scaleFactors);
    round(mounting.qvcParameters, qvcParameters);
    round(mounting.level1Parameters, level1Parameters);
    round(mounting.level2Parameters, level2Parameters);
}

Mounting mountingOf(const CKivPrm& record) {
    Mounting m;
    unsigned int count = 0;
    F_VECTOR2 offset{};
    record.getMountMode(m.mode);
    record.getEncoderOffset(offset);
    m.encoderOffset[0] = offset.x;
    m.encoderOffset[1] = offset.y;
    SingleValues stored(m);
    record.getScaleFactors(stored.scaleFactors, count);
    record.getQVCParameters(stored.qvcParameters, count);
    record.getLevel1Parameters(stored.level1Parameters, count);
    record.getLevel2Parameters(stored.level2Parameters, count);
    std::copy_n(stored.scaleFactors, 8, m.scaleFactors);
    std::copy_n(stored.qvcParameters, 6, m.qvcParameters);
    std::copy_n(stored.level1Parameters, 7, m.level1Parameters);
    std::copy_n(stored.level2Parameters, 7, m.level2Parameters);
    return m;
}

bool readingsOf(const Mounting& mounting, const Pose& pose, CorrectedReadings& readings) {
    double inSensor[3];
    transposedTimes(pose.rotation, pose.position, inSensor);
    const double length = std::hypot(inSensor[0], inSensor[1], inSensor[2]);
    const Vector u{inSensor[0] / length, inSensor[1] / length, inSensor[2] / length};
    readings = {};
    switch (principleOf(mounting.mode)) {
    case Principle::dualLevel:
        return dualLevel(mounting, pose.rotation, u, readings);
    case Principle::polarizer:
        return polarizer(mounting, pose.rotation, u, readings);
    case Principle::threeVectors:
    case Principle::twoLevels:
        return threeVector(mounting, pose.rotation, u, readings);
    case Principle::pendulum:
        break;
    }
    return pendulum(mounting, pose.rotation, u, readings);
}

} // namespace kiv::simulator
