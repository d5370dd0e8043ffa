#include "host/rows/RowResult.h"

#include <string>

#include "sensor/SensorAccess.h"
#include "support/Principles.h"

namespace kiv::host {

RowRunner::RowRunner(const CKiv& configured, const F_VECTOR4& levelLimits,
                     const std::optional<Uncertainties>& uncertainties,
                     const Calibration* calibration, bool withMatrix, bool withUncertainty)
    : judged(configured, levelLimits) {
    wanted.matrix = withMatrix;
    wanted.uncertainty = uncertainties && withUncertainty;
    wanted.calibration = calibration && withUncertainty;
    if (uncertainties)
        judged.setUncertainties(*uncertainties);
    if (calibration)
        judged.setCalibration(*calibration);
}

void RowRunner::run(Table& table, RowResult& result) {
    result.hasUncertainty = false;
    result.hasCalibration = false;
    result.reason = readReadings(table, result.raw);
    if (result.reason == Reason::none && owner && !owner->owns(table))
        result.reason = Reason::otherSensor;
    if (result.reason != Reason::none) {
        result.state = RowState::refused;
        return;
    }
    judged.judge(result.raw, wanted, result);
    if (result.state != RowState::noOrientation)
        return;
    const int mode = SensorAccess::mountMode(judged.sensor());
    table.reportRow(std::string("readings that the ") + modelName(mode)
                        + " model solves (mount mode " + std::to_string(mode) + ")",
                    wordsOf(result.reason).text, "without an orientation");
}

} // namespace kiv::host
