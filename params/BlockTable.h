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

struct BlockLayout {
    Block block;
    std::string_view title;
    int titleWords;
    unsigned messageId;
    BlockKind kind;
    int count;      // of numbers; 1 for an integer or a word, 0 for a table
    double toField; // factor from the file's unit to the record's
    AtEnd atEnd;
    std::array<float, 8> defaults;
};

inline constexpr unsigned wrongIdMessage = 602;

inline constexpr std::array<BlockLayout, 24> blockTable{{
    {Block::serialNumber, "Serial Number", 2, 601, BlockKind::sensorId, 1, 1, AtEnd::fail, {}},
    {Block::deviceOwner, "Device Owner", 2, 603, BlockKind::word, 1, 1, AtEnd::fail, {}},
    {Block::azPositionGain, "AZ Position Gain", 3, 604, BlockKind::numbers, 6, 1, AtEnd::fail, {}},
    {Block::elPositionGain, "EL Position Gain", 3, 605, BlockKind::numbers, 6, 1, AtEnd::fail, {}},
    {Block::azTrackingGain, "AZ Tracking Gain", 3, 606, BlockKind::numbers, 6, 1, AtEnd::fail, {}},
    {Block::elTrackingGain, "EL Tracking Gain", 3, 607, BlockKind::numbers, 6, 1, AtEnd::fail, {}},
    {Block::digitalDamping, "Digital Damping", 2, 608, BlockKind::numbers, 4, 1, AtEnd::fail, {}},
    {Block::angleOffset, "Angle Offset", 2, 609, BlockKind::numbers, 2, degToRad, AtEnd::fail, {}},
    {Block::transformVector, "Transform Vector", 2, 610, BlockKind::numbers, 3, 1, AtEnd::fail, {}},
    {Block::localMatrix,
     "Local Coordinate Tranform Matrix",
     4,
     611,
     BlockKind::numbers,
     9,
     1,
     AtEnd::fail,
     {}},
    {Block::machineMatrix,
     "Machine Coordinate Tranform Matrix",
     4,
     612,
     BlockKind::numbers,
     9,
     1,
     AtEnd::fail,
     {}},
    {Block::thermalFactor,
     "Thermal Compensation Factor",
     3,
     613,
     BlockKind::numbers,
     4,
     1,
     AtEnd::fail,
     {}},
    {Block::tiltOffset, "Tilt Sensor Offset", 3, 614, BlockKind::numbers, 2, 1, AtEnd::fail, {}},
    {Block::admOffset, "ADM Offset", 2, 615, BlockKind::numbers, 1, 1, AtEnd::fail, {}},
    {Block::azCalibration,
     "AZ Calibration Table",
     3,
     616,
     BlockKind::encoderTable,
     0,
     1,
     AtEnd::fail,
     {}},
    {Block::elCalibration,
     "EL Calibration Table",
     3,
     617,
     BlockKind::encoderTable,
     0,
     1,
     AtEnd::fail,
     {}},
    {Block::tiltXCalibration,
     "Tilt X Calibration Table",
     4,
     618,
     BlockKind::tiltTable,
     0,
     1,
     AtEnd::fail,
     {}},
    {Block::tiltYCalibration,
     "Tilt Y Calibration Table",
     4,
     619,
     BlockKind::tiltTable,
     0,
     1,
     AtEnd::keep,
     {}},
    {Block::scaleFactor,
     "Scale Factor",
     2,
     621,
     BlockKind::numbers,
     8,
     1,
     AtEnd::useDefaults,
     {0, 0, 0, 0, 1, 1, 1, 0}},
    {Block::mountingMode,
     "Mounting Mode",
     2,
     619,
     BlockKind::integer,
     1,
     1,
     AtEnd::useDefaults,
     {}},
    {Block::qvc, "QVC", 1, 622, BlockKind::numbers, 6, 1, AtEnd::useDefaults, {}},
    {Block::levelX, "Level_X", 1, 623, BlockKind::numbers, 7, 1, AtEnd::useDefaults, {}},
    {Block::levelY, "Level_Y", 1, 624, BlockKind::numbers, 7, 1, AtEnd::useDefaults, {}},
    {Block::halfAngle, "Half Angle", 2, 609, BlockKind::numbers, 2, degToRad, AtEnd::fail, {}},
}};

constexpr const BlockLayout& layoutOf(Block block) {
    return blockTable[static_cast<std::size_t>(block)];
}

} // namespace kiv
