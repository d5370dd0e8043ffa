#include "host/RowResult.h"

#include <algorithm>
#include <cmath>
#include <string>

#include "sensor/SensorAccess.h"

namespace kiv::host {

namespace {

// How messages speak of a model and of readings that it has no orientation for.
struct ModelWords {
    const char* name;
    const char* whereItFails;
    const char* whereNotFinite;
};

ModelWords wordsFor(int mode) {
    constexpr const char* overflow = "values too large to compute with";
    constexpr const char* alongVertical =
        "a line of sight along the vertical or in a level's plane with it";
    switch (mode) {
    case 1:
    case 2:
        return {"dual-level", "no tilted vertical that both levels show", overflow};
    case 5:
    case 6:
        return {"polarizer", overflow, overflow};
    case 7:
    case 8:
        return {"three-vector", alongVertical, alongVertical};
    case 9:
    case 10:
        return {"two-level", "both levels outside their tables", alongVertical};
    default:
        return {"pendulum", "no transverse axis that shows their inclination", overflow};
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

// The models of modes 5 to 10 report a result also where its entries are no numbers.
bool transformFinite(const CKiv& sensor) {
    const double* t = SensorAccess::transform(sensor);
    return std::all_of(t, t + 9, [](double v) { return std::isfinite(v); });
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
    const UpdateOutcome outcome = SensorAccess::update(sensor, result.raw, result.info);
    result.code = sensor.ReadMatrix(result.matrix);
    result.state = stateOf(outcome);
    if (outcome > UpdateOutcome::modelFailed && !transformFinite(sensor))
        result.state = RowState::noOrientation;
    if (result.state == RowState::noOrientation) {
        const ModelWords words = wordsFor(mode);
        result.reason =
            outcome == UpdateOutcome::modelFailed ? words.whereItFails : words.whereNotFinite;
        table.reportRow(std::string("readings that the ") + words.name
                            + " model solves (mount mode " + std::to_string(mode) + ")",
                        result.reason);
    }
    return true;
}

} // namespace kiv::host
