#include "host/rows/Poses.h"

#include <algorithm>
#include <array>
#include <ostream>
#include <vector>

#include "host/base/Interrupt.h"
#include "host/rows/Readings.h"
#include "params/Quoted.h"

namespace kiv::host {

namespace {

constexpr std::array<std::string_view, 6> poseColumns{"x",       "y",         "z",
                                                      "yaw_deg", "pitch_deg", "roll_deg"};

// What the readings have a column for and a pose does not give.
std::vector<std::string_view> namesOfReadings() {
    std::vector<std::string_view> names(truthColumns.begin(), truthColumns.end());
    for (const std::string_view name : readingColumns)
        if (name != temperatureColumn
            && std::find(poseColumns.begin(), poseColumns.end(), name) == poseColumns.end())
            names.push_back(name);
    return names;
}

} // namespace

NextPose TrajectoryPoses::next(SimulatedPose& pose) {
    if (row == rows)
        return NextPose::end;
    const double part = static_cast<double>(row++) / static_cast<double>(rows);
    pose = {trajectory.at(part), static_cast<float>(20 + 4 * part)};
    return NextPose::pose;
}

void TrajectoryPoses::reportUnreachable() {
    constexpr const char* expected = "a sensor whose line of sight reaches every pose";
    const Message message{"out of the line of sight's reach",
                          sensor + ": expected " + expected + ", found that it does not reach pose "
                              + std::to_string(row) + '\n'};
    limit.take({&message, 1});
}

std::unique_ptr<PoseTable> PoseTable::open(const std::string& file, const TableFormat& format,
                                           const Streams& streams) {
    std::unique_ptr<PoseTable> poses(new PoseTable(format, streams.err));
    const Interrupt::Waiting waiting(true); // nothing is written yet
    const bool usable = poses->input.open(file, namesOfReadings(), streams);
    if (!usable)
        return nullptr;
    poses->input.showWarnings(streams.err);
    poses->temperature = poses->input.table().find(temperatureColumn);
    return poses;
}

PoseTable::PoseTable(const TableFormat& format, std::ostream& messages)
    : input(poseColumns, format), limit(format.mostMessages, messages) {}

NextPose PoseTable::next(SimulatedPose& pose) {
    if (!input.nextRow())
        return NextPose::end;
    const NextPose found = read(pose);
    limit.take(input.table().messages());
    return found;
}

NextPose PoseTable::read(SimulatedPose& pose) {
    Table& table = input.table();
    if (!table.checkRow())
        return NextPose::refused;
    float position[3] = {};
    double angles[3] = {};
    bool good = true;
    for (std::size_t i = 0; i < 3; ++i) {
        good = table.readNumber(i, position[i]) && good;
        good = table.readNumber(3 + i, angles[i]) && good;
        pose.position[i] = position[i];
    }
    if (!good)
        return NextPose::refused;
    if (position[0] == 0 && position[1] == 0 && position[2] == 0) {
        table.report(0, "a position away from the instrument", "0, 0, 0",
                     "with a position of zero");
        return NextPose::refused;
    }
    pose.temperature = SimulatedPose().temperature;
    double given = 0;
    if (temperature && !table.numberAt(*temperature, given)) {
        table.reportRow("a number for temperature", inQuotes(table.cell(*temperature)),
                        "with a cell that is no number");
        return NextPose::refused;
    }
    if (temperature)
        pose.temperature = static_cast<float>(given);
    simulator::rotationFromYawPitchRoll(angles[0], angles[1], angles[2], pose.rotation);
    return NextPose::pose;
}

void PoseTable::reportUnreachable() {
    input.table().reportRow("a pose that the sensor's line of sight reaches",
                            "one outside its elevation range", "out of the line of sight's reach");
    limit.take(input.table().messages());
}

} // namespace kiv::host
