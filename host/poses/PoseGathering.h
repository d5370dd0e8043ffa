#pragma once

#include <array>
#include <cstddef>
#include <functional>
#include <optional>
#include <string>

#include "host/poses/Pose.h"
#include "host/run/ComputedRow.h"

namespace kiv::host {

// What makes rows those of one pose. Without any of it each table is one.
struct Grouping {
    std::string by;              // a column: rows in succession with the same cell
    std::optional<double> pause; // no more than so many seconds between two rows
    std::optional<double> still; // no row further from the mean of those before, degrees
    std::size_t fewestRows = 10; // of a still pose
    bool withNotGood = false;    // rows whose trust is not good are used, too
    std::string poseId;          // a column that says which poses are the same
    std::optional<double> same;  // or no further apart than this, degrees

    bool byTable() const { return by.empty() && !pause && !still; }
};

// Takes the rows of a recording in their order and gives its poses. One pose's rows are kept.
class PoseGathering {
public:
    using Give = std::function<void(const Pose&)>;
    // Rows with angles have matrices, or are taken by their angles.
    PoseGathering(const Grouping& asked, bool hasMatrices, bool localFrame, Give give);

    void add(const ComputedRow& row);
    void end(); // of the last pose

    std::size_t rowsWithoutPose() const { return withoutPose; }

private:
    bool begins(const ComputedRow& row, const std::optional<Matrix>& rotation) const;
    void use(const ComputedRow& row, const Matrix& rotation);

    const Grouping& grouping;
    bool matrices;
    bool local;
    Give give;
    std::size_t poses = 0;
    std::size_t withoutPose = 0;

    // Of the pose that is open.
    bool open = false;
    Pose pose;
    PoseRows rows;
    HalfTurn turnSum{};
    std::array<double, poseReadingCount> firstReadings{}, readingSums{};
    std::array<std::size_t, trustWords.size()> trusts{};
    ReadingsPart readingsPart;
    Matrix truthSum{};
    bool hasTruth = false;
};

} // namespace kiv::host
