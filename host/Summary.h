#pragma once

#include <array>
#include <cstddef>
#include <iosfwd>
#include <optional>
#include <string>

#include "host/tables/RowResult.h"

namespace kiv::host {

// Mean, spread and range of an angle in degrees. An angle that wraps around counts on beyond its
// turn; one that does not is given an infinite turn.
class AngleStatistics {
public:
    explicit AngleStatistics(double turnAround = 360.0) : turn(turnAround) {}

    // Gives the angle back as it counts.
    double add(double angle);

    std::size_t count() const { return n; }
    double mean() const { return first + meanOffset; }
    double standardDeviation() const; // of the sample; 0 for one value
    double least() const { return first + leastOffset; }
    double largest() const { return first + largestOffset; }

private:
    double turn;
    std::size_t n = 0;
    double first = 0;
    double last = 0;       // offset of the last value
    double meanOffset = 0; // from the first value, as are the next two
    double leastOffset = 0;
    double largestOffset = 0;
    double squares = 0; // sum of squared deviations from the mean
};

// What became of the rows of a run.
class Summary {
public:
    void add(const RowResult& result, std::size_t line,
             const std::optional<std::array<double, 3>>& truth);

    bool allGood() const {
        return count(RowState::noOrientation) == 0 && count(RowState::refused) == 0;
    }
    std::size_t rows() const;
    std::size_t count(RowState state) const { return counts[static_cast<std::size_t>(state)]; }
    std::size_t count(Refusal refusal) const { return refusals[static_cast<std::size_t>(refusal)]; }
    std::size_t referenceLine() const { return reference; } // 0: none

    void print(std::ostream& out) const;

private:
    std::array<std::size_t, rowStateNames.size()> counts{};
    std::array<std::size_t, 4> refusals{};
    std::size_t reference = 0;
    std::array<AngleStatistics, 3> angles; // rx, ry, rz
    std::size_t withTruth = 0;
    std::array<double, 3> differences{}; // largest to the truth, degrees
};

// Ends a run whose results are written: shows the summary, gives the exit code.
int finishRun(const Summary& summary, bool quiet, std::ostream& err);

// With six decimals.
std::string degreesText(double value);

inline constexpr std::array<const char*, 4> refusalNames{"", "of the wrong shape", "not a number",
                                                         "with a zero vector"};
inline constexpr std::array<const char*, 3> angleNames{"rx", "ry", "rz"};

} // namespace kiv::host
