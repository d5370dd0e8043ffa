#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "support/AngleConstants.h"

// The 24 blocks of a parameter file, once, for all that reads, prints, checks or documents them.
// Irregularities of the format (an id that stands twice, a misspelt title, eight values on eight
// lines) are data here.
namespace kiv {

enum class Block : std::uint8_t {
    serialNumber,
    deviceOwner,
    azPositionGain,
    elPositionGain,
    azTrackingGain,
    elTrackingGain,
    digitalDamping,
    angleOffset,
    transformVector,
    localMatrix,
    machineMatrix,
    thermalFactor,
    tiltOffset,
    admOffset,
    azCalibration,
    elCalibration,
    tiltXCalibration,
    tiltYCalibration,
    scaleFactor,
    mountingMode,
    qvc,
    levelX,
    levelY,
    halfAngle,
};

enum class BlockKind : std::uint8_t {
    sensorId,     // one 32-bit integer that has to equal the sensor's ID
    integer,      // one 32-bit integer
    word,         // one word
    numbers,      // a fixed count of numbers
    encoderTable, // a row count, rows of two numbers
    tiltTable,    // a row count, rows of two numbers, one row of three, one word
};

// What a load does when the file has ended before the block.
enum class AtEnd : std::uint8_t { fail, keep, useDefaults };

// How a block's numbers stand in print: so many at a time with tabs between them, then end. The
// last group of a block ends its line in any case.
struct Groups {
    std::size_t size = 1;
    char end = '\n';
};

inline constexpr Groups tableRow{2, '\n'};
inline constexpr Groups trailingRow{3, '\n'};
inline constexpr Groups defaultGroups{1, '\t'}; // of numbers that are not from the file

struct BlockLayout {
    Block block;
    std::string_view title;
    int titleWords;
    unsigned messageId;
    BlockKind kind;
    int count = 1;      // of numbers; 1 for an integer or a word, 0 for a table
    Groups groups = {}; // of a fixed count of numbers
    double toField = 1; // factor from the file's unit to the record's
    AtEnd atEnd = AtEnd::fail;
    std::array<float, 8> defaults = {};
};

inline constexpr unsigned wrongIdMessage = 602;

inline constexpr std::array<BlockLayout, 24> blockTable = [] {
    using enum Block;
    using enum BlockKind;
    using enum AtEnd;
    return std::array<BlockLayout, 24>{{
        {serialNumber, "Serial Number", 2, 601, sensorId},
        {deviceOwner, "Device Owner", 2, 603, word},
        {azPositionGain, "AZ Position Gain", 3, 604, numbers, 6, {6, '\n'}},
        {elPositionGain, "EL Position Gain", 3, 605, numbers, 6, {6, '\n'}},
        {azTrackingGain, "AZ Tracking Gain", 3, 606, numbers, 6, {6, '\n'}},
        {elTrackingGain, "EL Tracking Gain", 3, 607, numbers, 6, {6, '\n'}},
        {digitalDamping, "Digital Damping", 2, 608, numbers, 4, {4, '\n'}},
        {angleOffset, "Angle Offset", 2, 609, numbers, 2, {2, '\n'}, degToRad},
        {transformVector, "Transform Vector", 2, 610, numbers, 3, {3, '\n'}},
        {localMatrix, "Local Coordinate Tranform Matrix", 4, 611, numbers, 9, {3, '\n'}},
        {machineMatrix, "Machine Coordinate Tranform Matrix", 4, 612, numbers, 9, {3, '\n'}},
        {thermalFactor, "Thermal Compensation Factor", 3, 613, numbers, 4, {4, '\n'}},
        {tiltOffset, "Tilt Sensor Offset", 3, 614, numbers, 2, {2, '\n'}},
        {admOffset, "ADM Offset", 2, 615, numbers, 1, {1, '\n'}},
        {azCalibration, "AZ Calibration Table", 3, 616, encoderTable, 0},
        {elCalibration, "EL Calibration Table", 3, 617, encoderTable, 0},
        {tiltXCalibration, "Tilt X Calibration Table", 4, 618, tiltTable, 0},
        {tiltYCalibration, "Tilt Y Calibration Table", 4, 619, tiltTable, 0, {}, 1, keep},
        {scaleFactor,
         "Scale Factor",
         2,
         621,
         numbers,
         8,
         {1, '\n'},
         1,
         useDefaults,
         {0, 0, 0, 0, 1, 1, 1, 0}},
        {mountingMode, "Mounting Mode", 2, 619, integer, 1, {}, 1, useDefaults},
        {qvc, "QVC", 1, 622, numbers, 6, {1, '\t'}, 1, useDefaults},
        {levelX, "Level_X", 1, 623, numbers, 7, {1, '\t'}, 1, useDefaults},
        {levelY, "Level_Y", 1, 624, numbers, 7, {1, '\t'}, 1, useDefaults},
        {halfAngle, "Half Angle", 2, 609, numbers, 2, {2, '\n'}, degToRad},
    }};
}();

constexpr const BlockLayout& layoutOf(Block block) {
    return blockTable[static_cast<std::size_t>(block)];
}

} // namespace kiv
