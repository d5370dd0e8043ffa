#pragma once

#include <optional>

#include "host/rows/Readings.h"
#include "judged/JudgedSensor.h"

namespace kiv::host {

struct RowResult : JudgedReading {
    KIV_RAWINFO raw{};
};

// Takes the rows of a table of readings through a sensor of its own. Copies go on from there.
class RowRunner {
public:
    // Limits as the record has them; without uncertainties of the readings the angles get none, and
    // without a calibration (null) no part of it.
    RowRunner(const CKiv& configured, const F_VECTOR4& levelLimits,
              const std::optional<Uncertainties>& uncertainties,
              const Calibration* calibration = nullptr, bool withMatrix = true,
              bool withUncertainty = true);

    // Rows of a table that names another sensor are refused from now on.
    void expectRowsOf(std::int32_t serialNumber, const Table& table) {
        owner.emplace(table, serialNumber);
    }

    // The result of the row where the table stands; whatever is wrong with it is reported there.
    void run(Table& table, RowResult& result);

    // Once there is a reference, no row depends on those before it.
    bool hasReference() const { return judged.hasReference(); }

private:
    JudgedSensor judged;
    std::optional<Owner> owner;
    JudgedSensor::Wanted wanted{.matrix = true, .state = true, .trust = true};
};

} // namespace kiv::host
