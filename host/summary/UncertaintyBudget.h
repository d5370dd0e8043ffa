#pragma once

#include <array>
#include <cstddef>

#include "host/rows/RowResult.h"

namespace kiv::host {

// What the angles' uncertainty is made of, over the rows of a run that have one.
class UncertaintyBudget {
public:
    void add(const RowResult& row);

    std::size_t rows() const { return count; }

    // The mean over the rows of a part's share of each angle's variance, 0 to 1; all parts are 1.
    AngleTriple share(Source source) const { return meanOf(shares[at(source)]); }
    AngleTriple roundingShare() const { return meanOf(shares[sourceCount]); }

    // Root mean squares over the rows, degrees: of the standard uncertainty, and of the part of the
    // reference's readings, which all rows have in common.
    AngleTriple standard() const { return rootOf(meanOf(variance)); }
    AngleTriple reference() const { return rootOf(meanOf(referenceVariance)); }

private:
    AngleTriple meanOf(const AngleTriple& sums) const;
    static AngleTriple rootOf(const AngleTriple& squares);

    std::size_t count = 0;
    std::array<AngleTriple, sourceCount + 1> shares{}; // sums; rounding last
    AngleTriple variance{};
    AngleTriple referenceVariance{};
};

} // namespace kiv::host
