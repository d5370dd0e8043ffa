#pragma once

#include <array>
#include <cstddef>

#include "KIVInterface/CKiv.h"
#include "support/Principles.h"

namespace kiv {

// Why a row of results is not to be trusted like others: the first of these that holds.
enum class Trust : unsigned char {
    good,
    outsideLimits,
    mirrorNear,
    seam,
    levelsDisagree,
    twoSigns,
    nearLevelSight,
    rollUnseen,
    notSettled,
    reference,
};

struct TrustWords {
    const char* word;    // in columns and counts
    const char* meaning; // in the same words on every page and in every header
};

inline constexpr std::array<TrustWords, 10> trustWords{{
    {"good", "none of what follows"},
    {"outside_limits", "a tilt is outside its table or the file's level limits"},
    {"mirror_near", "a second, mirrored pose fits and is within the limits, too"},
    {"seam", "the two levels' angles lie on both sides of 180 degrees"},
    {"levels_disagree", "the two levels show turns that differ by over 0.1 degrees"},
    {"two_signs", "dual level: z and level Y differ in sign"},
    {"near_level_sight", "pendulum: z is so close to 0 that digits cancel"},
    {"roll_unseen", "the level hardly shows the turn about the line of sight"},
    {"not_settled", "the result does not show its level's reading again"},
    {"reference", "local frame: the reference was not good"},
}};

constexpr const char* wordOf(Trust trust) {
    return trustWords[static_cast<std::size_t>(trust)].word;
}

struct RowTrust {
    Trust trust = Trust::good;
    // Bound of the model's own error for this reading, of the largest of the three angles: what the
    // model makes of exact readings, and of their being rounded to single precision. Degrees, at
    // most 180.
    double modelError = 0;
};

// Judges the results of one sensor. Reads its calibration values when made and its state after each
// update; changes nothing, allocates nothing.
class TrustJudge {
public:
    // Of a sensor with a model. Limits as CKivPrm::GetKIVLevelLimits gives them, degrees; a pair of
    // which the first is not below the second does not count.
    TrustJudge(const CKiv& sensor, const F_VECTOR4& levelLimits);

    // Reads the sensor's calibration values again; the reference stays as it was judged.
    void configure(const CKiv& sensor);

    // Of an update of the sensor that gave an orientation or became the reference. The reference's
    // own error counts for all later rows in the local frame.
    RowTrust judge(const CKiv& sensor, const KIV_RAWINFO& raw, const KIV_INFO& info,
                   bool becameReference);

private:
    struct Axis {
        double x, y, z;      // unit vector in the yoke's frame
        double offset, gain; // its rise is (reading + offset) * gain, radians from degrees
    };
    struct Sight;
    struct Roll;

    static Axis levelAxis(const float* parameters);
    bool outside(const CKiv& sensor, const KIV_RAWINFO& raw, const KIV_INFO& info) const;
    Roll rollOf(const Sight& sight, const Axis& axis, double reading) const;
    bool mirrorWithinLimits(const Sight& sight, const Roll& roll) const;
    RowTrust ofModel(const CKiv& sensor, const KIV_RAWINFO& raw, const KIV_INFO& info) const;
    RowTrust polarizer(const Sight& sight) const;
    RowTrust oneLevel(const Sight& sight, const KIV_INFO& info) const;
    RowTrust twoLevels(const Sight& sight, const CKiv& sensor, const KIV_RAWINFO& raw,
                       const KIV_INFO& info) const;

    Principle principle;
    bool readsLevelX;
    double up;            // the height of the sensor's z axis when it is level: 1 or -1
    double lowestUp;      // the least of that height, with up's sign, within the limits
    double azimuthOffset; // radians
    double azimuthGain;   // of the turn about the sensor's z axis, its sign included
    double sightAcross;   // pendulum: the cosine between line of sight and transverse axis
    Axis axes[2];         // of the level, or of levels X and Y
    float limits[4];      // X low, X high, Y low, Y high
    RowTrust ofReference;
};

} // namespace kiv
