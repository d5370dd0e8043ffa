#pragma once

// The plain records that host and library exchange in memory. Their layout is part of the binary
// interface.

#include <cstddef>
#include <type_traits>

struct F_VECTOR2 {
    float x, y;
};

struct F_VECTOR4 {
    float x, y, z, w;
};

struct D_VECTOR2 {
    double x, y;
};

struct D_VECTOR3 {
    double x, y, z;
};

// One measurement's raw readings.
struct KIV_RAWINFO {
    int unused1;        // not read
    int status;         // 2: a measurement that yields an orientation
    float vector[3];    // measured vector in the instrument frame, length unit of the instrument
    float azimuthRaw;   // degrees
    float elevationRaw; // degrees
    float levelXRaw;    // argument of the tilt X spline; in modes 5 and 6 the numerator of a ratio
    float levelYRaw;    // argument of the tilt Y spline; in modes 5 and 6 also the denominator
    float temperature;  // scales both tilts by slope * temperature + intercept
    float refMetric;    // the reference orientation is captured only at 0.4 or less
    int unused2;        // not read
    bool refBlocked;    // true: this measurement does not become the reference
};

// One measurement's results; what an update does not compute is 0.
struct KIV_INFO {
    int unused1;     // 0
    float azimuth;   // corrected, degrees
    float elevation; // corrected, degrees
    float levelX;    // corrected tilt X, degrees
    float levelY;    // corrected tilt Y, degrees
    float rx;        // rotation about x, degrees
    float rz;        // rotation about z, degrees
    float ry;        // rotation about y, degrees
    int unused2;     // 0
    float qvc[3];    // modes 7 and above: x, y, z of the QVC vector
};

// If one of these fires, the change breaks every host that was compiled before: undo it, or make it
// a new record.
static_assert(sizeof(F_VECTOR2) == 8 && sizeof(F_VECTOR4) == 16, "");
static_assert(sizeof(D_VECTOR2) == 16 && sizeof(D_VECTOR3) == 24, "");
static_assert(offsetof(F_VECTOR2, y) == 4, "");
static_assert(offsetof(F_VECTOR4, y) == 4 && offsetof(F_VECTOR4, z) == 8, "");
static_assert(offsetof(F_VECTOR4, w) == 12, "");
static_assert(offsetof(D_VECTOR2, y) == 8, "");
static_assert(offsetof(D_VECTOR3, y) == 8 && offsetof(D_VECTOR3, z) == 16, "");

static_assert(std::is_standard_layout<KIV_RAWINFO>::value, "");
static_assert(std::is_trivially_copyable<KIV_RAWINFO>::value, "");
static_assert(sizeof(KIV_RAWINFO) == 52 && alignof(KIV_RAWINFO) == 4, "");
static_assert(offsetof(KIV_RAWINFO, unused1) == 0 && offsetof(KIV_RAWINFO, status) == 4, "");
static_assert(offsetof(KIV_RAWINFO, vector) == 8 && offsetof(KIV_RAWINFO, azimuthRaw) == 20, "");
static_assert(offsetof(KIV_RAWINFO, elevationRaw) == 24 && offsetof(KIV_RAWINFO, levelXRaw) == 28,
              "");
static_assert(offsetof(KIV_RAWINFO, levelYRaw) == 32 && offsetof(KIV_RAWINFO, temperature) == 36,
              "");
static_assert(offsetof(KIV_RAWINFO, refMetric) == 40 && offsetof(KIV_RAWINFO, unused2) == 44, "");
static_assert(offsetof(KIV_RAWINFO, refBlocked) == 48 && sizeof(bool) == 1, "");

static_assert(std::is_standard_layout<KIV_INFO>::value, "");
static_assert(std::is_trivially_copyable<KIV_INFO>::value, "");
static_assert(sizeof(KIV_INFO) == 48 && alignof(KIV_INFO) == 4, "");
static_assert(offsetof(KIV_INFO, unused1) == 0 && offsetof(KIV_INFO, azimuth) == 4, "");
static_assert(offsetof(KIV_INFO, elevation) == 8 && offsetof(KIV_INFO, levelX) == 12, "");
static_assert(offsetof(KIV_INFO, levelY) == 16 && offsetof(KIV_INFO, rx) == 20, "");
static_assert(offsetof(KIV_INFO, rz) == 24 && offsetof(KIV_INFO, ry) == 28, "");
static_assert(offsetof(KIV_INFO, unused2) == 32 && offsetof(KIV_INFO, qvc) == 36, "");
