#include "host/report/Html.h"
#include "host/report/Sections.h"

namespace kiv::host {

std::string titleOf(const ReportContent& content) {
    return content.title.empty()
               ? "KIV sensor " + std::to_string(content.sensorId) + ": orientations"
               : content.title;
}

void appendHeading(std::string& html, const ReportContent& content) {
    html.append("<h1>").append(escaped(titleOf(content))).append("</h1>\n");
    const Summary& summary = content.summary;
    const std::size_t ok = summary.count(RowState::ok);
    const char* look = !summary.allGood() || ok == 0                       ? "bad"
                       : summary.allTrusted() && content.witnesses.empty() ? "good"
                                                                           : "warn";
    html.append("<p class=\"verdict ").append(look).append("\">");
    html += countText(ok) + " of " + rowsText(summary.rows()) + " with angles, "
            + countText(summary.count(RowState::refused)) + " refused, "
            + countText(summary.count(RowState::noOrientation)) + " without an orientation";
    if (!summary.allTrusted())
        html += ", " + countText(ok - summary.count(Trust::good)) + " not good";
    if (const std::size_t witnesses = content.witnesses.size(); witnesses > 0)
        html += ", " + countText(witnesses) + (witnesses == 1 ? " witness" : " witnesses");
    html += "</p>\n";
    if (content.cutShort)
        html.append("<p class=\"verdict bad\">Not all readings are in this report: ")
            .append(content.cutShort)
            .append(".</p>\n");
}

} // namespace kiv::host
