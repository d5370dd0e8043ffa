#pragma once

#include "KIVInterface/Records.h"
#include "host/tables/Readings.h"
#include "sensor/RowState.h"

class CKiv;

namespace kiv::host {

struct RowResult {
    RowState state = RowState::refused;
    Reason reason = Reason::none; // for a state other than ok and reference
    KIV_RAWINFO raw{};
    KIV_INFO info{};
    double matrix[9] = {};
    int code = 0; // of ReadMatrix
};

// Takes the rows of a table of readings through a sensor.
class RowRunner {
public:
    RowRunner(CKiv& sensor, Table& table);

    // The next row's result, whatever is wrong with it reported; false at the end of the table.
    bool next(RowResult& result);

private:
    CKiv& sensor;
    Table& table;
    int mode;
};

} // namespace kiv::host
