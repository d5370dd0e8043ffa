#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <Eigen/Core>

#include "host/calibration/CalibrateOptions.h"
#include "host/calibration/Fit.h"
#include "host/calibration/Observability.h"
#include "host/calibration/ResidualSample.h"
#include "params/Document.h"

namespace kiv::host {

// What a calibration gives.
struct CalibrationOutcome {
    struct Found {
        Parameter parameter;
        double old = 0;
        double value = 0; // as the new file has it
        double u = 0;
    };
    struct Held {
        Parameter parameter;
        std::string reason;
    };

    std::vector<Found> found;
    std::vector<Held> held;
    Eigen::MatrixXd correlation; // of what was found
    std::vector<double> singularValues;
    std::size_t used = 0;
    std::size_t heldOut = 0;
    double rmsOverNoise = 0;
    double interval[2] = {}; // of 99.9 %
    // Of the held-out rows, where there are some.
    std::optional<double> overInSample;
    std::optional<double> oldRms, newRms; // of the angles, degrees
    std::size_t equationsOfRow = 0;
    std::vector<ResidualSample> samples; // where a report is asked for
    Document document;                   // of the new file
};

// One calibration, from the rows to the new file's values.
class Calibrator {
public:
    Calibrator(const CalibrateOptions& asked, CalibrationRows& allRows, const Document& old,
               CKivPrm& record, const RowUncertainties& ofRows, std::ostream& messages);

    // Nothing, and a message with cause and next step, where there is none to be had. A dry run
    // ends before the fit, its values are the old ones.
    std::optional<CalibrationOutcome> run();

private:
    void chooseParameters();
    void hold(const Parameter& parameter, const std::string& reason);
    bool refuse(const std::string& expected, const std::string& found) const; // false
    bool enoughRows() const;
    bool tablesShow() const;
    bool enoughEquations(const Equations& equations) const;
    bool observable(const Triangle& triangle, std::optional<Observability>& seen,
                    const char* when) const;
    std::optional<Parameter> worstKnown(const Observability& seen) const;
    bool holdWhatIsNotSeen(const Eigen::VectorXd& x);
    bool dropOutliers();
    bool solve();
    bool roundSlopes();
    bool rmsFits();
    bool priorsFit() const;
    bool heldOutFits();
    bool compareAngles();
    bool takeSamples();
    void takeValues();

    FitModel model() const { return {frame, values, parameters, options.priors, uncertainties}; }

    const CalibrateOptions& options;
    CalibrationRows& rows;
    const Document& oldDocument;
    CKivPrm& oldRecord;
    RowUncertainties uncertainties;
    std::ostream& err;
    PoseFrame frame;
    SensorValues oldValues;
    SensorValues values; // the old ones, and those that are held again at another
    std::vector<Parameter> parameters;
    std::optional<RowsFit::Solution> solution;
    std::optional<Observability> observability;
    CalibrationOutcome outcome;
};

} // namespace kiv::host
