#include "c/Handles.h"
#include "models/ModelFactory.h"
#include "sensor/SensorAccess.h"

using namespace kiv;
using namespace kiv::c;

const char* kiv_uncertainty_name(size_t index) {
    return index < uncertaintyNames.size() ? uncertaintyNames[index].text : nullptr;
}

int kiv_sensor_set_uncertainty(kiv_sensor* sensor, const char* name, double value) {
    return locked(sensor, name, [=] {
        const Principle principle = principleOf(*SensorAccess::model(sensor->judged.sensor()));
        if (sensor->uncertainties.give(principle, name, value) != UncertaintyFault::none)
            return KIV_STATUS_BAD_ARGUMENT;
        sensor->judged.setUncertainties(sensor->uncertainties.values());
        return KIV_STATUS_OK;
    });
}

int kiv_sensor_clear_uncertainties(kiv_sensor* sensor) {
    return locked(sensor, true, [=] {
        sensor->uncertainties = {};
        sensor->judged.setUncertainties({});
        return KIV_STATUS_OK;
    });
}
