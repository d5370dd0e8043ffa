#include "host/poses/ResultRows.h"

#include <algorithm>
#include <string>

#include "host/poses/PoseFigures.h"
#include "host/summary/Summary.h"
#include "judged/RowResults.h"
#include "params/Quoted.h"

namespace kiv::host {

namespace {

// Of an element, between a row's matrix and that of its angles, which have single precision.
constexpr double matrixTolerance = 1e-5;

double numberAt(const Table& table, std::optional<std::size_t> place) {
    double value = noNumber;
    return place && table.numberAt(*place, value) ? value : noNumber;
}

// The place of a word in a list that word(i) gives; its size where there is none.
template <typename Words, typename WordOf>
std::size_t placeOf(std::string_view text, const Words& words, WordOf word) {
    return static_cast<std::size_t>(
        std::find_if(words.begin(), words.end(),
                     [&](const auto& each) { return word(each) == text; })
        - words.begin());
}

} // namespace

ResultRows::ResultRows(const Table& table, bool localFrame)
    : local(localFrame), trust(table.find("trust")), truth(table, !localFrame), time(table) {
    for (std::size_t i = 0; i < matrix.size(); ++i) {
        const char name[] = {'m', static_cast<char>('0' + i / 3), static_cast<char>('0' + i % 3)};
        matrix[i] = table.find({name, sizeof name});
        matrices = matrices && matrix[i];
    }
    constexpr std::string_view names[] = {"azimuth_corrected_deg", "elevation_corrected_deg",
                                          "level_x_corrected_deg", "level_y_corrected_deg",
                                          "temperature"};
    for (std::size_t i = 0; i < reading.size(); ++i)
        reading[i] = table.find(names[i]);
    for (std::size_t i = 0; i < uncertainty.size(); ++i)
        uncertainty[i] = table.find(std::string("u_") + angleNames[i] + "_deg");
}

void ResultRows::read(Table& table, ComputedRow& row) const {
    row.line = table.lineNumber();
    RowResult& result = row.result;
    result = {};
    row.time.reset();
    if (!table.checkRow())
        return;
    row.time = time.of(table);
    const std::string_view state = table.text(0);
    const std::size_t found =
        placeOf(state, rowStateNames, [](const char* word) { return std::string_view(word); });
    if (found == rowStateNames.size())
        return table.report(0, "a state of kiv run", inQuotes(state), "with another state");
    result.state = static_cast<RowState>(found);
    if (!hasAngles(result.state))
        return;
    KIV_INFO& info = result.info;
    if (!table.readNumber(1, info.rx) || !table.readNumber(2, info.ry)
        || !table.readNumber(3, info.rz)) {
        result.state = RowState::refused;
        return;
    }
    const std::string_view word = trust ? table.cell(*trust) : wordOf(Trust::good);
    const std::size_t judged = placeOf(
        word, trustWords, [](const TrustWords& each) { return std::string_view(each.word); });
    if (judged == trustWords.size()) {
        table.reportRow("a trust of kiv run", inQuotes(word), "with another trust");
        result.state = RowState::refused;
        return;
    }
    result.trust.trust = static_cast<Trust>(judged);
    double values[9]{};
    std::transform(matrix.begin(), matrix.end(), values,
                   [&](Place place) { return numberAt(table, place); });
    const Matrix byAngles = rotationBy({info.rx, info.ry, info.rz}, local);
    const bool complete = std::all_of(values, values + 9, [](double v) { return !std::isnan(v); });
    const bool agree = std::equal(values, values + 9, byAngles.begin(), [](double a, double b) {
        return std::abs(a - b) <= matrixTolerance;
    });
    if (complete && !agree) {
        table.reportRow(local ? "angles of the row's matrix in the local frame"
                              : "angles of the row's matrix (--frame local for local results)",
                        "others", "with angles of another frame");
        result.state = RowState::refused;
        return;
    }
    std::copy_n(complete ? values : byAngles.data(), 9, result.matrix);
    float* const readings[] = {&info.azimuth, &info.elevation, &info.levelX, &info.levelY,
                               &result.raw.temperature};
    for (std::size_t i = 0; i < reading.size(); ++i)
        *readings[i] = static_cast<float>(numberAt(table, reading[i]));
    row.truth = truth.angles(table);
    AngleTriple& standard = result.uncertainty.contribution[0]; // as noise
    for (std::size_t i = 0; i < uncertainty.size(); ++i)
        standard[i] = numberAt(table, uncertainty[i]);
    result.hasUncertainty = !std::isnan(standard[0] + standard[1] + standard[2]);
}

} // namespace kiv::host
