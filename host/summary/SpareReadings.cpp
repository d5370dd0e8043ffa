#include "host/summary/SpareReadings.h"

#include <cmath>

#include "support/Numbers.h"

namespace kiv::host {

namespace {

constexpr double leastMean = 0.005; // degrees
constexpr double standardErrors = 5;
constexpr std::size_t fewestForMean = 10; // fewer tell little of their own deviation
constexpr double mostOfExpected = 1.5;
constexpr std::size_t fewestForSize = 100;

} // namespace

void SpareReadings::add(const RowTrust& row, std::size_t line) {
    if (!std::isfinite(row.spare))
        return;
    values.add(row.spare);
    variances += row.spareDeviation * row.spareDeviation;
    if (lineOfMost > 0 && std::abs(row.spare) <= most)
        return;
    most = std::abs(row.spare);
    lineOfMost = line;
}

double SpareReadings::rootMeanSquare() const {
    return std::sqrt(values.mean * values.mean
                     + values.squares / static_cast<double>(values.count));
}

std::optional<double> SpareReadings::expected() const {
    if (!(variances > 0))
        return std::nullopt;
    return std::sqrt(variances / static_cast<double>(values.count));
}

bool SpareReadings::meanIsOff() const {
    const double error = values.deviation() / std::sqrt(static_cast<double>(values.count));
    return values.count >= fewestForMean && std::abs(values.mean) > leastMean
           && std::abs(values.mean) > standardErrors * error;
}

bool SpareReadings::largerThanExpected() const {
    const std::optional<double> size = expected();
    return size && values.count >= fewestForSize && rootMeanSquare() > mostOfExpected * *size;
}

std::string SpareReadings::objection() const {
    if (meanIsOff())
        return "expected a mean of 0, found " + degreesText(values.mean) + " degrees in "
               + std::to_string(values.count) + " rows: an offset of the parameter file is wrong";
    if (largerThanExpected())
        return "expected " + degreesText(*expected()) + " degrees by the uncertainties, found "
               + degreesText(rootMeanSquare()) + " in " + std::to_string(values.count)
               + " rows: parameters or uncertainties are wrong";
    return {};
}

} // namespace kiv::host
