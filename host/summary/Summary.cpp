#include "host/summary/Summary.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <ostream>
#include <string>

#include "host/base/MessageLimit.h"
#include "support/Numbers.h"

namespace kiv::host {

namespace {

constexpr std::size_t cellWidth = 13;

} // namespace

void printCell(std::ostream& out, const std::string& text) {
    out << std::string(cellWidth - std::min(cellWidth, text.size()), ' ') << text;
}

void Summary::add(const RowResult& result, std::size_t line,
                  const std::optional<std::array<double, 3>>& truth, std::string_view table) {
    ++counts[static_cast<std::size_t>(result.state)];
    ++reasons[static_cast<std::size_t>(result.reason)];
    if (result.state == RowState::reference)
        nameReference(table, line, result.trust.trust);
    if (result.state != RowState::ok)
        return;
    ++trusts[static_cast<std::size_t>(result.trust.trust)];
    spare.add(result.trust, line);
    const bool lacks = (uncertaintiesExpected && !result.hasUncertainty)
                       || (calibrationExpected && !result.hasCalibration);
    notUncertain += lacks ? 1U : 0U;
    withCalibration += result.hasCalibration ? 1U : 0U;
    for (std::size_t i = 0; result.hasCalibration && i < 3; ++i)
        calibrationVariance[i] += result.calibration[i] * result.calibration[i];
    const std::array<double, 3> values{result.info.rx, result.info.ry, result.info.rz};
    for (std::size_t i = 0; i < 3; ++i)
        angles[i].add(values[i]);
    if (!truth)
        return;
    ++withTruth;
    const std::array<double, 3> off = differences(result.info, *truth);
    for (std::size_t i = 0; i < 3; ++i) {
        if (const double size = std::abs(off[i]); size > residuals[i].largest) {
            residuals[i].largest = size;
            residuals[i].largestPlace = linePlace(line, table);
        }
        residuals[i].statistics.add(off[i]);
        if (quantiles)
            residuals[i].magnitudes.add(std::abs(off[i]));
    }
    AngleTriple u{};
    for (std::size_t i = 0; i < 3; ++i)
        u[i] = std::hypot(result.hasUncertainty ? result.uncertainty.standard[i] : 0,
                          result.hasCalibration ? result.calibration[i] : 0);
    missed.add(result.trust, largestOf(off), largestOf(u));
    if (!result.hasUncertainty)
        return;
    ofAllRows.add(off, result.uncertainty.standard);
    if (result.trust.trust == Trust::good)
        ofGoodRows.add(off, result.uncertainty.standard);
}

std::optional<AngleTriple> Summary::calibrationPart() const {
    if (withCalibration == 0)
        return std::nullopt;
    AngleTriple root;
    for (std::size_t i = 0; i < 3; ++i)
        root[i] = std::sqrt(calibrationVariance[i] / static_cast<double>(withCalibration));
    return root;
}

void Summary::nameReference(std::string_view table, std::size_t line, Trust trust) {
    reference = line;
    tableOfReference = table;
    trustOfReference = trust;
}

std::string Summary::referencePlace() const {
    return linePlace(reference, tableOfReference);
}

void Summary::Coverage::add(const std::array<double, 3>& differences, const AngleTriple& standard) {
    ++rows;
    for (std::size_t i = 0; i < 3; ++i)
        within[i] += std::abs(differences[i]) <= 2 * standard[i] ? 1U : 0U;
}

std::optional<double> Summary::Coverage::share(std::size_t angle) const {
    if (rows == 0)
        return std::nullopt;
    return static_cast<double>(within[angle]) / static_cast<double>(rows);
}

std::size_t Summary::rows() const {
    return std::accumulate(counts.begin(), counts.end(), std::size_t{0});
}

const Summary::Residual& Summary::largestResidual() const {
    return *std::max_element(residuals.begin(), residuals.end(),
                             [](const auto& a, const auto& b) { return a.largest < b.largest; });
}

const char* Summary::whatNoRowIs() const {
    if (count(RowState::ok) + count(RowState::reference) > 0)
        return nullptr;
    return rows() == 0                         ? "rows behind the row of names, found none"
           : count(RowState::status) == rows() ? "rows with status 2, found none"
           : count(RowState::noReference) > 0
               ? "a row that can become the reference, with a ref_metric of at most 0.4 and a "
                 "ref_blocked of 0, found none"
               : "rows with angles, found none";
}

void Summary::printCounts(std::ostream& out) const {
    out << rows() << (rows() == 1 ? " row" : " rows");
    const char* separator = ": ";
    for (std::size_t i = 0; i < counts.size(); ++i) {
        if (counts[i] == 0)
            continue;
        out << separator << counts[i] << ' ' << rowStateNames[i];
        if (i == static_cast<std::size_t>(RowState::reference))
            out << " (" << referencePlace() << ')';
        separator = ", ";
    }
    out << '\n';
    const auto list = [&](const char* start, const auto& numbers, std::size_t from, auto word) {
        separator = start;
        for (std::size_t i = from; i < numbers.size(); ++i) {
            if (numbers[i] == 0)
                continue;
            out << separator << numbers[i] << ' ' << word(i);
            separator = ", ";
        }
        if (*separator == ',')
            out << '\n';
    };
    list("reasons: ", reasons, 1, [](std::size_t i) { return reasonWords[i].word; });
    if (!allTrusted())
        list("trust: ", trusts, 0, [this](std::size_t i) {
            const bool ofReference = static_cast<Trust>(i) == Trust::reference;
            return std::string(trustWords[i].word)
                   + (ofReference ? std::string(" (") + wordOf(trustOfReference) + ')' : "");
        });
    if (const std::string objection = spare.objection(); !objection.empty())
        out << "spare reading: " << objection << '\n';
    if (blanks > 0)
        out << "blank_rows: " << blanks << '\n';
    if (cut > 0)
        out << "may_be_cut: " << cut << '\n';
    if (reference > 0 && count(RowState::reference) == 0)
        out << "reference: " << referencePlace() << '\n';
    if (notUncertain > 0)
        out << "uncertainty: " << notUncertain
            << (notUncertain == 1 ? " row with angles has none\n"
                                  : " rows with angles have none\n");
}

void Summary::printStatistics(std::ostream& out) const {
    if (count(RowState::ok) > 0) {
        out << "degrees";
        for (const char* heading : {"mean", "deviation", "least", "largest"})
            printCell(out, heading);
        out << '\n';
        for (std::size_t i = 0; i < 3; ++i) {
            out << "     " << angleNames[i];
            const Statistics::Figures figures = angles[i].figures();
            if (figures.allTheWayRound)
                out << "     all the way round";
            else
                for (const double value :
                     {figures.mean, figures.deviation, figures.least, figures.largest})
                    printCell(out, degreesText(value));
            out << '\n';
        }
    }
    if (const auto part = calibrationPart())
        out << "uncertainty from the calibration: rx " << degreesText((*part)[0]) << ", ry "
            << degreesText((*part)[1]) << ", rz " << degreesText((*part)[2]) << " degrees\n";
    if (withTruth == 0)
        return;
    out << "residual" << std::string(cellWidth - 1 - 4, ' ') << "mean";
    for (const char* heading : {"rms", "largest"})
        printCell(out, heading);
    out << '\n';
    for (std::size_t i = 0; i < 3; ++i) {
        const Statistics::Figures figures = residuals[i].statistics.figures();
        out << "     " << angleNames[i];
        for (const double value : {figures.mean, figures.rootMeanSquare, residuals[i].largest})
            printCell(out, degreesText(value));
        out << '\n';
    }
}

} // namespace kiv::host
