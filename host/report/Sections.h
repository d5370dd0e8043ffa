#pragma once

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
void appendStatistics(std::string& html, const ReportContent& content);
void appendDrift(std::string& html, const ReportContent& content);
void appendUncertainty(std::string& html, const ReportContent& content);
void appendCharts(std::string& html, const ReportContent& content);
void appendBadRows(std::string& html, const ReportContent& content);
void appendDoubtfulRows(std::string& html, const ReportContent& content);

// What the charts show, as JSON. Numbers and names of our own alone: no text from outside enters a
// script.
void appendChartData(std::string& json, const ReportContent& content);

} // namespace kiv::host
