#pragma once

#include <algorithm>
#include <array>
#include <cstdlib>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "KIVInterface/CKiv.h"
#include "KIVInterface/CKivPrm.h"
#include "c/Boundary.h"
#include "c/Refusal.h"
#include "judged/JudgedSensor.h"
#include "params/Document.h"
#include "params/Finding.h"
#include "sensor/SensorAccess.h"
#include "uncertainty/UncertaintyNames.h"

namespace kiv::c {

struct LoadedFile {
    std::string text;
    Document document;
    CKivPrm record;
    std::vector<Finding> warnings;
};

} // namespace kiv::c

struct kiv_parameters {
    // The first thing that a host asks for: a system without any memory must be told of without an
    // exception, which would need some.
    static void* operator new(std::size_t size) noexcept { return std::malloc(size); }
    static void operator delete(void* place) noexcept { std::free(place); }

    std::shared_ptr<kiv::c::LoadedFile> file; // never changed once it is here: copies share it
    std::vector<kiv::Finding> faults;
};

struct kiv_sensor {
    kiv_sensor(const CKiv& configured, const F_VECTOR4& levelLimits)
        : judged(configured, levelLimits) {
        std::copy_n(kiv::SensorAccess::qvcParameters(configured), qvcParameters.size(),
                    qvcParameters.begin());
    }
    kiv_sensor(const kiv_sensor& other)
        : kiv_sensor(other, std::lock_guard<std::mutex>(other.lock)) {}
    kiv_sensor& operator=(const kiv_sensor&) = delete;

    mutable std::mutex lock; // of all that follows
    kiv::JudgedSensor judged;
    kiv::NamedUncertainties uncertainties;
    // As they were set; in modes 7 and above an update puts its result in place of the sensor's.
    std::array<float, 6> qvcParameters;

private:
    kiv_sensor(const kiv_sensor& other, const std::lock_guard<std::mutex>&)
        : judged(other.judged), uncertainties(other.uncertainties),
          qvcParameters(other.qvcParameters) {}
};

namespace kiv::c {

// Runs a body that gives a status code while no other call is in the sensor.
template <typename Sensor, std::size_t count, typename Body>
int locked(Sensor* sensor, const Given (&pointers)[count], Body body) noexcept {
    if (const int code = refuseNull({{"sensor", sensor}}))
        return code;
    return guarded(pointers, [&]() -> int {
        const std::lock_guard guard(sensor->lock);
        return body();
    });
}

template <typename Sensor, typename Body>
int locked(Sensor* sensor, Body body) noexcept {
    return locked(sensor, {{"sensor", sensor}}, body);
}

} // namespace kiv::c
