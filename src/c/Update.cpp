#include <algorithm>
#include <limits>

#include "c/Handles.h"
#include "c/Records.h"
#include "judged/RowResults.h"

using namespace kiv;
using namespace kiv::c;

static_assert(KIV_STATE_OK == int(RowState::ok) && KIV_STATE_STATUS == int(RowState::status)
              && KIV_STATE_NO_REFERENCE == int(RowState::noReference)
              && KIV_STATE_REFERENCE == int(RowState::reference)
              && KIV_STATE_NO_ORIENTATION == int(RowState::noOrientation)
              && KIV_STATE_REFUSED == int(RowState::refused));
static_assert(sizeof(kiv_trust) == 8 && sizeof(kiv_uncertainty) == 36);
static_assert(KIV_TRUST_GOOD == int(Trust::good)
              && KIV_TRUST_OUTSIDE_LIMITS == int(Trust::outsideLimits)
              && KIV_TRUST_MIRROR_NEAR == int(Trust::mirrorNear)
              && KIV_TRUST_SEAM == int(Trust::seam)
              && KIV_TRUST_LEVELS_DISAGREE == int(Trust::levelsDisagree)
              && KIV_TRUST_TWO_SIGNS == int(Trust::twoSigns)
              && KIV_TRUST_NEAR_LEVEL_SIGHT == int(Trust::nearLevelSight)
              && KIV_TRUST_ROLL_UNSEEN == int(Trust::rollUnseen)
              && KIV_TRUST_NOT_SETTLED == int(Trust::notSettled)
              && KIV_TRUST_REFERENCE == int(Trust::reference)
              && KIV_TRUST_NO_ROTATION == int(Trust::noRotation)
              && KIV_TRUST_READING_LOST == int(Trust::readingLost)
              && KIV_TRUST_RY_NEAR_90 == int(Trust::ryNear90)
              && KIV_TRUST_SPARE_DISAGREES == int(Trust::spareDisagrees));

namespace {

// Where there are no angles.
constexpr float none = std::numeric_limits<float>::quiet_NaN();
constexpr kiv_uncertainty noUncertainty{none, none, none, none, none, none, none, none, none};
constexpr kiv_calibration_uncertainty noCalibration{none, none, none};

float single(double value) {
    return static_cast<float>(value);
}

kiv_trust trustRecord(const JudgedReading& reading) {
    if (!hasAngles(reading.state))
        return {KIV_TRUST_NONE, none};
    return {static_cast<std::int32_t>(reading.trust.trust), single(reading.trust.modelError)};
}

kiv_uncertainty uncertaintyRecord(const AngleUncertainty& row) {
    const auto& [u, correlation, contribution, rounding, reference] = row;
    return {single(u[0]),           single(u[1]),           single(u[2]),
            single(correlation[0]), single(correlation[1]), single(correlation[2]),
            single(reference[0]),   single(reference[1]),   single(reference[2])};
}

kiv_calibration_uncertainty calibrationRecord(const AngleTriple& u) {
    return {single(u[0]), single(u[1]), single(u[2])};
}

// Where the results go, an element a reading; null for what is not wanted.
struct Arrays {
    kiv_result* results;
    double* matrices = nullptr;
    std::uint8_t* states = nullptr;
    kiv_trust* trust = nullptr;
    kiv_uncertainty* uncertainties = nullptr;
    kiv_calibration_uncertainty* calibration = nullptr;

    void set(std::size_t i, const JudgedReading& reading) const {
        recordOf(results[i]) = reading.info;
        if (matrices)
            std::copy_n(reading.matrix, 9, matrices + 9 * i);
        if (states)
            states[i] = static_cast<std::uint8_t>(reading.state);
        if (trust)
            trust[i] = trustRecord(reading);
        if (uncertainties)
            uncertainties[i] =
                reading.hasUncertainty ? uncertaintyRecord(reading.uncertainty) : noUncertainty;
        if (calibration)
            calibration[i] =
                reading.hasCalibration ? calibrationRecord(reading.calibration) : noCalibration;
    }
};

int judgeMany(kiv_sensor* sensor, const kiv_reading* readings, std::size_t count, const Arrays& out,
              const char* argument = "readings") {
    return locked(sensor, {{argument, readings, count}, {"out", out.results, count}}, [&] {
        JudgedSensor& judged = sensor->judged;
        const JudgedSensor::Wanted wanted{.matrix = out.matrices != nullptr,
                                          .state = out.states || out.trust || out.uncertainties
                                                   || out.calibration,
                                          .trust = out.trust != nullptr,
                                          .uncertainty = out.uncertainties != nullptr,
                                          .calibration = out.calibration != nullptr};
        JudgedReading reading;
        for (std::size_t i = 0; i < count; ++i) {
            judged.judge(recordOf(readings[i]), wanted, reading);
            out.set(i, reading);
        }
        return KIV_STATUS_OK;
    });
}

} // namespace

const char* kiv_state_name(int state) {
    const auto index = static_cast<std::size_t>(state);
    return index < rowStateNames.size() ? rowStateNames[index] : nullptr;
}

const char* kiv_trust_name(int trust) {
    const auto index = static_cast<std::size_t>(trust);
    return index < trustWords.size() ? trustWords[index].word : nullptr;
}

int kiv_sensor_update(kiv_sensor* sensor, const kiv_reading* reading, kiv_result* out) {
    return judgeMany(sensor, reading, 1, {out}, "reading");
}

int kiv_sensor_update_many(kiv_sensor* sensor, const kiv_reading* readings, size_t count,
                           kiv_result* out, double* matrices, uint8_t* states) {
    return judgeMany(sensor, readings, count, {out, matrices, states});
}

int kiv_sensor_judge(kiv_sensor* sensor, const kiv_reading* reading, kiv_result* out,
                     kiv_trust* trust, kiv_uncertainty* uncertainty) {
    return judgeMany(sensor, reading, 1, {out, nullptr, nullptr, trust, uncertainty}, "reading");
}

int kiv_sensor_judge_many(kiv_sensor* sensor, const kiv_reading* readings, size_t count,
                          kiv_result* out, double* matrices, uint8_t* states, kiv_trust* trust,
                          kiv_uncertainty* uncertainties) {
    return judgeMany(sensor, readings, count, {out, matrices, states, trust, uncertainties});
}

int kiv_sensor_judge_calibrated(kiv_sensor* sensor, const kiv_reading* readings, size_t count,
                                kiv_result* out, double* matrices, uint8_t* states,
                                kiv_trust* trust, kiv_uncertainty* uncertainties,
                                kiv_calibration_uncertainty* calibration) {
    return judgeMany(sensor, readings, count,
                     {out, matrices, states, trust, uncertainties, calibration});
}

int kiv_sensor_matrix(kiv_sensor* sensor, double* m) {
    return locked(sensor, {{"m", m}}, [=] {
        const int code = sensor->judged.readMatrix(m);
        return code == KIV_STATUS_OK
                   ? code
                   : refuse(code, "sensor: expected a last reading with status 2, found none");
    });
}
