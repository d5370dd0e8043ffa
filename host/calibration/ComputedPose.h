#pragma once

#include <array>

#include "KIVInterface/CKiv.h"
#include "KIVInterface/CKivPrm.h"

namespace kiv::host {

// What the library makes of readings with the values of a parameter file.
class ComputedPose {
public:
    explicit ComputedPose(CKivPrm& record);
    ComputedPose(const ComputedPose& other) : sensor(other.sensor) {}

    // False where the model has no orientation.
    bool take(const KIV_RAWINFO& raw);

    // From the sensor's frame to the instrument's, row-major.
    const double* rotation() const;
    // Degrees, in machine coordinates.
    std::array<double, 3> angles() const { return {info.rx, info.ry, info.rz}; }

private:
    CKiv sensor;
    KIV_INFO info{};
};

} // namespace kiv::host
