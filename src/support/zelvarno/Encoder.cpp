#include "KIVInterface/Encoder.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "support/LookUp.h"

namespace {

// Into [0, 360). What rounds to a full turn, and an angle so large that its turns cannot be told
// apart, becomes 0; so does one that is not finite.
double withinOneTurn(float angle) {
    const double degrees = static_cast<double>(angle);
    const double rest = std::abs(degrees) < 360.0
                            ? degrees + 360.0 * static_cast<double>(degrees < 0.0)
                            : degrees - 360.0 * std::floor(degrees / 360.0);
    return rest >= 0.0 && rest < 360.0 ? rest : 0.0;
}

} // namespace

int CEncoder::setCalTable(const float* table, int count) {
    const std::size_t size = count > 0 ? static_cast<std::size_t>(count) : 0;
    if (table == nullptr || size == 0
        || !std::all_of(table, table + 2 * size, [](float v) { return std::isfinite(v); })) {
        rows.clear();
        return 20;
    }

    // From the last row to the first: of equal angles the first one met is kept.
    std::vector<Row> turn;
    turn.reserve(size + 2);
    for (std::size_t i = size; i-- > 0;)
        turn.push_back(
            {withinOneTurn(table[2 * i]), static_cast<double>(table[2 * i + 1]), 0.0, 0});
    std::stable_sort(turn.begin(), turn.end(),
                     [](const Row& a, const Row& b) { return a.angle < b.angle; });
    turn.erase(std::unique(turn.begin(), turn.end(),
                           [](const Row& a, const Row& b) { return a.angle == b.angle; }),
               turn.end());

    const Row first = turn.front();
    const Row last = turn.back();
    turn.insert(turn.begin(), {last.angle - 360.0, last.correction, 0.0, 0});
    turn.push_back({first.angle + 360.0, first.correction, 0.0, 0});
    for (std::size_t i = 0; i + 1 < turn.size(); ++i)
        turn[i].slope =
            (turn[i + 1].correction - turn[i].correction) / (turn[i + 1].angle - turn[i].angle);

    rows.swap(turn);
    std::size_t row = 0;
    for (std::size_t sector = 0; sector < rows.size(); ++sector) {
        while (row + 2 < rows.size() && sectorOf(rows[row + 1].angle) < sector)
            ++row;
        rows[sector].lastBeforeSector = row;
    }
    return 0;
}

// Rounding may carry an angle below 360 into the sector behind the last, for which there is an
// entry too, and one behind that.
std::size_t CEncoder::sectorOf(double angle) const {
    const double sectorsPerDegree = static_cast<double>(rows.size() - 2) * (1.0 / 360.0);
    return static_cast<std::size_t>(static_cast<std::ptrdiff_t>(angle * sectorsPerDegree));
}

void CEncoder::setRawReading(float raw) {
    rawReading = raw;
}

float CEncoder::encCalibration(float raw) const {
    if (rows.empty())
        return raw;
    const double angle = withinOneTurn(raw);
    const std::size_t sector = sectorOf(angle);
    const std::size_t first = rows[sector].lastBeforeSector;
    const std::size_t candidates = rows[sector + 1].lastBeforeSector - first + 1;
    const Row* const before = rows.data() + first;
    const auto notAbove = [&](std::size_t i) { return before[i].angle <= angle; };
    const Row& row = before[lastNotAbove(candidates, notAbove)];
    const double correction = row.correction + row.slope * (angle - row.angle);
    return static_cast<float>(static_cast<double>(raw) + correction);
}
