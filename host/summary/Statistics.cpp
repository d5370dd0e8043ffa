#include "host/summary/Statistics.h"

#include <algorithm>
#include <cmath>

namespace kiv::host {

namespace {

constexpr double turn = 360;

} // namespace

// The remainder, which is slow, of a difference that seldom needs it.
double withinHalfTurn(double difference) {
    return std::abs(difference) <= turn / 2 ? difference : std::remainder(difference, turn);
}

// Source: Welford, Technometrics 4 (1962), 419.
void Moments::add(double value) {
    least = count == 0 ? value : std::min(least, value);
    largest = count == 0 ? value : std::max(largest, value);
    ++count;
    const double difference = value - mean;
    mean += difference / static_cast<double>(count);
    squares += difference * (value - mean);
}

void Moments::merge(const Moments& other, double shift) {
    if (other.count == 0)
        return;
    least = count == 0 ? other.least + shift : std::min(least, other.least + shift);
    largest = count == 0 ? other.largest + shift : std::max(largest, other.largest + shift);
    const auto mine = static_cast<double>(count), others = static_cast<double>(other.count);
    const double difference = other.mean + shift - mean;
    count += other.count;
    mean += difference * (others / (mine + others));
    squares += other.squares + difference * difference * (mine * others / (mine + others));
}

double Moments::deviation() const {
    return count < 2 ? 0 : std::sqrt(squares / static_cast<double>(count - 1));
}

Statistics::Statistics(Kind ofQuantity)
    : kind(ofQuantity), highest(-INFINITY), sectors(kind == Kind::direction ? sectorCount : 1) {}

std::size_t Statistics::sectorOf(double withinHalfTurn) const {
    const double place = (withinHalfTurn + turn / 2) * (sectorCount / turn);
    return std::min(static_cast<std::size_t>(place), sectorCount - 1);
}

void Statistics::add(double degrees) {
    highest = std::max(highest, degrees);
    if (kind == Kind::linear)
        return sectors[0].moments.add(degrees);
    const double value = withinHalfTurn(degrees);
    Sector& sector = sectors[sectorOf(value)];
    if (sector.moments.count == 0)
        sector.turn = degrees - value;
    sector.moments.add(value);
}

// One of the values, in the turn in which it came; half a turn is -180 or 180.
double Statistics::asGiven(double angle) const {
    const double value = withinHalfTurn(angle);
    const Sector& sector = sectors[sectorOf(value)];
    if (sector.moments.count == 0)
        return -value + sectors[sectorOf(-value)].turn;
    return value + sector.turn;
}

// Unwrapped from each sector without values on, the values spread least from the one that lies
// opposite their mean.
std::optional<Moments> Statistics::unwrapped() const {
    std::optional<Moments> best;
    for (std::size_t cut = 0; cut < sectorCount; ++cut) {
        if (sectors[cut].moments.count > 0)
            continue;
        Moments all;
        for (std::size_t i = 1; i < sectorCount; ++i) {
            const std::size_t next = (cut + i) % sectorCount;
            all.merge(sectors[next].moments, next < cut ? turn : 0);
        }
        if (!best || all.squares < best->squares)
            best = all;
    }
    if (best && std::max(best->largest - best->mean, best->mean - best->least) > turn / 2)
        return std::nullopt;
    return best;
}

Statistics::Figures Statistics::figures() const {
    Figures figures;
    for (const Sector& sector : sectors)
        figures.count += sector.moments.count;
    if (figures.count == 0)
        return figures;
    const auto moments = kind == Kind::linear ? sectors[0].moments : unwrapped();
    if (!moments) {
        figures.allTheWayRound = true;
        return figures;
    }
    figures.mean = moments->mean;
    figures.deviation = moments->deviation();
    figures.least = moments->least;
    figures.largest = moments->largest;
    if (kind == Kind::direction) {
        figures.least = asGiven(moments->least);
        figures.largest = asGiven(moments->largest);
        figures.mean += figures.least - moments->least;
        // Values come from -180 to 180 or from 0 to 360.
        const double end = std::max(highest, highest > turn / 2 ? turn : turn / 2);
        if (figures.largest < figures.least && figures.mean > end)
            figures.mean -= turn;
    }
    figures.rootMeanSquare = std::sqrt(moments->mean * moments->mean
                                       + moments->squares / static_cast<double>(figures.count));
    return figures;
}

} // namespace kiv::host
