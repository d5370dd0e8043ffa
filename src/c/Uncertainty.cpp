#include "c/Handles.h"
#include "models/ModelFactory.h"
#include "sensor/SensorAccess.h"

using namespace kiv;
using namespace kiv::c;

namespace {

int refuseUncertainty(UncertaintyFault fault, Principle principle, const kiv_sensor& sensor,
                      const char* name, double value) {
    switch (fault) {
    case UncertaintyFault::name:
        return refuse(KIV_STATUS_BAD_ARGUMENT,
                      "name: expected one that kiv_uncertainty_name gives, found \"", name, "\"");
    case UncertaintyFault::unread:
        return refuse(KIV_STATUS_BAD_ARGUMENT, "name: expected what the ", traitsOf(principle).name,
                      " model reads, found ", name);
    case UncertaintyFault::value:
        return refuse(KIV_STATUS_BAD_ARGUMENT, "value: expected from 0 to ",
                      static_cast<int>(largestUncertainty), " for ", name, ", found ", value);
    case UncertaintyFault::vector:
        return refuse(KIV_STATUS_BAD_ARGUMENT, "name: expected the vector in the way of ",
                      sensor.uncertainties.firstOfVector(), ", which was given first, found ",
                      name);
    case UncertaintyFault::none:
        break;
    }
    return KIV_STATUS_OK;
}

} // namespace

const char* kiv_uncertainty_name(size_t index) {
    return index < uncertaintyNames.size() ? uncertaintyNames[index].text : nullptr;
}

int kiv_sensor_set_uncertainty(kiv_sensor* sensor, const char* name, double value) {
    return locked(sensor, {{"name", name}}, [=]() -> int {
        const Principle principle = principleOf(*SensorAccess::model(sensor->judged.sensor()));
        NamedUncertainties given = sensor->uncertainties;
        const UncertaintyFault fault = given.give(principle, name, value);
        if (fault != UncertaintyFault::none)
            return refuseUncertainty(fault, principle, *sensor, name, value);
        sensor->judged.setUncertainties(given.values());
        sensor->uncertainties = given;
        return KIV_STATUS_OK;
    });
}

int kiv_sensor_clear_uncertainties(kiv_sensor* sensor) {
    return locked(sensor, [=] {
        sensor->judged.setUncertainties({});
        sensor->uncertainties = {};
        return KIV_STATUS_OK;
    });
}
