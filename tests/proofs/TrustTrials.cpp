#include "tests/proofs/TrustTrials.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <stdexcept>

#include "host/summary/Statistics.h"
#include "simulator/Noise.h"
#include "tests/proofs/ExampleSensor.h"
#include "uncertainty/Propagation.h"
#include "uncertainty/Trust.h"

namespace kiv::docs {

namespace {

using simulator::Pose;

constexpr double singlePrecision = 2e-5; // degrees, of the reported angles
constexpr double rightError = 0.001;     // degrees
constexpr std::uint64_t seed = 20;

// Reported less true angles, degrees.
AngleTriple residuals(const ExampleSensor& example, const Pose& pose, const KIV_INFO& info) {
    double rotation[9];
    example.trueRotation(pose, rotation);
    const simulator::Angles truth = simulator::anglesOf(rotation);
    return {host::withinHalfTurn(info.rx - truth.rx), host::withinHalfTurn(info.ry - truth.ry),
            host::withinHalfTurn(info.rz - truth.rz)};
}

double largest(const AngleTriple& values) {
    return std::max({std::abs(values[0]), std::abs(values[1]), std::abs(values[2])});
}

Uncertainties uncertaintiesOf(const simulator::Noise& noise) {
    Uncertainties u;
    for (const Source source : {Source::vector1, Source::vector2, Source::vector3})
        u[source] = noise.vector;
    u[Source::azimuth] = u[Source::elevation] = noise.encoder;
    u[Source::levelX] = u[Source::levelY] = noise.level;
    return u;
}

// A sensor in poses of a range, judged.
struct Trial {
    Trial(int mode, const Range& range, const std::function<void(simulator::Mounting&)>& mount = {})
        : example(KIV_SENSORS "/wide" + std::to_string(mode)),
          poses(seed,
                {range.mostTilt, -range.steepest, range.steepest, simulator::invertedIn(mode)}),
          random(seed + static_cast<std::uint64_t>(mode)) {
        if (mount) {
            mount(example.mounting);
            example.sensor.setScaleFactors(example.mounting.scaleFactors, 8);
            example.sensor.setMountMode(mode);
        }
        F_VECTOR4 limits{};
        example.record.GetKIVLevelLimits(limits);
        judge.emplace(example.sensor, limits);
    }

    bool update(const KIV_RAWINFO& raw) {
        if (!example.update(raw, info))
            return false;
        trust = judge->judge(example.sensor, raw, info, false);
        return true;
    }

    ExampleSensor example;
    std::optional<TrustJudge> judge;
    simulator::RandomPoses poses;
    simulator::Random random;
    KIV_INFO info{};
    RowTrust trust;
};

void tryBound(BoundTrial& result, Trial& trial, const Pose& pose) {
    KIV_RAWINFO raw;
    if (!trial.example.read(pose, raw) || !trial.update(raw))
        return;
    const double error = largest(residuals(trial.example, pose, trial.info));
    const bool good = trial.trust.trust == Trust::good;
    ++result.rows;
    result.right += error < rightError;
    result.rightNotGood += error < rightError && !good;
    if (!good)
        return;
    ++result.good;
    result.wronglyGood += error > trial.trust.modelError + singlePrecision;
    result.largestError = std::max(result.largestError, error);
    result.largestExcess = std::max(result.largestExcess, error - trial.trust.modelError);
}

} // namespace

BoundTrial tryBound(const Case& which, const Range& range, std::size_t count) {
    BoundTrial result;
    for (const int mode : which.modes) {
        Trial trial(mode, range, which.mount);
        for (std::size_t i = 0; i < count / which.modes.size(); ++i) {
            Pose pose = trial.poses.next();
            if (which.place)
                which.place(pose, trial.poses);
            tryBound(result, trial, pose);
        }
    }
    return result;
}

NoiseTrial tryNoise(int mode, const simulator::Noise& noise, const Range& range,
                    std::size_t count) {
    Trial trial(mode, range);
    Propagation propagation(trial.example.sensor, uncertaintiesOf(noise));
    NoiseTrial result;
    result.leastUncertainty = INFINITY;
    for (std::size_t i = 0; i < count; ++i) {
        const Pose pose = trial.poses.next();
        KIV_RAWINFO raw;
        if (!trial.example.read(pose, raw))
            continue;
        noise.addTo(raw, trial.random);
        if (!trial.update(raw))
            continue;
        ++result.rows;
        AngleUncertainty u;
        if (trial.trust.trust != Trust::good
            || !propagation.of(trial.example.sensor, raw, trial.info, u))
            continue;
        ++result.good;
        const AngleTriple off = residuals(trial.example, pose, trial.info);
        for (std::size_t k = 0; k < 3; ++k) {
            const double ratio = off[k] / u.standard[k];
            result.deviation[k] += ratio * ratio;
            result.within2[k] += std::abs(ratio) <= 2;
            result.leastUncertainty = std::min(result.leastUncertainty, u.standard[k]);
        }
    }
    const auto good = static_cast<double>(result.good);
    for (std::size_t k = 0; k < 3; ++k) {
        result.deviation[k] = std::sqrt(result.deviation[k] / good);
        result.within2[k] /= good;
    }
    return result;
}

std::vector<double> tryMonteCarlo(int mode, const Range& range, std::size_t poses,
                                  std::size_t draws) {
    Trial trial(mode, range);
    Propagation propagation(trial.example.sensor, uncertaintiesOf(usualNoise));
    std::vector<double> differences;
    for (std::size_t done = 0; done < poses;) {
        KIV_RAWINFO raw;
        AngleUncertainty u;
        if (!trial.example.read(trial.poses.next(), raw) || !trial.update(raw)
            || trial.trust.trust != Trust::good)
            continue;
        if (!propagation.of(trial.example.sensor, raw, trial.info, u))
            throw std::runtime_error("no uncertainty of a good row");
        const KIV_INFO middle = trial.info;
        AngleTriple sum{};
        AngleTriple squares{};
        for (std::size_t i = 0; i < draws; ++i) {
            KIV_RAWINFO drawn = raw;
            usualNoise.addTo(drawn, trial.random);
            KIV_INFO info{};
            if (!trial.example.update(drawn, info))
                throw std::runtime_error("no orientation of a draw");
            const double off[] = {host::withinHalfTurn(info.rx - middle.rx),
                                  host::withinHalfTurn(info.ry - middle.ry),
                                  host::withinHalfTurn(info.rz - middle.rz)};
            for (std::size_t k = 0; k < 3; ++k) {
                sum[k] += off[k];
                squares[k] += off[k] * off[k];
            }
        }
        const auto n = static_cast<double>(draws);
        for (std::size_t k = 0; k < 3; ++k) {
            const double deviation = std::sqrt((squares[k] - sum[k] * sum[k] / n) / (n - 1));
            differences.push_back(u.standard[k] / deviation - 1);
        }
        ++done;
    }
    return differences;
}

} // namespace kiv::docs
