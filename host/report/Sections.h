#pragma once

#include <array>
#include <cstddef>
#include <string>

#include "host/report/ReportPage.h"

// The parts of a report's page, from top to bottom.
namespace kiv::host {

std::string titleOf(const ReportContent& content);
void appendHeading(std::string& html, const ReportContent& content);
void appendProvenance(std::string& html, const ReportContent& content);
void appendRowCounts(std::string& html, const ReportContent& content);
void appendSpareReading(std::string& html, const ReportContent& content);
void appendWitnesses(std::string& html, const ReportContent& content);
void appendClock(std::string& html, const ReportContent& content);
void appendStatistics(std::string& html, const ReportContent& content);
void appendDrift(std::string& html, const ReportContent& content);
void appendUncertainty(std::string& html, const ReportContent& content);
void appendCharts(std::string& html, const ReportContent& content);
void appendBadRows(std::string& html, const ReportContent& content);
void appendDoubtfulRows(std::string& html, const ReportContent& content);

// Of two raw readings of a still sensor, over the averaging time.
struct AllanChart {
    const char* id;
    const char* title;
    const char* unit; // behind the title
    std::size_t first;
    std::array<const char*, 2> names;
};
inline constexpr std::array<AllanChart, 2> allanCharts{{
    {"allan-encoders",
     "Allan deviation of the raw encoder angles",
     ", degrees",
     0,
     {"azimuth", "elevation"}},
    {"allan-levels",
     "Allan deviation of the raw tilt readings",
     ", their unit",
     2,
     {"level X", "level Y"}},
}};
bool has(const ReportContent& content, const AllanChart& chart);

// What the charts show, as JSON. Numbers and names of our own alone: no text from outside enters a
// script.
void appendChartData(std::string& json, const ReportContent& content);

} // namespace kiv::host
