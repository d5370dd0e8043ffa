#include "c/Judge.h"

#include "c/Handles.h"
#include "models/ModelFactory.h"
#include "sensor/SensorAccess.h"

using namespace kiv;
using namespace kiv::c;

static_assert(sizeof(kiv_trust) == 8 && sizeof(kiv_uncertainty) == 36);
static_assert(KIV_TRUST_GOOD == int(Trust::good)
              && KIV_TRUST_OUTSIDE_LIMITS == int(Trust::outsideLimits)
              && KIV_TRUST_SEAM == int(Trust::seam)
              && KIV_TRUST_LEVELS_DISAGREE == int(Trust::levelsDisagree)
              && KIV_TRUST_MIRROR_NEAR == int(Trust::mirrorNear)
              && KIV_TRUST_TWO_SIGNS == int(Trust::twoSigns)
              && KIV_TRUST_NEAR_LEVEL_SIGHT == int(Trust::nearLevelSight)
              && KIV_TRUST_ROLL_UNSEEN == int(Trust::rollUnseen)
              && KIV_TRUST_NOT_SETTLED == int(Trust::notSettled)
              && KIV_TRUST_REFERENCE == int(Trust::reference));

UncertaintyFault Judge::give(const CKiv& sensor, const char* name, double value) {
    const UncertaintyFault fault =
        uncertainties.give(principleOf(*SensorAccess::model(sensor)), name, value);
    if (fault == UncertaintyFault::none)
        propagation.reset();
    return fault;
}

void Judge::forgetUncertainties() {
    propagation.reset();
    uncertainties = {};
}

void Judge::configure(const CKiv& sensor) {
    propagation.reset();
    trust.configure(sensor);
}

void Judge::captured(const CKiv& sensor, const KIV_RAWINFO& raw, const KIV_INFO& info) {
    trust.judge(sensor, raw, info, true);
    if (propagation)
        propagation->captured(sensor, raw);
}

void Judge::prepare(const CKiv& sensor, const KIV_RAWINFO* reference) {
    if (propagation)
        return;
    propagation.emplace(sensor, uncertainties.values());
    if (reference)
        propagation->captured(sensor, *reference);
}

kiv_trust Judge::trustIn(const CKiv& sensor, const KIV_RAWINFO& raw, const KIV_INFO& info) {
    const RowTrust row = trust.judge(sensor, raw, info, false);
    return {static_cast<std::int32_t>(row.trust), static_cast<float>(row.modelError)};
}

kiv_uncertainty Judge::uncertaintyOf(const CKiv& sensor, const KIV_RAWINFO& raw,
                                     const KIV_INFO& info) {
    AngleUncertainty row;
    if (!propagation->of(sensor, raw, info, row))
        return noUncertainty;
    const auto& [u, correlation, contribution, rounding, reference] = row;
    const auto single = [](double value) { return static_cast<float>(value); };
    return {single(u[0]),           single(u[1]),           single(u[2]),
            single(correlation[0]), single(correlation[1]), single(correlation[2]),
            single(reference[0]),   single(reference[1]),   single(reference[2])};
}

const char* kiv_trust_name(int trust) {
    const auto index = static_cast<std::size_t>(trust);
    return index < trustWords.size() ? trustWords[index] : nullptr;
}

const char* kiv_uncertainty_name(size_t index) {
    return index < uncertaintyNames.size() ? uncertaintyNames[index].text : nullptr;
}

int kiv_sensor_set_uncertainty(kiv_sensor* sensor, const char* name, double value) {
    return locked(sensor, name, [=] {
        return sensor->judge->give(sensor->sensor, name, value) == UncertaintyFault::none
                   ? KIV_STATUS_OK
                   : KIV_STATUS_BAD_ARGUMENT;
    });
}

int kiv_sensor_clear_uncertainties(kiv_sensor* sensor) {
    return locked(sensor, true, [=] {
        sensor->judge->forgetUncertainties();
        return KIV_STATUS_OK;
    });
}
