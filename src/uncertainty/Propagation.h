#pragma once

#include <array>

#include "KIVInterface/CKiv.h"
#include "uncertainty/AngleSlopes.h"
#include "uncertainty/Uncertainties.h"

namespace kiv {

// Standard uncertainties of one row's reported angles, degrees.
struct AngleUncertainty {
    AngleTriple standard;    // rx, ry, rz
    AngleTriple correlation; // of rx and ry, rx and rz, ry and rz; 0 where one does not vary
    // Each source's part, with its sign: the squares add up to the variance, with that of rounding.
    std::array<AngleTriple, sourceCount> contribution;
    AngleTriple rounding; // of readings and angles to single precision
    // Local frame: the part of the reference's own readings, which all rows have in common; not in
    // standard. Uncertain parameters act on row and reference at once and are in standard.
    AngleTriple reference;
};

// The law of propagation of uncertainty (JCGM 100, 5.1) through a sensor's whole update, each input
// moved up and down by its own standard uncertainty, or by some hundred steps of single precision
// where that is more; by less where z would come to 0 in the pendulum model. Works on a copy of the
// sensor and allocates nothing after construction.
class Propagation {
public:
    // The sensor has a model; it is taken as it is configured now.
    Propagation(const CKiv& sensor, const Uncertainties& uncertainties);

    // Call it after the update that captured the reference.
    void captured(const CKiv& sensor, const KIV_RAWINFO& raw);

    // Call it after an update of the sensor that gave an orientation, from the same readings; at
    // most 14 updates. False where the model has no orientation on both sides of the readings, or
    // they turn by more than a quarter of a turn.
    bool of(const CKiv& sensor, const KIV_RAWINFO& raw, const KIV_INFO& info,
            AngleUncertainty& out);

private:
    // Quantities that are moved. A reading and its offset act alike and are moved as one.
    enum Channel : unsigned char { side, above, az, el, lx, ly, temp, channelCount };
    // Per unit of the moved quantity: of the angles in radians, and the rotation of the model's
    // matrix in the instrument's frame, a rotation vector in radians.
    struct Slope {
        AngleTriple angles{};
        AngleTriple turn{};
        double level = 0; // of the corrected level, degrees, where a level is moved
    };
    struct Sight;
    struct Moved;

    bool update(const KIV_RAWINFO& raw, Moved& out);
    void setTurn(Channel channel, const Moved& from, const Moved& to, double distance);
    bool move(Channel channel, const KIV_RAWINFO& back, const KIV_RAWINFO& forth, double distance);
    bool slopeAcross(Channel channel, const KIV_RAWINFO& raw, const Sight& sight, double clearance);
    bool slopeOf(Channel channel, float KIV_RAWINFO::*reading, double uncertainty,
                 const KIV_RAWINFO& raw);
    bool slopesAt(const KIV_RAWINFO& row, const Sight& sight);
    AngleTriple part(Source source, const Sight& sight, AngleTriple Slope::*what) const;
    void addRounding(const KIV_RAWINFO& raw, const Sight& sight, const KIV_INFO& info,
                     AngleUncertainty& out) const;
    void addReference(const double* result, AngleUncertainty& out) const;

    CKiv work;
    Uncertainties given;
    Principle principle;
    bool local;
    float thermalFactor[4];
    double localMatrix[9];
    std::array<Slope, channelCount> slopes;
    // Each source's rotation of the reference, in the instrument's frame.
    std::array<AngleTriple, sourceCount> referenceTurn{};
};

} // namespace kiv
