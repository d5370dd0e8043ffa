#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "host/calibration/Observation.h"
#include "host/calibration/Parameters.h"
#include "host/rows/TableFormat.h"
#include "uncertainty/Uncertainties.h"

namespace kiv::host {

// What is known of a parameter from elsewhere.
struct Prior {
    Parameter parameter;
    double value = 0;
    double u = 0; // standard uncertainty, above 0
};

struct CalibrateOptions {
    std::string parameterFile;
    std::vector<std::string> readings;
    std::string output;   // the new parameter file
    std::string result;   // of JSON; empty: none
    std::string report;   // of HTML; empty: none
    bool replace = false; // files that are there
    TableFormat format;
    Poses poses = Poses::known;
    std::vector<Parameter> estimate; // in place of the usual ones, or beside them
    std::vector<Parameter> hold;
    std::vector<Prior> priors;
    std::string uncertaintyFile;
    std::optional<Uncertainties> uncertainties;
    std::optional<double> poseUncertainty; // degrees
    double holdout = 0.2;
    bool robust = false;
    bool estimateUsual = false; // beside those of estimate
    bool dryRun = false;
    std::size_t jobs = 0; // threads; 0: as many as there are processors
    bool quiet = false;
};

} // namespace kiv::host
