#pragma once

#include <cstddef>
#include <vector>

#include "tests/proofs/PoseErrors.h"

namespace kiv::docs {

// A calibration's part in the angles' uncertainty beside parameter files that are drawn by its
// covariance, at some poses: the difference as a part of the draws' deviation, of each row's three
// angles.
std::vector<double> tryDrawnFiles(int mode, bool machineFrame, const Range& range,
                                  std::size_t draws);

} // namespace kiv::docs
