#pragma once

#include <array>
#include <cstddef>
#include <string_view>
#include <vector>

#include "host/base/Embedded.h"

// The reference cases that the tool carries: readings of a sensor in every mount mode with what a
// second computation outside of the library, tests/verify/make-cases, made of them.
namespace kiv::host {

// What is compared.
enum Compared : std::size_t { correctedReadings, matrixEntries, angles, qvcVector, comparedCount };

// The largest difference that another C library explains. Corrected readings, degrees, take sums,
// products and quotients alone, which are the same everywhere. Angles, degrees, and the QVC vector
// are single precision, with steps of 1.5e-5 near 180.
inline constexpr std::array<double, comparedCount> allowedDifference{0, 1e-13, 2e-5, 2e-5};

struct Difference {
    double size = 0; // infinite where a value is not a number
    // The place where it was found.
    std::size_t caseNumber = 0; // from 1
    std::string_view column;
    double expected = 0;
    double found = 0;
};

struct ModelCheck {
    std::string_view model;
    std::vector<int> mountModes{};
    std::size_t cases = 0;
    std::array<Difference, comparedCount> largest{};

    bool good() const;
};

// What the tool carries; the tests put a changed digit in its place.
struct ReferenceData {
    std::string_view parameters = embedded::verifyParameters();
    std::string_view cases = embedded::verifyCases();
};

// Takes all cases through the library, as a run takes readings. Nothing where they cannot be read.
std::vector<ModelCheck> checkModels(const ReferenceData& data);

} // namespace kiv::host
