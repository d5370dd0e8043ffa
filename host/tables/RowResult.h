#pragma once

#include <optional>

#include "KIVInterface/Records.h"
#include "host/tables/Readings.h"
#include "sensor/RowState.h"
#include "uncertainty/Propagation.h"
#include "uncertainty/Trust.h"

class CKiv;

namespace kiv::host {

struct RowResult {
    RowState state = RowState::refused;
    Reason reason = Reason::none; // for a state other than ok and reference
    KIV_RAWINFO raw{};
    KIV_INFO info{};
    double matrix[9] = {};
    int code = 0; // of ReadMatrix
    // In state ok.
    RowTrust trust{};
    bool hasUncertainty = false;
    AngleUncertainty uncertainty{};
};

// Takes the rows of a table of readings through a sensor.
class RowRunner {
public:
    // Limits as the record has them; without uncertainties of the readings the angles get none.
    RowRunner(CKiv& sensor, Table& table, const F_VECTOR4& levelLimits,
              const std::optional<Uncertainties>& uncertainties);

    // The next row's result, whatever is wrong with it reported; false at the end of the table.
    bool next(RowResult& result);

private:
    void judge(RowResult& result);

    CKiv& sensor;
    Table& table;
    int mode;
    TrustJudge trust;
    std::optional<Propagation> propagation;
};

} // namespace kiv::host
