#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "KIVInterface/Records.h"
#include "host/report/Envelope.h"
#include "host/summary/Summary.h"
#include "host/tables/RowResult.h"

namespace kiv::host {

// What a report shows row by row, all in degrees; in the order of its charts.
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
};
inline constexpr std::size_t quantityCount = 10;

constexpr std::size_t at(Quantity quantity) {
    return static_cast<std::size_t>(quantity);
}

// A row that was refused or has no orientation.
struct BadRow {
    std::size_t line;
    double time;
    RowState state;
    std::string reason;
};

inline constexpr std::size_t mostBins = 4096;
inline constexpr std::size_t mostBadRowsListed = 200;

struct ReportContent {
    std::string parameterFile;
    std::string readings;
    std::int32_t sensorId = 0;
    int mountMode = 0;
    bool localFrame = false;
    F_VECTOR4 levelLimits{};

    Summary summary;
    std::array<Statistics, quantityCount> statistics = [] {
        std::array<Statistics, quantityCount> all;
        for (const Quantity quantity : {Quantity::tiltX, Quantity::tiltY, Quantity::residualX,
                                        Quantity::residualY, Quantity::residualZ})
            all[at(quantity)] = Statistics(Statistics::Kind::linear);
        return all;
    }();
    Envelope envelope{quantityCount, mostBins}; // over time in seconds
    std::string whyNotOverTime;                 // empty: the charts run over time
    double referenceTime = 0;
    std::vector<BadRow> badRows;    // the first ones
    const char* cutShort = nullptr; // why the readings were not read to their end
};

// The whole report as one HTML file that loads nothing.
std::string reportPage(const ReportContent& content);

} // namespace kiv::host
