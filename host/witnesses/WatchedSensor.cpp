#include "host/witnesses/WatchedSensor.h"

#include <algorithm>
#include <cmath>

#include "KIVInterface/CKivPrm.h"
#include "support/Principles.h"

namespace kiv::host {

namespace {

constexpr float turn = 360;
constexpr float largestGap = 60; // that a curve is taken to bridge

float withinTurn(float angle) {
    return angle - turn * std::floor(angle / turn);
}

// Stretches between neighbours of a table's angles that are wide, and not as wide as others.
std::vector<std::array<float, 2>> gapsOf(const std::vector<float>& rows) {
    std::vector<float> angles;
    for (std::size_t i = 0; i < rows.size(); i += 2)
        angles.push_back(withinTurn(rows[i]));
    std::sort(angles.begin(), angles.end());
    std::vector<float> steps;
    for (std::size_t i = 0; i < angles.size(); ++i)
        steps.push_back((i + 1 < angles.size() ? angles[i + 1] : angles[0] + turn) - angles[i]);
    std::vector<float> sorted = steps;
    std::sort(sorted.begin(), sorted.end());
    std::vector<std::array<float, 2>> gaps;
    for (std::size_t i = 0; i < steps.size(); ++i)
        if (steps[i] > std::max(largestGap, 4 * sorted[(sorted.size() - 1) / 2]))
            gaps.push_back({angles[i], angles[i] + steps[i]});
    return gaps;
}

template <typename Get>
std::vector<float> tableOf(Get get) {
    unsigned int count = 0;
    get(count, nullptr);
    std::vector<float> rows(2 * std::size_t{count});
    get(count, rows.data());
    return rows;
}

template <typename Get>
WatchedSensor::Level levelOf(bool read, Get get) {
    unsigned int count = 0;
    get(count, nullptr, nullptr);
    if (count == 0)
        return {read};
    std::vector<float> knots(std::size_t{count} + 3);
    std::vector<double> spline(4 * std::size_t{count});
    get(count, knots.data(), spline.data());
    const auto [least, largest] = std::minmax_element(knots.begin(), knots.end() - 3);
    return {read, *least, *largest};
}

} // namespace

WatchedSensor::WatchedSensor(const CKivPrm& record) {
    int mode = 0;
    record.getMountMode(mode);
    F_VECTOR4 limits{};
    record.getEncoderLimit(limits);
    azimuth = {(limits.x + limits.y) / 2, (limits.y - limits.x) / 2,
               gapsOf(tableOf([&](auto& n, float* t) { return record.getAzimuthComp(n, t); }))};
    elevation = {(limits.z + limits.w) / 2, (limits.w - limits.z) / 2,
                 gapsOf(tableOf([&](auto& n, float* t) { return record.getElevationComp(n, t); }))};
    levelX = levelOf(traitsOf(principleOf(mode)).levelX, [&](auto& n, float* t, double* spline) {
        return record.getLevelXComp(n, t, spline);
    });
    levelY = levelOf(true, [&](auto& n, float* t, double* spline) {
        return record.getLevelYComp(n, t, spline);
    });
    F_VECTOR4 thermal{};
    record.getThermalFactor(thermal);
    temperature = thermal.z != 0 || (levelX.read && thermal.x != 0);
}

bool WatchedSensor::Encoder::isBeyond(float raw, float corrected) {
    from = to = 0;
    const float fromMiddle = std::abs(std::remainder(corrected - offset, turn));
    if (halfAngle > 0 && fromMiddle > halfAngle)
        return true;
    float before = -INFINITY, behind = INFINITY; // ends of gaps on both sides
    for (const auto& gap : gaps)
        for (const float turns : {-turn, 0.0F, turn}) {
            const float start = raw - withinTurn(raw) + turns;
            if (raw > start + gap[0] && raw < start + gap[1])
                return true;
            if (start + gap[1] <= raw)
                before = std::max(before, start + gap[1]);
            else
                behind = std::min(behind, start + gap[0]);
        }
    from = before;
    to = behind;
    return false;
}

} // namespace kiv::host
