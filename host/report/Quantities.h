#pragma once

#include <array>
#include <cstddef>

namespace kiv::host {

// What a report shows row by row, in the order of its charts; angles in degrees.
enum class Quantity : unsigned char {
    rx,
    ry,
    rz,
    tiltX,
    tiltY,
    azimuth,
    elevation,
    residualX,
    residualY,
    residualZ,
    distance,    // of the sensor, in the length unit
    temperature, // in the unit of the thermal factors
    refMetric,
    uncertaintyX, // standard, of rx
    uncertaintyY,
    uncertaintyZ,
    modelError, // bound, of good rows
};
inline constexpr std::size_t quantityCount = 17;

constexpr std::size_t at(Quantity quantity) {
    return static_cast<std::size_t>(quantity);
}

struct QuantityWords {
    const char* key;   // in a chart
    const char* table; // in the table
};

inline constexpr std::array<QuantityWords, quantityCount> quantityWords{{
    {"rx", "angle rx"},
    {"ry", "angle ry"},
    {"rz", "angle rz"},
    {"tilt X", "corrected tilt X"},
    {"tilt Y", "corrected tilt Y"},
    {"azimuth", "corrected azimuth"},
    {"elevation", "corrected elevation"},
    {"rx", "residual rx"},
    {"ry", "residual ry"},
    {"rz", "residual rz"},
    {"distance", "distance"},
    {"temperature", "temperature"},
    {"reference metric", "reference metric"},
    {"rx", "standard uncertainty of rx"},
    {"ry", "standard uncertainty of ry"},
    {"rz", "standard uncertainty of rz"},
    {"model error", "model's own error, good rows"},
}};

enum class Unit : unsigned char { degrees, length, temperature, none };

struct Chart {
    const char* id;
    const char* title;
    Unit unit;
    Quantity first;
    Quantity last;
};

inline constexpr std::array<Chart, 9> charts{{
    {"angles", "Angles", Unit::degrees, Quantity::rx, Quantity::rz},
    {"uncertainties", "Standard uncertainty of the angles", Unit::degrees, Quantity::uncertaintyX,
     Quantity::uncertaintyZ},
    {"model-error", "Bound of the model's own error, good rows", Unit::degrees,
     Quantity::modelError, Quantity::modelError},
    {"tilts", "Corrected tilts", Unit::degrees, Quantity::tiltX, Quantity::tiltY},
    {"encoders", "Corrected encoder angles", Unit::degrees, Quantity::azimuth, Quantity::elevation},
    {"residuals", "Residual: angle minus true angle", Unit::degrees, Quantity::residualX,
     Quantity::residualZ},
    {"distance", "Distance of the sensor", Unit::length, Quantity::distance, Quantity::distance},
    {"temperature", "Temperature", Unit::temperature, Quantity::temperature, Quantity::temperature},
    {"metric", "Reference metric", Unit::none, Quantity::refMetric, Quantity::refMetric},
}};

// Whether the values meet again after a full turn; no line of a chart leads across their seam.
constexpr bool isDirection(Quantity quantity) {
    return quantity <= Quantity::rz || quantity == Quantity::azimuth
           || (quantity >= Quantity::residualX && quantity <= Quantity::residualZ);
}

} // namespace kiv::host
