#include "host/report/ReportPage.h"

#include <algorithm>

#include "host/report/Page.h"
#include "host/report/Sections.h"

namespace kiv::host {

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
    appendPageHead(html,
                   content.title.empty()
                       ? "KIV sensor " + std::to_string(content.sensorId) + ": " + content.readings
                       : content.title,
                   titleOf(content));
    appendHeading(html, content);
    html += "<div class=\"beside\">\n";
    appendProvenance(html, content);
    appendRowCounts(html, content);
    appendSpareReading(html, content);
    html += "</div>\n";
    appendWitnesses(html, content);
    appendClock(html, content);
    if (content.charted()) {
        appendStatistics(html, content);
        appendUncertainty(html, content);
        appendDrift(html, content);
        appendCharts(html, content);
    }
    appendBadRows(html, content);
    appendDoubtfulRows(html, content);
    std::string chartData;
    if (content.charted())
        appendChartData(chartData, content);
    appendPageFoot(html, chartData);
    return html;
}

} // namespace kiv::host
