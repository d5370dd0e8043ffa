#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "params/Document.h"
#include "simulator/Mounting.h"

namespace kiv::host {

// A number of a parameter file that a calibration can find, a turn of its machine matrix or a form
// of a table's change.
struct Parameter {
    Block block{};
    std::size_t place = 0; // in the block

    bool operator==(const Parameter&) const = default;
};

// As kiv info --json names it, block and value joined by a point.
std::string nameOf(const Parameter& parameter);

// Those of a name, or of a block's; none for any other name.
std::vector<Parameter> parametersOf(std::string_view name);
// One alone.
std::optional<Parameter> parameterOf(std::string_view name);

// All of them, in the file's order.
std::vector<Parameter> allParameters();

// What kind of number it is decides by how much an old file may be off: 0.5 degrees, 0.5 % of a
// gain, 0.0005 of a gain per degree Celsius. A parameter that would come out worse is held.
double knownTo(const Parameter& parameter);

// The step by which derivatives are taken: small against what bends, large against rounding.
double stepOf(const Parameter& parameter);

bool isThermalSlope(const Parameter& parameter);

// The parameters that a calibration finds in a mount mode unless told otherwise, and those among
// them that only large tilts show, which are worth it below 0.05 degrees.
std::vector<Parameter> usualParameters(int mountMode, bool thermalSlopes);

// The numbers of a parameter file in double precision, in the file's units; of the machine matrix,
// its turns about the instrument's axes against the file's one, and of a table the forms of its
// change, degrees.
struct SensorValues {
    explicit SensorValues(const Document& document);

    double& operator[](const Parameter& p) {
        return of[static_cast<std::size_t>(p.block)][p.place];
    }
    double at(Block block, std::size_t place) const {
        return of[static_cast<std::size_t>(block)][place];
    }
    simulator::Mounting mounting(int mode) const;

    std::array<std::array<double, 8>, blockTable.size()> of{};
};

} // namespace kiv::host
