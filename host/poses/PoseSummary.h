#pragma once

#include <iosfwd>
#include <string>

#include "host/poses/Repeatability.h"

namespace kiv::host {

// What is said of all poses of a recording.
class PoseSummary {
public:
    PoseSummary(const Grouping& asked, bool localFrame)
        : grouping(asked), again(asked, localFrame) {}

    void add(const Pose& pose);
    std::size_t withMean() const { return poses - withoutMean; }
    std::size_t inMotion() const { return moving; }
    void setRowsWithoutPose(std::size_t count) { withoutPose = count; }

    const Repeatability& ofPlaces() const { return again; }
    std::string json() const; // an object
    void print(std::ostream& out, bool tables) const;

private:
    const Grouping& grouping;
    Repeatability again;
    std::size_t poses = 0, withoutMean = 0, lowerBounds = 0, drifting = 0;
    std::size_t moving = 0;  // the sensor moved in them
    std::string firstMoving; // its place, in words
    std::size_t rows = 0, leftOut = 0, outliers = 0, withoutPose = 0;
};

} // namespace kiv::host
