#include "host/Summary.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <ostream>
#include <string>

#include "host/tables/Numbers.h"

namespace kiv::host {

namespace {

void printCell(std::ostream& out, const std::string& text) {
    constexpr std::size_t width = 13;
    out << std::string(width - std::min(width, text.size()), ' ') << text;
}

// The remainder, which is slow, of a difference that seldom needs it.
double withinHalfTurn(double difference, double turn) {
    return std::abs(difference) <= turn / 2 ? difference : std::remainder(difference, turn);
}

} // namespace

// Source of the running moments: Welford, Technometrics 4 (1962), 419.
double AngleStatistics::add(double angle) {
    if (n == 0)
        first = angle;
    last += withinHalfTurn(angle - first - last, turn);
    ++n;
    const double deviation = last - meanOffset;
    meanOffset += deviation / static_cast<double>(n);
    squares += deviation * (last - meanOffset);
    leastOffset = std::min(leastOffset, last);
    largestOffset = std::max(largestOffset, last);
    return first + last;
}

double AngleStatistics::standardDeviation() const {
    return n < 2 ? 0 : std::sqrt(squares / static_cast<double>(n - 1));
}

void Summary::add(const RowResult& result, std::size_t line,
                  const std::optional<std::array<double, 3>>& truth) {
    ++counts[static_cast<std::size_t>(result.state)];
    ++refusals[static_cast<std::size_t>(result.refusal)];
    if (result.state == RowState::reference)
        reference = line;
    if (result.state != RowState::ok)
        return;
    const std::array<double, 3> values{result.info.rx, result.info.ry, result.info.rz};
    for (std::size_t i = 0; i < 3; ++i)
        angles[i].add(values[i]);
    if (!truth)
        return;
    ++withTruth;
    for (std::size_t i = 0; i < 3; ++i)
        differences[i] =
            std::max(differences[i], std::abs(withinHalfTurn(values[i] - (*truth)[i], 360.0)));
}

std::size_t Summary::rows() const {
    return std::accumulate(counts.begin(), counts.end(), std::size_t{0});
}

void Summary::print(std::ostream& out) const {
    out << rows() << (rows() == 1 ? " row" : " rows");
    const char* separator = ": ";
    for (std::size_t i = 0; i < counts.size(); ++i) {
        if (counts[i] == 0)
            continue;
        out << separator << counts[i] << ' ' << rowStateNames[i];
        if (i == static_cast<std::size_t>(RowState::reference))
            out << " (line " << reference << ')';
        separator = ", ";
    }
    out << '\n';
    for (std::size_t i = 1; i < refusals.size(); ++i)
        if (refusals[i] > 0)
            out << "refused: " << refusals[i] << ' ' << refusalNames[i] << '\n';

    if (count(RowState::ok) > 0) {
        out << "degrees";
        for (const char* heading : {"mean", "deviation", "least", "largest"})
            printCell(out, heading);
        out << '\n';
        for (std::size_t i = 0; i < 3; ++i) {
            out << "     " << angleNames[i];
            for (const double value : {angles[i].mean(), angles[i].standardDeviation(),
                                       angles[i].least(), angles[i].largest()})
                printCell(out, degreesText(value));
            out << '\n';
        }
    }
    if (withTruth > 0)
        out << "largest difference to the true angles: rx " << degreesText(differences[0])
            << ", ry " << degreesText(differences[1]) << ", rz " << degreesText(differences[2])
            << " degrees\n";
}

} // namespace kiv::host
