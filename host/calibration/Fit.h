#pragma once

#include <cstddef>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include <Eigen/Core>

#include "host/calibration/Prediction.h"
#include "host/calibration/Rows.h"
#include "host/calibration/Triangle.h"
#include "host/calibration/Weights.h"

namespace kiv::host {

// What is fitted: these parameters of a sensor, and what is unknown of the poses. The unknowns of a
// fit are the parameters' values in their units, then the pose's turns in degrees.
struct FitModel {
    FitModel(const PoseFrame& poseFrame, const SensorValues& sensorValues,
             std::vector<Parameter> fitted, std::vector<Prior> known,
             const RowUncertainties& ofRows)
        : frame(poseFrame), values(sensorValues), parameters(std::move(fitted)),
          priors(std::move(known)), uncertainties(ofRows) {}

    Eigen::VectorXd start() const;
    std::size_t unknowns() const { return parameters.size() + frame.unknowns(); }
    SensorValues valuesAt(const Eigen::VectorXd& x) const;
    Prediction predictionAt(const Eigen::VectorXd& x) const;
    double stepOf(std::size_t unknown) const;

    const PoseFrame& frame;
    SensorValues values; // of what is not fitted
    std::vector<Parameter> parameters;
    std::vector<Prior> priors;
    RowUncertainties uncertainties;
};

// All rows of a kind about a place: the whitened equations.
struct Equations {
    explicit Equations(std::size_t unknowns) : triangle(static_cast<Eigen::Index>(unknowns)) {}

    Triangle triangle;
    double cost = 0; // the sum of squares; of a robust fit what takes its place
    std::size_t rows = 0;
    std::size_t count = 0;        // of equations
    std::set<TableLine> outliers; // where asked for
};

// Which rows a pass takes, and how.
struct PassKind {
    bool heldOut = false;
    bool robust = false;
    bool withRejected = false;
    bool ideal = false; // readings as the geometry predicts them: what they tell without noise
    std::optional<double> outlierAbove{}; // a row's sum of squares
};

// Passes over rows for a model. What goes wrong has been said.
class RowsFit {
public:
    RowsFit(CalibrationRows& allRows, const FitModel& fitted, std::ostream& messages)
        : rows(allRows), model(fitted), err(messages) {}

    // The equations about x, weighted by the uncertainties at another place. Nothing, and perhaps a
    // message, where a row cannot be computed; quiet: without one.
    std::optional<Equations> equationsAt(const Eigen::VectorXd& x, const Eigen::VectorXd& weightsAt,
                                         const PassKind& kind, bool quiet = false);

    struct Solution {
        Eigen::VectorXd x;
        Equations equations;  // about x
        bool settled = false; // with the weights that it has
    };
    // Levenberg–Marquardt from x, the weights renewed after each solve. Source: J. J. Moré, The
    // Levenberg–Marquardt algorithm (1978). Nothing, and a message, where it finds no end.
    std::optional<Solution> solve(Eigen::VectorXd x, bool robust);

private:
    bool solveWithWeights(Solution& solution, const PassKind& kind);
    void addPriors(const Eigen::VectorXd& x, Equations& all) const;

    CalibrationRows& rows;
    const FitModel& model;
    std::ostream& err;
};

} // namespace kiv::host
