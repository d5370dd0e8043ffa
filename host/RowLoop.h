#pragma once

#include "host/Interrupt.h"
#include "host/Progress.h"
#include "host/RowResult.h"
#include "host/Table.h"

namespace kiv::host {

// Takes the rows of a table through a sensor until the table ends, the user interrupts, or
// each(result, inputWouldWait) gives false.
template <typename Each>
void forEachRow(RowRunner& rows, const Table& table, Progress& progress, Each&& each) {
    RowResult result;
    bool wouldWait = false;
    const auto nextRow = [&] {
        const Interrupt::Waiting waiting(wouldWait);
        return rows.next(result);
    };
    while (!Interrupt::requested() && nextRow()) {
        wouldWait = table.wouldWait();
        progress.row(table.rowBytes());
        if (!each(result, wouldWait))
            break;
    }
}

} // namespace kiv::host
