#include <span>

#include "host/report/Html.h"
#include "host/report/Page.h"
#include "host/report/Sections.h"
#include "support/Numbers.h"

namespace kiv::host {

namespace {

void appendFigures(std::string& html, const ReportContent& content, Quantity quantity) {
    const Statistics::Figures s = content.statistics(quantity).figures();
    const char* name = quantityWords[at(quantity)].table;
    if (s.count == 0)
        return;
    if (s.allTheWayRound)
        return appendTableRow(html, name, {countText(s.count), "all the way round", "", "", ""});
    const auto mean = degreesText(s.mean), deviation = degreesText(s.deviation),
               least = degreesText(s.least), largest = degreesText(s.largest);
    if (quantity < Quantity::residualX || quantity > Quantity::residualZ)
        return appendTableRow(html, name, {countText(s.count), mean, deviation, least, largest});
    const auto& residual = content.summary.residual(at(quantity) - at(Quantity::residualX));
    appendTableRow(html, name,
                   {countText(s.count), mean, deviation, least, largest,
                    degreesText(s.rootMeanSquare), degreesText(residual.magnitudes.at(0.95))});
}

void appendTable(std::string& html, const ReportContent& content, const char* title,
                 std::span<const Chart> shown) {
    bool any = false, residuals = false;
    for (const Chart& chart : shown) {
        any = any || content.has(chart);
        residuals = chart.first == Quantity::residualX;
    }
    if (!any)
        return;
    html.append("<section>\n<h2>").append(title).append("</h2>\n");
    if (residuals)
        appendTableHead(html, "Quantity",
                        {"Rows", "Mean", "Standard deviation", "Least", "Largest",
                         "Root mean square", "95 % quantile"});
    else
        appendTableHead(html, "Quantity",
                        {"Rows", "Mean", "Standard deviation", "Least", "Largest"});
    for (const Chart& chart : shown) {
        for (std::size_t q = at(chart.first); q <= at(chart.last); ++q)
            appendFigures(html, content, static_cast<Quantity>(q));
    }
    html += "</tbody>\n</table>\n</section>\n";
}

} // namespace

void appendStatistics(std::string& html, const ReportContent& content) {
    const std::span all(charts);
    appendTable(html, content, "Results in degrees", all.first(5));
    appendTable(html, content, "Angles minus true angles, degrees", all.subspan(5, 1));
    if (content.summary.poorFit())
        appendVerdict(html, "warn",
                      "The angles do not fit the true ones: <code>kiv check</code> with the "
                      "parameter file and the readings looks for the mistake.");
    appendTable(html, content, "Further readings", all.last(3));
    html += "<p class=\"note\">Angles over the rows in state ok, readings over all rows that were "
            "not refused. Means and extremes of angles are those of directions. The quantile is of "
            "the magnitude, at most 0.1 % too large.</p>\n";
}

} // namespace kiv::host
