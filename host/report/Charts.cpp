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
    std::string note;
    if (!content.axis.overTime())
        note += "Over the row number, as " + content.axis.whyRow + ". ";
    note += pointsNote(perBin);
    if (content.hasUncertainty())
        note.append("Bands of twice the standard uncertainty, which may be narrower than a line: "
                    "zoom in")
            .append(perBin > 1 ? "; a point's is the largest of its rows" : "")
            .append(content.localFrame ? "; without the reference's part. " : ". ");
    appendChartsHead(html, note);
    for (const Chart& chart : charts) {
        if (!content.has(chart))
            continue;
        appendFigure(html, chart.id, chart.title, unitText(chart.unit, content));
    }
    html += "</section>\n";
}

} // namespace kiv::host
