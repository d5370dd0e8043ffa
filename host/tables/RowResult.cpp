#include "host/tables/RowResult.h"

#include <cmath>
#include <string>

#include "models/Geometry.h"
#include "sensor/SensorAccess.h"
#include "sensor/Update.h"
#include "support/MountMode.h"

namespace kiv::host {

namespace {

// How messages speak of readings that a model has no orientation for.
struct ModelWords {
    const char* whereItFails;
    const char* whereNotFinite;
};

ModelWords wordsFor(int mode) {
    constexpr const char* overflow = "angles that are no numbers";
    constexpr const char* alongVertical =
        "a line of sight along the vertical or in a level's plane with it";
    switch (principleOf(mode)) {
    case Principle::dualLevel:
        return {"no tilted vertical that both levels show", overflow};
    case Principle::polarizer:
        return {overflow, overflow};
    case Principle::threeVectors:
        return {alongVertical, alongVertical};
    case Principle::twoLevels:
        return {"both levels outside their tables", alongVertical};
    case Principle::pendulum:
        break;
    }
    return {"no transverse axis that shows their inclination", overflow};
}

RowState stateOf(UpdateOutcome outcome) {
    switch (outcome) {
    case UpdateOutcome::badStatus:
        return RowState::status;
    case UpdateOutcome::modelFailed:
        return RowState::noOrientation;
    case UpdateOutcome::noReference:
        return RowState::noReference;
    case UpdateOutcome::reference:
        return RowState::reference;
    case UpdateOutcome::oriented:
        break;
    }
    return RowState::ok;
}

// The models of modes 5 to 10 report a result also where its entries are no numbers, and a machine
// or local matrix can spoil any model's.
bool allNumbers(const CKiv& sensor, const KIV_INFO& info) {
    return allFinite(SensorAccess::transform(sensor), 9) && std::isfinite(info.rx)
           && std::isfinite(info.ry) && std::isfinite(info.rz);
}

} // namespace

RowRunner::RowRunner(CKiv& kiv, Table& readings)
    : sensor(kiv), table(readings), mode(SensorAccess::mountMode(kiv)) {}

bool RowRunner::next(RowResult& result) {
    if (!table.nextRow())
        return false;
    result.refusal = readReadings(table, result.raw);
    if (result.refusal != Refusal::none) {
        result.state = RowState::refused;
        return true;
    }
    const UpdateOutcome outcome = SensorUpdate::run(sensor, result.raw, result.info);
    result.code = sensor.ReadMatrix(result.matrix);
    result.state = stateOf(outcome);
    if (outcome > UpdateOutcome::modelFailed && !allNumbers(sensor, result.info))
        result.state = RowState::noOrientation;
    if (result.state == RowState::noOrientation) {
        const ModelWords words = wordsFor(mode);
        result.reason =
            outcome == UpdateOutcome::modelFailed ? words.whereItFails : words.whereNotFinite;
        table.reportRow(std::string("readings that the ") + modelName(mode)
                            + " model solves (mount mode " + std::to_string(mode) + ")",
                        result.reason);
    }
    return true;
}

} // namespace kiv::host
