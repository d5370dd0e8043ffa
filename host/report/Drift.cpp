#include <algorithm>

#include "host/report/Html.h"
#include "host/report/Page.h"
#include "host/report/Sections.h"
#include "support/Numbers.h"
#include "support/Principles.h"

namespace kiv::host {

namespace {

void appendSlopes(std::string& html, const RecordingDrift& drift) {
    appendTableHead(html, "Of",
                    {"Degrees an hour", "Standard uncertainty", "Correlation with temperature"});
    for (std::size_t i = 0; i < 3; ++i)
        if (const auto line = drift.of(i))
            appendTableRow(
                html, std::string(drift.hasTruth() ? "residual " : "angle ") + angleNames[i],
                {roundedText(line->slope, 3), roundedText(line->uncertainty, 2),
                 line->withTemperature ? roundedText(*line->withTemperature, 2) : "none"});
    html += "</tbody>\n</table>\n";
}

} // namespace

bool has(const ReportContent& content, const AllanChart& chart) {
    const auto moves = [](const AllanDeviation::Point& point) { return point.deviation > 0; };
    bool any = false;
    for (std::size_t i = 0; content.drift.still() && i < chart.names.size(); ++i) {
        const auto points = content.drift.reading(chart.first + i).points();
        any = any || std::any_of(points.begin(), points.end(), moves);
    }
    return any;
}

void appendDrift(std::string& html, const ReportContent& content) {
    const RecordingDrift& drift = content.drift;
    if (!drift.of(0) && !drift.still())
        return;
    html += "<section>\n<h2>Drift</h2>\n";
    if (drift.of(0)) {
        appendSlopes(html, drift);
        html += "<p class=\"note\">Lines through up to 64 means of rows that follow each other; "
                "their scatter gives the uncertainty.</p>\n";
    }
    if (drift.still()) {
        const bool levelX = reads(principleOf(content.mountMode), Source::levelX);
        const auto encoder = drift.encoderNoise(), level = drift.levelNoise(levelX);
        if (encoder || level) {
            std::string words;
            if (encoder)
                words += " --u-encoder " + roundedText(*encoder, 3);
            if (level)
                words += " --u-level " + roundedText(*level, 3);
            html += "<p>The sensor stands still. Single readings scatter from row to row as by "
                    + code(words.substr(1)) + ".</p>\n";
        }
        for (const AllanChart& chart : allanCharts)
            if (has(content, chart))
                appendFigure(html, chart.id, chart.title, chart.unit);
    }
    html += "</section>\n";
}

} // namespace kiv::host
