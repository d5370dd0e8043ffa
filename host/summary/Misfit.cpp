#include "host/summary/Misfit.h"

#include <algorithm>
#include <cmath>

#include "host/summary/Statistics.h"

namespace kiv::host {

namespace {

constexpr double deviations = 3;
constexpr double leastAllowed = 0.005; // degrees; what the model may miss in a good row

bool countsInFull(Trust trust) {
    return trust == Trust::good || trust == Trust::spareDisagrees || trust == Trust::levelsDisagree;
}

bool countsBeyondModelError(Trust trust) {
    return trust == Trust::twoSigns || trust == Trust::reference;
}

} // namespace

std::array<double, 3> differences(const KIV_INFO& info, const std::array<double, 3>& truth) {
    return {withinHalfTurn(info.rx - truth[0]), withinHalfTurn(info.ry - truth[1]),
            withinHalfTurn(info.rz - truth[2])};
}

double largestOf(const std::array<double, 3>& values) {
    const auto [least, most] = std::minmax_element(values.begin(), values.end());
    return std::max(-*least, *most);
}

void Misfit::Tally::add(double miss) {
    ++rows;
    squares += miss * miss;
    largest = std::max(largest, miss);
}

double Misfit::Tally::rootMeanSquare() const {
    return rows == 0 ? 0 : std::sqrt(squares / static_cast<double>(rows));
}

bool Misfit::add(const RowTrust& row, double size, double deviation) {
    const bool inFull = countsInFull(row.trust);
    all.add(size);
    if (!inFull && !countsBeyondModelError(row.trust))
        return false;
    sound.add(inFull ? size : std::max(size - row.modelError, 0.0));
    variances += deviation * deviation;
    return true;
}

double Misfit::allowed() const {
    if (!(variances > 0))
        return allowedWithoutUncertainties;
    return std::max(leastAllowed,
                    deviations * std::sqrt(variances / static_cast<double>(sound.rows)));
}

} // namespace kiv::host
