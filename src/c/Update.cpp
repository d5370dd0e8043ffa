#include "sensor/Update.h"

#include <algorithm>

#include "c/Handles.h"
#include "c/Records.h"
#include "sensor/RowState.h"

using namespace kiv;
using namespace kiv::c;

namespace {

constexpr double identity[9] = {1, 0, 0, 0, 1, 0, 0, 0, 1};

static_assert(KIV_STATE_OK == int(RowState::ok) && KIV_STATE_STATUS == int(RowState::status)
              && KIV_STATE_NO_REFERENCE == int(RowState::noReference)
              && KIV_STATE_REFERENCE == int(RowState::reference)
              && KIV_STATE_NO_ORIENTATION == int(RowState::noOrientation)
              && KIV_STATE_REFUSED == int(RowState::refused));

// One reading, of a locked sensor.
void update(kiv_sensor& sensor, const KIV_RAWINFO& raw, KIV_INFO& info, double* matrix,
            std::uint8_t* state) {
    RowState became = RowState::refused;
    if (isUsable(raw)) {
        const UpdateOutcome outcome = SensorUpdate::runAlone(sensor.sensor, raw, info);
        if (outcome == UpdateOutcome::reference) {
            sensor.reference = raw;
            sensor.referenceIndex = sensor.given;
        }
        if (matrix)
            sensor.sensor.ReadMatrix(matrix);
        if (state)
            became = stateAfter(sensor.sensor, outcome, info);
    } else {
        info = KIV_INFO{};
        if (matrix)
            std::copy_n(identity, 9, matrix);
    }
    if (state)
        *state = static_cast<std::uint8_t>(became);
    ++sensor.given;
}

} // namespace

const char* kiv_state_name(int state) {
    const auto index = static_cast<std::size_t>(state);
    return index < rowStateNames.size() ? rowStateNames[index] : nullptr;
}

int kiv_sensor_update(kiv_sensor* sensor, const kiv_reading* reading, kiv_result* out) {
    return kiv_sensor_update_many(sensor, reading, 1, out, nullptr, nullptr);
}

int kiv_sensor_update_many(kiv_sensor* sensor, const kiv_reading* readings, size_t count,
                           kiv_result* out, double* matrices, uint8_t* states) {
    return locked(sensor, readings && out, [=] {
        for (std::size_t i = 0; i < count; ++i)
            update(*sensor, recordOf(readings[i]), recordOf(out[i]),
                   matrices ? matrices + 9 * i : nullptr, states ? states + i : nullptr);
        return KIV_STATUS_OK;
    });
}

int kiv_sensor_matrix(kiv_sensor* sensor, double* m) {
    return locked(sensor, m, [=] { return sensor->sensor.ReadMatrix(m); });
}
