#include "tests/proofs/TrustTrials.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <stdexcept>

#include "host/summary/Statistics.h"
#include "judged/RowState.h"
#include "sensor/Update.h"
#include "simulator/Noise.h"
#include "tests/proofs/ExampleSensor.h"
#include "uncertainty/Propagation.h"
#include "uncertainty/Trust.h"

namespace kiv::docs {

namespace {

using simulator::Pose;

constexpr double rightError = 0.001; // degrees
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
    Trial(int mode, const Range& range, const std::function<void(simulator::Mounting&)>& mount = {},
          float limit = 0)
        : example(KIV_SENSORS "/wide" + std::to_string(mode)),
          poses(seed,
                {range.mostTilt, -range.steepest, range.steepest, simulator::invertedIn(mode)}),
          random(seed + static_cast<std::uint64_t>(mode)) {
        if (mount) {
            mount(example.mounting);
            example.sensor.setScaleFactors(simulator::SingleValues(example.mounting).scaleFactors,
                                           8);
            example.sensor.setMountMode(mode);
        }
        F_VECTOR4 limits{};
        example.record.GetKIVLevelLimits(limits);
        if (limit > 0)
            limits = {-limit, limit, -limit, limit};
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

void countRow(BoundTrial& result, double error, const RowTrust& row) {
    const bool good = row.trust == Trust::good;
    ++result.rows;
    result.right += error < rightError;
    result.rightNotGood += error < rightError && !good;
    if (!good)
        return;
    ++result.good;
    result.wronglyGood += error > row.modelError + singlePrecision;
    result.largestError = std::max(result.largestError, error);
    result.largestExcess = std::max(result.largestExcess, error - row.modelError);
}

void tryBound(BoundTrial& result, Trial& trial, const Pose& pose) {
    KIV_RAWINFO raw;
    if (trial.example.read(pose, raw) && trial.update(raw))
        countRow(result, largest(residuals(trial.example, pose, trial.info)), trial.trust);
}

} // namespace

BoundTrial tryBound(const Case& which, const Range& range, std::size_t count) {
    BoundTrial result;
    for (const int mode : which.modes) {
        Trial trial(mode, range, which.mount, which.limit);
        for (std::size_t i = 0; i < count / which.modes.size(); ++i) {
            Pose pose = trial.poses.next();
            if (which.place)
                which.place(pose, trial.poses);
            tryBound(result, trial, pose);
        }
    }
    return result;
}

WideTrial tryAnySensor(int mode, Dead dead, std::size_t poses) {
    constexpr std::size_t eachSensor = 100;
    WideTrial result;
    simulator::Random random(seed + 100 * static_cast<std::uint64_t>(mode)
                             + static_cast<std::uint64_t>(dead));
    for (std::size_t sensor = 0; sensor < poses / eachSensor; ++sensor) {
        AnySensor any(mode, sensor % 2 == 0, dead, random);
        TrustJudge judge(any.sensor, any.limits);
        std::optional<Pose> reference;
        for (std::size_t i = 0; i < eachSensor; ++i) {
            Pose pose;
            KIV_RAWINFO raw;
            KIV_INFO info;
            if (!any.next(pose, raw))
                continue;
            const UpdateOutcome outcome = SensorUpdate::run(any.sensor, raw, info);
            const RowState state = stateAfter(any.sensor, outcome, info);
            if (state != RowState::reference && state != RowState::ok)
                continue;
            const RowTrust row = judge.judge(any.sensor, raw, info, state == RowState::reference);
            if (state == RowState::reference) {
                reference = pose;
                continue;
            }
            double angles[3];
            double off[3];
            any.trueAngles(pose, *reference, angles);
            const double found[] = {info.rx, info.ry, info.rz};
            for (std::size_t k = 0; k < 3; ++k)
                off[k] = std::abs(host::withinHalfTurn(found[k] - angles[k]));
            const double error = std::max({off[0], off[1], off[2]});
            countRow(result, error, row);
            result.farAbove += row.trust == Trust::good && error > row.modelError + 0.01;
        }
    }
    return result;
}

NoiseTrial tryNoise(int mode, const simulator::Noise& noise, const Range& range,
                    std::size_t count) {
    Trial trial(mode, range);
    trial.judge->expect(uncertaintiesOf(noise));
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
