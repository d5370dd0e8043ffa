#include "support/Encoder.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "support/LookUp.h"

namespace {

// Into [0, 360). What rounds to a full turn, and an angle so large that its turns cannot be told
// apart, becomes 0; so does one that is not finite.
double withinOneTurn(float angle) {
    const double degrees = static_cast<double>(angle);
    const double rest = degrees - 360.0 * std::floor(degrees / 360.0);
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
        turn.push_back({withinOneTurn(table[2 * i]), static_cast<double>(table[2 * i + 1]), 0.0});
    std::stable_sort(turn.begin(), turn.end(),
                     [](const Row& a, const Row& b) { return a.angle < b.angle; });
    turn.erase(std::unique(turn.begin(), turn.end(),
                           [](const Row& a, const Row& b) { return a.angle == b.angle; }),
               turn.end());

    const Row first = turn.front();
    const Row last = turn.back();
    turn.insert(turn.begin(), {last.angle - 360.0, last.correction, 0.0});
    turn.push_back({first.angle + 360.0, first.correction, 0.0});
    for (std::size_t i = 0; i + 1 < turn.size(); ++i)
        turn[i].slope =
            (turn[i + 1].correction - turn[i].correction) / (turn[i + 1].angle - turn[i].angle);

    rows.swap(turn);
    return 0;
}

void CEncoder::setRawReading(float raw) {
    rawReading = raw;
}

float CEncoder::encCalibration(float raw) const {
    if (rows.empty())
        return raw;
    const double angle = withinOneTurn(raw);
    const auto notAbove = [&](std::size_t i) { return rows[i].angle <= angle; };
    const Row& row = rows[lastNotAbove(rows.size() - 1, notAbove)];
    const double correction = row.correction + row.slope * (angle - row.angle);
    return static_cast<float>(static_cast<double>(raw) + correction);
}
