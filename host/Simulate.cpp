#include "host/Simulate.h"

#include <ostream>

#include "host/Csv.h"
#include "host/Files.h"
#include "host/ParameterFile.h"
#include "host/Readings.h"
#include "params/CKivPrm.h"
#include "sensor/SensorAccess.h"
#include "simulator/InverseCalibration.h"
#include "simulator/Mounting.h"
#include "simulator/Trajectory.h"
#include "support/ZelUtil.h"

namespace kiv::host {

namespace {

constexpr double mostTilt = 5;        // degrees
constexpr double rowsPerSecond = 100; // of the time stamp
constexpr float goodRefMetric = 0.1F;

float temperatureAt(double part) {
    return static_cast<float>(20 + 4 * part); // degrees Celsius
}

// The angles that an update reports: of the machine matrix times the pose, for the three-vector
// modes of the pose itself.
simulator::Angles trueAngles(const simulator::Pose& pose, int mode, const double* machineMatrix) {
    if (mode >= firstThreeVectorMode)
        return simulator::anglesOf(pose.rotation);
    double inMachine[9];
    MatrixMultiply(machineMatrix, pose.rotation, 3, 3, 3, inMachine);
    return simulator::anglesOf(inMachine);
}

void appendRow(std::string& text, double time, const KIV_RAWINFO& raw,
               const simulator::Angles& angles) {
    const auto cell = [&](auto value) {
        appendNumber(text, value);
        text.push_back(',');
    };
    cell(time);
    cell(raw.status);
    for (const float v : raw.vector)
        cell(v);
    cell(raw.azimuthRaw);
    cell(raw.elevationRaw);
    cell(raw.levelXRaw);
    cell(raw.levelYRaw);
    cell(raw.temperature);
    cell(raw.refMetric);
    cell(raw.refBlocked ? 1 : 0);
    cell(angles.rx);
    cell(angles.ry);
    appendNumber(text, angles.rz);
    text.push_back('\n');
}

} // namespace

int simulateReadings(const SimulateOptions& options, const Streams& streams) {
    CKivPrm record;
    if (!loadParameterFile(options.parameterFile, record, streams.err))
        return unusable;
    if (refuseOverwriting(options.readings, {options.parameterFile}, streams.err))
        return unusable;
    Output output;
    if (!output.open(options.readings, streams))
        return unusable;

    const simulator::Mounting mounting = simulator::mountingOf(record);
    simulator::InverseCalibration calibration(record);
    const simulator::SlowTurn turn(options.seed, mostTilt, simulator::invertedIn(mounting.mode));
    double machineMatrix[9];
    record.getMachineMatrix(machineMatrix, 3);

    std::string& text = output.text();
    text += "time_s,";
    for (const std::string_view name : readingColumns)
        text.append(name).push_back(',');
    text.append(truthColumns[0]).append(",").append(truthColumns[1]).append(",");
    text.append(truthColumns[2]).append("\n");

    for (long row = 0; row < options.rows; ++row) {
        const double part = static_cast<double>(row) / static_cast<double>(options.rows);
        const simulator::Pose pose = turn.at(part);
        simulator::Readings readings;
        if (!simulator::readingsOf(mounting, pose, readings)) {
            streams.err << options.parameterFile
                        << ": expected a sensor that reaches every pose of the "
                        << "turn, found that its line of sight cannot reach row " << row + 2
                        << '\n';
            return unusable;
        }
        KIV_RAWINFO raw{};
        raw.status = 2;
        raw.refMetric = goodRefMetric;
        calibration.rawReadings(pose, readings, temperatureAt(part), raw);
        appendRow(text, static_cast<double>(row) / rowsPerSecond, raw,
                  trueAngles(pose, mounting.mode, machineMatrix));
        if (!output.endRow(false))
            break;
    }
    return output.finish(streams.err) ? allGood : unusable;
}

} // namespace kiv::host
