#include "host/calibration/ComputedPose.h"

#include <cmath>

#include "KIVInterface/ConfigureSensor.h"
#include "sensor/SensorAccess.h"
#include "sensor/Update.h"

namespace kiv::host {

// With a reference, which has no part in machine coordinates, every orientation has angles.
ComputedPose::ComputedPose(CKivPrm& record) {
    configureSensor(sensor, record);
    SensorAccess::takeReference(sensor, sensor);
}

bool ComputedPose::take(const KIV_RAWINFO& raw) {
    return SensorUpdate::run(sensor, raw, info) == UpdateOutcome::oriented
           && std::isfinite(info.rx + info.ry + info.rz);
}

const double* ComputedPose::rotation() const {
    return SensorAccess::transform(sensor);
}

} // namespace kiv::host
