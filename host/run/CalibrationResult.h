#pragma once

#include <string>
#include <vector>

#include "uncertainty/Calibration.h"

namespace kiv::host {

class FlatJson;

// The members of the result that are read again.
namespace result {
constexpr const char* digest = "parameter_file_sha256";
constexpr const char* correlation = "correlation";
constexpr const char* names = "names";
constexpr const char* matrix = "matrix";
constexpr const char* parameters = "parameters";
constexpr const char* u = "u";
} // namespace result

// What kiv calibrate wrote of the parameters that it found.
struct CalibrationResult {
    std::string file; // as messages show it
    std::vector<std::string> names;
    Calibration calibration;
};

// The parameter file that a run is given.
struct CalibratedFile {
    const std::string& name;
    std::string digest; // SHA-256
    const CKiv& sensor;
};

bool isCalibrationResult(const FlatJson& json);

// False, and a message with its place, where the text of the result is of another shape, or belongs
// to another parameter file.
bool readCalibrationResult(const FlatJson& json, const CalibratedFile& parameterFile,
                           CalibrationResult& result);

} // namespace kiv::host
