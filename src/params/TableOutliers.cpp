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
constexpr std::size_t fewRows = 10; // which tell little of their curve
constexpr double leastShare = 0.05; // of their range
constexpr double timesTheRest = 10; // what lies off the curve, to what its own bends come to
constexpr std::size_t points = 4;   // of a cubic
constexpr std::size_t around = 5;   // of so many rows to either side four are left without two
constexpr std::size_t none = std::numeric_limits<std::size_t>::max();

// The curve's rows but for one or two.
class Curve {
public:
    explicit Curve(std::span<const float> knotsAndValues) : rows(knotsAndValues) {}

    std::size_t size() const { return rows.size() / 2; }
    double value(std::size_t row) const { return rows[2 * row + 1]; }

    // What the four rows next to one, without itself and a second one, ask for at its knot by the
    // cubic through them.
    struct Neighbours {
        double expected;
        double weight; // of their values in it, and of the row's own
    };
    Neighbours neighboursOf(std::size_t row, std::size_t without) const;

    double off(std::size_t row) const {
        return std::abs(value(row) - neighboursOf(row, none).expected);
    }
    // Per unit of what all values may be off.
    double weighedOff(std::size_t row, std::size_t without) const {
        const Neighbours others = neighboursOf(row, without);
        return std::abs(value(row) - others.expected) / others.weight;
    }
    // The most of all rows but one, without it.
    double mostOff(std::size_t without) const {
        double most = 0;
        for (std::size_t row = 0; row < size(); ++row)
            if (row != without)
                most = std::max(most, weighedOff(row, without));
        return most;
    }

    double range() const {
        double least = value(0);
        double most = least;
        for (std::size_t row = 1; row < size(); ++row) {
            least = std::min(least, value(row));
            most = std::max(most, value(row));
        }
        return most - least;
    }

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

Curve::Neighbours Curve::neighboursOf(std::size_t row, std::size_t without) const {
    std::vector<std::size_t> others;
    for (std::size_t i = row - std::min(row, around); i < std::min(size(), row + around + 1); ++i)
        if (i != row && i != without)
            others.push_back(i);
    const auto behind = static_cast<std::size_t>(std::lower_bound(others.begin(), others.end(), row)
                                                 - others.begin());
    const std::size_t first =
        std::min(behind - std::min(behind, points / 2), others.size() - points);
    Neighbours found{0, 1};
    for (std::size_t i = first; i < first + points; ++i) {
        double share = 1;
        for (std::size_t j = first; j < first + points; ++j)
            if (j != i)
                share *= (knot(row) - knot(others[j])) / (knot(others[i]) - knot(others[j]));
        found.expected += share * value(others[i]);
        found.weight += std::abs(share);
    }
    return found;
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
    if (curve.size() < points + 2 || !curve.knotsRunOneWay())
        return std::nullopt;
    std::size_t worst = 0;
    for (std::size_t row = 1; row < curve.size(); ++row)
        if (curve.weighedOff(row, none) > curve.weighedOff(worst, none))
            worst = row;
    // A value off the curve makes those beside it look off, too: all is well without it alone.
    std::size_t outlier = worst;
    double rest = curve.mostOff(worst);
    for (std::size_t row = worst - std::min(worst, around);
         row < std::min(curve.size(), worst + around + 1); ++row)
        if (const double most = curve.mostOff(row); most < rest) {
            outlier = row;
            rest = most;
        }
    const double least = curve.size() < fewRows ? leastShare * curve.range() : 0;
    if (!(curve.off(outlier) > std::max(leastOff, least)
          && curve.weighedOff(outlier, none) > timesTheRest * rest))
        return std::nullopt;
    return CurveOutlier{outlier, curve.neighboursOf(outlier, none).expected};
}

} // namespace kiv
