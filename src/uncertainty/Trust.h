#pragma once

#include <array>
#include <cstddef>
#include <limits>
#include <optional>

#include "KIVInterface/CKiv.h"
#include "support/Principles.h"
#include "uncertainty/JudgedLevel.h"
#include "uncertainty/SpareReading.h"
#include "uncertainty/Uncertainties.h"

namespace kiv {

// Why a row of results is not to be trusted like others. Where several hold: noRotation,
// readingLost, then the others in their order, reference last.
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
    noRotation,
    readingLost,
    ryNear90,
    spareDisagrees,
};

struct TrustWords {
    const char* word;    // in columns and counts
    const char* meaning; // in the same words on every page and in every header
};

inline constexpr std::array<TrustWords, 14> trustWords{{
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
    {"no_rotation", "the matrix of the frame in use is no rotation"},
    {"reading_lost", "a parameter leaves a reading without effect"},
    {"ry_near_90", "ry is so close to 90 degrees that rx and rz are unsure"},
    {"spare_disagrees", "dual level: the levels ask for another elevation than the encoder's"},
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
    // What the reading shows that is one more than the orientation needs, degrees: SpareReading.h.
    // No number where there is none, or it means nothing.
    double spare = std::numeric_limits<double>::quiet_NaN();
    double spareDeviation = 0; // its standard deviation by the uncertainties of the readings
};

// Judges the results of one sensor. Reads its calibration values when made and its state after each
// update; changes nothing, allocates nothing.
class TrustJudge {
public:
    // The sensor has a model. The limits, degrees, are those of CKivPrm::GetKIVLevelLimits; a pair
    // of which the first is not below the second does not count.
    TrustJudge(const CKiv& sensor, const F_VECTOR4& levelLimits);

    // Reads the sensor's calibration values again; the reference stays as it was judged.
    void configure(const CKiv& sensor);
    // What the spare reading may come to by the uncertainties; where all are 0 they count as none.
    void expect(const Uncertainties& ofReadings);

    // Call it after an update of the sensor that gave an orientation or became the reference. The
    // reference's own error counts for all later rows in the local frame.
    RowTrust judge(const CKiv& sensor, const KIV_RAWINFO& raw, const KIV_INFO& info,
                   bool becameReference);

private:
    // An encoder's corrected angle less its offset, times the gain.
    struct Encoder {
        double offset, gain;
        double steepest; // the largest slope of the corrected angle over the raw one
        double rounding(float raw, float corrected) const;
    };
    struct Frame {
        Frame(const double* matrix, double times); // it stands in the result so many times
        bool rotation;                             // its matrix is one
        double stretch; // what the matrix is short of that makes of an angle, degrees
    };
    struct Sight;
    struct Roll;

    static JudgedLevel::Axis levelAxis(const float* parameters);
    void setLimits();
    bool lost(const CKiv& sensor, const KIV_RAWINFO& raw) const;
    Roll rollOf(const Sight& sight, const JudgedLevel& level, const double* axis,
                const KIV_RAWINFO& raw, const KIV_INFO& info) const;
    bool mirrorWithinLimits(const Sight& sight, const Roll& roll) const;
    bool levelXExcludesMirror(const Sight& sight, const double* across, const Roll& roll,
                              const KIV_RAWINFO& raw, const KIV_INFO& info) const;
    static bool mirrorsAgree(const Roll& x, const Roll& y);
    static RowTrust mirrored(const Roll& roll, double error);
    static RowTrust fromRoll(const Roll& roll, double error, Trust otherwise);
    LevelRoll levelRoll(const Sight& sight, const Roll& roll, const double* axis) const;
    SightError sightError(const Sight& sight) const;
    RowTrust ofModel(const CKiv& sensor, const KIV_RAWINFO& raw, const KIV_INFO& info) const;
    RowTrust polarizer(const Sight& sight, const KIV_RAWINFO& raw, const KIV_INFO& info) const;
    RowTrust oneLevel(const Sight& sight, const KIV_RAWINFO& raw, const KIV_INFO& info) const;
    RowTrust dualLevel(const Sight& sight, const CKiv& sensor, const KIV_RAWINFO& raw,
                       const KIV_INFO& info) const;
    RowTrust twoLevels(const Sight& sight, const CKiv& sensor, const KIV_RAWINFO& raw,
                       const KIV_INFO& info) const;

    Principle principle;
    bool encoderLost = false; // the gain of one leaves it out
    double up = 1;            // the height of the sensor's z axis when it is level, or -1
    double lowestUp = 0;      // the least of that height, with up's sign, within the limits
    double sightAcross = 0;   // pendulum: the cosine between line of sight and transverse axis
    double sinF0 = 0;         // dual level: of what its levels' axes stand off a right angle
    double cosF0 = 1;
    double elevationAxis[3]{}; // two levels: in the yoke's frame
    Encoder azimuth, elevation;
    std::optional<JudgedLevel> levelX; // where the model reads it
    JudgedLevel levelY;
    Frame machine, local;
    float limits[4]; // X low, X high, Y low, Y high
    std::optional<Uncertainties> uncertainties;
    RowTrust ofReference;
};

} // namespace kiv
