#pragma once

#include <array>
#include <cstddef>
#include <optional>

#include "host/rows/RowResult.h"
#include "host/summary/AllanDeviation.h"
#include "host/summary/Drift.h"

namespace kiv::host {

// What moves slowly in a recording, and how much its readings scatter from row to row.
class RecordingDrift {
public:
    // Seconds, where the row has a time.
    void add(const RowResult& row, const std::optional<std::array<double, 3>>& truth,
             const std::optional<double>& seconds);

    // The angles stay within half a degree.
    bool still() const;
    bool hasTruth() const { return compared > 0; }
    // Of rx, ry, rz in degrees: of angle less true angle, else of a still sensor's angle.
    std::optional<Drift::Figures> of(std::size_t angle) const;

    // Of a still sensor's raw readings: azimuth, elevation in degrees, level X, level Y in their
    // unit.
    const AllanDeviation& reading(std::size_t i) const { return readings[i]; }
    // From row to row, seconds, on average; nothing without times.
    std::optional<double> step() const;
    // Standard deviation of a single reading's noise, the root mean square of a kind's two; nothing
    // where the sensor moves, or the readings are always the same.
    std::optional<double> encoderNoise() const { return noise({0, 1}); }
    std::optional<double> levelNoise(bool withLevelX) const {
        return noise({withLevelX ? 2U : 3U, 3});
    }

private:
    std::optional<double> noise(std::array<std::size_t, 2> which) const;

    std::array<Drift, 3> residuals;
    std::array<Drift, 3> angles;
    std::array<double, 3> first{}, least{}, largest{}; // of angles, from the first
    std::array<AllanDeviation, 4> readings;
    std::array<double, 2> firstEncoders{};
    std::size_t rows = 0;
    std::size_t compared = 0;
    std::optional<double> firstTime, lastTime;
    std::size_t timed = 0;
};

} // namespace kiv::host
