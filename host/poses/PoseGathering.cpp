#include "host/poses/PoseGathering.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "host/summary/Statistics.h"
#include "judged/RowResults.h"

namespace kiv::host {

namespace {

// A pose is as little to be trusted as its rows where more than this share of those with angles is
// not good.
constexpr double notGoodShare = 0.1;

// A sensor moves where more than this share of its rows turns further than so many degrees.
constexpr double movingShare = 0.1;
constexpr double stillDegrees = 1;

std::array<double, poseReadingCount> readingsOf(const RowResult& result) {
    const KIV_INFO& info = result.info;
    return {info.azimuth, info.elevation, info.levelX, info.levelY, result.raw.temperature};
}

void addTo(Matrix& sum, const Matrix& matrix) {
    for (std::size_t i = 0; i < sum.size(); ++i)
        sum[i] += matrix[i];
}

Matrix rotationOf(const RowResult& result, bool hasMatrix, bool localFrame) {
    Matrix matrix;
    if (!hasMatrix)
        return rotationBy({result.info.rx, result.info.ry, result.info.rz}, localFrame);
    std::copy_n(result.matrix, matrix.size(), matrix.begin());
    return matrix;
}

const char* trustOf(const std::array<std::size_t, trustWords.size()>& trusts) {
    std::size_t all = 0;
    for (const std::size_t count : trusts)
        all += count;
    const auto notGood = static_cast<double>(all - trusts[0]);
    if (all == 0)
        return "";
    if (notGood <= notGoodShare * static_cast<double>(all))
        return trustWords[0].word;
    return trustWords[static_cast<std::size_t>(std::max_element(trusts.begin() + 1, trusts.end())
                                               - trusts.begin())]
        .word;
}

} // namespace

PoseGathering::PoseGathering(const Grouping& asked, bool hasMatrices, bool localFrame, Give toGive)
    : grouping(asked), matrices(hasMatrices), local(localFrame), give(std::move(toGive)) {}

bool PoseGathering::begins(const ComputedRow& row, const std::optional<Matrix>& rotation) const {
    if (!open || (grouping.byTable() && row.table != pose.table)
        || (!grouping.by.empty() && row.cells[0] != pose.group))
        return true;
    if (grouping.pause && row.time && pose.lastTime) {
        const double waited = row.time->seconds - *pose.lastTime;
        if (waited > *grouping.pause || waited < 0)
            return true;
    }
    if (!grouping.still || !rotation || rows.size() == 0)
        return false;
    HalfTurn mean = turnSum;
    for (double& part : mean)
        part /= static_cast<double>(rows.size());
    return angleOf(rotationFrom(product(matrixOf(mean), rows.first()), *rotation))
           > *grouping.still;
}

void PoseGathering::use(const ComputedRow& row, const Matrix& rotation) {
    const RowResult& result = row.result;
    rows.add(rotation, row.time ? std::optional(row.time->seconds) : std::nullopt);
    const HalfTurn turn = rows.turn(rows.size() - 1);
    for (std::size_t i = 0; i < turn.size(); ++i)
        turnSum[i] += turn[i];
    const auto readings = readingsOf(result);
    if (rows.size() == 1)
        firstReadings = readings;
    for (std::size_t i = 0; i < readings.size(); ++i) // encoder angles may pass a full turn
        readingSums[i] +=
            i < 2 ? withinHalfTurn(readings[i] - firstReadings[i]) : readings[i] - firstReadings[i];
    if (result.hasUncertainty)
        readingsPart.add(result.uncertainty);
    if (result.hasCalibration)
        readingsPart.addCalibration(result.calibration);
    hasTruth = hasTruth && row.truth;
    if (hasTruth)
        addTo(truthSum, rotationBy(*row.truth, false));
}

void PoseGathering::add(const ComputedRow& row) {
    if (grouping.pause && !row.time) {
        ++withoutPose;
        return;
    }
    const RowResult& result = row.result;
    const bool oriented = hasAngles(result.state);
    const bool good = oriented && result.trust.trust == Trust::good;
    const bool used = good || (oriented && grouping.withNotGood);
    std::optional<Matrix> rotation;
    if (used)
        rotation = rotationOf(result, matrices, local);
    if (begins(row, rotation)) {
        end();
        open = true;
        pose = {};
        pose.group = row.cells[0];
        pose.id = row.cells[1];
        pose.table = row.table;
        pose.firstLine = row.line;
        turnSum = {};
        readingSums = {};
        trusts = {};
        readingsPart = {};
        truthSum = {};
        hasTruth = true;
    }
    pose.lastLine = row.line;
    if (row.time) {
        pose.lastTime = row.time->seconds;
        if (!pose.firstTime)
            pose.firstTime = pose.lastTime;
    }
    if (!oriented)
        ++pose.withoutAngles;
    else
        ++trusts[static_cast<std::size_t>(result.trust.trust)];
    if (used)
        use(row, *rotation);
    else if (oriented)
        ++pose.notGood;
}

void PoseGathering::end() {
    if (!open)
        return;
    open = false;
    if (grouping.still && rows.size() < grouping.fewestRows) {
        withoutPose += rows.size() + pose.leftOut();
        rows.clear();
        return;
    }
    const auto count = static_cast<double>(rows.size());
    pose.number = ++poses;
    pose.trust = trustOf(trusts);
    for (std::size_t i = 0; i < readingSums.size(); ++i)
        pose.readings[i] = firstReadings[i] + readingSums[i] / count;
    pose.fromReadings = readingsPart.ofMean();
    const double still = std::max(stillDegrees, grouping.still.value_or(0));
    const std::size_t moved = rows.furtherThan(still);
    pose.moved = static_cast<double>(moved) > movingShare * count ? moved : 0;
    pose.outliers = rows.leaveOutliersOut();
    pose.used = rows.size();
    pose.figures = figuresOf(rows, local);
    const std::optional<Matrix> truth = hasTruth ? orthogonalMean(truthSum) : std::nullopt;
    if (pose.figures.hasMean && truth) {
        const std::array<double, 3> angles = anglesOf(*truth, local);
        if (const auto parts = partsAlongAxes(angles, local))
            pose.residual = times(*parts, halfTurnOf(rotationFrom(*truth, pose.figures.mean)));
    }
    rows.clear();
    give(pose);
}

} // namespace kiv::host
