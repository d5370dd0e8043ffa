#pragma once

#include "judged/RowState.h"
#include "support/Principles.h"

// The results that a reading has depend on what became of it and on the sensor's mount mode.
namespace kiv {

constexpr bool hasCorrectedReadings(RowState state) {
    return state != RowState::refused;
}

constexpr bool hasAngles(RowState state) {
    return state == RowState::ok;
}

// A mount mode gives the matrix of the frame in use or the QVC vector.
constexpr bool givesMatrix(int mountMode) {
    return !reportsOwnMatrix(mountMode);
}

constexpr bool hasMatrix(RowState state, int mountMode) {
    return givesMatrix(mountMode) && hasAngles(state);
}

constexpr bool hasQvc(RowState state, int mountMode) {
    return !givesMatrix(mountMode)
           && (state == RowState::ok || state == RowState::reference
               || state == RowState::noReference);
}

} // namespace kiv
