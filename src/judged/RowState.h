#pragma once

#include <array>

#include "KIVInterface/Records.h"
#include "sensor/Update.h"

namespace kiv {

// What became of a row of readings.
enum class RowState : unsigned char {
    ok,            // the angles are computed
    status,        // the measurement status is not 2
    noReference,   // no reference orientation has been captured yet
    reference,     // this row became the reference
    noOrientation, // the model has none for it
    refused,       // the readings are no use and never reached the sensor
};

inline constexpr std::array<const char*, 6> rowStateNames{
    "ok", "status", "no_reference", "reference", "no_orientation", "refused"};

// Readings that are finite and whose vector is not zero. In line and without branches, as every
// reading is asked: 0 times what is not finite is no number.
inline bool isUsable(const KIV_RAWINFO& raw) {
    const float(&v)[3] = raw.vector;
    const float zero =
        ((v[0] * 0 + v[1] * 0) + (v[2] * 0 + raw.azimuthRaw * 0))
        + ((raw.elevationRaw * 0 + raw.levelXRaw * 0) + (raw.levelYRaw * 0 + raw.temperature * 0))
        + raw.refMetric * 0;
    return zero == 0 && (v[0] != 0 || v[1] != 0 || v[2] != 0);
}

// The state of the readings that were last taken through the sensor, with what came of them.
RowState stateAfter(const CKiv& sensor, UpdateOutcome outcome, const KIV_INFO& info);

} // namespace kiv
