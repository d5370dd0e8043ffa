#include "host/calibration/Calibrator.h"

#include <algorithm>
#include <cmath>
#include <ostream>

#include "KIVInterface/CKivPrm.h"
#include "host/base/Distributions.h"
#include "host/calibration/ComputedPose.h"
#include "host/calibration/NewDocument.h"
#include "host/calibration/StartingPoses.h"
#include "params/BlockNames.h"
#include "params/CalibratedValues.h"
#include "params/Quoted.h"
#include "support/Numbers.h"
#include "support/Principles.h"
#include "support/ZelUtil.h"

namespace kiv::host {

namespace {

constexpr std::size_t leastRows = 40;
constexpr double leastSpan = 5; // of temperatures, for thermal slopes
constexpr double leastRms = 0.8;
constexpr double mostRms = 1.25;
constexpr double mostEmpty = 60;       // degrees without an azimuth, for its table
constexpr double mostApart = 5;        // rows of a table that takes a smooth change, degrees
constexpr double within = 0.999;       // of sound fits pass
constexpr double outlierChance = 1e-5; // of a good row
constexpr int mostSearches = 10;       // for outliers
constexpr double mostOutliers = 0.25;  // of the rows
constexpr double unseen = 1e-12;       // of a prior's variance that the rows take away
constexpr double mostOfPrior = 4;      // standard uncertainties between a prior and the rows

bool isIn(const std::vector<Parameter>& list, const Parameter& parameter) {
    return std::find(list.begin(), list.end(), parameter) != list.end();
}

// The standard normal number that is as likely as the ratio of two mean squares. Source: E.
// Paulson, Annals of Mathematical Statistics 13 (1942), 233.
double normalOfRatio(double ratio, double freedomAbove, double freedomBelow) {
    const double above = 2 / (9 * freedomAbove);
    const double below = 2 / (9 * freedomBelow);
    const double root = std::cbrt(ratio);
    return ((1 - below) * root - (1 - above)) / std::sqrt(below * root * root + above);
}

// The largest distance between rows of a table, of elevations where there are readings; degrees.
double rowsApart(const BlockValues& table, Block block, const CalibrationRows::Facts& facts) {
    const bool elevation = block == Block::elCalibration;
    const bool tilt = layoutOf(block).kind == BlockKind::tiltTable;
    std::vector<double> at;
    for (std::size_t i = 0; i < table.rows(); ++i) {
        const double angle = table.numbers[2 * i + (tilt ? 1 : 0)];
        at.push_back(elevation ? std::remainder(angle, 360.0) : angle);
    }
    std::sort(at.begin(), at.end());
    if (block == Block::azCalibration && !at.empty())
        at.push_back(at.front() + 360);
    double most = at.size() < 2 ? 360 : 0;
    for (std::size_t i = 1; i < at.size(); ++i)
        if (!elevation || (at[i] > facts.lowest && at[i - 1] < facts.highest))
            most = std::max(most, at[i] - at[i - 1]);
    if (elevation && !at.empty())
        most = std::max({most, at.front() - facts.lowest, facts.highest - at.back()});
    return most;
}

constexpr double normalOf999 = 3.0902; // 99.9 % are below it

// Readings that count as exact, as a cause of residuals that are too large.
std::string withoutWeight(const RowUncertainties& given) {
    const Uncertainties& u = given.readings;
    std::string options;
    for (const auto& [source, option] :
         {std::pair(Source::azimuth, "--u-encoder"), std::pair(Source::levelY, "--u-level"),
          std::pair(Source::vector2, "--u-vector")})
        if (u[source] == 0)
            options += std::string(options.empty() ? "" : ", ") + option;
    return options.empty() ? "" : "readings without an uncertainty (" + options + "), ";
}

} // namespace

Calibrator::Calibrator(const CalibrateOptions& asked, CalibrationRows& allRows, const Document& old,
                       CKivPrm& record, const RowUncertainties& ofRows, std::ostream& messages)
    : options(asked), rows(allRows), oldDocument(old), oldRecord(record), uncertainties(ofRows),
      err(messages), oldValues(old), values(old) {
    frame.kind = options.poses;
    record.getMountMode(frame.mode);
    if (!reportsOwnMatrix(frame.mode)) {
        record.getMachineMatrix(frame.fileMatrix.data(), 3);
        MatrixInverse(frame.fileMatrix.data(), 3);
    }
}

void Calibrator::hold(const Parameter& parameter, const std::string& reason) {
    std::erase(parameters, parameter);
    outcome.held.push_back({parameter, reason});
}

void Calibrator::chooseParameters() {
    const double span = static_cast<double>(rows.facts().hottest) - rows.facts().coldest;
    const bool slopes = span >= leastSpan;
    if (options.estimate.empty() || options.estimateUsual)
        parameters = usualParameters(frame.mode, true);
    for (const Parameter& parameter : options.estimate)
        if (!isIn(parameters, parameter))
            parameters.push_back(parameter);
    for (const Prior& prior : options.priors)
        if (!isIn(parameters, prior.parameter))
            parameters.push_back(prior.parameter);
    const std::vector<Parameter> chosen = parameters;
    for (const Parameter& parameter : chosen) {
        if (isIn(options.hold, parameter))
            hold(parameter, "asked for");
        else if (isIn(options.estimate, parameter))
            continue;
        else if (isThermalSlope(parameter) && !slopes)
            hold(parameter, "the temperatures span " + roundedText(span, 4) + ", less than "
                                + roundedText(leastSpan, 4));
        else if (parameter == Parameter{Block::angleOffset, 0} && frame.kind != Poses::known)
            hold(parameter, "without known headings a turn of the sensor about its z axis looks "
                            "the same");
    }
}

bool Calibrator::refuse(const std::string& expected, const std::string& found) const {
    err << rows.name() << ":1:1: expected " << expected << ", found " << found << '\n';
    return false;
}

bool Calibrator::enoughRows() const {
    const CalibrationRows::Facts& facts = rows.facts();
    if (facts.rows < leastRows)
        return refuse(std::to_string(leastRows)
                          + " rows and more for a calibration; 60 to 100 are better",
                      std::to_string(facts.rows) + " that can be used");
    if (parameters.empty()) {
        err << "kiv: expected parameters to find, found that all are held; name some with "
               "--estimate\n";
        return false;
    }
    return true;
}

// Rows all round for the harmonics of the azimuth; and a table that can have the shape that is
// found, with rows close enough where there are readings.
bool Calibrator::tablesShow() const {
    const CalibrationRows::Facts& facts = rows.facts();
    for (const Parameter& parameter : parameters) {
        const Block block = parameter.block;
        if (!isTable(block))
            continue;
        const double empty = block == Block::azCalibration ? widestGap(facts.headings) : 0;
        if (empty > mostEmpty)
            return refuse("azimuths all round for the harmonics of az_calibration_table",
                          "none in " + roundedText(empty, 4) + " degrees; measure there, too");
        const double apart = rowsApart(*oldDocument.find(block), block, facts);
        if (apart > mostApart) {
            err << printable(options.parameterFile) << ":1:1: expected rows every "
                << roundedText(mostApart, 4) << " degrees in " << keyOf(block) << ", found "
                << roundedText(apart, 4) << " between two; add rows to the old file\n";
            return false;
        }
    }
    return true;
}

bool Calibrator::enoughEquations(const Equations& equations) const {
    const std::size_t unknowns = parameters.size() + frame.unknowns();
    return equations.count >= 2 * unknowns
           || refuse("two equations and more for each unknown; measure more rows or hold some",
                     std::to_string(equations.count) + " for " + std::to_string(unknowns)
                         + " unknowns");
}

bool Calibrator::observable(const Triangle& triangle, std::optional<Observability>& seen,
                            const char* when) const {
    seen.emplace(triangle);
    if (seen->unseen.empty())
        return true;
    std::vector<std::string> names;
    for (const Parameter& parameter : parameters)
        names.push_back(nameOf(parameter));
    const std::string combination = combinationText(seen->unseen, names);
    const std::string expected = std::string("rows that tell all parameters apart") + when;
    if (combination.empty())
        return refuse(expected, "that they do not tell where the sensor stands; measure more "
                                "different poses");
    if (combination.find(" and ") == combination.npos)
        return refuse(expected, "that no reading depends on "
                                    + combination.substr(combination.find(' ') + 1)
                                    + "; hold it (--hold)");
    return refuse(expected, "that no reading changes with " + combination
                                + " together; hold one of them (--hold), say how well it is "
                                  "known (--prior), or measure poses that differ more");
}

// The one that would come out worst of those that would come out worse than the old file is known.
std::optional<Parameter> Calibrator::worstKnown(const Observability& seen) const {
    std::optional<Parameter> worst;
    double largest = 1;
    for (std::size_t i = 0; i < parameters.size(); ++i) {
        const double ratio = seen.u[static_cast<Eigen::Index>(i)] / knownTo(parameters[i]);
        const bool prior =
            std::any_of(options.priors.begin(), options.priors.end(),
                        [&](const Prior& p) { return p.parameter == parameters[i]; });
        if (!prior && ratio > largest) {
            largest = ratio;
            worst = parameters[i];
        }
    }
    return worst;
}

bool Calibrator::holdWhatIsNotSeen(const Eigen::VectorXd& x) {
    Eigen::VectorXd at = x;
    for (;;) {
        const FitModel fitted = model();
        const auto equations = RowsFit(rows, fitted, err).equationsAt(at, at, {.ideal = true});
        if (!equations || !enoughEquations(*equations)
            || !observable(equations->triangle, observability, ""))
            return false;
        const auto worst = worstKnown(*observability);
        if (!worst) {
            outcome.used = equations->rows;
            return true;
        }
        const auto i = static_cast<std::size_t>(
            std::find(parameters.begin(), parameters.end(), *worst) - parameters.begin());
        const double u = observability->u[static_cast<Eigen::Index>(i)];
        hold(*worst, "its standard uncertainty would be " + roundedText(u, 2)
                         + ", more than the old value is off as a rule, "
                         + roundedText(knownTo(*worst), 4));
        if (parameters.empty())
            return refuse("rows that tell a parameter better than the old file does, for "
                              + nameOf(*worst),
                          "a standard uncertainty of " + roundedText(u, 2)
                              + "; measure more rows, or give smaller uncertainties");
        const Eigen::Index behind = at.size() - static_cast<Eigen::Index>(i) - 1;
        at.segment(static_cast<Eigen::Index>(i), behind) = at.tail(behind).eval();
        at.conservativeResize(at.size() - 1);
    }
}

// A robust fit, then plain ones without the rows that stand out, until these stay the same.
bool Calibrator::dropOutliers() {
    const FitModel fitted = model();
    RowsFit fit(rows, fitted, err);
    auto robust = fit.solve(fitted.start(), true);
    if (!robust)
        return false;
    const double limit =
        chiSquaredQuantile(1 - outlierChance, static_cast<double>(equationsOf(frame.mode)));
    Eigen::VectorXd x = robust->x;
    for (int i = 0; i < mostSearches; ++i) {
        std::set<TableLine> outliers;
        for (const bool heldOut : {false, true}) {
            auto found = fit.equationsAt(
                x, x, {.heldOut = heldOut, .withRejected = true, .outlierAbove = limit});
            if (!found)
                return false;
            outliers.merge(found->outliers);
        }
        const double share =
            static_cast<double>(outliers.size()) / static_cast<double>(rows.facts().rows);
        if (share > mostOutliers)
            return refuse("wrong poses in at most a quarter of the rows",
                          std::to_string(outliers.size()) + " of "
                              + std::to_string(rows.facts().rows)
                              + " rows that do not fit; give larger uncertainties, correct the "
                                "mount mode, or measure again");
        if (i > 0 && outliers == rows.rejectedPlaces())
            return true;
        rows.reject(std::move(outliers));
        auto plain = fit.solve(x, false);
        if (!plain)
            return false;
        x = plain->x;
    }
    return refuse("a search for wrong poses that settles",
                  "none; look at the rows with the largest residuals, and leave out the worst");
}

bool Calibrator::solve() {
    for (;;) {
        const FitModel fitted = model();
        RowsFit fit(rows, fitted, err);
        solution = fit.solve(fitted.start(), false);
        const auto ideal =
            solution ? fit.equationsAt(solution->x, solution->x, {.ideal = true}) : std::nullopt;
        if (!ideal || !observable(ideal->triangle, observability, " at the result"))
            return false;
        outcome.used = solution->equations.rows;
        if (!worstKnown(*observability))
            return true;
        if (!holdWhatIsNotSeen(solution->x))
            return false;
    }
}

// Slopes keep six decimals, as the library's own rewriting would leave them, and the rest is found
// anew with these: else a later rewrite would cost up to 6e-4 degrees.
bool Calibrator::roundSlopes() {
    std::vector<Parameter> slopes;
    for (std::size_t i = 0; i < parameters.size(); ++i)
        if (isThermalSlope(parameters[i])) {
            slopes.push_back(parameters[i]);
            values[parameters[i]] =
                std::round(solution->x[static_cast<Eigen::Index>(i)] * 1e6) / 1e6;
        }
    if (slopes.empty())
        return true;
    const std::vector<Parameter> all = parameters;
    std::erase_if(parameters, [&](const Parameter& p) { return isIn(slopes, p); });
    const FitModel fitted = model();
    Eigen::VectorXd start = fitted.start();
    Eigen::Index kept = 0;
    for (std::size_t i = 0; i < all.size() + frame.unknowns(); ++i)
        if (i >= all.size() || !isIn(slopes, all[i]))
            start[kept++] = solution->x[static_cast<Eigen::Index>(i)];
    auto rest = RowsFit(rows, fitted, err).solve(std::move(start), false);
    if (!rest)
        return false;
    Eigen::VectorXd x(solution->x.size());
    Eigen::Index next = 0;
    for (std::size_t i = 0; i < all.size(); ++i)
        x[static_cast<Eigen::Index>(i)] =
            isIn(slopes, all[i]) ? values.at(all[i].block, all[i].place) : rest->x[next++];
    const Eigen::Index ofPoses = rest->x.size() - next;
    x.tail(ofPoses) = rest->x.tail(ofPoses);
    parameters = all;
    solution->x = x;
    return true;
}

bool Calibrator::rmsFits() {
    const auto unknowns = static_cast<double>(solution->x.size());
    const double freedom = static_cast<double>(solution->equations.count) - unknowns;
    const double rms = std::sqrt(solution->equations.cost / freedom);
    outcome.rmsOverNoise = rms;
    const double counted = std::min(freedom, 1e6); // as far as quantiles go
    outcome.interval[0] = std::sqrt(chiSquaredQuantile((1 - within) / 2, counted) / counted);
    outcome.interval[1] = std::sqrt(chiSquaredQuantile((1 + within) / 2, counted) / counted);
    const bool byChance = rms >= outcome.interval[0] && rms <= outcome.interval[1];
    if (byChance || (rms >= leastRms && rms <= mostRms))
        return solution->settled
               || refuse("a fit that settles",
                         "one whose weights still change it; begin with fewer parameters "
                         "(--estimate)");
    return refuse("residuals as large as the uncertainties say (rms over noise from "
                      + roundedText(std::min(leastRms, outcome.interval[0]), 3) + " to "
                      + roundedText(std::max(mostRms, outcome.interval[1]), 3) + ')',
                  roundedText(rms, 3)
                      + (rms < 1 ? "; the readings are better than stated: give smaller "
                                   "uncertainties"
                                 : "; look for " + withoutWeight(uncertainties)
                                       + "wrong poses (--robust), another mount mode, parameters "
                                         "that are held and should not be, "
                                       + (options.priors.empty() ? "" : "a wrong --prior, ")
                                       + "or uncertainties that are too small"));
}

// How far a prior is from what the rows alone tell follows from both uncertainties: that of the
// result is the smaller, the more the rows tell.
bool Calibrator::priorsFit() const {
    for (const Prior& prior : options.priors) {
        const auto found = std::find(parameters.begin(), parameters.end(), prior.parameter);
        if (found == parameters.end())
            continue;
        const auto i = static_cast<Eigen::Index>(found - parameters.begin());
        const double gained = 1 - std::pow(observability->u[i] / prior.u, 2);
        const double moved = solution->x[i] - prior.value;
        if (gained < unseen)
            return refuse("priors of parameters that rows tell", "that no reading depends on "
                                                                     + nameOf(*found)
                                                                     + "; leave out its --prior");
        if (std::abs(moved) > mostOfPrior * prior.u * std::sqrt(gained))
            return refuse("a prior of " + nameOf(*found) + " that agrees with the rows",
                          roundedText(prior.value, 4) + " where the rows tell "
                              + roundedText(prior.value + moved / gained, 4) + ", "
                              + roundedText(std::abs(moved) / prior.u / std::sqrt(gained), 2)
                              + " standard uncertainties away; correct the prior, or look for "
                                "wrong poses");
    }
    return true;
}

bool Calibrator::heldOutFits() {
    const FitModel fitted = model();
    const auto others =
        RowsFit(rows, fitted, err).equationsAt(solution->x, solution->x, {.heldOut = true});
    if (!others)
        return false;
    outcome.heldOut = others->rows;
    if (others->rows == 0)
        return true;
    // The least sum of squares when the unknowns may move within their covariance.
    Eigen::MatrixXd known = solution->equations.triangle.whole();
    known.rightCols(1).setZero();
    Triangle joint(solution->x.size());
    joint.add(known);
    joint.add(others->triangle.whole());
    const auto count = static_cast<double>(others->count);
    const double freedom =
        static_cast<double>(solution->equations.count) - static_cast<double>(solution->x.size());
    const double ratio = joint.rest() / count / (outcome.rmsOverNoise * outcome.rmsOverNoise);
    outcome.overInSample = std::sqrt(ratio);
    return normalOfRatio(ratio, count, freedom) <= normalOf999
           || refuse("held-out rows that fit as the others do",
                     "their rms " + roundedText(*outcome.overInSample, 3)
                         + " times as large; look for wrong poses (--robust), or find fewer "
                           "parameters (--hold)");
}

// The angles of the held-out rows against the true ones.
bool Calibrator::compareAngles() {
    if (frame.kind != Poses::known || outcome.heldOut == 0)
        return true;
    CKivPrm newRecord;
    storeIn(newRecord, outcome.document);
    const ComputedPose oldModel(oldRecord), newModel(newRecord);
    struct Sums {
        double squares[2] = {};
        std::size_t rows[2] = {};
        std::size_t all = 0;
    };
    Sums total;
    const bool read = rows.pass<Sums>(
        [&](const std::vector<Observation>& observations, Sums& sums) {
            ComputedPose models[2] = {oldModel, newModel};
            sums = {};
            for (const Observation& row : observations) {
                if (!rows.heldOut(row) || rows.rejected(row))
                    continue;
                ++sums.all;
                const simulator::Angles given = simulator::anglesOf(row.rotation);
                for (int i = 0; i < 2; ++i) {
                    if (!models[i].take(row.raw))
                        continue;
                    const auto angles = models[i].angles();
                    ++sums.rows[i];
                    const double errors[] = {angles[0] - given.rx, angles[1] - given.ry,
                                             angles[2] - given.rz};
                    for (const double error : errors)
                        sums.squares[i] += std::pow(std::remainder(error, 360), 2);
                }
            }
        },
        [&](Sums& sums) {
            total.all += sums.all;
            for (int i = 0; i < 2; ++i) {
                total.rows[i] += sums.rows[i];
                total.squares[i] += sums.squares[i];
            }
            return true;
        });
    // The mean over half of the rows and less would tell little.
    const auto rms = [&](int i) -> std::optional<double> {
        if (2 * total.rows[i] <= total.all)
            return std::nullopt;
        return std::sqrt(total.squares[i] / (3 * static_cast<double>(total.rows[i])));
    };
    outcome.oldRms = rms(0);
    outcome.newRms = rms(1);
    return read;
}

bool Calibrator::takeSamples() {
    outcome.equationsOfRow = equationsOf(frame.mode);
    if (options.report.empty())
        return true;
    auto samples = sampleResiduals(rows, model(), solution->x);
    if (samples)
        outcome.samples = std::move(*samples);
    return samples.has_value();
}

void Calibrator::takeValues() {
    const auto n = static_cast<Eigen::Index>(parameters.size());
    outcome.document = oldDocument;
    for (Eigen::Index i = 0; i < n; ++i) {
        const Parameter& parameter = parameters[static_cast<std::size_t>(i)];
        CalibrationOutcome::Found found{parameter, oldValues[parameter], oldValues[parameter],
                                        observability->u[i]};
        if (solution)
            found.value = solution->x[i];
        // Whole turns move no angle; the old value stays beside the new one.
        if (parameter == Parameter{Block::angleOffset, 0} && solution
            && std::abs(found.value) > 360) {
            const double beyond =
                found.value
                - std::remainder(found.value,
                                 azimuthPeriodOf(frame.mode, model().valuesAt(solution->x)));
            found.value -= beyond;
            found.old -= beyond;
        }
        outcome.found.push_back(found);
    }
    if (solution)
        setIn(outcome.document, outcome.found, rows.facts().lowest, rows.facts().highest);
    outcome.correlation = observability->correlation.topLeftCorner(n, n);
    outcome.singularValues = observability->singularValues;
    std::sort(outcome.held.begin(), outcome.held.end(), [](const auto& a, const auto& b) {
        return std::pair(a.parameter.block, a.parameter.place)
               < std::pair(b.parameter.block, b.parameter.place);
    });
}

std::optional<CalibrationOutcome> Calibrator::run() {
    chooseParameters();
    if (!enoughRows() || !tablesShow() || !findStartingPoses(rows, oldRecord, frame, err)
        || !holdWhatIsNotSeen(model().start()))
        return std::nullopt;
    if (!options.dryRun
        && ((options.robust && !dropOutliers()) || !solve() || !rmsFits() || !priorsFit()
            || !roundSlopes() || !heldOutFits()))
        return std::nullopt;
    takeValues();
    if (!options.dryRun && (!compareAngles() || !takeSamples()))
        return std::nullopt;
    return std::move(outcome);
}

} // namespace kiv::host
