#include "simulator/Noise.h"

namespace kiv::simulator {

void Noise::addTo(KIV_RAWINFO& raw, Random& random) const {
    const auto disturb = [&](float& reading, double deviation) {
        reading = static_cast<float>(reading + deviation * random.normal());
    };
    for (float& component : raw.vector)
        disturb(component, vector);
    disturb(raw.azimuthRaw, encoder);
    disturb(raw.elevationRaw, encoder);
    disturb(raw.levelXRaw, level);
    disturb(raw.levelYRaw, level);
}

} // namespace kiv::simulator
