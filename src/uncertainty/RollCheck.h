#pragma once

// How well a model's result shows one of its levels again. Every model lays the line of sight onto
// the measured direction; what is left of its error is a turn about that, the roll, which a level
// shows. All vectors are in the instrument's frame, z up.
namespace kiv {

struct RollCheck {
    // The roll from the result to the nearest rotation that shows the level's reading; where none
    // does, to the one that comes closest. Radians.
    double error;
    // The rise of the level's axis per roll, its sine per radian; 0: the level does not see the
    // roll.
    double sensitivity;
    // The roll from the result to the other rotation with the same level reading, its cosine and
    // sine.
    double mirrorCosine, mirrorSine;
    bool reachable; // some roll shows the reading
};

// u: the measured direction, unit vector; axis: the level's axis as the result has it, unit vector;
// sineOfRise: of the axis' rise above the horizon, as the level shows it.
RollCheck checkRoll(const double* u, const double* axis, double sineOfRise);

// The height of a unit vector v after the roll about u with this cosine and sine.
double heightAfterRoll(const double* u, const double* v, double cosine, double sine);

} // namespace kiv
