#include "uncertainty/CalibratedParameter.h"

#include <algorithm>
#include <iterator>
#include <vector>

#include "models/ModelFactory.h"
#include "params/BlockNames.h"
#include "sensor/SensorAccess.h"
#include "support/Numbers.h"
#include "support/ZelUtil.h"

namespace kiv {

namespace {

constexpr const char* turnNames[] = {"turn_x_deg", "turn_y_deg", "turn_z_deg"};

// The names of a block's values that can be found; without names they are counted.
std::span<const char* const> namesOf(Block block) {
    return block == Block::machineMatrix ? turnNames : valueNamesOf(block);
}

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
        return namesOf(block).size();
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

bool isTable(Block block) {
    return layoutOf(block).kind == BlockKind::encoderTable
           || layoutOf(block).kind == BlockKind::tiltTable;
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

double moveEncoderRow(CKiv& sensor, int (CKiv::*set)(int, const float*), const float* table,
                      int count, std::size_t row, double by) {
    if (row >= static_cast<std::size_t>(count)) // a shorter table was set later
        return by;
    std::vector<float> rows(table, table + 2 * static_cast<std::ptrdiff_t>(count));
    const MovedValues<1> moved(&rows[2 * row + 1], 0, by);
    rows[2 * row + 1] = moved.values[0];
    (sensor.*set)(count, rows.data());
    return moved.distance;
}

double moveTiltRow(CKiv& sensor, int (CKiv::*set)(int, const float*, const double*),
                   const float* table, const double* curve, int count, std::size_t row, double by) {
    if (row >= static_cast<std::size_t>(count))
        return by;
    std::vector<float> knots(table, table + count + 3);
    std::vector<double> spline(curve, curve + 4 * static_cast<std::ptrdiff_t>(count));
    std::vector<float> tilts;
    for (std::size_t i = 0; i < spline.size(); i += 4)
        tilts.push_back(static_cast<float>(spline[i]));
    const MovedValues<1> moved(&tilts[row], 0, by);
    tilts[row] = moved.values[0];
    CubicSplines(knots.data(), tilts.data(), count - 1, spline.data());
    (sensor.*set)(count, knots.data(), spline.data());
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

std::optional<CalibratedParameter> CalibratedParameter::named(std::string_view name,
                                                              const CKiv& sensor) {
    const std::size_t point = name.find('.');
    const auto block = point == name.npos ? std::nullopt : blockOf(name.substr(0, point));
    if (!block)
        return std::nullopt;
    const std::string_view valueName = name.substr(point + 1);
    const auto names = namesOf(*block);
    std::optional<std::size_t> value;
    if (names.empty() || isTable(*block))
        value = numberIn<std::size_t>(valueName);
    else
        value = static_cast<std::size_t>(std::find(names.begin(), names.end(), valueName)
                                         - names.begin());
    if (!value || *value >= valueCount(*block, sensor))
        return std::nullopt;
    CalibratedParameter parameter;
    parameter.block = *block;
    parameter.value = *value;
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
        return moveEncoderRow(sensor, &CKiv::setAzimuthComp, SensorAccess::azimuthComp(sensor),
                              SensorAccess::azimuthCount(sensor), value, by);
    case Block::elCalibration:
        return moveEncoderRow(sensor, &CKiv::setElevationComp, SensorAccess::elevationComp(sensor),
                              SensorAccess::elevationCount(sensor), value, by);
    case Block::tiltXCalibration:
        return moveTiltRow(sensor, &CKiv::setLevelXComp, SensorAccess::levelXTable(sensor),
                           SensorAccess::levelXSpline(sensor), SensorAccess::levelXCount(sensor),
                           value, by);
    case Block::tiltYCalibration:
        return moveTiltRow(sensor, &CKiv::setLevelYComp, SensorAccess::levelYTable(sensor),
                           SensorAccess::levelYSpline(sensor), SensorAccess::levelYCount(sensor),
                           value, by);
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
