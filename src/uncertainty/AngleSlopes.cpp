#include "uncertainty/AngleSlopes.h"

#include <cmath>

#include "sensor/SensorAccess.h"
#include "sensor/Update.h"
#include "support/AngleConstants.h"
#include "uncertainty/MatrixAngles.h"

namespace kiv {

bool anglesAfter(CKiv& sensor, const KIV_RAWINFO& raw, KIV_INFO& info, AngleTriple& angles) {
    if (SensorUpdate::run(sensor, raw, info) != UpdateOutcome::oriented)
        return false;
    const bool ownMatrix = reportsOwnMatrix(SensorAccess::mountMode(sensor));
    matrixAngles(ownMatrix ? SensorAccess::transform(sensor) : SensorAccess::result(sensor),
                 !ownMatrix && !SensorAccess::inMachineFrame(sensor), angles.data());
    return true;
}

bool slopeBetween(const AngleTriple& from, const AngleTriple& to, double distance,
                  AngleTriple& slope) {
    constexpr double quarterTurn = halfPi;
    for (std::size_t i = 0; i < 3; ++i) {
        const double turn = turnBetween(from[i], to[i]);
        if (std::abs(turn) > quarterTurn)
            return false;
        slope[i] = turn / distance;
    }
    return true;
}

double levelSightClearance(Principle principle, const KIV_RAWINFO& raw) {
    constexpr double partOfDistance = 1e-5;
    if (principle != Principle::pendulum)
        return 0;
    const float(&v)[3] = raw.vector;
    return partOfDistance * std::hypot(std::hypot(double{v[0]}, double{v[1]}), double{v[2]});
}

KIV_RAWINFO clearOfLevelSight(const KIV_RAWINFO& raw, double clearance) {
    KIV_RAWINFO clear = raw;
    float& z = clear.vector[2];
    if (std::abs(z) < clearance)
        z = static_cast<float>(std::copysign(clearance, z));
    return clear;
}

} // namespace kiv
