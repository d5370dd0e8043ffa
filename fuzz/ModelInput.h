#pragma once

#include <cstddef>

#include "KIVInterface/Records.h"

namespace kiv::fuzz {

// What the model fuzzer makes of an input: its bytes, in this order, with zeros where they end.
struct ModelInput {
    double M[9];
    double encoderOffset[2];
    float scaleFactors[8];
    float qvcParameters[6];
    float level1Parameters[7];
    float level2Parameters[7];
    int mode;
    unsigned char levelXOutside, levelYOutside, localFrame, refBlocked; // odd: true
    KIV_RAWINFO raw;
};

constexpr std::size_t modelInputSize =
    offsetof(ModelInput, raw) + offsetof(KIV_RAWINFO, refBlocked);

} // namespace kiv::fuzz
