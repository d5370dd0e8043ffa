#include "KIVInterface/CKiv.h"
#include "KIVInterface/StatusCodes.h"
#include "c/Refusal.h"
#include "support/VersionText.h" // the compiler compares its macros with those of kiv.h

static_assert(KIV_STATUS_OK == int{KIV_OK} && KIV_STATUS_BAD_ARGUMENT == int{KIV_BAD_ARGUMENT});
static_assert(KIV_STATUS_CANNOT_OPEN == int{KIV_CANNOT_OPEN});
static_assert(KIV_STATUS_NOT_LOADED == int{KIV_NOT_LOADED});
static_assert(KIV_STATUS_BAD_FORMAT == int{KIV_BAD_FORMAT});
static_assert(KIV_STATUS_NO_TRANSFORM == int{KIV_NO_TRANSFORM});

const char* kiv_version(void) {
    return kiv::versionText;
}

int32_t kiv_version_number(void) {
    return 10000 * KIV_VERSION_MAJOR + 100 * KIV_VERSION_MINOR + KIV_VERSION_PATCH;
}

const char* kiv_status_text(int status) {
    return status == KIV_STATUS_NO_MEMORY ? "memory was refused" : kivStatusText(status);
}

int kiv_home_angles(const double* frame_x, const double* direction, const double* angles,
                    const double* tilt, double* home_h, double* home_v) {
    return kiv::c::guarded(
        {{"frame_x", frame_x},
         {"direction", direction},
         {"angles", angles},
         {"tilt", tilt},
         {"home_h", home_h},
         {"home_v", home_v}},
        [&]() -> int {
            const auto vector = [](const double* v) { return D_VECTOR3{v[0], v[1], v[2]}; };
            double h = 0;
            double v = 0;
            CKiv anySensor;
            if (!anySensor.Calc_HV0(vector(frame_x), vector(direction), {angles[0], angles[1]},
                                    {tilt[0], tilt[1], 0}, &h, &v))
                return kiv::c::refuse(
                    KIV_STATUS_NO_TRANSFORM,
                    "frame_x: expected a tilt frame that has an inverse, found a singular one");
            *home_h = h;
            *home_v = v;
            return KIV_STATUS_OK;
        });
}
