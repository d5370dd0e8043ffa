#include <memory>

#include "KIVInterface/ConfigureSensor.h"
#include "c/Handles.h"
#include "c/Records.h"
#include "sensor/RowState.h"
#include "sensor/SensorAccess.h"
#include "sensor/Update.h"

using namespace kiv;
using namespace kiv::c;

int kiv_sensor_new(const kiv_parameters* parameters, kiv_sensor** out) {
    if (!parameters || !out)
        return KIV_STATUS_BAD_ARGUMENT;
    if (!parameters->file)
        return KIV_STATUS_NOT_LOADED;
    return guarded([=]() -> int {
        auto made = std::make_unique<kiv_sensor>();
        CKivPrm& record = parameters->file->record;
        const int code = configureSensor(made->sensor, record);
        if (code != KIV_STATUS_OK)
            return code;
        F_VECTOR4 levelLimits{};
        record.GetKIVLevelLimits(levelLimits);
        made->judge.emplace(made->sensor, levelLimits);
        *out = made.release();
        return KIV_STATUS_OK;
    });
}

void kiv_sensor_free(kiv_sensor* sensor) {
    delete sensor;
}

int kiv_sensor_copy(const kiv_sensor* sensor, kiv_sensor** out) {
    if (!sensor || !out)
        return KIV_STATUS_BAD_ARGUMENT;
    return guarded([=] {
        *out = new kiv_sensor(*sensor);
        return KIV_STATUS_OK;
    });
}

int kiv_sensor_has_reference(const kiv_sensor* sensor, bool* has) {
    return locked(sensor, has, [=] {
        *has = SensorAccess::hasReference(sensor->sensor);
        return KIV_STATUS_OK;
    });
}

int kiv_sensor_reference_reading(const kiv_sensor* sensor, kiv_reading* reading) {
    return locked(sensor, reading, [=] {
        if (!SensorAccess::hasReference(sensor->sensor))
            return KIV_STATUS_NO_TRANSFORM;
        std::memcpy(reading, &sensor->reference, sizeof *reading);
        return KIV_STATUS_OK;
    });
}

int kiv_sensor_reference_index(const kiv_sensor* sensor, int64_t* index) {
    return locked(sensor, index, [=] {
        if (!SensorAccess::hasReference(sensor->sensor))
            return KIV_STATUS_NO_TRANSFORM;
        *index = sensor->referenceIndex;
        return KIV_STATUS_OK;
    });
}

int kiv_sensor_capture_reference(kiv_sensor* sensor, const kiv_reading* reading) {
    return locked(sensor, reading, [=] {
        const KIV_RAWINFO& raw = recordOf(*reading);
        KIV_INFO info;
        CKiv trial(sensor->sensor);
        SensorAccess::forgetReference(trial);
        if (!isUsable(raw) || SensorUpdate::run(trial, raw, info) != UpdateOutcome::reference)
            return KIV_STATUS_NO_TRANSFORM;
        SensorAccess::takeReference(sensor->sensor, trial);
        sensor->reference = raw;
        sensor->referenceIndex = -1;
        sensor->judge->captured(trial, raw, info);
        return KIV_STATUS_OK;
    });
}
