#pragma once

#include "host/base/Interrupt.h"

namespace kiv::host {

// Takes rows of a source through next(), false at its end, to each(inputWouldWait), until there is
// none left, the user interrupts, or each gives false.
template <typename Source, typename Next, typename Each>
void forEachRow(const Source& source, Next next, Each each) {
    while (!Interrupt::requested() && next())
        if (!each(source.wouldWait()))
            break;
}

} // namespace kiv::host
