#pragma once

#include <array>
#include <cstddef>
#include <iosfwd>
#include <string_view>
#include <vector>

// The reference cases that the tool carries: readings of a sensor in every mount mode with what a
// second computation outside of the library, host/verify/make-cases, made of them.
namespace kiv::host {

// What is compared, with the largest difference that another C library or compiler explains.
struct Quantity {
    std::string_view name;
    double bound;
};

// Corrected readings take sums, products and quotients alone, which are the same everywhere. Angles
// and the QVC vector are single precision: a step of it is 1.5e-5 degrees near 180.
inline constexpr std::array<Quantity, 4> quantities{
    {{"readings", 0}, {"matrix", 1e-13}, {"angles", 2e-5}, {"qvc", 2e-5}}};

struct Difference {
    double size = 0; // infinite where a value is not a number
    // Where it was found.
    std::size_t caseNumber = 0; // from 1
    std::string_view column;
    double expected = 0;
    double found = 0;
};

struct ModelCheck {
    std::string_view model;
    std::vector<int> mountModes;
    std::size_t cases = 0;
    std::array<Difference, quantities.size()> largest; // of each quantity

    bool good() const;
};

// Takes all cases through the library, as a run takes readings. What cannot be read of them is
// reported and counts as a difference.
std::vector<ModelCheck> checkModels(std::ostream& err);

} // namespace kiv::host
