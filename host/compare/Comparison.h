#pragma once

#include <array>
#include <cstddef>
#include <iosfwd>
#include <optional>
#include <string>
#include <string_view>

#include "host/compare/Difference.h"
#include "host/summary/Misfit.h"
#include "host/summary/Statistics.h"

namespace kiv::host {

// What was compared, for the summary file.
struct ComparisonNames {
    std::string first;
    std::string second;
    std::string readings; // empty: two tables are compared
    std::string join;     // line, time, or a column
    bool localFrame = false;
};

// The differences of a comparison, taken in one by one in memory that does not grow.
class Comparison {
public:
    // The line is the first table's, which is named where there are several.
    void add(const OrientationDifference& difference, std::size_t line, std::string_view table);
    // A row with angles that have no counterpart.
    void addOnlyInFirst() { ++first; }
    void addOnlyInSecond() { ++second; }
    // By how much the rotations of both differ from the true one, degrees.
    void addMisses(double ofFirst, double ofSecond);

    struct Figures {
        Moments moments;
        double largest = 0; // magnitude
        std::size_t line = 0;
        std::string place; // of the largest, in words
        std::size_t beyond = 0;

        double rootMeanSquare() const;
    };
    std::size_t rows() const { return figures[0].moments.count; }
    const Figures& of(std::size_t i) const {
        return figures[i];
    } // rx, ry, rz, the rotation's angle
    const Figures& angle() const { return figures[3]; }
    std::size_t onlyInFirst() const { return first; }
    std::size_t onlyInSecond() const { return second; }
    std::size_t withUncertainty() const { return uncertain; } // rows
    // Of the two, over rows with true angles.
    const std::array<Misfit::Tally, 2>& againstTruth() const { return misses; }

    void print(std::ostream& out, const ComparisonNames& names) const;
    std::string json(const ComparisonNames& names, const std::optional<double>& tolerance) const;

private:
    std::array<Figures, 4> figures; // rx, ry, rz, and the angle of the rotation
    std::size_t first = 0;
    std::size_t second = 0;
    std::array<Misfit::Tally, 2> misses;
    std::size_t uncertain = 0; // rows whose difference has an uncertainty
};

} // namespace kiv::host
