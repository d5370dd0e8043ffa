#include <cmath>
#include <utility>

#include "KIVInterface/ConfigureSensor.h"
#include "c/Handles.h"
#include "c/Records.h"

using namespace kiv;
using namespace kiv::c;

namespace {

int refuseWithoutReference() {
    return refuse(KIV_STATUS_NO_TRANSFORM, "sensor: expected one with a reference, found none");
}

// The first field that is no number; null where all are.
const char* fieldWithoutNumber(const KIV_RAWINFO& raw) {
    const std::pair<const char*, float> fields[] = {
        {"vector[0]", raw.vector[0]},    {"vector[1]", raw.vector[1]},
        {"vector[2]", raw.vector[2]},    {"azimuth", raw.azimuthRaw},
        {"elevation", raw.elevationRaw}, {"level_x", raw.levelXRaw},
        {"level_y", raw.levelYRaw},      {"temperature", raw.temperature},
        {"ref_metric", raw.refMetric}};
    for (const auto& [name, value] : fields)
        if (!std::isfinite(value))
            return name;
    return nullptr;
}

int refuseAsReference(Reason reason, const KIV_RAWINFO& raw) {
    const char* field = fieldWithoutNumber(raw);
    return refuse(KIV_STATUS_NO_TRANSFORM,
                  "reading: expected one that an update makes the reference, found ",
                  wordsOf(reason).text, field ? " in " : "", field ? field : "");
}

} // namespace

int kiv_sensor_new(const kiv_parameters* parameters, kiv_sensor** out) {
    return guarded({{"parameters", parameters}, {"out", out}}, [=]() -> int {
        if (!parameters->file)
            return refuseUnloaded();
        CKiv sensor;
        CKivPrm& record = parameters->file->record;
        const int code = configureSensor(sensor, record);
        if (code != KIV_STATUS_OK)
            return refuse(code, "parameters: expected rows in both tilt tables, found none in one");
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
    return guarded({{"sensor", sensor}, {"out", out}}, [=] {
        *out = new kiv_sensor(*sensor);
        return KIV_STATUS_OK;
    });
}

int kiv_sensor_has_reference(const kiv_sensor* sensor, bool* has) {
    return locked(sensor, {{"has", has}}, [=] {
        *has = sensor->judged.hasReference();
        return KIV_STATUS_OK;
    });
}

int kiv_sensor_reference_reading(const kiv_sensor* sensor, kiv_reading* reading) {
    return locked(sensor, {{"reading", reading}}, [=]() -> int {
        if (!sensor->judged.hasReference())
            return refuseWithoutReference();
        std::memcpy(reading, &sensor->judged.referenceReading(), sizeof *reading);
        return KIV_STATUS_OK;
    });
}

int kiv_sensor_reference_index(const kiv_sensor* sensor, int64_t* index) {
    return locked(sensor, {{"index", index}}, [=]() -> int {
        if (!sensor->judged.hasReference())
            return refuseWithoutReference();
        *index = sensor->judged.referenceIndex();
        return KIV_STATUS_OK;
    });
}

int kiv_sensor_capture_reference(kiv_sensor* sensor, const kiv_reading* reading) {
    return locked(sensor, {{"reading", reading}}, [=]() -> int {
        const KIV_RAWINFO& raw = recordOf(*reading);
        const Reason reason = sensor->judged.captureReference(raw);
        return reason == Reason::none ? int{KIV_STATUS_OK} : refuseAsReference(reason, raw);
    });
}
