#pragma once

#include <array>

#include "KIVInterface/CKiv.h"
#include "support/Principles.h"

// What a sensor's angles become when something is moved, for differences.
namespace kiv {

using AngleTriple = std::array<double, 3>; // of rx, ry, rz

// Takes readings through a sensor: its angles in radians, without the dead bands of those that it
// reports. False where there are none.
bool anglesAfter(CKiv& sensor, const KIV_RAWINFO& raw, KIV_INFO& info, AngleTriple& angles);

// Per unit of the distance, the shorter way round. False where the angles turn by more than a
// quarter of a turn, which is no slope: the mean of two levels' angles jumps by half a turn where
// one of them passes the seam at 180 degrees.
bool slopeBetween(const AngleTriple& from, const AngleTriple& to, double distance,
                  AngleTriple& slope);

// The least height of the measured point, length unit. With z closer to 0 the pendulum's digits
// cancel where its readings do not fit together, as moved ones do not; 0 for other principles.
double levelSightClearance(Principle principle, const KIV_RAWINFO& raw);

// The readings with the point at least so high, or so low.
KIV_RAWINFO clearOfLevelSight(const KIV_RAWINFO& raw, double clearance);

} // namespace kiv
