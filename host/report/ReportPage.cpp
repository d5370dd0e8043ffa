#include "host/report/ReportPage.h"

#include <algorithm>

#include "host/base/Embedded.h"
#include "host/report/Html.h"
#include "host/report/Sections.h"

namespace kiv::host {

namespace {

void appendHead(std::string& html, const ReportContent& content) {
    html += "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
            "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; "
            "script-src 'unsafe-inline'; style-src 'unsafe-inline'\">\n"
            "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
            "<meta name=\"color-scheme\" content=\"light dark\">\n<title>";
    appendEscaped(html, content.title.empty() ? "KIV sensor " + std::to_string(content.sensorId)
                                                    + ": " + content.readings
                                              : content.title);
    html.append("</title>\n<style>\n").append(embedded::dygraphsStyle());
    html.append(embedded::pageStyle()).append("</style>\n</head>\n<body>\n<main>\n");
}

void appendFoot(std::string& html, const ReportContent& content) {
    html += "</main>\n<footer>\n<details><summary>The charts are drawn by dygraphs; its licence"
            "</summary>\n<pre>";
    appendEscaped(html, embedded::dygraphsLicence());
    html += "</pre></details>\n</footer>\n<script type=\"application/json\" id=\"data\">";
    appendChartData(html, content);
    html.append("</script>\n<script>\n").append(embedded::dygraphsScript());
    html.append("\n</script>\n<script>\n\"use strict\";\n").append(embedded::rowsScript());
    html.append(embedded::bandsScript())
        .append(embedded::marksScript())
        .append(embedded::pageScript());
    html += "</script>\n</body>\n</html>\n";
}

} // namespace

bool join(Doubt& doubt, const Doubt& next) {
    if (doubt.trust != next.trust)
        return false;
    doubt.modelError = std::max(doubt.modelError, next.modelError);
    return true;
}

bool join(NoResult& rows, const NoResult& next) {
    if (rows.state != next.state || rows.reason != next.reason)
        return false;
    if (rows.placed != next.placed)
        rows.placed = rows.reason;
    return true;
}

const Statistics& ReportContent::statistics(Quantity quantity) const {
    if (quantity <= Quantity::rz)
        return summary.angle(at(quantity));
    if (quantity >= Quantity::residualX && quantity <= Quantity::residualZ)
        return summary.residual(at(quantity) - at(Quantity::residualX)).statistics;
    return ofReadings[at(quantity)];
}

bool ReportContent::has(const Chart& chart) const {
    for (std::size_t q = at(chart.first); q <= at(chart.last); ++q)
        if (statistics(static_cast<Quantity>(q)).figures().count > 0)
            return true;
    return false;
}

std::string reportPage(const ReportContent& content) {
    std::string html;
    appendHead(html, content);
    appendHeading(html, content);
    html += "<div class=\"beside\">\n";
    appendProvenance(html, content);
    appendRowCounts(html, content);
    appendSpareReading(html, content);
    html += "</div>\n";
    appendWitnesses(html, content);
    if (std::any_of(charts.begin(), charts.end(),
                    [&](const Chart& chart) { return content.has(chart); })) {
        appendStatistics(html, content);
        appendUncertainty(html, content);
        appendCharts(html, content);
    }
    appendBadRows(html, content);
    appendDoubtfulRows(html, content);
    appendFoot(html, content);
    return html;
}

} // namespace kiv::host
