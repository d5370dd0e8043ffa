#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <vector>

#include "host/rows/RowResult.h"

namespace kiv::host {

// Rows spread evenly over a recording, in its order, some hundred at most, and the one that became
// the reference: which they are depends on the recording alone. Memory does not grow.
class RowSample {
public:
    using Angles = std::array<double, 3>; // rx, ry, rz, degrees

    struct Row {
        KIV_RAWINFO raw{};
        std::optional<Angles> truth;
        std::size_t number = 0; // among all that could be taken
        bool reference = false;
    };
    // Once a row has true angles, those without are left out.
    void add(const RowResult& row, const std::optional<Angles>& truth);

    bool hasTrueAngles() const { return known; }
    const std::vector<Row>& rows() const { return taken; }

    static constexpr std::size_t most = 512;

private:
    bool isInStep(const Row& row) const { return row.reference || row.number % step == 0; }

    bool known = false;
    std::vector<Row> taken;
    std::size_t number = 0;
    std::size_t step = 1;
};

} // namespace kiv::host
