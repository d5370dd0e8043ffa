#pragma once

#include <array>
#include <cstddef>
#include <iosfwd>
#include <optional>
#include <string>
#include <string_view>

#include "host/summary/Quantile.h"
#include "host/summary/Statistics.h"
#include "host/tables/RowResult.h"

namespace kiv::host {

// What became of the rows of a run.
class Summary {
public:
    // Without the residuals' figures, which cost time, their largest alone is there.
    explicit Summary(bool withResidualFigures = true) : residualFigures(withResidualFigures) {}

    // The table is named where there are several.
    void add(const RowResult& result, std::size_t line,
             const std::optional<std::array<double, 3>>& truth, std::string_view table = {});

    bool allGood() const {
        return count(RowState::noOrientation) == 0 && count(RowState::refused) == 0;
    }
    // Of the rows in state ok.
    bool allTrusted() const { return count(Trust::good) == count(RowState::ok); }
    std::size_t count(Trust trust) const { return trusts[static_cast<std::size_t>(trust)]; }
    std::size_t rows() const;
    std::size_t count(RowState state) const { return counts[static_cast<std::size_t>(state)]; }
    std::size_t count(Reason reason) const { return reasons[static_cast<std::size_t>(reason)]; }
    std::size_t referenceLine() const { return reference; } // 0: none
    const std::string& referenceTable() const { return tableOfReference; }

    // Of the angles rx, ry and rz of the rows in state ok.
    const Statistics& angle(std::size_t i) const { return angles[i]; }

    // Angle less true angle, of the rows that have one.
    struct Residual {
        Statistics statistics{Statistics::Kind::linear};
        Quantile magnitudes;
        double largest = 0; // magnitude
    };
    const Residual& residual(std::size_t i) const { return residuals[i]; }
    std::size_t compared() const { return withTruth; }
    double largestResidual() const; // of all angles, magnitude in degrees

    void printCounts(std::ostream& out) const;
    void printStatistics(std::ostream& out) const;

private:
    bool residualFigures;
    std::array<std::size_t, rowStateNames.size()> counts{};
    std::array<std::size_t, reasonWords.size()> reasons{};
    std::array<std::size_t, trustWords.size()> trusts{};
    std::size_t reference = 0;
    std::string tableOfReference;
    std::array<Statistics, 3> angles;
    std::size_t withTruth = 0;
    std::array<Residual, 3> residuals;
};

inline constexpr std::array<const char*, 3> angleNames{"rx", "ry", "rz"};

} // namespace kiv::host
