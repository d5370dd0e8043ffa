#pragma once

// The stored angle constants. They are truncated on purpose: recorded results were computed with
// exactly these values, so sensor/, models/ and params/ use no other pi. Everything here and
// everything that uses it is compiled without floating-point contraction.
namespace kiv {

constexpr double degToRad = 0.01745329251994; // rad per degree
constexpr double radToDeg = 57.29577951308;   // degrees per rad
constexpr double pi = 3.14159265359;          // rad
constexpr double halfPi = 1.570796326795;     // rad
constexpr double twoPi = 6.28318530718;       // rad
constexpr double threeHalfPi = 3 * halfPi;    // rad
static_assert(threeHalfPi == 4.7123889803850005, "one ulp above the literal 4.712388980385");

// Half widths of the closed bands around the axes inside which a component counts as zero.
constexpr double angleDeadBand = 1e-12;                       // of matrix entries and home angles
constexpr double lengthDeadBand = 1.7444444444444444e-5;      // of lengths in the models
constexpr double inclinationDeadBand = 1.7444444444444444e-5; // rad, of the pendulum
constexpr double levelDeadBand = 1.745329251994e-5; // rad, 0.001 degrees, of level readings

} // namespace kiv
