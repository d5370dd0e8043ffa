#pragma once

// What the reading shows that is one more than an orientation needs. Angles in degrees.
namespace kiv {

// What may be made of a spare reading.
struct SpareError {
    double rounding; // by single precision, at most
    double variance; // by the uncertainties of what was read
};

// How far the rise of a level's axis may be wrong.
struct RiseError {
    double rounding;
    double deviation;      // by raw reading and offset together
    double perTemperature; // its change per unit of the temperature
};

// How far the line of sight, and what all readings share, may be wrong: standard uncertainties and
// the rounding of both of these angles.
struct SightError {
    double rounding;
    double elevation; // of encoder and offset together
    double above;     // of the measured direction, upwards
    double temperature;
};

// Two levels in the yoke beside the elevation encoder: the turn of the head about the elevation
// axis that levels and measured direction ask for less the encoder's. Positive turns lower the line
// of sight: where the file's elevation offset is too large by d the value is -d.
struct DualLevelSpare {
    // Sines of the levels' readings; sine and cosine of what their axes stand off a right angle, of
    // the encoder's turn, and of the elevation of the line of sight.
    double sinX, sinY, sinF0, cosF0, sinG, cosG, height, horizontal;

    double value() const;
    SpareError error(const RiseError& x, const RiseError& y, const SightError& sight) const;

private:
    struct Vertical; // in the yoke's frame
};

// Two levels of which each shows the roll about the line of sight: half of the one's less the
// other's. By how much the sine of the rise of one's axis changes with turns, per radian:
struct LevelRoll {
    double perRoll; // about the line of sight
    double perTurn; // about the elevation axis
    double perLift; // of the line of sight
    double cosRise;
};
SpareError errorOfRolls(const LevelRoll& x, const LevelRoll& y, const RiseError& ofX,
                        const RiseError& ofY, const SightError& sight);

} // namespace kiv
