#include "host/summary/UncertaintyBudget.h"

#include <cmath>

namespace kiv::host {

void UncertaintyBudget::add(const RowResult& row) {
    if (row.state != RowState::ok || !row.hasUncertainty)
        return;
    ++count;
    const AngleUncertainty& u = row.uncertainty;
    for (std::size_t i = 0; i < 3; ++i) {
        const double whole = u.standard[i] * u.standard[i]; // above 0, as it has that of rounding
        for (std::size_t source = 0; source < sourceCount; ++source)
            shares[source][i] += u.contribution[source][i] * u.contribution[source][i] / whole;
        shares[sourceCount][i] += u.rounding[i] * u.rounding[i] / whole;
        variance[i] += whole;
        referenceVariance[i] += u.reference[i] * u.reference[i];
    }
}

AngleTriple UncertaintyBudget::meanOf(const AngleTriple& sums) const {
    AngleTriple means{};
    for (std::size_t i = 0; i < 3 && count > 0; ++i)
        means[i] = sums[i] / static_cast<double>(count);
    return means;
}

AngleTriple UncertaintyBudget::rootOf(const AngleTriple& squares) {
    return {std::sqrt(squares[0]), std::sqrt(squares[1]), std::sqrt(squares[2])};
}

} // namespace kiv::host
