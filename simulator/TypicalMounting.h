#pragma once

#include "simulator/Mounting.h"

namespace kiv::simulator {

// Calibration values of the size that sensors have, for one mount mode; the two level axes lie at
// -30 and -65 degrees, both on one side of the line of sight.
inline Mounting typicalMounting(int mode) {
    Mounting m;
    m.mode = mode;
    m.encoderOffset[0] = 0.1F;
    m.encoderOffset[1] = -0.2F;
    if (principleOf(mode) == Principle::dualLevel) {
        m.scaleFactors[0] = 0.2F;
    } else {
        const float factors[] = {0.12F, 0.05F, 0.8F, -1.1F, 1, 1, 1, 0};
        for (int i = 0; i < 8; ++i)
            m.scaleFactors[i] = factors[i];
    }
    const float qvc[] = {10, 20, 30, 0.3F, -0.2F, 1.5F};
    const float level1[] = {0, 0, 0, -30, 0.4F, 0.1F, 1.01F};
    const float level2[] = {0, 0, 0, -65, -0.3F, -0.2F, 0.99F};
    for (int i = 0; i < 6; ++i)
        m.qvcParameters[i] = qvc[i];
    for (int i = 0; i < 7; ++i) {
        m.level1Parameters[i] = level1[i];
        m.level2Parameters[i] = level2[i];
    }
    return m;
}

} // namespace kiv::simulator
