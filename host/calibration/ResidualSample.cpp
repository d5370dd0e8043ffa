#include "host/calibration/ResidualSample.h"

#include <algorithm>
#include <cmath>

namespace kiv::host {

namespace {

constexpr double mostSamples = 600;

} // namespace

std::optional<std::vector<ResidualSample>>
sampleResiduals(CalibrationRows& rows, const FitModel& model, const Eigen::VectorXd& x) {
    constexpr double silver = 0.4142135623730951; // its multiples are spread evenly
    const double share = mostSamples / static_cast<double>(rows.facts().rows);
    const Prediction prediction = model.predictionAt(x);
    std::vector<ResidualSample> all;
    using Part = std::vector<ResidualSample>;
    const bool read = rows.pass<Part>(
        [&](const std::vector<Observation>& observations, Part& part) {
            part.clear();
            for (const Observation& row : observations) {
                const double turns = silver * static_cast<double>(row.line);
                simulator::Pose pose;
                ResidualSample sample{};
                Whitening whitening;
                if (turns - std::floor(turns) >= share || rows.rejected(row)
                    || !prediction.poseOf(row, pose)
                    || !prediction.residual(row, pose, sample.residual)
                    || !whitening.set(prediction, row, model.uncertainties,
                                      equationsOf(model.frame.mode)))
                    continue;
                sample.whitened = sample.residual;
                whitening.apply(sample.whitened);
                sample.line = static_cast<double>(row.line);
                sample.time = row.time;
                sample.azimuth = std::remainder(row.azimuth, 360);
                sample.elevation = row.elevation;
                sample.levelY = row.curveY;
                sample.temperature = row.raw.temperature;
                sample.tilt = std::acos(std::min(1.0, std::abs(pose.rotation[8]))) / degToRad;
                sample.heldOut = rows.heldOut(row);
                part.push_back(sample);
            }
        },
        [&](Part& part) {
            all.insert(all.end(), part.begin(), part.end());
            return true;
        });
    return read ? std::optional(std::move(all)) : std::nullopt;
}

} // namespace kiv::host
