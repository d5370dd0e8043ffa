#include "sensor/Update.h"

#include <algorithm>

#include "c/Handles.h"
#include "c/Records.h"
#include "sensor/RowState.h"
#include "sensor/SensorAccess.h"

using namespace kiv;
using namespace kiv::c;

namespace {

constexpr double identity[9] = {1, 0, 0, 0, 1, 0, 0, 0, 1};

static_assert(KIV_STATE_OK == int(RowState::ok) && KIV_STATE_STATUS == int(RowState::status)
              && KIV_STATE_NO_REFERENCE == int(RowState::noReference)
              && KIV_STATE_REFERENCE == int(RowState::reference)
              && KIV_STATE_NO_ORIENTATION == int(RowState::noOrientation)
              && KIV_STATE_REFUSED == int(RowState::refused));

// Where one reading's results go, those that are wanted.
struct Places {
    kiv_result* result;
    double* matrix;
    std::uint8_t* state;
    kiv_trust* trust;
    kiv_uncertainty* uncertainty;

    Places at(std::size_t i) const {
        return {result + i, matrix ? matrix + 9 * i : nullptr, state ? state + i : nullptr,
                trust ? trust + i : nullptr, uncertainty ? uncertainty + i : nullptr};
    }
};

// One reading, of a locked sensor.
void update(kiv_sensor& sensor, const KIV_RAWINFO& raw, const Places& out) {
    KIV_INFO& info = recordOf(*out.result);
    RowState became = RowState::refused;
    if (isUsable(raw)) {
        const UpdateOutcome outcome = SensorUpdate::runAlone(sensor.sensor, raw, info);
        if (outcome == UpdateOutcome::reference) {
            sensor.reference = raw;
            sensor.referenceIndex = sensor.given;
            sensor.judge->captured(sensor.sensor, raw, info);
        }
        if (out.matrix)
            sensor.sensor.ReadMatrix(out.matrix);
        if (out.state || out.trust || out.uncertainty)
            became = stateAfter(sensor.sensor, outcome, info);
    } else {
        info = KIV_INFO{};
        if (out.matrix)
            std::copy_n(identity, 9, out.matrix);
    }
    if (out.state)
        *out.state = static_cast<std::uint8_t>(became);
    const bool oriented = became == RowState::ok;
    if (out.trust)
        *out.trust = oriented ? sensor.judge->trustIn(sensor.sensor, raw, info) : noTrust;
    if (out.uncertainty)
        *out.uncertainty =
            oriented ? sensor.judge->uncertaintyOf(sensor.sensor, raw, info) : noUncertainty;
    ++sensor.given;
}

int updateMany(kiv_sensor* sensor, const kiv_reading* readings, std::size_t count,
               const Places& out) {
    return locked(sensor, readings && out.result, [&] {
        if (out.uncertainty)
            sensor->judge->prepare(sensor->sensor, SensorAccess::hasReference(sensor->sensor)
                                                       ? &sensor->reference
                                                       : nullptr);
        for (std::size_t i = 0; i < count; ++i)
            update(*sensor, recordOf(readings[i]), out.at(i));
        return KIV_STATUS_OK;
    });
}

} // namespace

const char* kiv_state_name(int state) {
    const auto index = static_cast<std::size_t>(state);
    return index < rowStateNames.size() ? rowStateNames[index] : nullptr;
}

int kiv_sensor_update(kiv_sensor* sensor, const kiv_reading* reading, kiv_result* out) {
    return updateMany(sensor, reading, 1, {out, nullptr, nullptr, nullptr, nullptr});
}

int kiv_sensor_update_many(kiv_sensor* sensor, const kiv_reading* readings, size_t count,
                           kiv_result* out, double* matrices, uint8_t* states) {
    return updateMany(sensor, readings, count, {out, matrices, states, nullptr, nullptr});
}

int kiv_sensor_judge(kiv_sensor* sensor, const kiv_reading* reading, kiv_result* out,
                     kiv_trust* trust, kiv_uncertainty* uncertainty) {
    return updateMany(sensor, reading, 1, {out, nullptr, nullptr, trust, uncertainty});
}

int kiv_sensor_judge_many(kiv_sensor* sensor, const kiv_reading* readings, size_t count,
                          kiv_result* out, double* matrices, uint8_t* states, kiv_trust* trust,
                          kiv_uncertainty* uncertainties) {
    return updateMany(sensor, readings, count, {out, matrices, states, trust, uncertainties});
}

int kiv_sensor_matrix(kiv_sensor* sensor, double* m) {
    return locked(sensor, m, [=] { return sensor->sensor.ReadMatrix(m); });
}
