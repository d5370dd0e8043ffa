#include "bench/Cases.h"

#include <map>
#include <stdexcept>

#include "KIVInterface/ConfigureSensor.h"
#include "sensor/Update.h"
#include "simulator/InverseCalibration.h"
#include "simulator/RandomPoses.h"
#include "tests/ModelCases.h"

namespace kiv::bench {

namespace {

std::string folderOf(int mode) {
    return std::string(KIV_BENCH_SENSORS "/mode_") + std::to_string(mode);
}

} // namespace

std::string parameterFile(int mode) {
    return folderOf(mode) + "/Tg5.prm";
}

SensorCases::SensorCases(int mode) {
    CKivPrm record;
    if (record.ReadCalibrationFile(folderOf(mode).c_str(), 5) != KIV_OK
        || configureSensor(sensor, record) != KIV_OK)
        throw std::runtime_error("cannot use " + parameterFile(mode));
    mounting = simulator::mountingOf(record);
    model = test::modelOf(mounting);

    simulator::InverseCalibration calibration(record);
    simulator::RandomPoses poses(1, {.inverted = simulator::invertedIn(mode)});
    while (readings.size() < caseCount) {
        const simulator::Pose pose = poses.next();
        simulator::CorrectedReadings corrected;
        if (!simulator::readingsOf(mounting, pose, corrected))
            continue;
        KIV_RAWINFO raw{};
        raw.status = 2;
        raw.refMetric = 0.1F;
        calibration.rawReadings(pose, corrected, static_cast<float>(poses.uniform(15, 30)), raw);

        KIV_INFO info;
        if (SensorUpdate::run(sensor, raw, info) == UpdateOutcome::modelFailed)
            continue;
        readings.push_back(raw);
        measurements.push_back({raw.vector[0], raw.vector[1], raw.vector[2], info.levelX,
                                info.levelY, info.azimuth, info.elevation, 0, 0});
    }
}

SensorCases& casesOf(int mode) {
    static std::map<int, SensorCases> made;
    return made.try_emplace(mode, mode).first->second;
}

} // namespace kiv::bench
