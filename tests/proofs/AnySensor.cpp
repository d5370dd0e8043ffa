#include "tests/proofs/AnySensor.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "support/ZelUtil.h"

namespace kiv::docs {

namespace {

using simulator::Pose;

constexpr double sixDecimals = 1e6;

void transposed(const double* m, double* out) {
    for (int i = 0; i < 9; ++i)
        out[i] = m[i % 3 * 3 + i / 3];
}

// The rotation next to a matrix that is one but for its last decimals.
void straighten(double* m) {
    double inverse[9];
    double across[9];
    std::copy_n(m, 9, inverse);
    MatrixInverse(inverse, 3);
    transposed(inverse, across);
    for (int i = 0; i < 9; ++i)
        m[i] = (m[i] + across[i]) / 2;
}

void times(const double* a, const double* b, double* out) {
    double product[9];
    MatrixMultiply(a, b, 3, 3, 3, product);
    std::copy_n(product, 9, out);
}

} // namespace

double AnySensor::Encoder::correction(double raw) const {
    const double turned = raw - 360 * std::floor(raw / 360);
    const std::size_t count = rows.size() / 2;
    for (std::size_t i = 0; i < count; ++i) {
        const double from = rows[2 * i];
        const double to = i + 1 < count ? rows[2 * i + 2] : 360;
        if (turned < to || i + 1 == count) {
            const double next = rows[2 * ((i + 1) % count) + 1];
            return rows[2 * i + 1] + (next - rows[2 * i + 1]) * (turned - from) / (to - from);
        }
    }
    return 0;
}

float AnySensor::Encoder::rawOf(double corrected) const {
    double raw = corrected;
    for (int i = 0; i < 100; ++i)
        raw = corrected - correction(raw);
    return static_cast<float>(raw);
}

double AnySensor::Level::rawOf(double tilt, double temperature) const {
    const double wanted = tilt / (slope * temperature + intercept) + offset;
    const std::size_t last = values.size() - 1;
    const auto value = [&](double raw) {
        std::size_t i = 0;
        const bool rising = knots[last] > knots[0];
        while (i < last && (rising ? raw >= knots[i + 1] : raw <= knots[i + 1]))
            ++i;
        const double t = raw - knots[i];
        const double* c = spline.data() + 4 * i;
        const bool before = i == 0 && (rising ? t < 0 : t > 0);
        return before ? c[0] + c[1] * t : c[0] + (c[1] + (c[2] + c[3] * t) * t) * t;
    };
    const double length = static_cast<double>(knots[last]) - knots[0];
    double from = knots[0] - length;
    double to = knots[last] + length;
    const bool grows = value(to) > value(from);
    for (int i = 0; i < 100; ++i) {
        const double middle = (from + to) / 2;
        ((value(middle) < wanted) == grows ? from : to) = middle;
    }
    return (from + to) / 2;
}

AnySensor::AnySensor(int mode, bool inMachineFrame, Dead what, simulator::Random& numbers)
    : random(numbers), machineFrame(inMachineFrame), dead(what) {
    mounting.mode = mode;
    const Principle principle = principleOf(mode);
    twoLevels = principle == Principle::dualLevel || principle == Principle::twoLevels;
    drawMounting();
    drawLimits();
    azimuth = anyEncoder();
    elevation = anyEncoder();
    for (int i = 0; i < 2; ++i)
        level[i] = anyLevel(low[i], high[i]);
    drawMatrices();
    configure();
}

float AnySensor::anyGain() {
    constexpr float gains[] = {1, 1, -1, 0.5F, 1.01F, 3, 100};
    return gains[static_cast<int>(any(0, 7))];
}

AnySensor::Encoder AnySensor::anyEncoder() {
    Encoder encoder;
    const int count = static_cast<int>(any(2, 40));
    const double size = once(2) ? 0.02 : 2;
    for (int i = 0; i < count; ++i) {
        encoder.rows.push_back(static_cast<float>(360.0 * i / count));
        encoder.rows.push_back(static_cast<float>(any(-size, size)));
    }
    return encoder;
}

// Its raw readings are degrees or a converter's counts, its values may stand far from 0.
AnySensor::Level AnySensor::anyLevel(double from, double to) {
    Level each;
    const bool counts = once(3);
    const double perDegree = counts ? 1000 : any(0.7, 1.4);
    const double middle = counts ? 8388608 : any(-3, 3);
    const double sense = once(2) ? -1 : 1;
    each.offset = static_cast<float>(once(6) ? 1e5 : any(-2, 2));
    each.slope = static_cast<float>(once(2) ? 0 : any(-0.01, 0.01));
    each.intercept = static_cast<float>(any(0.7, 1.3) * (once(4) ? -1 : 1));
    const int count = static_cast<int>(any(3, 40));
    const double reach = 2 * std::max(std::abs(from), std::abs(to)) + 5;
    const double bend = any(-0.1, 0.1) / (reach * reach);
    for (int i = 0; i < count; ++i) {
        const double v = -reach + 2 * reach * i / (count - 1);
        each.knots.push_back(static_cast<float>(middle + sense * perDegree * v));
        each.values.push_back(static_cast<float>(v + bend * v * v * v + each.offset));
    }
    each.knots.resize(each.knots.size() + 3);
    each.spline.resize(4 * each.values.size());
    CubicSplines(each.knots.data(), each.values.data(), count - 1, each.spline.data());
    return each;
}

void AnySensor::drawMounting() {
    simulator::Mounting& m = mounting;
    const auto in = [&](double size) { return static_cast<float>(any(-size, size)); };
    m.encoderOffset[0] = in(3.1);
    m.encoderOffset[1] = in(once(3) ? 5.2 : 0.2);
    const Principle principle = principleOf(m.mode);
    if (principle == Principle::dualLevel) {
        m.scaleFactors[0] = in(once(4) ? 30 : 1);
        m.scaleFactors[1] = once(4) ? in(0.5) : 0;
    } else {
        m.scaleFactors[0] = in(once(4) ? 20 : 1);
        m.scaleFactors[1] = in(once(4) ? 5 : 0.5);
        m.scaleFactors[2] = in(once(4) ? 15 : 1);
        m.scaleFactors[3] = in(once(4) ? 80 : 2);
        for (int i = 4; i < 7; ++i)
            m.scaleFactors[i] = anyGain();
    }
    for (int i = 0; i < 6; ++i)
        m.qvcParameters[i] = in(i < 3 ? 100 : once(4) ? 10 : 1);
    const float between = dead == Dead::parallelAxes ? 0.1F : in(80);
    for (double* block : {m.level1Parameters, m.level2Parameters}) {
        block[3] = in(89);
        block[4] = in(once(4) ? 15 : 1);
        block[5] = in(1);
        block[6] = anyGain();
    }
    if (once(2)) // as most sensors have them
        m.level1Parameters[3] = -30;
    m.level2Parameters[3] = m.level1Parameters[3] + between;
    if (dead == Dead::parallelAxes)
        m.level2Parameters[4] = m.level1Parameters[4];
}

// The levels' limits as the sensor's tilts about two axes, or somewhat wider.
void AnySensor::drawLimits() {
    const double most = any(3, 40);
    const double wider = once(2) ? 0 : any(0, 10);
    steepest = any(20, 85);
    for (int i = 0; i < 2; ++i) {
        mostRise[i] = once(3) ? most * any(0.5, 1) : most;
        double offset = 0;
        double gain = 1;
        const Principle principle = principleOf(mounting.mode);
        if (principle == Principle::pendulum || principle == Principle::polarizer) {
            offset = mounting.scaleFactors[1];
            gain = mounting.scaleFactors[6];
        } else if (principle != Principle::dualLevel) {
            const double* block = i == 0 || principle == Principle::threeVectors
                                      ? mounting.level1Parameters
                                      : mounting.level2Parameters;
            offset = block[5];
            gain = block[6];
        }
        const double size = (mostRise[i] + wider) / std::abs(gain);
        low[i] = -size - offset;
        high[i] = size - offset;
    }
    if (!twoLevels)
        mostRise[0] = mostRise[1];
    limits = {static_cast<float>(low[0]), static_cast<float>(high[0]), static_cast<float>(low[1]),
              static_cast<float>(high[1])};
}

void AnySensor::drawMatrices() {
    for (double* m : {machine, local})
        simulator::rotationFromYawPitchRoll(any(-180, 180), any(-90, 90), any(-180, 180), m);
}

// The sensor under trial, with what is dead in its parameters; matrices have six decimals.
void AnySensor::configure() {
    std::vector<float> rows = azimuth.rows;
    sensor.setAzimuthComp(static_cast<int>(rows.size() / 2), rows.data());
    rows = elevation.rows;
    sensor.setElevationComp(static_cast<int>(rows.size() / 2), rows.data());
    const int which = twoLevels && once(2) ? 0 : 1; // of the levels
    for (int i = 0; i < 2; ++i) {
        std::vector<double> spline = level[i].spline;
        if (dead == Dead::table && i == which) {
            std::fill(spline.begin(), spline.end(), 0);
            for (std::size_t k = 0; k < spline.size(); k += 4)
                spline[k] = level[i].offset;
        }
        const int count = static_cast<int>(level[i].values.size());
        i == 0 ? sensor.setLevelXComp(count, level[i].knots.data(), spline.data())
               : sensor.setLevelYComp(count, level[i].knots.data(), spline.data());
    }
    const auto single = [](double value) { return static_cast<float>(value); };
    float thermal[] = {single(level[0].slope), single(level[0].intercept), single(level[1].slope),
                       single(level[1].intercept)};
    if (dead == Dead::thermal)
        thermal[2 * which] = thermal[2 * which + 1] = 0;
    sensor.setThermalFactor({thermal[0], thermal[1], thermal[2], thermal[3]});
    sensor.setTiltOffset({single(level[0].offset), single(level[1].offset)});
    sensor.setEncoderOffset({single(mounting.encoderOffset[0]), single(mounting.encoderOffset[1])});
    simulator::Mounting m = mounting;
    if (dead == Dead::gain) {
        m.scaleFactors[4 + static_cast<int>(any(0, 3))] = 0;
        const bool first = which == 0 || principleOf(m.mode) == Principle::threeVectors;
        (first ? m.level1Parameters : m.level2Parameters)[6] = 0;
    }
    simulator::SingleValues singles(m);
    sensor.setScaleFactors(singles.scaleFactors, 8);
    sensor.setQVCParameters(singles.qvcParameters, 6);
    sensor.setLevel1Parameters(singles.level1Parameters, 7);
    sensor.setLevel2Parameters(singles.level2Parameters, 7);
    double printed[2][9];
    for (int k = 0; k < 2; ++k)
        for (int i = 0; i < 9; ++i) {
            double entry = (k == 0 ? machine : local)[i];
            if (dead == Dead::reflection && i < 3)
                entry = -entry;
            if (dead == Dead::shear && i < 3)
                entry += 0.01 * (k == 0 ? machine : local)[i + 3];
            printed[k][i] = std::round(entry * sixDecimals) / sixDecimals;
        }
    sensor.setMachineMatrix(printed[0], 3);
    sensor.setLocalMatrix(printed[1], 3);
    if (dead != Dead::reflection && dead != Dead::shear) {
        std::copy_n(printed[0], 9, machine);
        std::copy_n(printed[1], 9, local);
        straighten(machine);
        straighten(local);
    }
    sensor.setMcsFlag(machineFrame);
    sensor.setMountMode(m.mode);
}

bool AnySensor::next(Pose& pose, KIV_RAWINFO& raw) {
    double tilt[2];
    const bool corner = once(3);
    for (int i = 0; i < 2; ++i)
        tilt[i] = corner ? mostRise[i] * (once(2) ? 1 : -1) * any(0.97, 1)
                         : any(-mostRise[i], mostRise[i]);
    const bool inverted = simulator::invertedIn(mounting.mode);
    simulator::rotationFromYawPitchRoll(any(-180, 180), tilt[0], tilt[1] + (inverted ? 180 : 0),
                                        pose.rotation);
    const double bearing = any(-180, 180) * simulator::radians;
    const double rise = any(-steepest, steepest) * simulator::radians;
    const double distance = std::pow(10, any(0.5, 4.5));
    pose.position[0] = distance * std::cos(rise) * std::cos(bearing);
    pose.position[1] = distance * std::cos(rise) * std::sin(bearing);
    pose.position[2] = distance * std::sin(rise);
    simulator::CorrectedReadings readings;
    if (!simulator::readingsOf(mounting, pose, readings))
        return false;
    raw = {};
    raw.status = 2;
    raw.temperature = static_cast<float>(any(-20, 45));
    for (int i = 0; i < 3; ++i)
        raw.vector[i] = static_cast<float>(pose.position[i]);
    raw.azimuthRaw = azimuth.rawOf(readings.azimuth);
    raw.elevationRaw = elevation.rawOf(readings.elevation);
    raw.levelXRaw = static_cast<float>(level[0].rawOf(readings.levelX, raw.temperature));
    raw.levelYRaw = static_cast<float>(level[1].rawOf(readings.levelY, raw.temperature));
    return true;
}

void AnySensor::trueAngles(const Pose& pose, const Pose& reference, double* angles) const {
    constexpr double degrees = 180 / std::numbers::pi;
    double r[9];
    std::copy_n(pose.rotation, 9, r);
    if (reportsOwnMatrix(mounting.mode) || machineFrame) {
        if (machineFrame && !reportsOwnMatrix(mounting.mode))
            times(machine, r, r);
        angles[0] = std::atan2(-r[5], r[8]) * degrees;
        angles[1] = std::atan2(r[2], std::hypot(r[0], r[1])) * degrees;
        angles[2] = std::atan2(-r[1], r[0]) * degrees;
        return;
    }
    double back[9];
    transposed(reference.rotation, back);
    times(r, back, r);
    times(local, r, r);
    transposed(local, back);
    times(r, back, r);
    angles[0] = std::atan2(r[7], r[8]) * degrees;
    angles[1] = std::atan2(-r[6], std::hypot(r[0], r[3])) * degrees;
    angles[2] = std::atan2(r[3], r[0]) * degrees;
}

} // namespace kiv::docs
