#include "sensor/RowState.h"

#include <cmath>

#include "models/Geometry.h"
#include "sensor/SensorAccess.h"

namespace kiv {

namespace {

// The models of modes 5 to 10 report a result also where its entries are no numbers, and a machine
// or local matrix can spoil any model's.
bool allNumbers(const CKiv& sensor, const KIV_INFO& info) {
    return allFinite(SensorAccess::transform(sensor), 9) && std::isfinite(info.rx)
           && std::isfinite(info.ry) && std::isfinite(info.rz);
}

} // namespace

RowState stateAfter(const CKiv& sensor, UpdateOutcome outcome, const KIV_INFO& info) {
    if (outcome == UpdateOutcome::badStatus)
        return RowState::status;
    if (outcome == UpdateOutcome::modelFailed || !allNumbers(sensor, info))
        return RowState::noOrientation;
    switch (outcome) {
    case UpdateOutcome::noReference:
        return RowState::noReference;
    case UpdateOutcome::reference:
        return RowState::reference;
    default:
        return RowState::ok;
    }
}

} // namespace kiv
