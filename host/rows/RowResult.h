#pragma once

#include <optional>

#include "KIVInterface/CKiv.h"
#include "KIVInterface/Records.h"
#include "host/rows/Readings.h"
#include "sensor/RowState.h"
#include "uncertainty/Propagation.h"
#include "uncertainty/Trust.h"

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

// Takes the rows of a table of readings through a sensor of its own. Copies go on from there.
class RowRunner {
public:
    // Limits as the record has them; without uncertainties of the readings the angles get none.
    RowRunner(const CKiv& configured, const F_VECTOR4& levelLimits,
              const std::optional<Uncertainties>& uncertainties);

    // The result of the row where the table stands; whatever is wrong with it is reported there.
    void run(Table& table, RowResult& result);

    // From then on no row depends on those before it.
    bool hasReference() const;

private:
    void judge(RowResult& result);

    CKiv sensor;
    int mode;
    TrustJudge trust;
    std::optional<Propagation> propagation;
};

} // namespace kiv::host
