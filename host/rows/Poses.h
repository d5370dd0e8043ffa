#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>

#include "host/rows/Readings.h"
#include "host/rows/TableInput.h"
#include "simulator/Trajectory.h"

namespace kiv::host {

enum class NextPose : unsigned char {
    pose,
    refused, // reported
    end,
};

struct SimulatedPose : simulator::Pose {
    float temperature = 20; // degrees Celsius
};

// The poses of a simulation, one after the other.
class PoseSource {
public:
    virtual ~PoseSource() = default;

    virtual NextPose next(SimulatedPose& pose) = 0;
    // Says that the sensor's line of sight does not reach the last pose.
    virtual void reportUnreachable() = 0;

    virtual char separator() const { return ','; }
    // What belongs in front of a row of readings, each with a separator behind it.
    virtual void appendCarriedNames(std::string&) const {}
    virtual void appendCarriedCells(std::string&) const {}
    virtual bool carriesTime() const { return false; }
    virtual bool carriesTemperature() const { return false; }

    virtual bool wouldWait() const { return false; }
    // Ends the output: false, and a message, when not all could be read or written.
    virtual bool finish(Output& output, std::ostream& err) const = 0;
};

// The poses of a trajectory, a number of them, the temperature rising from 20 to 24 degrees
// Celsius.
class TrajectoryPoses : public PoseSource {
public:
    TrajectoryPoses(const simulator::Trajectory& path, long rowCount, std::string parameterFile,
                    std::size_t mostMessages, std::ostream& messages)
        : trajectory(path), rows(rowCount), sensor(std::move(parameterFile)),
          limit(mostMessages, messages) {}

    NextPose next(SimulatedPose& pose) override;
    void reportUnreachable() override;
    bool finish(Output& output, std::ostream& messages) const override {
        limit.reportOthers(sensor);
        return output.finish(messages);
    }

private:
    simulator::Trajectory trajectory;
    long rows;
    long row = 0;
    std::string sensor;
    MessageLimit limit;
};

// The rows of a CSV file: a position in the instrument frame, in its length unit, a rotation
// Rz(yaw) Ry(pitch) Rx(roll) in degrees, and perhaps a temperature.
class PoseTable : public PoseSource {
public:
    // Nothing, and messages, when the file cannot be read as one.
    static std::unique_ptr<PoseTable> open(const std::string& file, const TableFormat& format,
                                           const Streams& streams);

    NextPose next(SimulatedPose& pose) override;
    void reportUnreachable() override;
    char separator() const override { return input.table().separator(); }
    void appendCarriedNames(std::string& out) const override {
        input.table().appendCarriedNames(out);
    }
    void appendCarriedCells(std::string& out) const override {
        input.table().appendCarriedCells(out);
    }
    bool carriesTime() const override { return input.table().find(timeColumn).has_value(); }
    bool carriesTemperature() const override { return temperature.has_value(); }
    bool wouldWait() const override { return input.wouldWait(); }
    bool finish(Output& output, std::ostream& err) const override {
        return input.finish(limit, output, err);
    }

private:
    PoseTable(const TableFormat& format, std::ostream& messages);

    NextPose read(SimulatedPose& pose);

    TableInput input;
    std::optional<std::size_t> temperature; // its column, where there is one
    MessageLimit limit;
};

} // namespace kiv::host
