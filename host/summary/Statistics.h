#pragma once

#include <cstddef>
#include <optional>
#include <vector>

namespace kiv::host {

// Count, mean, squared deviations and extremes of values, taken in one by one.
struct Moments {
    std::size_t count = 0;
    double mean = 0;
    double squares = 0; // sum of squared deviations from the mean
    double least = 0;
    double largest = 0;

    void add(double value);
    void merge(const Moments& other, double shift); // other's values with the shift added to each
    double deviation() const;                       // of the sample; 0 for one value
};

// Statistics of a quantity in degrees over the rows of a run, in memory that does not grow.
//
// A direction has no least value by itself: its values are taken as points of a circle. Mean and
// deviation are the intrinsic ones, of the values unwrapped to within half a turn of their mean,
// and so the ordinary ones where nothing is near the seam at half a turn; the extremes are the ends
// of the arc that holds the values, the least first in the positive sense. Where the values leave
// no sector free opposite their mean they go all the way round, and none of these is there.
// Sources: T. Hotz, S. Huckemann, Annals of the Institute of Statistical Mathematics 67 (2015), 177
// (the mean); T. Chan, G. Golub, R. LeVeque, The American Statistician 37 (1983), 242 (merging).
class Statistics {
public:
    enum class Kind : unsigned char { direction, linear };

    explicit Statistics(Kind ofQuantity = Kind::direction);

    void add(double degrees);

    struct Figures {
        std::size_t count = 0;
        bool allTheWayRound = false; // then the rest is without meaning
        double mean = 0;
        double deviation = 0;
        double least = 0;
        double largest = 0;
        double rootMeanSquare = 0;
    };
    Figures figures() const;

private:
    // What is kept of directions that lie within half a turn.
    struct Sector {
        Moments moments;
        double turn = 0; // of its first value: so much more than within half a turn
    };
    static constexpr std::size_t sectorCount = 36;

    std::size_t sectorOf(double withinHalfTurn) const;
    double asGiven(double angle) const;
    std::optional<Moments> unwrapped() const; // nothing where they go all the way round

    Kind kind;
    double highest;              // of all values as given
    std::vector<Sector> sectors; // one alone for a linear quantity
};

// A difference of angles in degrees, in [-180, 180].
double withinHalfTurn(double difference);

} // namespace kiv::host
