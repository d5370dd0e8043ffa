#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "KIVInterface/CKiv.h"
#include "KIVInterface/CKivPrm.h"
#include "c/Boundary.h"
#include "c/Judge.h"
#include "params/Document.h"
#include "params/Finding.h"

namespace kiv::c {

struct LoadedFile {
    std::string text;
    Document document;
    CKivPrm record;
};

} // namespace kiv::c

struct kiv_parameters {
    std::shared_ptr<kiv::c::LoadedFile> file; // never changed once it is here: copies share it
    std::vector<kiv::Finding> faults;
};

struct kiv_sensor {
    kiv_sensor() = default;
    kiv_sensor(const kiv_sensor& other)
        : kiv_sensor(other, std::lock_guard<std::mutex>(other.lock)) {}
    kiv_sensor& operator=(const kiv_sensor&) = delete;

    mutable std::mutex lock; // of all that follows
    CKiv sensor;
    std::int64_t given = 0; // readings so far
    std::int64_t referenceIndex = -1;
    KIV_RAWINFO reference{};
    std::optional<kiv::c::Judge> judge; // since the sensor was configured

private:
    kiv_sensor(const kiv_sensor& other, const std::lock_guard<std::mutex>&)
        : sensor(other.sensor), given(other.given), referenceIndex(other.referenceIndex),
          reference(other.reference), judge(other.judge) {}
};

namespace kiv::c {

// Runs a body that gives a status code while no other call is in the sensor.
template <typename Sensor, typename Body>
int locked(Sensor* sensor, bool argumentsFit, Body body) {
    if (!sensor || !argumentsFit)
        return KIV_STATUS_BAD_ARGUMENT;
    return guarded([&]() -> int {
        const std::lock_guard guard(sensor->lock);
        return body();
    });
}

} // namespace kiv::c
