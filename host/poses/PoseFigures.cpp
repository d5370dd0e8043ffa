#include "host/poses/PoseFigures.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "host/base/Distributions.h"
#include "host/poses/Correlation.h"

namespace kiv::host {

namespace {

// More rows than this are averaged over blocks of equal size for the correlation and the drift.
constexpr std::size_t mostBlocks = 2048;
constexpr std::size_t fewestRows = 10;
// Of correlated values; two correlation lengths of them are as good as an independent one.
constexpr double fewestIndependent = 20;
constexpr double driftConfidence = 0.999;
constexpr double secondsPerHour = 3600;

// Values of one angle and their times, or means over blocks of them.
struct Series {
    std::vector<double> values;
    std::vector<double> seconds;
    double blocks = 0; // also the part of one that is left over
};

double meanOf(const std::vector<double>& values) {
    double sum = 0;
    for (const double value : values)
        sum += value;
    return sum / static_cast<double>(values.size());
}

void takeMean(std::vector<double>& values) {
    const double mean = meanOf(values);
    for (double& value : values)
        value -= mean;
}

// The standard uncertainty of the mean.
void setUncertainty(AxisFigures& axis, Series series, double rows, bool& lowerBound) {
    takeMean(series.values);
    const Correlation correlation = correlationOf(series.values, 1);
    const double independent = series.blocks / correlation.inflation;
    axis.uncertainty = std::sqrt(correlation.variance / independent);
    axis.degreesOfFreedom = correlation.degreesOfFreedom;
    const double ratio = axis.deviation / axis.uncertainty;
    axis.effectiveRows = axis.deviation > 0 ? std::min(rows, ratio * ratio) : rows;
    lowerBound = lowerBound || (correlation.evident && independent < fewestIndependent);
}

// The least-squares line, with the uncertainty of its slope. False where the residuals are
// correlated over too much of the pose, so that a drift cannot be told from them.
bool setDrift(AxisFigures& axis, Series series) {
    takeMean(series.values);
    takeMean(series.seconds);
    double squares = 0, products = 0;
    for (std::size_t i = 0; i < series.values.size(); ++i) {
        squares += series.seconds[i] * series.seconds[i];
        products += series.seconds[i] * series.values[i];
    }
    if (!(squares > 0))
        return true;
    const double slope = products / squares;
    for (std::size_t i = 0; i < series.values.size(); ++i)
        series.values[i] -= slope * series.seconds[i];
    const Correlation correlation = correlationOf(series.values, 2);
    const double uncertainty = std::sqrt(correlation.variance * correlation.inflation / squares);
    if (std::isnan(uncertainty))
        return true;
    axis.drift = slope * secondsPerHour;
    axis.driftUncertainty = uncertainty * secondsPerHour;
    axis.drifts =
        2 * studentProbability(-std::abs(slope) / uncertainty, correlation.degreesOfFreedom)
        < 1 - driftConfidence;
    const double independent = static_cast<double>(series.values.size()) / correlation.inflation;
    return !correlation.evident || independent >= fewestIndependent;
}

std::optional<Matrix> meanRotation(const PoseRows& rows) {
    Matrix sum{};
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const Matrix turn = matrixOf(rows.turn(i));
        for (std::size_t j = 0; j < 9; ++j)
            sum[j] += turn[j];
    }
    return orthogonalMean(sum);
}

} // namespace

PoseFigures figuresOf(const PoseRows& rows, bool localFrame) {
    PoseFigures figures;
    const std::optional<Matrix> turn = meanRotation(rows);
    if (rows.size() == 0 || !turn)
        return figures;
    figures.hasMean = true;
    figures.mean = product(*turn, rows.first());
    const std::array<double, 3> angles = anglesOf(figures.mean, localFrame);
    for (std::size_t i = 0; i < 3; ++i)
        figures.axes[i].angle = angles[i];
    figures.lowerBound = rows.size() < fewestRows;
    const std::optional<Matrix> parts = partsAlongAxes(angles, localFrame);
    if (!parts || rows.size() < 2)
        return figures;

    const std::size_t inBlock = (rows.size() + mostBlocks - 1) / mostBlocks;
    const auto count = static_cast<double>(rows.size());
    const auto size = static_cast<double>(inBlock);
    std::array<Series, 3> series;
    std::array<double, 3> squares{}, sums{};
    double seconds = 0;
    const Matrix back = transposed(*turn);
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const auto small = times(*parts, halfTurnOf(product(matrixOf(rows.turn(i)), back)));
        seconds += rows.seconds(i);
        const bool blockEnds = (i + 1) % inBlock == 0;
        for (std::size_t j = 0; j < 3; ++j) {
            squares[j] += small[j] * small[j];
            sums[j] += small[j];
            if (!blockEnds)
                continue;
            series[j].values.push_back(sums[j] / size);
            series[j].seconds.push_back(seconds / size);
            sums[j] = 0;
        }
        if (blockEnds)
            seconds = 0;
    }
    bool driftsCanBeTold = rows.size() >= fewestRows;
    for (std::size_t j = 0; j < 3; ++j) {
        AxisFigures& axis = figures.axes[j];
        axis.deviation = std::sqrt(squares[j] / (count - 1));
        series[j].blocks = count / size;
        setUncertainty(axis, series[j], count, figures.lowerBound);
        if (rows.timed())
            driftsCanBeTold = setDrift(axis, series[j]) && driftsCanBeTold;
    }
    for (AxisFigures& axis : figures.axes)
        axis.drifts = axis.drifts && driftsCanBeTold;
    return figures;
}

} // namespace kiv::host
