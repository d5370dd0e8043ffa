#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "host/poses/PoseGathering.h"
#include "host/summary/Statistics.h"

namespace kiv::host {

// How well poses that come again agree, and how far poses are from the truth: as the changes of rx,
// ry and rz, degrees. Memory grows with the poses, 16 bytes each.
class Repeatability {
public:
    Repeatability(const Grouping& asked, bool localFrame) : grouping(asked), local(localFrame) {}

    void add(const Pose& pose);

    // Poses that are the same.
    struct Place {
        std::string id; // the cell of --pose-id; else the number of the first of them
        std::size_t poses;
        std::array<double, 3> angles;    // of their mean rotation
        std::array<double, 3> deviation; // standard deviation of one of them
    };
    std::vector<Place> placesThatComeAgain() const;

    // The standard deviation of a pose about the mean of those that are the same, over all places
    // that come again. Source: ISO 5725-2, the repeatability standard deviation.
    struct Pooled {
        std::size_t places = 0, poses = 0, degreesOfFreedom = 0;
        std::array<double, 3> deviation{};
        std::array<double, 3> low{}, high{}; // the 95 % interval, by the chi-squared distribution
    };
    std::optional<Pooled> pooled() const; // nothing where none comes again

    // Poses less their true angles: the mean is what they have in common.
    struct Systematic {
        std::size_t poses = 0;
        std::array<double, 3> mean{}, deviation{}, uncertainty{}; // of the mean, standard
        std::array<double, 3> probability{}; // of a mean so far from 0 by chance
        std::array<bool, 3> differs{};       // from 0, with 95 % confidence
    };
    std::optional<Systematic> systematic() const; // nothing with fewer than two true poses

private:
    struct Same {
        std::string id;
        PoseRows poses;
    };
    Same& placeOf(const Pose& pose);

    const Grouping& grouping;
    bool local;
    std::vector<Same> places;
    std::unordered_map<std::string, std::size_t> byId;
    std::array<Moments, 3> residuals;
};

} // namespace kiv::host
