#include "host/commands/Simulate.h"

#include <memory>
#include <ostream>

#include "KIVInterface/CKivPrm.h"
#include "host/base/Files.h"
#include "host/parameters/ParameterFile.h"
#include "host/rows/Poses.h"
#include "host/rows/Readings.h"
#include "host/rows/RowLoop.h"
#include "params/Quoted.h"
#include "simulator/InverseCalibration.h"
#include "simulator/Mounting.h"
#include "simulator/Random.h"
#include "support/Numbers.h"
#include "support/Principles.h"
#include "support/ZelUtil.h"

namespace kiv::host {

namespace {

// So that noise and bad rows leave the trajectory as it is without them.
constexpr std::uint64_t noiseStream = 0x6e6f697365;
constexpr std::uint64_t faultStream = 0x6661756c74;

enum class Fault : unsigned char { none, badStatus, text, zeroVector, shortRow };

// Spoils a share of the rows, in every way in turn.
class Faults {
public:
    Faults(double shareOfRows, std::uint64_t seed) : share(shareOfRows), random(seed) {}

    void next() {
        now = Fault::none;
        if (random.uniform(0, 1) >= share)
            return;
        now = last = last == Fault::shortRow ? Fault::badStatus
                                             : static_cast<Fault>(static_cast<int>(last) + 1);
        spoiled = static_cast<std::size_t>(random.uniform(0, readingColumns.size()));
    }

    Fault fault() const { return now; }          // of this row
    std::size_t cell() const { return spoiled; } // with text, or the first that is missing

private:
    double share;
    simulator::Random random;
    Fault now = Fault::none;
    Fault last = Fault::none;
    std::size_t spoiled = 0;
};

// A sensor with a record's values.
class SimulatedSensor {
public:
    explicit SimulatedSensor(CKivPrm& record)
        : mounting(simulator::mountingOf(record)), calibration(record) {
        record.getMachineMatrix(machineMatrix, 3);
    }

    int mode() const { return mounting.mode; }

    // Good readings; false when the line of sight does not reach the pose.
    bool read(const SimulatedPose& pose, KIV_RAWINFO& raw) {
        simulator::CorrectedReadings readings;
        if (!simulator::readingsOf(mounting, pose, readings))
            return false;
        raw = {};
        raw.status = 2;
        raw.refMetric = 0.1F;
        calibration.rawReadings(pose, readings, pose.temperature, raw);
        return true;
    }

    // The angles that an update reports: of the machine matrix times the pose, for the three-vector
    // modes of the pose itself.
    simulator::Angles trueAngles(const simulator::Pose& pose) const {
        if (reportsOwnMatrix(mounting.mode))
            return simulator::anglesOf(pose.rotation);
        double inMachine[9];
        MatrixMultiply(machineMatrix, pose.rotation, 3, 3, 3, inMachine);
        return simulator::anglesOf(inMachine);
    }

private:
    simulator::Mounting mounting;
    simulator::InverseCalibration calibration;
    double machineMatrix[9];
};

void appendNames(std::string& text, const PoseSource& poses) {
    const char separator = poses.separator();
    poses.appendCarriedNames(text);
    if (!poses.carriesTime())
        text.append(timeColumn).push_back(separator);
    for (const std::string_view name : readingColumns)
        if (!(poses.carriesTemperature() && name == temperatureColumn))
            text.append(name).push_back(separator);
    for (const std::string_view name : truthColumns)
        text.append(name).push_back(separator);
    text.back() = '\n';
}

// Behind what stands in front of the readings.
void appendReadings(std::string& text, KIV_RAWINFO raw, const simulator::Angles& angles,
                    const Faults& faults, const PoseSource& poses) {
    const char separator = poses.separator();
    const Fault fault = faults.fault();
    if (fault == Fault::badStatus)
        raw.status = 1;
    if (fault == Fault::zeroVector)
        raw.vector[0] = raw.vector[1] = raw.vector[2] = 0;
    std::size_t count = 0;
    const auto cell = [&](auto value) {
        const std::size_t place = count++;
        if (fault == Fault::shortRow && place >= faults.cell())
            return;
        if (fault == Fault::text && place == faults.cell())
            text += "n/a";
        else
            appendNumber(text, value);
        text.push_back(separator);
    };
    cell(raw.status);
    for (const float v : raw.vector)
        cell(v);
    cell(raw.azimuthRaw);
    cell(raw.elevationRaw);
    cell(raw.levelXRaw);
    cell(raw.levelYRaw);
    if (poses.carriesTemperature())
        ++count; // its cell is among those carried
    else
        cell(raw.temperature);
    cell(raw.refMetric);
    cell(raw.refBlocked ? 1 : 0);
    cell(angles.rx);
    cell(angles.ry);
    cell(angles.rz);
    text.back() = '\n';
}

std::unique_ptr<PoseSource> posesFor(const SimulateOptions& options, int mode,
                                     const Streams& streams) {
    if (!options.poses.empty())
        return PoseTable::open(options.poses, options.posesFormat, streams);
    using simulator::Motion;
    const Motion motion = options.trajectory == "still"    ? Motion::still
                          : options.trajectory == "swing"  ? Motion::swing
                          : options.trajectory == "random" ? Motion::random
                                                           : Motion::turn;
    return std::make_unique<TrajectoryPoses>(
        simulator::Trajectory(motion, options.seed, options.tilt, simulator::invertedIn(mode)),
        options.rows, printable(options.parameterFile), options.posesFormat.mostMessages,
        streams.err);
}

} // namespace

int simulateReadings(const SimulateOptions& options, const Streams& streams) {
    CKivPrm record;
    if (!loadParameterFile(options.parameterFile, record, streams.err)
        || refuseOverwriting(options.readings, {options.parameterFile, options.poses}, streams.err))
        return unusable;
    return simulateReadings(options, record, streams);
}

int simulateReadings(const SimulateOptions& options, CKivPrm& record, const Streams& streams) {
    SimulatedSensor sensor(record);
    const std::unique_ptr<PoseSource> poses = posesFor(options, sensor.mode(), streams);
    Output output;
    if (!poses || !output.open(options.readings, streams))
        return unusable;
    simulator::Random random(options.seed ^ noiseStream);
    Faults faults(options.badShare, options.seed ^ faultStream);

    std::string& text = output.text();
    appendNames(text, *poses);
    bool allReached = true;
    SimulatedPose pose;
    NextPose found = NextPose::end;
    const auto next = [&] {
        found = poses->next(pose);
        return found != NextPose::end;
    };
    double row = 0;
    forEachRow(*poses, next, [&](bool inputWouldWait) {
        KIV_RAWINFO raw;
        const bool reached = found == NextPose::pose && sensor.read(pose, raw);
        if (reached) {
            options.noise.addTo(raw, random);
            faults.next();
            poses->appendCarriedCells(text);
            if (!poses->carriesTime()) {
                appendNumber(text, row / options.rate);
                text.push_back(poses->separator());
            }
            appendReadings(text, raw, sensor.trueAngles(pose), faults, *poses);
        } else if (found == NextPose::pose) {
            poses->reportUnreachable();
        }
        allReached = allReached && reached;
        ++row;
        return output.endRow(inputWouldWait);
    });
    if (!poses->finish(output, streams.err))
        return unusable;
    if (Interrupt::requested())
        return interrupted;
    return allReached ? allGood : someRowsBad;
}

} // namespace kiv::host
