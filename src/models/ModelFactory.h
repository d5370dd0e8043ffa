#pragma once

#include <memory>

#include "KIVInterface/CKivModel.h"

namespace kiv {

// The model of a mount mode, with its parity and no values yet.
std::unique_ptr<CKivModel> createModel(int mountMode);

// A copy of the same class, one of those that createModel gives; nothing for another class.
std::unique_ptr<CKivModel> copyOf(const CKivModel& model);

} // namespace kiv
