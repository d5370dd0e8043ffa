#include "host/calibration/Fit.h"

#include <algorithm>
#include <cmath>
#include <ostream>

#include <Eigen/QR>

namespace kiv::host {

namespace {

constexpr double poseStep = 1e-3; // degrees, of a pose's unknown turns
constexpr double settled = 1e-6;  // of a step, in standard uncertainties
constexpr double unfelt = 1e-3;   // the same, of a step that the cost may hide by rounding
constexpr double hopeless = 4;    // a mean square over noise
constexpr int mostSteps = 100;
constexpr int mostRenewals = 12; // of the weights

// The predictions that a pass needs, made once for all of its rows.
class Linearisation {
public:
    Linearisation(const FitModel& fitted, const Eigen::VectorXd& x,
                  const Eigen::VectorXd& weightsAt)
        : model(fitted), here(model.predictionAt(x)), weighing(model.predictionAt(weightsAt)),
          equations(equationsOf(model.frame.mode)) {
        for (std::size_t i = 0; i < model.unknowns(); ++i) {
            const auto at = static_cast<Eigen::Index>(i);
            Eigen::VectorXd moved = x;
            moved[at] += model.stepOf(i);
            up.push_back(model.predictionAt(moved));
            moved[at] = x[at] - model.stepOf(i);
            down.push_back(model.predictionAt(moved));
        }
    }

    // The row as the geometry predicts its levels, which tells apart what noise alone does.
    Observation ideal(const Observation& row) const;

    // Writes a row's equations into a matrix from a row of it on. False, and why, where there are
    // none.
    bool write(const Observation& row, Eigen::MatrixXd& matrix, Eigen::Index first,
               std::string& fault) const;

    std::size_t perRow() const { return equations; }

private:
    bool writeSlope(const Observation& row, std::size_t unknown, const Whitening& whitening,
                    Eigen::MatrixXd& matrix, Eigen::Index first) const;

    const FitModel& model;
    Prediction here;
    Prediction weighing;
    std::vector<Prediction> up, down;
    std::size_t equations;
};

bool Linearisation::writeSlope(const Observation& row, std::size_t unknown,
                               const Whitening& whitening, Eigen::MatrixXd& matrix,
                               Eigen::Index first) const {
    simulator::Pose pose;
    Residual above, below;
    if (!up[unknown].poseOf(row, pose) || !up[unknown].residual(row, pose, above)
        || !down[unknown].poseOf(row, pose) || !down[unknown].residual(row, pose, below))
        return false;
    const double twice = 2 * model.stepOf(unknown);
    for (std::size_t i = 0; i < equations; ++i)
        above[i] = std::remainder(above[i] - below[i], 360) / twice;
    whitening.apply(above);
    for (std::size_t i = 0; i < equations; ++i)
        matrix(first + static_cast<Eigen::Index>(i), static_cast<Eigen::Index>(unknown)) = above[i];
    return true;
}

Observation Linearisation::ideal(const Observation& row) const {
    Observation as = row;
    simulator::Pose pose;
    Residual residual;
    if (!here.poseOf(row, pose) || !here.residual(row, pose, residual))
        return row;
    const Prediction::LevelSlopes slopes = here.levelSlopes(row);
    as.curveY -= residual[2] * row.curveYSlope / slopes.y;
    as.curveX -= residual[3] * row.curveXSlope / slopes.x;
    return as;
}

bool Linearisation::write(const Observation& row, Eigen::MatrixXd& matrix, Eigen::Index first,
                          std::string& fault) const {
    constexpr const char* unreached = "expected a pose that the sensor's line of sight reaches, "
                                      "found one outside its elevation range; leave the row out";
    const auto refuse = [&](std::string why) {
        fault = std::move(why);
        return false;
    };
    Whitening whitening;
    simulator::Pose pose;
    Residual residual;
    if (!whitening.set(weighing, row, model.uncertainties, equations) || !here.poseOf(row, pose)
        || !here.residual(row, pose, residual))
        return refuse(unreached);
    if (whitening.without())
        return refuse(std::string("expected uncertainties that reach every reading, found none "
                                  "for ")
                      + whitening.without()
                      + "; give --u-encoder and --u-level, or both in --uncertainties");
    whitening.apply(residual);
    const auto last = static_cast<Eigen::Index>(model.unknowns());
    for (std::size_t i = 0; i < equations; ++i) {
        matrix.row(first + static_cast<Eigen::Index>(i)).setZero();
        matrix(first + static_cast<Eigen::Index>(i), last) = residual[i];
    }
    std::vector<std::size_t> ofPose;
    model.frame.listUnknowns(row, ofPose);
    for (std::size_t& unknown : ofPose)
        unknown += model.parameters.size();
    for (std::size_t i = 0; i < model.parameters.size(); ++i)
        ofPose.push_back(i);
    for (const std::size_t unknown : ofPose)
        if (!writeSlope(row, unknown, whitening, matrix, first))
            return refuse(unreached);
    return true;
}

// What came of a block of rows.
struct Part {
    std::optional<Triangle> triangle;
    double cost = 0;
    std::size_t rows = 0;
    std::vector<TableLine> outliers;
    std::string fault;
    TableLine faultAt;
};

// A soft absolute value: 2 (sqrt(1 + s) - 1) of a row's mean square s takes the place of s. Source:
// B. Triggs and others, Bundle Adjustment (1999), 4.
double softCost(double meanSquare) {
    return 2 * (std::sqrt(1 + meanSquare) - 1);
}

} // namespace

Eigen::VectorXd FitModel::start() const {
    Eigen::VectorXd x = Eigen::VectorXd::Zero(static_cast<Eigen::Index>(unknowns()));
    for (std::size_t i = 0; i < parameters.size(); ++i)
        x[static_cast<Eigen::Index>(i)] = values.at(parameters[i].block, parameters[i].place);
    return x;
}

SensorValues FitModel::valuesAt(const Eigen::VectorXd& x) const {
    SensorValues at = values;
    for (std::size_t i = 0; i < parameters.size(); ++i)
        at[parameters[i]] = x[static_cast<Eigen::Index>(i)];
    return at;
}

Prediction FitModel::predictionAt(const Eigen::VectorXd& x) const {
    return {frame, valuesAt(x),
            std::vector<double>(x.data() + parameters.size(), x.data() + x.size())};
}

double FitModel::stepOf(std::size_t unknown) const {
    return unknown < parameters.size() ? host::stepOf(parameters[unknown]) : poseStep;
}

void RowsFit::addPriors(const Eigen::VectorXd& x, Equations& all) const {
    for (const Prior& prior : model.priors) {
        const auto found =
            std::find(model.parameters.begin(), model.parameters.end(), prior.parameter);
        if (found == model.parameters.end())
            continue;
        const auto i = static_cast<Eigen::Index>(found - model.parameters.begin());
        Eigen::MatrixXd row = Eigen::MatrixXd::Zero(1, x.size() + 1);
        row(0, i) = 1 / prior.u;
        row(0, x.size()) = (x[i] - prior.value) / prior.u;
        all.cost += row(0, x.size()) * row(0, x.size());
        all.triangle.add(row);
        ++all.count;
    }
}

std::optional<Equations> RowsFit::equationsAt(const Eigen::VectorXd& x,
                                              const Eigen::VectorXd& weightsAt,
                                              const PassKind& kind, bool quiet) {
    const Linearisation linear(model, x, weightsAt);
    const auto each = static_cast<Eigen::Index>(linear.perRow());
    Equations all(model.unknowns());
    bool unusable = false;
    const auto work = [&](const std::vector<Observation>& observations, Part& part) {
        part = {};
        Eigen::MatrixXd matrix(each * static_cast<Eigen::Index>(observations.size()), x.size() + 1);
        Eigen::Index filled = 0;
        for (const Observation& row : observations) {
            if (rows.heldOut(row) != kind.heldOut || (!kind.withRejected && rows.rejected(row)))
                continue;
            if (!linear.write(kind.ideal ? linear.ideal(row) : row, matrix, filled, part.fault)) {
                part.faultAt = {row.table, row.line};
                return;
            }
            auto written = matrix.middleRows(filled, each);
            const double sum = written.rightCols(1).squaredNorm();
            const double meanSquare = sum / static_cast<double>(each);
            part.cost += kind.robust ? static_cast<double>(each) * softCost(meanSquare) : sum;
            if (kind.robust)
                written *= 1 / std::sqrt(std::sqrt(1 + meanSquare));
            if (kind.outlierAbove && sum > *kind.outlierAbove)
                part.outliers.emplace_back(row.table, row.line);
            filled += each;
            ++part.rows;
        }
        part.triangle.emplace(x.size());
        part.triangle->add(matrix.topRows(filled));
    };
    const auto finish = [&](Part& part) {
        if (!part.fault.empty()) {
            unusable = true;
            if (!quiet)
                err << rows.placeOf(part.faultAt) << ": " << part.fault << '\n';
            return false;
        }
        all.triangle.add(part.triangle->whole());
        all.cost += part.cost;
        all.rows += part.rows;
        all.count += part.rows * linear.perRow();
        all.outliers.insert(part.outliers.begin(), part.outliers.end());
        return true;
    };
    if (!rows.pass<Part>(work, finish) || unusable)
        return std::nullopt;
    if (!kind.heldOut)
        addPriors(x, all);
    return all;
}

// The weights stay as they are at the start.
bool RowsFit::solveWithWeights(Solution& solution, const PassKind& kind) {
    const Eigen::VectorXd weightsAt = solution.x;
    const Eigen::Index n = solution.x.size();
    double damping = 1e-4;
    for (int i = 0; i < mostSteps && !Interrupt::requested(); ++i) {
        const Eigen::MatrixXd r = solution.equations.triangle.coefficients();
        const Eigen::VectorXd q = solution.equations.triangle.rightSide();
        if (q.norm() < settled) // that is the undamped step, in standard uncertainties
            return true;
        const double before = solution.equations.cost;
        Eigen::MatrixXd stacked(2 * n, n + 1);
        stacked.topLeftCorner(n, n) = r;
        stacked.topRightCorner(n, 1) = q;
        stacked.bottomRows(n).setZero();
        stacked.bottomLeftCorner(n, n).diagonal() = std::sqrt(damping) * r.colwise().norm();
        Triangle damped(n);
        damped.add(stacked);
        const Eigen::VectorXd step =
            -damped.coefficients().triangularView<Eigen::Upper>().solve(damped.rightSide());
        auto next = equationsAt(solution.x + step, weightsAt, kind, true);
        if (Interrupt::requested())
            return false;
        if (next && next->cost <= solution.equations.cost * (1 + 1e-12)) {
            solution.x += step;
            solution.equations = std::move(*next);
            damping *= 0.03;
            // What will be refused need not be exact.
            if (before > hopeless * static_cast<double>(solution.equations.count)
                && solution.equations.cost > (1 - 1e-8) * before)
                return true;
        } else if (q.norm() < unfelt) {
            return true;
        } else {
            damping = std::max(damping, 1e-8) * 30;
        }
    }
    return false;
}

std::optional<RowsFit::Solution> RowsFit::solve(Eigen::VectorXd x, bool robust) {
    const PassKind kind{.robust = robust};
    auto first = equationsAt(x, x, kind);
    if (!first)
        return std::nullopt;
    Solution solution{std::move(x), std::move(*first)};
    for (int i = 0; i < mostRenewals; ++i) {
        const Eigen::VectorXd before = solution.x;
        if (!solveWithWeights(solution, kind)) {
            if (!Interrupt::requested())
                err << rows.name()
                    << ":1:1: expected a fit that settles, found none; correct gross errors of "
                       "the old file, or begin with fewer parameters (--estimate)\n";
            return std::nullopt;
        }
        const Eigen::MatrixXd r = solution.equations.triangle.coefficients();
        const bool moved = (r * (solution.x - before)).norm() > 1e-4;
        auto renewed = equationsAt(solution.x, solution.x, kind);
        if (!renewed)
            return std::nullopt;
        solution.equations = std::move(*renewed);
        solution.settled = !moved;
        if (solution.settled)
            break;
    }
    return solution;
}

} // namespace kiv::host
