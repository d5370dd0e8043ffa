#pragma once

#include <memory>

#include "KIVInterface/CKivModel.h"
#include "support/Principles.h"

namespace kiv {

// The model of a mount mode, with its parity and no values yet.
std::unique_ptr<CKivModel> createModel(int mountMode);

// The principle goes by the model's class: a later mount mode of the sensor does not change it.
Principle principleOf(const CKivModel& model);

// What a model computes with. A sensor's own copies may be newer: a setter's values reach the model
// with the next mount mode alone, and the class keeps them protected for the models' sake.
struct ModelAccess : private CKivModel {
    static int parityOf(const CKivModel& m) { return m.*(&ModelAccess::iMMode); }
    static const float* factorsOf(const CKivModel& m) { return m.*(&ModelAccess::scaleFactors); }
    static const float* qvcOf(const CKivModel& m) { return m.*(&ModelAccess::qvcParameters); }
    static const float* level1Of(const CKivModel& m) { return m.*(&ModelAccess::level1Parameters); }
    static const float* level2Of(const CKivModel& m) { return m.*(&ModelAccess::level2Parameters); }
};

// A copy of the same class, one of those that createModel gives; nothing for another class.
std::unique_ptr<CKivModel> copyOf(const CKivModel& model);

} // namespace kiv
