#include "host/summary/Drift.h"

#include <cmath>

namespace kiv::host {

namespace {

constexpr std::size_t mostBatches = 64;

} // namespace

void Drift::add(double hours, double value, double temperature) {
    if (batches.empty() || batches.back().count == size) {
        if (batches.size() == mostBatches) {
            for (std::size_t i = 0; i < mostBatches / 2; ++i) {
                const Batch &a = batches[2 * i], &b = batches[2 * i + 1];
                batches[i] = {a.hours + b.hours, a.value + b.value, a.count + b.count};
            }
            batches.resize(mostBatches / 2);
            size *= 2;
        }
        batches.emplace_back();
    }
    Batch& last = batches.back();
    last.hours += hours;
    last.value += value;
    ++last.count;

    count += 1;
    const double fromValue = value - meanValue, fromTemperature = temperature - meanTemperature;
    meanValue += fromValue / count;
    meanTemperature += fromTemperature / count;
    ofValue += fromValue * (value - meanValue);
    ofTemperature += fromTemperature * (temperature - meanTemperature);
    ofBoth += fromValue * (temperature - meanTemperature);
}

std::optional<Drift::Figures> Drift::figures() const {
    std::size_t full = batches.size();
    if (full > 0 && batches.back().count < size)
        --full;
    if (full < 3)
        return std::nullopt;
    const auto rows = static_cast<double>(size), n = static_cast<double>(full);
    double meanHours = 0, mean = 0;
    for (std::size_t i = 0; i < full; ++i) {
        meanHours += batches[i].hours / rows / n;
        mean += batches[i].value / rows / n;
    }
    double squares = 0, products = 0;
    for (std::size_t i = 0; i < full; ++i) {
        const double hours = batches[i].hours / rows - meanHours;
        squares += hours * hours;
        products += hours * (batches[i].value / rows - mean);
    }
    if (!(squares > 0))
        return std::nullopt;
    Figures found;
    found.slope = products / squares;
    double scatter = 0;
    for (std::size_t i = 0; i < full; ++i)
        scatter += std::pow(batches[i].value / rows - mean
                                - found.slope * (batches[i].hours / rows - meanHours),
                            2);
    found.uncertainty = std::sqrt(scatter / (n - 2) / squares);
    if (ofValue > 0 && ofTemperature > 0)
        found.withTemperature = ofBoth / std::sqrt(ofValue * ofTemperature);
    return found;
}

} // namespace kiv::host
