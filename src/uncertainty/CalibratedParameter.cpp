#include "uncertainty/CalibratedParameter.h"

#include <algorithm>
#include <iterator>
#include <vector>

#include "models/ModelFactory.h"
#include "params/BlockNames.h"
#include "params/CalibratedValues.h"
#include "sensor/SensorAccess.h"
#include "support/Numbers.h"
#include "support/ZelUtil.h"

namespace kiv {

namespace {

// How many values a block has; 0 where no angle depends on it.
std::size_t valueCount(Block block, const CKiv& sensor) {
    switch (block) {
    case Block::angleOffset:
    case Block::machineMatrix:
    case Block::thermalFactor:
    case Block::tiltOffset:
    case Block::qvc:
    case Block::levelX:
    case Block::levelY:
        return calibratedNamesOf(block).size();
    case Block::scaleFactor:
        return 8;
    case Block::azCalibration:
        return static_cast<std::size_t>(SensorAccess::azimuthCount(sensor));
    case Block::elCalibration:
        return static_cast<std::size_t>(SensorAccess::elevationCount(sensor));
    case Block::tiltXCalibration:
        return static_cast<std::size_t>(SensorAccess::levelXCount(sensor));
    case Block::tiltYCalibration:
        return static_cast<std::size_t>(SensorAccess::levelYCount(sensor));
    default:
        return 0;
    }
}

// Values of which one is moved, and by how much it was.
template <std::size_t size>
struct MovedValues {
    template <typename Number>
    MovedValues(const Number* from, std::size_t which, double by) {
        std::transform(from, from + size, values,
                       [](Number value) { return static_cast<float>(value); });
        const float before = values[which];
        values[which] = static_cast<float>(before + by);
        distance = static_cast<double>(values[which]) - before;
    }

    float values[size];
    double distance;
};

template <std::size_t count>
double moveModelValue(CKivModel& model, void (CKivModel::*update)(float*, int), const float* from,
                      std::size_t which, double by) {
    MovedValues<count> moved(from, which, by);
    (model.*update)(moved.values, static_cast<int>(count));
    return moved.distance;
}

// The file's matrix F, of which the sensor has the inverse W, becomes R * F: a turn about one of
// the instrument's axes.
void turnMachineMatrix(CKiv& sensor, std::size_t axis, double degrees) {
    double turn[9];
    constexpr int (*rotations[])(double*, double) = {rotation_x, rotation_y, rotation_z};
    rotations[axis](turn, -degrees * degToRad);
    double turned[9];
    MatrixMultiply(SensorAccess::machineMatrix(sensor), turn, 3, 3, 3, turned);
    sensor.setMachineMatrix(turned, 3);
}

} // namespace

double CalibratedParameter::moveIn(std::vector<float>& values, const std::vector<float>& at,
                                   double by) const {
    if (form) {
        for (std::size_t i = 0; i < values.size(); ++i)
            values[i] = static_cast<float>(values[i] + by * tableForm(block, value, at[i]));
        return by;
    }
    if (value >= values.size()) // a shorter table was set later
        return by;
    const MovedValues<1> moved(&values[value], 0, by);
    values[value] = moved.values[0];
    return moved.distance;
}

double CalibratedParameter::moveEncoder(CKiv& sensor, int (CKiv::*set)(int, const float*),
                                        const float* table, int count, double by) const {
    std::vector<float> angles, corrections, rows;
    for (int i = 0; i < count; ++i) {
        angles.push_back(table[2 * i]);
        corrections.push_back(table[2 * i + 1]);
    }
    const double distance = moveIn(corrections, angles, by);
    for (std::size_t i = 0; i < angles.size(); ++i)
        rows.insert(rows.end(), {angles[i], corrections[i]});
    (sensor.*set)(count, rows.data());
    return distance;
}

double CalibratedParameter::moveTilt(CKiv& sensor,
                                     int (CKiv::*set)(int, const float*, const double*),
                                     const float* table, const double* curve, int count,
                                     double by) const {
    std::vector<float> knots(table, table + count + 3);
    std::vector<double> spline(curve, curve + 4 * static_cast<std::ptrdiff_t>(count));
    std::vector<float> tilts;
    for (std::size_t i = 0; i < spline.size(); i += 4)
        tilts.push_back(static_cast<float>(spline[i]));
    const double distance = moveIn(tilts, std::vector<float>(tilts), by);
    CubicSplines(knots.data(), tilts.data(), count - 1, spline.data());
    (sensor.*set)(count, knots.data(), spline.data());
    return distance;
}

std::optional<CalibratedParameter> CalibratedParameter::named(std::string_view name,
                                                              const CKiv& sensor) {
    const std::size_t point = name.find('.');
    const auto block = point == name.npos ? std::nullopt : blockOf(name.substr(0, point));
    if (!block)
        return std::nullopt;
    const std::string_view valueName = name.substr(point + 1);
    const auto names = calibratedNamesOf(*block);
    const auto found =
        static_cast<std::size_t>(std::find(names.begin(), names.end(), valueName) - names.begin());
    const bool isNamed = found < names.size();
    const bool counted = names.empty() || isTable(*block);
    const auto value = counted && !isNamed ? numberIn<std::size_t>(valueName) : found;
    if (!value || (!isNamed && *value >= valueCount(*block, sensor)))
        return std::nullopt;
    CalibratedParameter parameter;
    parameter.block = *block;
    parameter.value = *value;
    parameter.form = isNamed && isTable(*block);
    return parameter;
}

double CalibratedParameter::move(CKiv& sensor, double by) const {
    CKivModel& model = *SensorAccess::ownModel(sensor);
    switch (block) {
    case Block::angleOffset: {
        MovedValues<2> radians(SensorAccess::encoderOffset(sensor), value, by * degToRad);
        sensor.setEncoderOffset({radians.values[0], radians.values[1]});
        return radians.distance / degToRad;
    }
    case Block::machineMatrix:
        turnMachineMatrix(sensor, value, by);
        return by;
    case Block::thermalFactor: {
        const MovedValues<4> moved(SensorAccess::thermalFactor(sensor), value, by);
        const auto& [xSlope, xIntercept, ySlope, yIntercept] = moved.values;
        sensor.setThermalFactor({xSlope, xIntercept, ySlope, yIntercept});
        return moved.distance;
    }
    case Block::tiltOffset: {
        const MovedValues<2> moved(SensorAccess::tiltOffset(sensor), value, by);
        sensor.setTiltOffset({moved.values[0], moved.values[1]});
        return moved.distance;
    }
    case Block::azCalibration:
        return moveEncoder(sensor, &CKiv::setAzimuthComp, SensorAccess::azimuthComp(sensor),
                           SensorAccess::azimuthCount(sensor), by);
    case Block::elCalibration:
        return moveEncoder(sensor, &CKiv::setElevationComp, SensorAccess::elevationComp(sensor),
                           SensorAccess::elevationCount(sensor), by);
    case Block::tiltXCalibration:
        return moveTilt(sensor, &CKiv::setLevelXComp, SensorAccess::levelXTable(sensor),
                        SensorAccess::levelXSpline(sensor), SensorAccess::levelXCount(sensor), by);
    case Block::tiltYCalibration:
        return moveTilt(sensor, &CKiv::setLevelYComp, SensorAccess::levelYTable(sensor),
                        SensorAccess::levelYSpline(sensor), SensorAccess::levelYCount(sensor), by);
    // Those that the model computes with: the sensor's own may be newer.
    case Block::scaleFactor:
        return moveModelValue<8>(model, &CKivModel::UpdateSFactors, ModelAccess::factorsOf(model),
                                 value, by);
    case Block::qvc:
        return moveModelValue<6>(model, &CKivModel::UpdateQVCParameters, ModelAccess::qvcOf(model),
                                 value, by);
    case Block::levelX:
        return moveModelValue<7>(model, &CKivModel::UpdateLevel1Parameters,
                                 ModelAccess::level1Of(model), value, by);
    case Block::levelY:
        return moveModelValue<7>(model, &CKivModel::UpdateLevel2Parameters,
                                 ModelAccess::level2Of(model), value, by);
    default: // no parameter of this class
        return by;
    }
}

double CalibratedParameter::leastMove() const {
    switch (block) {
    case Block::azCalibration:
    case Block::elCalibration: // an encoder's angle has steps of up to 3e-5 degrees
        return 0.01;
    case Block::thermalFactor:
        return value % 2 == 0 ? 1e-5 : 1e-4; // a slope, a gain
    default:
        return block == Block::scaleFactor && value >= 4 ? 1e-4 : 1e-3; // a gain; degrees
    }
}

} // namespace kiv
