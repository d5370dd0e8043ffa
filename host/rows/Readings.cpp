#include "host/rows/Readings.h"

#include <string>
#include <utility>

namespace kiv::host {

namespace {

constexpr std::size_t at(Field field) {
    return static_cast<std::size_t>(field);
}

} // namespace

Reason readReadings(Table& table, KIV_RAWINFO& raw) {
    if (!table.checkRow())
        return Reason::rowShape;
    raw = {};
    bool good = table.readNumber(at(Field::status), raw.status);
    const std::pair<Field, float&> numbers[] = {
        {Field::x, raw.vector[0]},
        {Field::y, raw.vector[1]},
        {Field::z, raw.vector[2]},
        {Field::azimuth, raw.azimuthRaw},
        {Field::elevation, raw.elevationRaw},
        {Field::levelX, raw.levelXRaw},
        {Field::levelY, raw.levelYRaw},
        {Field::temperature, raw.temperature},
        {Field::refMetric, raw.refMetric},
    };
    for (const auto& [field, value] : numbers)
        good = table.readNumber(at(field), value) && good;

    good = table.readFlag(at(Field::refBlocked), raw.refBlocked) && good;
    if (!good)
        return Reason::notANumber;
    if (raw.vector[0] == 0 && raw.vector[1] == 0 && raw.vector[2] == 0) {
        table.report(at(Field::x), "a measured vector that is not zero", "0, 0, 0",
                     "with a vector of zero");
        return Reason::zeroVector;
    }
    return Reason::none;
}

bool Owner::owns(Table& table) const {
    double found = 0;
    if (!place || !table.numberAt(*place, found) || found == id)
        return true;
    table.reportCell(*place,
                     std::to_string(id) + " in column " + std::string(sensorColumn)
                         + ", the parameter file's serial number",
                     std::string(table.cell(*place)) + "; give the parameter file of that sensor",
                     "of another sensor");
    return false;
}

Truth::Truth(const Table& table, bool comparable) {
    for (std::size_t i = 0; comparable && i < truthColumns.size(); ++i)
        places[i] = table.find(truthColumns[i]);
}

std::optional<std::array<double, 3>> Truth::angles(const Table& table) const {
    if (!comparable())
        return std::nullopt;
    std::array<double, 3> angles{};
    for (std::size_t i = 0; i < places.size(); ++i)
        if (!table.numberAt(*places[i], angles[i]))
            return std::nullopt;
    return angles;
}

} // namespace kiv::host
