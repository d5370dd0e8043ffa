#pragma once

#include <limits>
#include <optional>

#include "KIVInterface/CKiv.h"
#include "c/Boundary.h"
#include "uncertainty/Propagation.h"
#include "uncertainty/Trust.h"
#include "uncertainty/UncertaintyNames.h"

namespace kiv::c {

// Where there are no angles.
inline constexpr float none = std::numeric_limits<float>::quiet_NaN();
inline constexpr kiv_trust noTrust{KIV_TRUST_NONE, none};
inline constexpr kiv_uncertainty noUncertainty{none, none, none, none, none,
                                               none, none, none, none};

// How far the results of one sensor can be trusted, through all that a host does with the sensor.
class Judge {
public:
    Judge(const CKiv& sensor, const F_VECTOR4& levelLimits) : trust(sensor, levelLimits) {}

    UncertaintyFault give(const CKiv& sensor, const char* name, double value);
    void forgetUncertainties();

    // After a setting of the sensor has changed.
    void configure(const CKiv& sensor);
    // After the update, of this or of a like sensor, that captured the reference.
    void captured(const CKiv& sensor, const KIV_RAWINFO& raw, const KIV_INFO& info);

    // Before uncertainties are asked for; reference: the reading that is it, null without one.
    // Allocates the first time after a change.
    void prepare(const CKiv& sensor, const KIV_RAWINFO* reference);
    // After an update that gave an orientation.
    kiv_trust trustIn(const CKiv& sensor, const KIV_RAWINFO& raw, const KIV_INFO& info);
    kiv_uncertainty uncertaintyOf(const CKiv& sensor, const KIV_RAWINFO& raw, const KIV_INFO& info);

private:
    TrustJudge trust;
    NamedUncertainties uncertainties;
    std::optional<Propagation> propagation; // of the sensor as it is; made when it is asked for
};

} // namespace kiv::c
