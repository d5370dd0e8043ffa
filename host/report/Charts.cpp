#include "host/report/Html.h"
#include "host/report/Page.h"
#include "host/report/Sections.h"

namespace kiv::host {

namespace {

std::string unitText(Unit unit, const ReportContent& content) {
    switch (unit) {
    case Unit::degrees:
        return ", degrees";
    case Unit::length:
        return content.lengthUnit.empty() ? ", in the unit of the readings"
                                          : ", " + escaped(content.lengthUnit);
    case Unit::temperature:
        return ", in the unit of the thermal factors";
    case Unit::none:
        break;
    }
    return "";
}

} // namespace

void appendCharts(std::string& html, const ReportContent& content) {
    const std::size_t perBin = content.envelope.rowsPerBin();
    html += "<section id=\"charts\">\n<h2>Charts</h2>\n"
            "<noscript><p class=\"verdict bad\">The charts need JavaScript, the tables do not."
            "</p></noscript>\n<p class=\"note\">";
    if (!content.axis.overTime())
        html += "Over the row number, as " + content.axis.whyRow + ". ";
    if (perBin > 1)
        html += "Each point stands for " + rowsText(perBin)
                + ": the line runs through their mean, the band from their least to their "
                  "largest value. ";
    if (content.hasUncertainty())
        html.append("Bands of twice the standard uncertainty, which may be narrower than a line: "
                    "zoom in")
            .append(perBin > 1 ? "; a point's is the largest of its rows" : "")
            .append(content.localFrame ? "; without the reference's part. " : ". ");
    html += "<span class=\"screen\">Drag to zoom, shift and drag to move, double-click for "
            "everything.</span></p>\n";
    for (const Chart& chart : charts) {
        if (!content.has(chart))
            continue;
        appendFigure(html, chart.id, chart.title, unitText(chart.unit, content));
    }
    html += "</section>\n";
}

} // namespace kiv::host
