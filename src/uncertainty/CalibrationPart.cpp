#include "uncertainty/CalibrationPart.h"

#include <algorithm>
#include <cmath>

#include "models/ModelFactory.h"
#include "sensor/SensorAccess.h"
#include "sensor/Update.h"
#include "support/AngleConstants.h"

namespace kiv {

CalibrationPart::CalibrationPart(const CKiv& sensor, const Calibration& calibration)
    : covariance(calibration.covariance), principle(principleOf(*SensorAccess::model(sensor))),
      local(!reportsOwnMatrix(SensorAccess::mountMode(sensor))
            && !SensorAccess::inMachineFrame(sensor)) {
    const std::size_t count = calibration.parameters.size();
    parameters.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
        const CalibratedParameter& which = calibration.parameters[i];
        const double size = std::max(std::sqrt(covariance[count * i + i]), which.leastMove());
        Parameter& made = parameters.emplace_back(sensor);
        made.distance = which.move(made.forth, size) - which.move(made.back, -size);
    }
}

void CalibrationPart::captured(const CKiv& sensor, const KIV_RAWINFO& raw) {
    for (Parameter& each : parameters)
        for (CKiv* moved : {&each.back, &each.forth}) {
            KIV_INFO info;
            SensorAccess::forgetReference(*moved);
            if (local)
                SensorUpdate::run(*moved, raw, info);
            else
                SensorAccess::takeReference(*moved, sensor);
        }
}

bool CalibrationPart::of(const KIV_RAWINFO& row, AngleTriple& standard) {
    const KIV_RAWINFO raw = clearOfLevelSight(row, levelSightClearance(principle, row));
    KIV_INFO info;
    for (Parameter& each : parameters) {
        AngleTriple from;
        AngleTriple to;
        const bool comparable =
            SensorAccess::hasReference(each.back) && SensorAccess::hasReference(each.forth);
        if (!comparable || !anglesAfter(each.back, raw, info, from)
            || !anglesAfter(each.forth, raw, info, to)
            || !slopeBetween(from, to, each.distance, each.slope))
            return false;
    }
    const std::size_t count = parameters.size();
    for (std::size_t angle = 0; angle < 3; ++angle) {
        double variance = 0;
        for (std::size_t i = 0; i < count; ++i)
            for (std::size_t j = 0; j < count; ++j)
                variance += parameters[i].slope[angle] * covariance[count * i + j]
                            * parameters[j].slope[angle];
        standard[angle] = std::sqrt(std::max(variance, 0.0)) * radToDeg;
    }
    return true;
}

} // namespace kiv
