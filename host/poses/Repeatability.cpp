#include "host/poses/Repeatability.h"

#include <algorithm>
#include <cmath>

#include "host/base/Distributions.h"

namespace kiv::host {

namespace {

constexpr double confidence = 0.95;

} // namespace

Repeatability::Same& Repeatability::placeOf(const Pose& pose) {
    if (!grouping.poseId.empty()) {
        const auto [place, isNew] = byId.try_emplace(pose.id, places.size());
        if (isNew)
            places.push_back({pose.id, {}});
        return places[place->second];
    }
    const auto near = std::find_if(places.begin(), places.end(), [&](const Same& place) {
        return angleOf(rotationFrom(place.poses.first(), pose.figures.mean)) <= *grouping.same;
    });
    if (near != places.end())
        return *near;
    return places.emplace_back(Same{std::to_string(pose.number), {}});
}

void Repeatability::add(const Pose& pose) {
    if (!pose.figures.hasMean)
        return;
    if (!grouping.poseId.empty() || grouping.same)
        placeOf(pose).poses.add(pose.figures.mean, std::nullopt);
    for (std::size_t i = 0; pose.residual && i < 3; ++i)
        residuals[i].add((*pose.residual)[i]);
}

std::vector<Repeatability::Place> Repeatability::placesThatComeAgain() const {
    std::vector<Place> again;
    for (const Same& place : places) {
        if (place.poses.size() < 2)
            continue;
        Place& next = again.emplace_back(Place{place.id, place.poses.size(), {}, {}});
        const PoseFigures figures = figuresOf(place.poses, local);
        for (std::size_t i = 0; i < 3; ++i) {
            next.angles[i] = figures.axes[i].angle;
            next.deviation[i] = figures.axes[i].deviation;
        }
    }
    return again;
}

std::optional<Repeatability::Pooled> Repeatability::pooled() const {
    Pooled all;
    for (const Place& place : placesThatComeAgain()) {
        if (std::isnan(place.deviation[0])) // with ry at 90 degrees
            continue;
        ++all.places;
        all.poses += place.poses;
        for (std::size_t i = 0; i < 3; ++i)
            all.deviation[i] +=
                static_cast<double>(place.poses - 1) * place.deviation[i] * place.deviation[i];
    }
    if (all.places == 0)
        return std::nullopt;
    all.degreesOfFreedom = all.poses - all.places;
    const auto degrees = static_cast<double>(all.degreesOfFreedom);
    const auto bound = [=](double probability) {
        return std::sqrt(degrees / chiSquaredQuantile(probability, degrees));
    };
    for (std::size_t i = 0; i < 3; ++i) {
        all.deviation[i] = std::sqrt(all.deviation[i] / degrees);
        all.low[i] = all.deviation[i] * bound((1 + confidence) / 2);
        all.high[i] = all.deviation[i] * bound((1 - confidence) / 2);
    }
    return all;
}

std::optional<Repeatability::Systematic> Repeatability::systematic() const {
    Systematic all;
    all.poses = residuals[0].count;
    if (all.poses < 2)
        return std::nullopt;
    const auto count = static_cast<double>(all.poses);
    for (std::size_t i = 0; i < 3; ++i) {
        all.mean[i] = residuals[i].mean;
        all.deviation[i] = residuals[i].deviation();
        all.uncertainty[i] = all.deviation[i] / std::sqrt(count);
        const double t = std::abs(all.mean[i]) / all.uncertainty[i];
        all.probability[i] = 2 * studentProbability(-t, count - 1);
        all.differs[i] = all.probability[i] < 1 - confidence;
    }
    return all;
}

} // namespace kiv::host
