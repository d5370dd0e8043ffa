#pragma once

#include <cstddef>

#include <nlohmann/json.hpp>

namespace kiv::host {

class Envelope;

// A series of an envelope as a chart takes it. Of a bin across a direction's seam the first side;
// the second one comes as [bin, mean, least, largest].
nlohmann::ordered_json chartSeries(const Envelope& envelope, std::size_t series, const char* name,
                                   bool direction);

// What the charts of an envelope run over; without times it is the number of the row.
nlohmann::ordered_json chartAxis(const Envelope& envelope, const char* name);

// What is not finite becomes null; whole numbers need no point.
nlohmann::ordered_json chartNumber(double value);
// A float is written with its own digits, not with those of the double that it is.
nlohmann::ordered_json chartNumber(float value);

// One value a bin.
template <typename ValueOf>
nlohmann::ordered_json chartArray(std::size_t count, ValueOf valueOf) {
    auto values = nlohmann::ordered_json::array();
    for (std::size_t i = 0; i < count; ++i)
        values.push_back(chartNumber(valueOf(i)));
    return values;
}

} // namespace kiv::host
