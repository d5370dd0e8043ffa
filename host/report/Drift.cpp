#include <algorithm>
#include <cmath>
#include <limits>

#include "host/report/Html.h"
#include "host/report/Sections.h"
#include "support/Numbers.h"
#include "support/Principles.h"

namespace kiv::host {

namespace {

std::string digits(double value, int significant) {
    std::string text;
    appendRounded(text, value, significant);
    return text;
}

void appendSlopes(std::string& html, const RecordingDrift& drift) {
    html += "<table>\n<thead><tr><th>Of</th>";
    for (const char* heading :
         {"Degrees an hour", "Standard uncertainty", "Correlation with temperature"})
        html.append("<th class=\"number\">").append(heading).append("</th>");
    html += "</tr></thead>\n<tbody>\n";
    for (std::size_t i = 0; i < 3; ++i)
        if (const auto line = drift.of(i))
            appendTableRow(html,
                           std::string(drift.hasTruth() ? "residual " : "angle ") + angleNames[i],
                           {digits(line->slope, 3), digits(line->uncertainty, 2),
                            line->withTemperature ? digits(*line->withTemperature, 2) : "none"});
    html += "</tbody>\n</table>\n";
}

// A chart of its own, as both axes are logarithmic: a decade is 100 units of the picture wide and
// 60 high.
class DecadeChart {
public:
    void add(double x, double y) {
        left = std::min(left, static_cast<int>(std::floor(std::log10(x))));
        right = std::max(right, static_cast<int>(std::ceil(std::log10(x))));
        low = std::min(low, static_cast<int>(std::floor(std::log10(y))));
        high = std::max(high, static_cast<int>(std::ceil(std::log10(y))));
    }
    bool empty() const { return left > right; }
    double width() const { return 60 + 100 * std::max(1, right - left); }
    double height() const { return 10 + 60 * std::max(1, high - low); }
    std::string at(double x, double y) const {
        return digits(60 + 100 * (std::log10(x) - left), 5) + ','
               + digits(height() - 60 * (std::log10(y) - low), 5);
    }

    void appendAxes(std::string& html, const char* xName) const {
        const auto text = [&](double x, double y, const char* anchor, const std::string& said) {
            html += "<text x=\"" + digits(x, 5) + "\" y=\"" + digits(y, 5) + "\" text-anchor=\""
                    + anchor + "\" font-size=\"11\" fill=\"currentColor\">" + said + "</text>\n";
        };
        const auto line = [&](double x1, double y1, double x2, double y2) {
            html += "<path d=\"M" + digits(x1, 5) + ',' + digits(y1, 5) + 'L' + digits(x2, 5) + ','
                    + digits(y2, 5) + "\" stroke=\"var(--rule)\"/>\n";
        };
        for (int decade = left; decade <= std::max(right, left + 1); ++decade) {
            const double x = 60 + 100 * (decade - left);
            line(x, 10, x, height());
            text(x, height() + 14, "middle", digits(std::pow(10, decade), 6));
        }
        for (int decade = low; decade <= std::max(high, low + 1); ++decade) {
            const double y = height() - 60 * (decade - low);
            line(60, y, width(), y);
            text(54, y + 4, "end", digits(std::pow(10, decade), 6));
        }
        text((60 + width()) / 2, height() + 30, "middle", xName);
    }

private:
    // Powers of ten; none yet.
    int left = std::numeric_limits<int>::max(), right = std::numeric_limits<int>::min();
    int low = left, high = right;
};

void appendAllan(std::string& html, const RecordingDrift& drift, std::size_t first,
                 const char* title, std::initializer_list<const char*> names) {
    const double step = drift.step().value_or(1);
    DecadeChart chart;
    for (std::size_t i = 0; i < names.size(); ++i)
        for (const auto& [values, deviation] : drift.reading(first + i).points())
            if (deviation > 0)
                chart.add(step * static_cast<double>(values), deviation);
    if (chart.empty())
        return;
    html.append("<figure>\n<figcaption>Allan deviation of ").append(title);
    html += "</figcaption>\n<div class=\"keys\">";
    std::size_t series = 0;
    for (const char* name : names)
        html += "<label><span class=\"swatch\" style=\"border-top: 3px solid var(--series-"
                + std::to_string(series++) + ")\"></span>" + name + "</label> ";
    html += "</div>\n<svg viewBox=\"0 0 " + digits(chart.width() + 20, 5) + ' '
            + digits(chart.height() + 36, 5) + "\" width=\"" + digits(chart.width() + 20, 5)
            + "\" role=\"img\" aria-label=\"Allan deviation of " + title + "\">\n";
    chart.appendAxes(html, drift.step() ? "averaging time, s" : "rows averaged");
    for (std::size_t i = 0; i < names.size(); ++i) {
        std::string points;
        for (const auto& [values, deviation] : drift.reading(first + i).points())
            if (deviation > 0)
                points += chart.at(step * static_cast<double>(values), deviation) + ' ';
        html += "<polyline points=\"" + points
                + "\" fill=\"none\" stroke-width=\"1.5\" "
                  "stroke=\"var(--series-"
                + std::to_string(i) + ")\"/>\n";
    }
    html += "</svg>\n</figure>\n";
}

} // namespace

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
                words += " --u-encoder " + digits(*encoder, 3);
            if (level)
                words += " --u-level " + digits(*level, 3);
            html += "<p>The sensor stands still. Single readings scatter from row to row as by "
                    + code(words.substr(1)) + ".</p>\n";
        }
        appendAllan(html, drift, 0, "the raw encoder angles, degrees", {"azimuth", "elevation"});
        appendAllan(html, drift, 2, "the raw tilt readings, their unit", {"level X", "level Y"});
    }
    html += "</section>\n";
}

} // namespace kiv::host
