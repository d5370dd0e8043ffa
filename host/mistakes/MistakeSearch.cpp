#include "host/mistakes/MistakeSearch.h"

#include <algorithm>
#include <cmath>

#include "KIVInterface/CKivPrm.h"
#include "KIVInterface/ConfigureSensor.h"
#include "host/mistakes/Mistakes.h"
#include "host/summary/Statistics.h"
#include "params/Parser.h"
#include "params/RecordLoading.h"
#include "support/Principles.h"
#include "support/ZelUtil.h"

namespace kiv::host {

namespace {

constexpr double timesExactBest = 10; // root mean squares, up to 0.05 degrees
constexpr double leastLimit = 0.01;   // degrees; twice the model's own error
constexpr double timesNoisyBest = 3;  // root mean squares, of the best fitting mistake's
constexpr double mostThatFits = 1;    // degrees
constexpr double mostOfAsItStands = 0.2;
constexpr std::size_t fewestForScatter = 10; // rows
constexpr double mostOfFew = 0.15;           // degrees; of fewer rows
constexpr double leastChange = 1e-4; // degrees; more than single precision makes of an angle

// A sensor by its parameter file with a mistake taken back.
struct Setup {
    CKiv sensor;
    F_VECTOR4 levelLimits{};

    Setup(ParsedFile file, const Mistake& mistake) {
        if (mistake.mountMode != 0)
            file.document.blocks[static_cast<std::size_t>(Block::mountingMode)]->integer =
                mistake.mountMode;
        CKivPrm record;
        RecordLoading::store(record, file);
        if (mistake.machineInverted) {
            double matrix[9];
            record.getMachineMatrix(matrix, 3);
            if (MatrixInverse(matrix, 3))
                record.setMachineMatrix(matrix, 3);
        }
        record.GetKIVLevelLimits(levelLimits);
        configureSensor(sensor, record);
        sensor.setMcsFlag(!mistake.localFrame);
    }
};

// What is compared of a row with and without a change.
struct Shown {
    RowState state;
    float angles[3];
    double spare;

    bool differs(const Shown& other) const {
        const auto apart = [](double a, double b) {
            return std::isnan(a) != std::isnan(b) || std::abs(withinHalfTurn(a - b)) > leastChange;
        };
        return state != other.state || apart(angles[0], other.angles[0])
               || apart(angles[1], other.angles[1]) || apart(angles[2], other.angles[2])
               || apart(spare, other.spare);
    }
};

struct Trial {
    Fit fit;
    Scatter angles;
    Scatter spare;
    std::vector<Shown> rows;

    bool differs(const Trial& other) const {
        return !std::equal(rows.begin(), rows.end(), other.rows.begin(), other.rows.end(),
                           [](const Shown& a, const Shown& b) { return !a.differs(b); });
    }
};

Trial tryOut(const ParsedFile& file, const RowSample& sample, const Mistake& mistake,
             const std::optional<Uncertainties>& uncertainties) {
    const Setup setup(file, mistake);
    JudgedSensor judged(setup.sensor, setup.levelLimits);
    if (uncertainties)
        judged.setUncertainties(*uncertainties);
    const JudgedSensor::Wanted wanted{
        .state = true, .trust = true, .uncertainty = uncertainties.has_value()};
    Trial trial;
    JudgedReading out;
    for (const RowSample::Row& row : sample.rows()) {
        KIV_RAWINFO raw = row.raw;
        if (mistake.readings)
            mistake.readings(raw);
        judged.judge(raw, wanted, out);
        const bool ok = out.state == RowState::ok;
        trial.rows.push_back(
            {out.state, {out.info.rx, out.info.ry, out.info.rz}, ok ? out.trust.spare : 0});
        if (!ok)
            continue;
        const AngleTriple u = out.hasUncertainty ? out.uncertainty.standard : AngleTriple{};
        if (row.truth) {
            const Scatter::Values missed = differences(out.info, *row.truth);
            if (trial.fit.angles.add(out.trust, largestOf(missed), largestOf(u)))
                trial.angles.add(missed);
        }
        if (std::isfinite(out.trust.spare)
            && trial.fit.spare.add(out.trust, std::abs(out.trust.spare), out.trust.spareDeviation))
            trial.spare.add({out.trust.spare});
    }
    return trial;
}

double rootMeanSquare(const Misfit& counted) {
    return counted.counted().rootMeanSquare();
}

double worstOf(const Fit& fit) {
    return std::max(rootMeanSquare(fit.angles), rootMeanSquare(fit.spare));
}

// Where hardly a row counts as it stands, all tell what is to fall.
bool fallsEnough(const Misfit& now, const Misfit& before, std::size_t rows) {
    const Misfit::Tally& tally = before.enoughOf(rows) ? before.counted() : before.ofAllRows();
    const double from = tally.rootMeanSquare();
    return now.counted().rows > 0 && from > before.allowed()
           && rootMeanSquare(now) <= mostOfAsItStands * from;
}

bool scatters(const Misfit& misfit, const Scatter& scatter) {
    if (rootMeanSquare(misfit) <= Misfit::allowedWithoutUncertainties)
        return true;
    return misfit.counted().rows < fewestForScatter ? rootMeanSquare(misfit) <= mostOfFew
                                                    : scatter.isNoise();
}

bool falls(const JudgedMistake& mistake, const MistakeSearch& search) {
    return search.shownOf(search.asItStands).ofAllRows().rows == 0
           || fallsEnough(mistake.fit.angles, search.asItStands.angles, search.rows)
           || fallsEnough(mistake.fit.spare, search.asItStands.spare, search.rows);
}

bool fits(const MistakeSearch& search) {
    const auto& [angles, spare] = search.asItStands;
    return search.shownOf(search.asItStands).enoughOf(search.rows) && angles.fits() && spare.fits();
}

void markThoseThatFit(MistakeSearch& search) {
    if (fits(search))
        return;
    double best = mostThatFits;
    for (const JudgedMistake& mistake : search.judged)
        if (mistake.visible && mistake.scatters && falls(mistake, search))
            best = std::min(best, worstOf(mistake.fit));
    const double most =
        std::max(timesNoisyBest * best, std::clamp(timesExactBest * best, leastLimit,
                                                   Misfit::allowedWithoutUncertainties));
    for (JudgedMistake& mistake : search.judged)
        mistake.fits = mistake.visible && mistake.scatters && falls(mistake, search)
                       && worstOf(mistake.fit) <= std::min(most, mostThatFits);
}

} // namespace

void Scatter::add(const Values& values) {
    for (std::size_t i = 0; i < values.size(); ++i) {
        squares += values[i] * values[i];
        if (before)
            steps += (values[i] - (*before)[i]) * (values[i] - (*before)[i]);
    }
    before = values;
}

MistakeSearch::Verdict MistakeSearch::verdict() const {
    if (std::any_of(judged.begin(), judged.end(), [](const JudgedMistake& m) { return m.fits; }))
        return Verdict::named;
    if (!shownOf(asItStands).enoughOf(rows))
        return Verdict::tooFewRows;
    return host::fits(*this) ? Verdict::fits : Verdict::unexplained;
}

std::optional<MistakeSearch> searchMistakes(const ParsedFile& file, const RowSample& sample,
                                            const std::optional<Uncertainties>& uncertainties) {
    const BlockValues* modeOfFile = file.document.find(Block::mountingMode);
    const bool byAngles = sample.hasTrueAngles();
    if (!modeOfFile || (!byAngles && !hasSpareReading(modeOfFile->integer)))
        return std::nullopt;
    const Trial asItStands = tryOut(file, sample, {}, uncertainties);
    MistakeSearch search{byAngles, sample.rows().size(), asItStands.fit, {}};
    for (const Mistake& mistake : mistakesFor(modeOfFile->integer, byAngles)) {
        const Trial trial = tryOut(file, sample, mistake, std::nullopt);
        if (search.shownOf(trial.fit).enoughOf(search.rows))
            search.judged.push_back(
                {mistake.name, mistake.change, trial.fit,
                 scatters(trial.fit.angles, trial.angles) && scatters(trial.fit.spare, trial.spare),
                 trial.differs(asItStands)});
    }
    markThoseThatFit(search);
    return search;
}

} // namespace kiv::host
