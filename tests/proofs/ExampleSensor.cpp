#include "tests/proofs/ExampleSensor.h"

#include <algorithm>
#include <stdexcept>

#include "KIVInterface/ConfigureSensor.h"
#include "sensor/Update.h"
#include "support/ZelUtil.h"

namespace kiv::docs {

namespace {

CKivPrm& loaded(CKivPrm& record, const std::string& folder) {
    if (record.ReadCalibrationFile(folder.c_str(), 5) != KIV_OK)
        throw std::runtime_error("cannot use the parameter file in " + folder);
    return record;
}

} // namespace

ExampleSensor::ExampleSensor(const std::string& folder) : calibration(loaded(record, folder)) {
    if (configureSensor(sensor, record) != KIV_OK)
        throw std::runtime_error("cannot configure the sensor in " + folder);
    mounting = simulator::mountingOf(record);
    record.getMachineMatrix(machine, 3);
}

bool ExampleSensor::read(const simulator::Pose& pose, KIV_RAWINFO& raw) {
    simulator::CorrectedReadings readings;
    if (!simulator::readingsOf(mounting, pose, readings))
        return false;
    raw = {};
    raw.status = 2;
    calibration.rawReadings(pose, readings, 21, raw);
    return true;
}

bool ExampleSensor::update(const KIV_RAWINFO& raw, KIV_INFO& info) {
    UpdateOutcome outcome = SensorUpdate::run(sensor, raw, info);
    if (outcome == UpdateOutcome::reference)
        outcome = SensorUpdate::run(sensor, raw, info);
    return outcome == UpdateOutcome::oriented;
}

void ExampleSensor::trueRotation(const simulator::Pose& pose, double* out) const {
    if (reportsOwnMatrix(mounting.mode))
        std::copy_n(pose.rotation, 9, out);
    else
        MatrixMultiply(machine, pose.rotation, 3, 3, 3, out);
}

} // namespace kiv::docs
