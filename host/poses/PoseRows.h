#pragma once

#include <cstddef>
#include <deque>
#include <optional>
#include <vector>

#include "host/poses/Rotations.h"

namespace kiv::host {

// The orientations of a pose's rows, as turns from the first one, in single precision, which is
// that of the readings: 16 bytes a row.
class PoseRows {
public:
    void add(const Matrix& rotation, std::optional<double> seconds);
    void clear();
    std::size_t size() const { return rows.size(); }
    bool timed() const { return allTimed; } // each row has its time

    const Matrix& first() const { return firstRotation; }
    HalfTurn turn(std::size_t i) const {
        return {rows[i].turn[0], rows[i].turn[1], rows[i].turn[2]};
    }
    double seconds(std::size_t i) const { return rows[i].seconds; } // since the first row

    // Rows that turn further than this from the median rotation; degrees, of small turns.
    std::size_t furtherThan(double degrees) const;

    // Leaves out the rows that turn further from the median rotation than others: those whose
    // distance is above the median distance by more than (6 + 60 / rows) times 1.4826 times the
    // median absolute deviation of the distances, or, where that is 0, by 3 times their root mean
    // square. Of fewer than five rows none is left out. Source of the scale: F. Hampel, Journal of
    // the American Statistical Association 69 (1974), 383.
    std::size_t leaveOutliersOut();

private:
    struct Row {
        float turn[3];
        float seconds;
    };
    std::vector<float> distances() const; // from the median rotation, of half turns

    std::deque<Row> rows; // grows without a copy of itself
    Matrix firstRotation{};
    double firstSeconds = 0;
    bool allTimed = true;
};

} // namespace kiv::host
