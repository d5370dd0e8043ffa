#include "host/tables/RowResult.h"

#include <cmath>
#include <string>

#include "models/Geometry.h"
#include "sensor/SensorAccess.h"

namespace kiv::host {

namespace {

// How messages speak of a model and of readings that it has no orientation for.
struct ModelWords {
    const char* name;
    Reason whereItFails;
    Reason whereNotFinite;
};

ModelWords wordsFor(int mode) {
    using enum Reason;
    switch (mode) {
    case 1:
    case 2:
        return {"dual-level", noVertical, overflow};
    case 5:
    case 6:
        return {"polarizer", overflow, overflow};
    case 7:
    case 8:
        return {"three-vector", alongVertical, alongVertical};
    case 9:
    case 10:
        return {"two-level", levelsOutside, alongVertical};
    default:
        return {"pendulum", noAxis, overflow};
    }
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

const char* modelName(int mode) {
    return wordsFor(mode).name;
}

RowRunner::RowRunner(CKiv& kiv, Table& readings)
    : sensor(kiv), table(readings), mode(SensorAccess::mountMode(kiv)) {}

bool RowRunner::next(RowResult& result) {
    if (!table.nextRow())
        return false;
    result.reason = readReadings(table, result.raw);
    if (result.reason != Reason::none) {
        result.state = RowState::refused;
        return true;
    }
    const UpdateOutcome outcome = SensorAccess::update(sensor, result.raw, result.info);
    result.code = sensor.ReadMatrix(result.matrix);
    result.state = stateOf(outcome);
    if (outcome > UpdateOutcome::modelFailed && !allNumbers(sensor, result.info))
        result.state = RowState::noOrientation;
    if (result.state == RowState::ok || result.state == RowState::reference)
        return true;

    const ModelWords words = wordsFor(mode);
    if (result.state == RowState::status)
        result.reason = Reason::status;
    else if (result.state == RowState::noReference)
        result.reason = result.raw.refBlocked ? Reason::refBlocked : Reason::refMetric;
    else
        result.reason =
            outcome == UpdateOutcome::modelFailed ? words.whereItFails : words.whereNotFinite;
    if (result.state == RowState::noOrientation)
        table.reportRow(std::string("readings that the ") + words.name
                            + " model solves (mount mode " + std::to_string(mode) + ")",
                        wordsOf(result.reason).text);
    return true;
}

} // namespace kiv::host
