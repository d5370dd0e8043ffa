#pragma once

#include <cstdint>
#include <utility>

#include "KIVInterface/CKiv.h"
#include "KIVInterface/StatusCodes.h"
#include "judged/Reason.h"
#include "judged/RowState.h"
#include "support/Copies.h"
#include "uncertainty/CalibrationPart.h"
#include "uncertainty/Propagation.h"
#include "uncertainty/Trust.h"

namespace kiv {

// What became of one reading, and all that came of it. RowResults.h says which of it there is.
struct JudgedReading {
    RowState state = RowState::refused;
    Reason reason = Reason::none; // for a state other than ok and reference
    KIV_INFO info{};
    double matrix[9] = {1, 0, 0, 0, 1, 0, 0, 0, 1};
    int code = 0;     // of ReadMatrix
    RowTrust trust{}; // in states ok and reference
    bool hasUncertainty = false;
    AngleUncertainty uncertainty{};
    bool hasCalibration = false;
    AngleTriple calibration{}; // its part, standard uncertainties of rx, ry, rz, degrees
};

// A sensor that says of each reading whether it has angles, why not, and how far to trust them.
class JudgedSensor {
public:
    // Limits as CKivPrm::GetKIVLevelLimits gives them, degrees.
    JudgedSensor(const CKiv& configured, const F_VECTOR4& levelLimits)
        : own(configured), trust(configured, levelLimits),
          propagation(std::in_place, own, uncertainties),
          calibrationPart(std::in_place, own, calibration) {}

    const CKiv& sensor() const { return own; }

    // Runs a setter of the sensor, which gives a status code, first on a copy; what follows is
    // judged by the setting. Allocates, so that judging need not. What it throws has changed
    // nothing.
    template <typename Set>
    int set(Set setter) {
        CKiv trial(own);
        if (const int code = setter(trial); code != KIV_OK)
            return code;
        auto next = follow<Propagation>(trial, uncertainties);
        auto nextPart = follow<CalibrationPart>(trial, calibration);
        const int code = setter(own);
        propagation = std::move(next);
        calibrationPart = std::move(nextPart);
        trust.configure(own);
        return code;
    }

    // Standard uncertainties of readings and parameters; without any they are exactly known. As
    // set.
    void setUncertainties(const Uncertainties& ofReadings);
    // Parameters that a calibration of this sensor found. As set.
    void setCalibration(Calibration found);

    // Info and reference are there in any case, of the rest what is wanted. The state is wanted
    // with trust, uncertainty or calibration.
    struct Wanted {
        bool matrix = false;
        bool state = false;
        bool trust = false;
        bool uncertainty = false;
        bool calibration = false;
    };
    // The first reading that can becomes the reference. Allocates nothing.
    void judge(const KIV_RAWINFO& raw, const Wanted& wanted, JudgedReading& out);

    // CKiv::ReadMatrix, of the last reading that was not refused.
    int readMatrix(double* m) { return own.ReadMatrix(m); }

    // The reading that is the reference, and its place among all that were judged, from 0; -1 where
    // it was captured.
    bool hasReference() const;
    const KIV_RAWINFO& referenceReading() const { return reference; }
    std::int64_t referenceIndex() const { return indexOfReference; }

    // Makes a reading the reference, in place of one that is there; nothing else changes. Gives the
    // reason why an update would not make it the reference; without one it is.
    Reason captureReference(const KIV_RAWINFO& raw);

private:
    Reason reasonOf(const KIV_RAWINFO& raw, UpdateOutcome outcome, RowState state) const;
    void captured(const CKiv& by, const KIV_RAWINFO& raw, std::int64_t index);
    // What follows a sensor, and its reference where it has one.
    template <typename Part, typename Given>
    Replaceable<Part> follow(const CKiv& sensor, const Given& uncertain) const {
        Replaceable<Part> made(std::in_place, sensor, uncertain);
        if (hasReference())
            made->captured(sensor, reference);
        return made;
    }

    CKiv own;
    TrustJudge trust;
    Uncertainties uncertainties;
    Calibration calibration;
    Replaceable<Propagation> propagation; // of the sensor as it is, as the next
    Replaceable<CalibrationPart> calibrationPart;
    KIV_RAWINFO reference{};
    std::int64_t indexOfReference = -1;
    std::int64_t given = 0; // readings so far
};

} // namespace kiv
