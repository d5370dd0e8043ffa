#include "params/Messages.h"

#include <array>

namespace kiv {

namespace {

constexpr unsigned firstMessage = 601;

constexpr std::array texts{
    "Block title \"Serial Number\" is not found.",
    "File ID doesn't match KIV ID.",
    "Block title \"Device Owner\" is not found.",
    "Block title \"AZ Position Gain\" is not found.",
    "Block title \"EL Position Gain\" is not found.",
    "Block title \"AZ Tracking Gain\" is not found.",
    "Block title \"EL Tracking Gain\" is not found.",
    "Block title \"Digital Damping\" is not found.",
    "Block title \"Angle Offset\" is not found.",
    "Block title \"Transform Vector\" is not found.",
    "Block title \"Local Coordinate Tranform Matrix\" is not found.",
    "Block title \"Machine Coordinate Tranform Matrix\" is not found.",
    "Block title \"Thermal Compensation Factor\" is not found.",
    "Block title \"Tilt Sensor Offset\" is not found.",
    "Block title \"ADM Offset\" is not foun.",
    "Block title \"AZ Calibration Table\" is not found.",
    "Block title \"EL Calibration Table\" is not found.",
    "Block title \"Tilt X Calibration Table\" is not found.",
    "Block title \"Tilt YCalibration Table\" is not found.",
    "PRM File Format Error",
    "Block title \"Scale Factors\" is not found.",
    "Block \"QVC\" is not found ",
    "Block \"Level1\" is not found",
    "Block \"Level2\" is not found",
};

} // namespace

const char* messageText(unsigned id) {
    const unsigned row = id - firstMessage; // wraps for an id below the first
    return row < texts.size() ? texts[row] : nullptr;
}

} // namespace kiv
