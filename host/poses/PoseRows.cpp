#include "host/poses/PoseRows.h"

#include <algorithm>
#include <cmath>

#include "support/AngleConstants.h"

namespace kiv::host {

namespace {

constexpr std::size_t fewestForOutliers = 5;
constexpr double consistent = 1.4826; // the median absolute deviation with the standard one

float medianOf(std::vector<float>& values) {
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return values.size() % 2 == 1 ? *middle
                                  : (*middle + *std::max_element(values.begin(), middle)) / 2;
}

} // namespace

void PoseRows::add(const Matrix& rotation, std::optional<double> seconds) {
    if (rows.empty()) {
        firstRotation = rotation;
        firstSeconds = seconds.value_or(0);
    }
    allTimed = allTimed && seconds;
    const HalfTurn turn = halfTurnOf(rotationFrom(firstRotation, rotation));
    rows.push_back(
        {{static_cast<float>(turn[0]), static_cast<float>(turn[1]), static_cast<float>(turn[2])},
         static_cast<float>(seconds.value_or(0) - firstSeconds)});
}

void PoseRows::clear() {
    rows.clear();
    rows.shrink_to_fit();
    allTimed = true;
}

std::vector<float> PoseRows::distances() const {
    std::vector<float> values(rows.size());
    if (rows.empty())
        return values;
    float median[3];
    for (std::size_t axis = 0; axis < 3; ++axis) {
        std::transform(rows.begin(), rows.end(), values.begin(),
                       [=](const Row& row) { return row.turn[axis]; });
        median[axis] = medianOf(values);
    }
    std::transform(rows.begin(), rows.end(), values.begin(), [&](const Row& row) {
        return std::hypot(row.turn[0] - median[0], row.turn[1] - median[1],
                          row.turn[2] - median[2]);
    });
    return values;
}

std::size_t PoseRows::furtherThan(double degrees) const {
    const double halfTurn = std::sin(degrees / 2 * degToRad);
    const std::vector<float> of = distances();
    return static_cast<std::size_t>(
        std::count_if(of.begin(), of.end(), [&](float distance) { return distance > halfTurn; }));
}

std::size_t PoseRows::leaveOutliersOut() {
    if (rows.size() < fewestForOutliers)
        return 0;
    const auto count = static_cast<double>(rows.size());
    std::vector<float> of = distances();
    double squares = 0;
    for (const float distance : of)
        squares += double{distance} * distance;
    const float middle = medianOf(of);
    for (float& distance : of)
        distance = std::abs(distance - middle);
    const double deviation = consistent * medianOf(of);
    const double most =
        middle + (deviation > 0 ? (6 + 60 / count) * deviation : 3 * std::sqrt(squares / count));
    std::vector<float>().swap(of); // before there is another one
    of = distances();
    std::size_t next = 0;
    const auto far = [&](const Row&) { return of[next++] > most; };
    const std::size_t before = rows.size();
    rows.erase(std::remove_if(rows.begin(), rows.end(), far), rows.end());
    return before - rows.size();
}

} // namespace kiv::host
