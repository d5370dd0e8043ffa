#include "judged/RowState.h"

#include "sensor/SensorAccess.h"

namespace kiv {

namespace {

// The models of modes 5 to 10 report a result also where its entries are no numbers, and a machine
// or local matrix can spoil any model's.
bool allNumbers(const CKiv& sensor, const KIV_INFO& info) {
    const double* t = SensorAccess::transform(sensor); // 0 times what is not finite is no number
    const double zero = (t[0] * 0 + t[1] * 0 + t[2] * 0) + (t[3] * 0 + t[4] * 0 + t[5] * 0)
                        + (t[6] * 0 + t[7] * 0 + t[8] * 0);
    const float angles = info.rx * 0 + info.ry * 0 + info.rz * 0;
    return zero == 0 && angles == 0;
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
