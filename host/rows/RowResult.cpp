#include "host/rows/RowResult.h"

#include <string>

#include "sensor/SensorAccess.h"
#include "sensor/Update.h"
#include "support/MountMode.h"

namespace kiv::host {

namespace {

// Readings that a model has no orientation for: its computation fails, or gives what is no number.
Reason whereItFails(int mode) {
    switch (principleOf(mode)) {
    case Principle::dualLevel:
        return Reason::noVertical;
    case Principle::polarizer:
        return Reason::overflow;
    case Principle::threeVectors:
        return Reason::alongVertical;
    case Principle::twoLevels:
        return Reason::levelsOutside;
    case Principle::pendulum:
        break;
    }
    return Reason::noAxis;
}

Reason whereNotFinite(int mode) {
    const Principle principle = principleOf(mode);
    return principle == Principle::threeVectors || principle == Principle::twoLevels
               ? Reason::alongVertical
               : Reason::overflow;
}

} // namespace

RowRunner::RowRunner(const CKiv& configured, const F_VECTOR4& levelLimits,
                     const std::optional<Uncertainties>& uncertainties)
    : sensor(configured), mode(SensorAccess::mountMode(configured)),
      trust(configured, levelLimits) {
    if (uncertainties)
        propagation.emplace(configured, *uncertainties);
}

bool RowRunner::hasReference() const {
    return SensorAccess::hasReference(sensor);
}

void RowRunner::judge(RowResult& result) {
    const bool reference = result.state == RowState::reference;
    result.trust = trust.judge(sensor, result.raw, result.info, reference);
    if (!propagation)
        return;
    if (reference)
        propagation->captured(sensor, result.raw);
    else
        result.hasUncertainty =
            propagation->of(sensor, result.raw, result.info, result.uncertainty);
}

void RowRunner::run(Table& table, RowResult& result) {
    result.hasUncertainty = false;
    result.reason = readReadings(table, result.raw);
    if (result.reason != Reason::none) {
        result.state = RowState::refused;
        return;
    }
    const UpdateOutcome outcome = SensorUpdate::runAlone(sensor, result.raw, result.info);
    result.code = sensor.ReadMatrix(result.matrix);
    result.state = stateAfter(sensor, outcome, result.info);
    if (result.state == RowState::ok || result.state == RowState::reference) {
        judge(result);
        return;
    }

    if (result.state == RowState::status)
        result.reason = Reason::status;
    else if (result.state == RowState::noReference)
        result.reason = result.raw.refBlocked ? Reason::refBlocked : Reason::refMetric;
    else
        result.reason =
            outcome == UpdateOutcome::modelFailed ? whereItFails(mode) : whereNotFinite(mode);
    if (result.state == RowState::noOrientation)
        table.reportRow(std::string("readings that the ") + modelName(mode)
                            + " model solves (mount mode " + std::to_string(mode) + ")",
                        wordsOf(result.reason).text);
}

} // namespace kiv::host
