#include "params/TableOutliers.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

namespace kiv {

namespace {

// A slip of the decimal point by two places makes a hundred of 1; corrections around it differ.
constexpr float mostOfNeighbours = 30;
constexpr float leastOutlier = 0.05F; // degrees; of a correction
constexpr std::size_t reach = 2;      // rows to either side

constexpr double leastOff = 0.1;    // degrees; of a tilt
constexpr double timesTheRest = 10; // what lies off the curve, to what its own bends come to

// The curve's rows but for one or two.
class Curve {
public:
    explicit Curve(std::span<const float> knotsAndValues) : rows(knotsAndValues) {}

    std::size_t size() const { return rows.size() / 2; }
    double value(std::size_t row) const { return rows[2 * row + 1]; }

    // What the rows next to one, without itself and a second one, ask for at its knot: the cubic
    // through four of them, the straight line through two of a short table.
    double expectedAt(std::size_t row, std::size_t without) const;

    bool knotsRunOneWay() const {
        for (std::size_t row = 1; row < size(); ++row)
            if (!((knot(row) - knot(row - 1)) * (knot(1) - knot(0)) > 0))
                return false;
        return true;
    }

private:
    double knot(std::size_t row) const { return rows[2 * row]; }

    std::span<const float> rows;
};

double Curve::expectedAt(std::size_t row, std::size_t without) const {
    constexpr std::size_t around = 5; // of these to either side enough are left
    std::vector<std::size_t> others;
    for (std::size_t i = row - std::min(row, around); i < std::min(size(), row + around + 1); ++i)
        if (i != row && i != without)
            others.push_back(i);
    const std::size_t points = size() < 6 ? 2 : 4;
    const auto behind = static_cast<std::size_t>(std::lower_bound(others.begin(), others.end(), row)
                                                 - others.begin());
    const std::size_t first =
        std::min(behind - std::min(behind, points / 2), others.size() - points);
    double sum = 0;
    for (std::size_t i = first; i < first + points; ++i) {
        double part = value(others[i]);
        for (std::size_t j = first; j < first + points; ++j)
            if (j != i)
                part *= (knot(row) - knot(others[j])) / (knot(others[i]) - knot(others[j]));
        sum += part;
    }
    return sum;
}

} // namespace

bool isOutlier(std::span<const float> corrections, std::size_t which) {
    const std::size_t count = corrections.size();
    if (count < 4 || !(std::abs(corrections[which]) > leastOutlier))
        return false;
    float most = 0;
    for (std::size_t step = 1; step <= reach; ++step)
        for (const std::size_t next : {(which + step) % count, (which + count - step) % count})
            most = std::max(most, std::abs(corrections[next]));
    return std::abs(corrections[which]) > mostOfNeighbours * most;
}

std::optional<CurveOutlier> curveOutlier(std::span<const float> rows) {
    const Curve curve(rows);
    constexpr std::size_t none = std::numeric_limits<std::size_t>::max();
    const auto off = [&](std::size_t row, std::size_t without) {
        return std::abs(curve.value(row) - curve.expectedAt(row, without));
    };
    if (curve.size() < 4 || !curve.knotsRunOneWay())
        return std::nullopt;
    std::size_t worst = 0;
    for (std::size_t row = 1; row < curve.size(); ++row)
        if (off(row, none) > off(worst, none))
            worst = row;
    double rest = leastOff / timesTheRest;
    for (std::size_t row = 0; row < curve.size(); ++row)
        if (row != worst)
            rest = std::max(rest, off(row, worst));
    if (!(off(worst, none) > timesTheRest * rest))
        return std::nullopt;
    return CurveOutlier{worst, curve.expectedAt(worst, none)};
}

} // namespace kiv
