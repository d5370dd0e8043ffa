#include "judged/JudgedSensor.h"

#include <algorithm>

#include "judged/RowResults.h"
#include "sensor/SensorAccess.h"
#include "sensor/Update.h"
#include "support/Principles.h"

namespace kiv {

namespace {

// Why a model has no orientation for a reading: its computation fails, or gives what is no number.
Reason whereItFails(Principle principle) {
    switch (principle) {
    case Principle::dualLevel:
        return Reason::noVertical;
    case Principle::pendulum:
        return Reason::noAxis;
    case Principle::polarizer:
        return Reason::overflow;
    case Principle::threeVectors:
        return Reason::alongVertical;
    case Principle::twoLevels:
        return Reason::levelsOutside;
    }
    return Reason::none;
}

Reason whereNotFinite(Principle principle) {
    switch (principle) {
    case Principle::threeVectors:
    case Principle::twoLevels:
        return Reason::alongVertical;
    case Principle::dualLevel:
    case Principle::pendulum:
    case Principle::polarizer:
        return Reason::overflow;
    }
    return Reason::none;
}

} // namespace

void JudgedSensor::setUncertainties(const Uncertainties& ofReadings) {
    propagation = follow<Propagation>(own, ofReadings);
    uncertainties = ofReadings;
    trust.expect(ofReadings);
}

void JudgedSensor::setCalibration(Calibration found) {
    calibrationPart = follow<CalibrationPart>(own, found);
    calibration = std::move(found);
}

bool JudgedSensor::hasReference() const {
    return SensorAccess::hasReference(own);
}

void JudgedSensor::captured(const CKiv& by, const KIV_RAWINFO& raw, std::int64_t index) {
    reference = raw;
    indexOfReference = index;
    propagation->captured(by, raw);
    calibrationPart->captured(by, raw);
}

Reason JudgedSensor::reasonOf(const KIV_RAWINFO& raw, UpdateOutcome outcome, RowState state) const {
    switch (state) {
    case RowState::status:
        return Reason::status;
    case RowState::noReference:
        return raw.refBlocked ? Reason::refBlocked : Reason::refMetric;
    case RowState::noOrientation: {
        const Principle principle = principleOf(SensorAccess::mountMode(own));
        return outcome == UpdateOutcome::modelFailed ? whereItFails(principle)
                                                     : whereNotFinite(principle);
    }
    case RowState::refused:
        return raw.vector[0] == 0 && raw.vector[1] == 0 && raw.vector[2] == 0 ? Reason::zeroVector
                                                                              : Reason::notANumber;
    case RowState::ok:
    case RowState::reference:
        break;
    }
    return Reason::none;
}

void JudgedSensor::judge(const KIV_RAWINFO& raw, const Wanted& wanted, JudgedReading& out) {
    const std::int64_t index = given++;
    out.hasUncertainty = false;
    out.hasCalibration = false;
    if (!isUsable(raw)) {
        out.state = RowState::refused;
        out.reason = reasonOf(raw, UpdateOutcome::badStatus, out.state);
        out.info = {};
        std::fill_n(out.matrix, 9, 0.0);
        out.matrix[0] = out.matrix[4] = out.matrix[8] = 1;
        return;
    }
    const UpdateOutcome outcome = SensorUpdate::runAlone(own, raw, out.info);
    if (outcome == UpdateOutcome::reference) {
        out.trust = trust.judge(own, raw, out.info, true);
        captured(own, raw, index);
    }
    if (wanted.matrix)
        out.code = own.ReadMatrix(out.matrix);
    if (!wanted.state)
        return;
    out.state = stateAfter(own, outcome, out.info);
    out.reason = reasonOf(raw, outcome, out.state);
    if (!hasAngles(out.state))
        return;
    if (wanted.trust)
        out.trust = trust.judge(own, raw, out.info, false);
    if (wanted.uncertainty)
        out.hasUncertainty = propagation->of(own, raw, out.info, out.uncertainty);
    if (wanted.calibration)
        out.hasCalibration = calibrationPart->of(raw, out.calibration);
}

Reason JudgedSensor::captureReference(const KIV_RAWINFO& raw) {
    if (!isUsable(raw))
        return reasonOf(raw, UpdateOutcome::badStatus, RowState::refused);
    KIV_INFO info;
    CKiv trial(own);
    SensorAccess::forgetReference(trial);
    const UpdateOutcome outcome = SensorUpdate::run(trial, raw, info);
    if (outcome != UpdateOutcome::reference)
        return reasonOf(raw, outcome, stateAfter(trial, outcome, info));
    SensorAccess::takeReference(own, trial);
    trust.judge(trial, raw, info, true);
    captured(trial, raw, -1);
    return Reason::none;
}

} // namespace kiv
