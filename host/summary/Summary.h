#pragma once

#include <array>
#include <cstddef>
#include <iosfwd>
#include <optional>
#include <string>
#include <string_view>

#include "host/rows/RowResult.h"
#include "host/summary/Misfit.h"
#include "host/summary/Quantile.h"
#include "host/summary/SpareReadings.h"
#include "host/summary/Statistics.h"

namespace kiv::host {

// What became of the rows of a run.
class Summary {
public:
    // Without the residuals' quantiles, which cost time, the rest of their figures is there.
    explicit Summary(bool withQuantiles = true) : quantiles(withQuantiles) {}

    // The table is named where there are several.
    void add(const RowResult& result, std::size_t line,
             const std::optional<std::array<double, 3>>& truth, std::string_view table = {});

    // Rows that are none: they have no results.
    void addBlankRows(std::size_t number) { blanks += number; }
    std::size_t blankRows() const { return blanks; }
    // Last rows of tables that have no line end, so that they may be cut.
    void addCutRows(std::size_t number) { cut += number; }
    std::size_t cutRows() const { return cut; }

    bool allGood() const {
        return count(RowState::noOrientation) == 0 && count(RowState::refused) == 0;
    }
    // Null where a row has angles or is the reference; else what no row is, to stand behind
    // "expected".
    const char* whatNoRowIs() const;
    // All rows in state ok are good.
    bool allTrusted() const { return count(Trust::good) == count(RowState::ok); }
    std::size_t count(Trust trust) const { return trusts[static_cast<std::size_t>(trust)]; }
    std::size_t rows() const;
    std::size_t count(RowState state) const { return counts[static_cast<std::size_t>(state)]; }
    std::size_t count(Reason reason) const { return reasons[static_cast<std::size_t>(reason)]; }
    // Says where the reference stands; a row in state reference that is added says so itself.
    void nameReference(std::string_view table, std::size_t line, Trust trust);
    std::size_t referenceLine() const { return reference; } // 0: none
    // The place of that line, in words.
    std::string referencePlace() const;
    const std::string& referenceTable() const { return tableOfReference; } // empty: the only one
    Trust referenceTrust() const { return trustOfReference; }

    // Each row in state ok should have an uncertainty, or a calibration's part in it, from now on.
    void expect(bool uncertainties, bool calibration) {
        uncertaintiesExpected = uncertainties;
        calibrationExpected = calibration;
    }
    std::size_t withoutUncertainty() const { return notUncertain; } // that should have
    // The calibration's part in the uncertainty of the rows that have it: root mean squares,
    // degrees. Nothing without such rows.
    std::optional<AngleTriple> calibrationPart() const;
    std::size_t calibratedRows() const { return withCalibration; }

    const SpareReadings& spareReadings() const { return spare; }

    // The statistics of rx, ry and rz of the rows in state ok.
    const Statistics& angle(std::size_t i) const { return angles[i]; }

    // Angle less true angle, of the rows that have one.
    struct Residual {
        Statistics statistics{Statistics::Kind::linear};
        Quantile magnitudes;
        double largest = 0;       // magnitude
        std::string largestPlace; // in words
    };
    // How many of these are within twice the angle's standard uncertainty, of rows that have one.
    struct Coverage {
        std::size_t rows = 0;
        std::array<std::size_t, 3> within{};

        void add(const std::array<double, 3>& differences, const AngleTriple& standard);
        std::optional<double> share(std::size_t angle) const; // 0 to 1
    };
    const Residual& residual(std::size_t i) const { return residuals[i]; }
    std::size_t compared() const { return withTruth; }
    const Coverage& coverage() const { return ofAllRows; }
    const Coverage& coverageOfGood() const { return ofGoodRows; } // whose trust is good
    const Residual& largestResidual() const;                      // of all angles
    // The rows' angles against the true ones, as far as the model answers for them.
    const Misfit& misfit() const { return missed; }
    // True angles are there that the angles do not fit.
    bool poorFit() const { return missed.enoughOf(withTruth) && !missed.fits(); }

    void printCounts(std::ostream& out) const;
    void printStatistics(std::ostream& out) const;

private:
    bool quantiles;
    std::array<std::size_t, rowStateNames.size()> counts{};
    std::array<std::size_t, reasonWords.size()> reasons{};
    std::array<std::size_t, trustWords.size()> trusts{};
    std::size_t blanks = 0;
    std::size_t cut = 0;
    std::size_t reference = 0;
    std::string tableOfReference;
    Trust trustOfReference = Trust::good;
    bool uncertaintiesExpected = false;
    bool calibrationExpected = false;
    std::size_t withCalibration = 0;
    AngleTriple calibrationVariance{}; // sums
    std::size_t notUncertain = 0;
    SpareReadings spare;
    std::array<Statistics, 3> angles;
    std::size_t withTruth = 0;
    std::array<Residual, 3> residuals;
    Coverage ofAllRows;
    Coverage ofGoodRows;
    Misfit missed;
};

// A cell of a table on a terminal.
void printCell(std::ostream& out, const std::string& text);

inline constexpr std::array<const char*, 3> angleNames{"rx", "ry", "rz"};

} // namespace kiv::host
