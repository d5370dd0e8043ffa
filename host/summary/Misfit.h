#pragma once

#include <array>
#include <cstddef>

#include "judged/JudgedSensor.h"

namespace kiv::host {

// A row's three angles less its true ones, degrees, each within half a turn.
std::array<double, 3> differences(const KIV_INFO& info, const std::array<double, 3>& truth);

// The largest in size.
double largestOf(const std::array<double, 3>& values);

// By how much the rows of a recording miss what they should show, one by one as they come, degrees.
// A row that is good, or where the spare reading alone objects, counts in full; one whose doubt the
// bound of the model's error covers, for what lies beyond that; others do not.
class Misfit {
public:
    struct Tally {
        std::size_t rows = 0;
        double squares = 0;
        double largest = 0;

        void add(double miss);
        double rootMeanSquare() const; // 0 without rows
    };

    // A row in state ok; whether it counts. The deviation is what the readings' uncertainties make
    // of it, where these are given.
    bool add(const RowTrust& row, double size, double deviation = 0);

    // Of the rows that count: good ones, and those of a doubt that the model error covers.
    const Tally& counted() const { return sound; }
    // Of all rows, with the model error.
    const Tally& ofAllRows() const { return all; }
    // A tenth or more of so many rows count, and three at least where there are more.
    bool enoughOf(std::size_t rows) const {
        return sound.rows > 0 && 10 * sound.rows >= rows
               && (sound.rows >= 3 || sound.rows + 1 >= rows);
    }

    // What the root mean square may come to: three times that of the uncertainties, else 0.05.
    double allowed() const;
    // Where enough rows count.
    bool fits() const { return sound.rootMeanSquare() <= allowed(); }

    static constexpr double allowedWithoutUncertainties = 0.05; // degrees

private:
    Tally sound;
    Tally all;
    double variances = 0; // sum
};

} // namespace kiv::host
