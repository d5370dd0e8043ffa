#include "host/calibration/Parameters.h"

#include <algorithm>

#include "params/BlockNames.h"
#include "params/CalibratedValues.h"
#include "support/Numbers.h"
#include "support/Principles.h"

namespace kiv::host {

namespace {

enum class Sort : unsigned char { angle, faintAngle, gain, thermalSlope };

struct Row {
    Parameter parameter;
    Sort sort;
    bool change = false; // of values, which begins with 0
};

using enum Block;

constexpr std::array rows{
    Row{{angleOffset, 0}, Sort::angle},
    Row{{angleOffset, 1}, Sort::angle},
    Row{{machineMatrix, 0}, Sort::angle, true},
    Row{{machineMatrix, 1}, Sort::angle, true},
    Row{{machineMatrix, 2}, Sort::angle, true},
    Row{{thermalFactor, 0}, Sort::thermalSlope},
    Row{{thermalFactor, 1}, Sort::gain},
    Row{{thermalFactor, 2}, Sort::thermalSlope},
    Row{{thermalFactor, 3}, Sort::gain},
    Row{{tiltOffset, 0}, Sort::angle},
    Row{{tiltOffset, 1}, Sort::angle},
    Row{{azCalibration, 0}, Sort::faintAngle, true},
    Row{{azCalibration, 1}, Sort::faintAngle, true},
    Row{{azCalibration, 2}, Sort::faintAngle, true},
    Row{{azCalibration, 3}, Sort::faintAngle, true},
    Row{{elCalibration, 0}, Sort::faintAngle, true},
    Row{{elCalibration, 1}, Sort::faintAngle, true},
    Row{{tiltXCalibration, 0}, Sort::faintAngle, true},
    Row{{tiltXCalibration, 1}, Sort::faintAngle, true},
    Row{{tiltYCalibration, 0}, Sort::faintAngle, true},
    Row{{tiltYCalibration, 1}, Sort::faintAngle, true},
    Row{{scaleFactor, 0}, Sort::angle},
    Row{{scaleFactor, 1}, Sort::angle},
    Row{{scaleFactor, 2}, Sort::faintAngle},
    Row{{scaleFactor, 3}, Sort::angle},
    Row{{scaleFactor, 4}, Sort::gain},
    Row{{scaleFactor, 5}, Sort::gain},
    Row{{scaleFactor, 6}, Sort::gain},
    Row{{qvc, 3}, Sort::angle},
    Row{{qvc, 4}, Sort::angle},
    Row{{qvc, 5}, Sort::angle},
    Row{{levelX, 3}, Sort::angle},
    Row{{levelX, 4}, Sort::faintAngle},
    Row{{levelX, 5}, Sort::angle},
    Row{{levelX, 6}, Sort::gain},
    Row{{levelY, 3}, Sort::angle},
    Row{{levelY, 4}, Sort::faintAngle},
    Row{{levelY, 5}, Sort::angle},
    Row{{levelY, 6}, Sort::gain},
};

const Row& rowOf(const Parameter& parameter) {
    return *std::find_if(rows.begin(), rows.end(),
                         [&](const Row& row) { return row.parameter == parameter; });
}

} // namespace

std::string nameOf(const Parameter& parameter) {
    const std::string block = std::string(keyOf(parameter.block)) + '.';
    const auto names = calibratedNamesOf(parameter.block);
    return block + (names.empty() ? std::to_string(parameter.place) : names[parameter.place]);
}

std::vector<Parameter> parametersOf(std::string_view name) {
    std::vector<Parameter> found;
    for (const Row& row : rows)
        if (nameOf(row.parameter) == name || keyOf(row.parameter.block) == name)
            found.push_back(row.parameter);
    return found;
}

std::optional<Parameter> parameterOf(std::string_view name) {
    const auto found = parametersOf(name);
    return found.size() == 1 ? std::optional(found.front()) : std::nullopt;
}

std::vector<Parameter> allParameters() {
    std::vector<Parameter> all(rows.size());
    std::transform(rows.begin(), rows.end(), all.begin(),
                   [](const Row& row) { return row.parameter; });
    return all;
}

double knownTo(const Parameter& parameter) {
    switch (rowOf(parameter).sort) {
    case Sort::angle:
        return 0.5;
    case Sort::faintAngle:
        return 0.05;
    case Sort::gain:
        return 0.005;
    case Sort::thermalSlope:
        return 0.0005;
    }
    return 0;
}

double stepOf(const Parameter& parameter) {
    switch (rowOf(parameter).sort) {
    case Sort::angle:
    case Sort::faintAngle:
        return 1e-3;
    case Sort::gain:
        return 1e-5;
    case Sort::thermalSlope:
        return 1e-6;
    }
    return 0;
}

bool isThermalSlope(const Parameter& parameter) {
    return rowOf(parameter).sort == Sort::thermalSlope;
}

std::vector<Parameter> usualParameters(int mountMode, bool thermalSlopes) {
    std::vector<Parameter> usual{{angleOffset, 0}, {angleOffset, 1}};
    const auto add = [&](Block block, std::initializer_list<std::size_t> places) {
        for (const std::size_t place : places)
            usual.push_back({block, place});
    };
    const Principle principle = principleOf(mountMode);
    if (thermalSlopes && traitsOf(principle).levelX)
        add(thermalFactor, {0});
    if (thermalSlopes)
        add(thermalFactor, {2});
    switch (principle) {
    case Principle::dualLevel:
        add(scaleFactor, {0});
        add(tiltOffset, {0, 1});
        add(thermalFactor, {1, 3});
        break;
    case Principle::pendulum:
        add(scaleFactor, {0, 1, 2, 3, 6});
        break;
    case Principle::polarizer:
        add(scaleFactor, {0, 1, 6});
        break;
    case Principle::twoLevels:
        add(levelY, {3, 4, 5, 6});
        [[fallthrough]];
    case Principle::threeVectors:
        // The start vector's elevation takes the place of the encoder's offset.
        usual.erase(usual.begin() + 1);
        add(qvc, {3, 4, 5});
        add(levelX, {3, 4, 5, 6});
        break;
    }
    // In the file's order.
    std::vector<Parameter> ordered;
    for (const Row& row : rows)
        if (std::find(usual.begin(), usual.end(), row.parameter) != usual.end())
            ordered.push_back(row.parameter);
    return ordered;
}

SensorValues::SensorValues(const Document& document) {
    for (const Row& row : rows) {
        const BlockValues* values = row.change ? nullptr : document.find(row.parameter.block);
        auto& numbers = of[static_cast<std::size_t>(row.parameter.block)];
        if (values)
            std::transform(values->numbers.begin(), values->numbers.end(), numbers.begin(),
                           [](float number) {
                               // As it is in print.
                               return numberIn<double>(shown(number)).value_or(number);
                           });
    }
}

simulator::Mounting SensorValues::mounting(int mode) const {
    simulator::Mounting m;
    m.mode = mode;
    const auto take = [&](Block block, auto& values, double factor) {
        for (std::size_t i = 0; i < std::size(values); ++i)
            values[i] = at(block, i) * factor;
    };
    take(angleOffset, m.encoderOffset, degToRad);
    take(scaleFactor, m.scaleFactors, 1);
    take(qvc, m.qvcParameters, 1);
    take(levelX, m.level1Parameters, 1);
    take(levelY, m.level2Parameters, 1);
    return m;
}

} // namespace kiv::host
