#pragma once

#include <cstddef>
#include <cstring>
#include <type_traits>

#include "KIVInterface/Records.h"
#include "c/Boundary.h"

// The records of both surfaces are the same bytes. If one of these fires, the change breaks every
// host that was compiled before: undo it.
#define KIV_SAME(c, cpp, field, member)                                                            \
    static_assert(offsetof(c, field) == offsetof(cpp, member)                                      \
                  && std::is_same_v<decltype(c::field), decltype(cpp::member)>)
static_assert(sizeof(kiv_reading) == 52 && sizeof(kiv_reading) == sizeof(KIV_RAWINFO));
static_assert(alignof(kiv_reading) == alignof(KIV_RAWINFO));
KIV_SAME(kiv_reading, KIV_RAWINFO, unused1, unused1);
KIV_SAME(kiv_reading, KIV_RAWINFO, status, status);
KIV_SAME(kiv_reading, KIV_RAWINFO, vector, vector);
KIV_SAME(kiv_reading, KIV_RAWINFO, azimuth, azimuthRaw);
KIV_SAME(kiv_reading, KIV_RAWINFO, elevation, elevationRaw);
KIV_SAME(kiv_reading, KIV_RAWINFO, level_x, levelXRaw);
KIV_SAME(kiv_reading, KIV_RAWINFO, level_y, levelYRaw);
KIV_SAME(kiv_reading, KIV_RAWINFO, temperature, temperature);
KIV_SAME(kiv_reading, KIV_RAWINFO, ref_metric, refMetric);
KIV_SAME(kiv_reading, KIV_RAWINFO, unused2, unused2);
KIV_SAME(kiv_reading, KIV_RAWINFO, ref_blocked, refBlocked);
static_assert(sizeof(kiv_result) == 48 && sizeof(kiv_result) == sizeof(KIV_INFO));
static_assert(alignof(kiv_result) == alignof(KIV_INFO));
KIV_SAME(kiv_result, KIV_INFO, unused1, unused1);
KIV_SAME(kiv_result, KIV_INFO, azimuth, azimuth);
KIV_SAME(kiv_result, KIV_INFO, elevation, elevation);
KIV_SAME(kiv_result, KIV_INFO, level_x, levelX);
KIV_SAME(kiv_result, KIV_INFO, level_y, levelY);
KIV_SAME(kiv_result, KIV_INFO, rx, rx);
KIV_SAME(kiv_result, KIV_INFO, rz, rz);
KIV_SAME(kiv_result, KIV_INFO, ry, ry);
KIV_SAME(kiv_result, KIV_INFO, unused2, unused2);
KIV_SAME(kiv_result, KIV_INFO, qvc, qvc);
#undef KIV_SAME

namespace kiv::c {

// The library reads and writes the host's records as its own; no code here looks into them by their
// names in kiv.h, so that no two types ever meet in one place of memory.
inline const KIV_RAWINFO& recordOf(const kiv_reading& reading) {
    return reinterpret_cast<const KIV_RAWINFO&>(reading);
}

inline KIV_INFO& recordOf(kiv_result& result) {
    return reinterpret_cast<KIV_INFO&>(result);
}

} // namespace kiv::c
