#include "tests/proofs/DrawnFiles.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string_view>

#include "KIVInterface/ConfigureSensor.h"
#include "host/summary/Statistics.h"
#include "params/Parser.h"
#include "params/RecordLoading.h"
#include "params/Survey.h"
#include "sensor/Update.h"
#include "simulator/RandomPoses.h"
#include "support/ZelUtil.h"
#include "support/platform/ByteSource.h"
#include "tests/proofs/ExampleSensor.h"
#include "uncertainty/CalibrationPart.h"

namespace kiv::docs {

namespace {

using enum Block;

constexpr std::size_t poseCount = 20;
constexpr double ofAngle = 0.005; // degrees
constexpr double ofGain = 5e-4;
constexpr double ofSlope = 3e-5; // per degree Celsius

// A parameter, and where it stands in its block; of the machine matrix the axis of a turn.
struct Parameter {
    std::string_view name;
    Block block;
    std::size_t place;
    double u;
};

constexpr std::array parameters{
    Parameter{"angle_offset.azimuth_deg", angleOffset, 0, ofAngle},
    Parameter{"angle_offset.elevation_deg", angleOffset, 1, ofAngle},
    Parameter{"machine_coordinate_tranform_matrix.turn_x_deg", machineMatrix, 0, ofAngle},
    Parameter{"machine_coordinate_tranform_matrix.turn_y_deg", machineMatrix, 1, ofAngle},
    Parameter{"machine_coordinate_tranform_matrix.turn_z_deg", machineMatrix, 2, ofAngle},
    Parameter{"thermal_compensation_factor.x_slope", thermalFactor, 0, ofSlope},
    Parameter{"thermal_compensation_factor.x_intercept", thermalFactor, 1, ofGain},
    Parameter{"thermal_compensation_factor.y_slope", thermalFactor, 2, ofSlope},
    Parameter{"thermal_compensation_factor.y_intercept", thermalFactor, 3, ofGain},
    Parameter{"tilt_sensor_offset.x_deg", tiltOffset, 0, ofAngle},
    Parameter{"tilt_sensor_offset.y_deg", tiltOffset, 1, ofAngle},
    Parameter{"az_calibration_table.3", azCalibration, 7, ofAngle},
    Parameter{"el_calibration_table.1", elCalibration, 3, ofAngle},
    Parameter{"tilt_x_calibration_table.36", tiltXCalibration, 73, ofAngle},
    Parameter{"tilt_y_calibration_table.34", tiltYCalibration, 69, ofAngle},
    Parameter{"scale_factor.0", scaleFactor, 0, ofAngle},
    Parameter{"scale_factor.1", scaleFactor, 1, ofAngle},
    Parameter{"scale_factor.2", scaleFactor, 2, ofAngle},
    Parameter{"scale_factor.3", scaleFactor, 3, ofAngle},
    Parameter{"scale_factor.4", scaleFactor, 4, ofGain},
    Parameter{"scale_factor.5", scaleFactor, 5, ofGain},
    Parameter{"scale_factor.6", scaleFactor, 6, ofGain},
    Parameter{"qvc.axis_x_deg", qvc, 3, ofAngle},
    Parameter{"qvc.axis_z_deg", qvc, 4, ofAngle},
    Parameter{"qvc.start_deg", qvc, 5, ofAngle},
    Parameter{"level_x.axis_y_deg", levelX, 3, ofAngle},
    Parameter{"level_x.axis_z_deg", levelX, 4, ofAngle},
    Parameter{"level_x.zero_offset_deg", levelX, 5, ofAngle},
    Parameter{"level_x.gain", levelX, 6, ofGain},
    Parameter{"level_y.axis_y_deg", levelY, 3, ofAngle},
    Parameter{"level_y.axis_z_deg", levelY, 4, ofAngle},
    Parameter{"level_y.zero_offset_deg", levelY, 5, ofAngle},
    Parameter{"level_y.gain", levelY, 6, ofGain},
};
constexpr std::size_t count = parameters.size();

ParsedFile parsedFile(const std::string& path) {
    std::stringstream text;
    text << std::ifstream(path, std::ios::binary).rdbuf();
    const std::string all = text.str();
    TextSource source(all);
    Survey survey;
    ParsedFile parsed = surveyParameterFile(source, std::nullopt, survey);
    if (parsed.outcome.code != KIV_OK)
        throw std::runtime_error("cannot use " + path);
    return parsed;
}

void turn(std::vector<float>& matrix, std::size_t axis, double degrees) {
    constexpr int (*rotations[])(double*, double) = {rotation_x, rotation_y, rotation_z};
    double rotation[9];
    double turned[9];
    const std::vector<double> old(matrix.begin(), matrix.end());
    rotations[axis](rotation, degrees * degToRad);
    MatrixMultiply(rotation, old.data(), 3, 3, 3, turned);
    std::transform(turned, turned + 9, matrix.begin(),
                   [](double entry) { return static_cast<float>(entry); });
}

// Few common causes make parameters correlate closely, and their covariance singular.
class Covariance {
public:
    explicit Covariance(simulator::Random& numbers) : random(numbers) {
        for (auto& row : causes) {
            double squares = 0;
            for (double& each : row)
                each = random.normal(), squares += each * each;
            for (double& each : row)
                each /= std::sqrt(squares);
        }
    }

    std::vector<double> matrix() const {
        std::vector<double> all;
        for (std::size_t i = 0; i < count; ++i)
            for (std::size_t j = 0; j < count; ++j) {
                double correlation = 0;
                for (std::size_t k = 0; k < causeCount; ++k)
                    correlation += causes[i][k] * causes[j][k];
                all.push_back(parameters[i].u * correlation * parameters[j].u);
            }
        return all;
    }

    void draw(Document& document) {
        std::array<double, causeCount> sizes;
        for (double& size : sizes)
            size = random.normal();
        for (std::size_t i = 0; i < count; ++i) {
            double by = 0;
            for (std::size_t k = 0; k < causeCount; ++k)
                by += parameters[i].u * causes[i][k] * sizes[k];
            auto& numbers = document.blocks[static_cast<std::size_t>(parameters[i].block)]->numbers;
            if (parameters[i].block == machineMatrix)
                turn(numbers, parameters[i].place, by);
            else
                numbers[parameters[i].place] += static_cast<float>(by);
        }
    }

private:
    static constexpr std::size_t causeCount = 12;
    simulator::Random& random;
    std::array<std::array<double, causeCount>, count> causes;
};

// The angles of the readings behind the first, which is the reference.
std::vector<AngleTriple> anglesOf(CKiv& sensor, const std::vector<KIV_RAWINFO>& readings) {
    std::vector<AngleTriple> all;
    for (const KIV_RAWINFO& raw : readings) {
        KIV_INFO info;
        const UpdateOutcome outcome = SensorUpdate::run(sensor, raw, info);
        if (outcome
            != (&raw == readings.data() ? UpdateOutcome::reference : UpdateOutcome::oriented))
            throw std::runtime_error("no orientation");
        all.push_back({info.rx, info.ry, info.rz});
    }
    return all;
}

} // namespace

std::vector<double> tryDrawnFiles(int mode, bool machineFrame, const Range& range,
                                  std::size_t draws) {
    const std::string folder = KIV_SENSORS "/wide" + std::to_string(mode);
    const ParsedFile file = parsedFile(folder + "/Tg5.prm");
    ExampleSensor example(folder);
    example.sensor.setMcsFlag(machineFrame);
    simulator::RandomPoses poses(
        30, {range.mostTilt, -range.steepest, range.steepest, simulator::invertedIn(mode)});
    std::vector<KIV_RAWINFO> readings;
    for (KIV_RAWINFO raw; readings.size() <= poseCount;)
        if (example.read(poses.next(), raw))
            readings.push_back(raw);

    simulator::Random random(static_cast<std::uint64_t>(mode));
    Covariance covariance(random);
    std::vector<std::string_view> names;
    for (const Parameter& each : parameters)
        names.push_back(each.name);
    Calibration calibration;
    if (Calibration::make(example.sensor, names, covariance.matrix().data(), calibration).kind
        != CalibrationFault::none)
        throw std::runtime_error("a covariance is refused");
    CalibrationPart part(example.sensor, calibration);

    const std::vector<AngleTriple> middle = anglesOf(example.sensor, readings);
    part.captured(example.sensor, readings[0]);
    std::vector<AngleTriple> sums(readings.size());
    std::vector<AngleTriple> squares(readings.size());
    for (std::size_t i = 0; i < draws; ++i) {
        ParsedFile drawn = file;
        covariance.draw(drawn.document);
        CKivPrm record;
        CKiv sensor;
        RecordLoading::store(record, drawn);
        configureSensor(sensor, record);
        sensor.setMcsFlag(machineFrame);
        const std::vector<AngleTriple> angles = anglesOf(sensor, readings);
        for (std::size_t row = 1; row < readings.size(); ++row)
            for (std::size_t k = 0; k < 3; ++k) {
                const double off = host::withinHalfTurn(angles[row][k] - middle[row][k]);
                sums[row][k] += off;
                squares[row][k] += off * off;
            }
    }
    const auto n = static_cast<double>(draws);
    std::vector<double> differences;
    for (std::size_t row = 1; row < readings.size(); ++row) {
        AngleTriple u;
        if (!part.of(readings[row], u))
            throw std::runtime_error("no uncertainty of a row");
        for (std::size_t k = 0; k < 3; ++k)
            differences.push_back(
                u[k] / std::sqrt((squares[row][k] - sums[row][k] * sums[row][k] / n) / (n - 1))
                - 1);
    }
    return differences;
}

} // namespace kiv::docs
