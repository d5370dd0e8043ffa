#include "host/summary/RecordingDrift.h"

#include <algorithm>
#include <cmath>

#include "host/summary/Statistics.h"

namespace kiv::host {

namespace {

constexpr double stillDegrees = 0.5;

} // namespace

void RecordingDrift::add(const RowResult& row, const std::optional<std::array<double, 3>>& truth,
                         const std::optional<double>& seconds) {
    if (row.state != RowState::ok)
        return;
    if (seconds) {
        firstTime = firstTime ? firstTime : seconds;
        lastTime = seconds;
        ++timed;
    }
    const std::optional<double> hours =
        seconds ? std::optional((*seconds - *firstTime) / 3600) : std::nullopt;
    const std::array<double, 3> found{row.info.rx, row.info.ry, row.info.rz};
    const KIV_RAWINFO& raw = row.raw;
    if (rows++ == 0) {
        first = found;
        firstEncoders = {raw.azimuthRaw, raw.elevationRaw};
    }
    compared += truth ? 1U : 0U;
    for (std::size_t i = 0; i < 3; ++i) {
        const double turned = withinHalfTurn(found[i] - first[i]);
        least[i] = std::min(least[i], turned);
        largest[i] = std::max(largest[i], turned);
        if (!hours)
            continue;
        angles[i].add(*hours, turned, raw.temperature);
        if (truth)
            residuals[i].add(*hours, withinHalfTurn(found[i] - (*truth)[i]), raw.temperature);
    }
    readings[0].add(withinHalfTurn(raw.azimuthRaw - firstEncoders[0]));
    readings[1].add(withinHalfTurn(raw.elevationRaw - firstEncoders[1]));
    readings[2].add(raw.levelXRaw);
    readings[3].add(raw.levelYRaw);
}

bool RecordingDrift::still() const {
    bool stays = rows > 1;
    for (std::size_t i = 0; i < 3; ++i)
        stays = stays && largest[i] - least[i] <= stillDegrees;
    return stays;
}

std::optional<Drift::Figures> RecordingDrift::of(std::size_t angle) const {
    if (hasTruth())
        return residuals[angle].figures();
    return still() ? angles[angle].figures() : std::nullopt;
}

std::optional<double> RecordingDrift::step() const {
    if (timed < 2 || !(*lastTime > *firstTime))
        return std::nullopt;
    return (*lastTime - *firstTime) / static_cast<double>(timed - 1);
}

std::optional<double> RecordingDrift::noise(std::array<std::size_t, 2> which) const {
    double squares = 0;
    for (const std::size_t i : which) {
        const auto points = readings[i].points();
        squares += points.empty() ? 0 : points[0].deviation * points[0].deviation / 2;
    }
    return still() && squares > 0 ? std::optional(std::sqrt(squares)) : std::nullopt;
}

} // namespace kiv::host
