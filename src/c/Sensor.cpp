#include "KIVInterface/ConfigureSensor.h"
#include "c/Handles.h"
#include "c/Records.h"

using namespace kiv;
using namespace kiv::c;

int kiv_sensor_new(const kiv_parameters* parameters, kiv_sensor** out) {
    if (!parameters || !out)
        return KIV_STATUS_BAD_ARGUMENT;
    if (!parameters->file)
        return KIV_STATUS_NOT_LOADED;
    return guarded([=]() -> int {
        CKiv sensor;
        CKivPrm& record = parameters->file->record;
        const int code = configureSensor(sensor, record);
        if (code != KIV_STATUS_OK)
            return code;
        F_VECTOR4 levelLimits{};
        record.GetKIVLevelLimits(levelLimits);
        *out = new kiv_sensor(sensor, levelLimits);
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
        *has = sensor->judged.hasReference();
        return KIV_STATUS_OK;
    });
}

int kiv_sensor_reference_reading(const kiv_sensor* sensor, kiv_reading* reading) {
    return locked(sensor, reading, [=] {
        if (!sensor->judged.hasReference())
            return KIV_STATUS_NO_TRANSFORM;
        std::memcpy(reading, &sensor->judged.referenceReading(), sizeof *reading);
        return KIV_STATUS_OK;
    });
}

int kiv_sensor_reference_index(const kiv_sensor* sensor, int64_t* index) {
    return locked(sensor, index, [=] {
        if (!sensor->judged.hasReference())
            return KIV_STATUS_NO_TRANSFORM;
        *index = sensor->judged.referenceIndex();
        return KIV_STATUS_OK;
    });
}

int kiv_sensor_capture_reference(kiv_sensor* sensor, const kiv_reading* reading) {
    return locked(sensor, reading, [=] {
        return sensor->judged.captureReference(recordOf(*reading)) ? KIV_STATUS_OK
                                                                   : KIV_STATUS_NO_TRANSFORM;
    });
}
