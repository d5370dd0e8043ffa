#pragma once

#include <array>
#include <cstddef>
#include <iosfwd>

namespace kiv::host {

// What became of a row of readings.
enum class RowState : unsigned char {
    ok,            // the angles are computed
    status,        // the measurement status is not 2
    noReference,   // no reference orientation has been captured yet
    reference,     // this row became the reference
    noOrientation, // the model has none for it
    refused,       // the readings are no use and never reached the library
};

inline constexpr std::array<const char*, 6> rowStateNames{
    "ok", "status", "no_reference", "reference", "no_orientation", "refused"};

// Counts the rows of a run.
class Summary {
public:
    void count(RowState state, std::size_t line);
    // Angles in degrees, in the order rx, ry, rz.
    void compare(const std::array<double, 3>& angles, const std::array<double, 3>& truth);

    bool allGood() const { return counts[4] == 0 && counts[5] == 0; }
    void print(std::ostream& out) const;

private:
    std::array<std::size_t, rowStateNames.size()> counts{};
    std::size_t referenceLine = 0;
    std::size_t compared = 0;
    std::array<double, 3> largest{}; // difference to the truth, degrees
};

} // namespace kiv::host
