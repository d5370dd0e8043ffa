#include <span>
#include <string_view>
#include <utility>
#include <vector>

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

int refuseCalibration(const CalibrationFault& fault, std::span<const std::string_view> names,
                      const double* covariance) {
    const auto& [kind, row, column] = fault;
    const auto element = [&](std::size_t i, std::size_t j) {
        return covariance[names.size() * i + j];
    };
    switch (kind) {
    case CalibrationFault::name:
        return refuse(KIV_STATUS_BAD_ARGUMENT, "names[", row,
                      "]: expected a parameter that the angles depend on, as "
                      "angle_offset.azimuth_deg, found \"",
                      names[row], "\"");
    case CalibrationFault::again:
        return refuse(KIV_STATUS_BAD_ARGUMENT, "names[", row, "]: expected each name once, found ",
                      names[row], " again");
    case CalibrationFault::notFinite:
        return refuse(KIV_STATUS_BAD_ARGUMENT, "covariance: row ", row, ", column ", column,
                      " (from 0): expected a finite number", row == column ? ", at least 0" : "",
                      ", found ", element(row, column));
    case CalibrationFault::notSymmetric:
        return refuse(KIV_STATUS_BAD_ARGUMENT, "covariance: row ", row, ", column ", column,
                      " (from 0): expected ", element(column, row),
                      " as on the other side of the diagonal, found ", element(row, column));
    case CalibrationFault::notPossible:
        return refuse(KIV_STATUS_BAD_ARGUMENT,
                      "covariance: expected a positive semidefinite matrix, found one whose row ",
                      row, " (from 0) does not go with those before it");
    case CalibrationFault::none:
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

int kiv_sensor_set_calibration(kiv_sensor* sensor, const char* const* names, size_t count,
                               const double* covariance) {
    const Given pointers[] = {{"names", names, count}, {"covariance", covariance, count}};
    return locked(sensor, pointers, [=]() -> int {
        std::vector<std::string_view> given;
        for (size_t i = 0; i < count; ++i) {
            if (!names[i])
                return refuse(KIV_STATUS_BAD_ARGUMENT, "names[", i,
                              "]: expected a pointer, found null");
            given.emplace_back(names[i]);
        }
        Calibration calibration;
        const CalibrationFault fault =
            Calibration::make(sensor->judged.sensor(), given, covariance, calibration);
        if (fault.kind == CalibrationFault::none)
            sensor->judged.setCalibration(std::move(calibration));
        return refuseCalibration(fault, given, covariance);
    });
}
