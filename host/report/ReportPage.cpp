#include "host/report/ReportPage.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <span>
#include <string_view>
#include <utility>

#include "host/report/Embedded.h"
#include "host/tables/Numbers.h"
#include "sensor/SensorAccess.h"
#include "support/MountMode.h"

namespace kiv::host {

namespace {

struct QuantityWords {
    const char* key;   // in a chart
    const char* table; // in the table
};

constexpr std::array<QuantityWords, quantityCount> quantityWords{{
    {"rx", "angle rx"},
    {"ry", "angle ry"},
    {"rz", "angle rz"},
    {"tilt X", "corrected tilt X"},
    {"tilt Y", "corrected tilt Y"},
    {"azimuth", "corrected azimuth"},
    {"elevation", "corrected elevation"},
    {"rx", "residual rx"},
    {"ry", "residual ry"},
    {"rz", "residual rz"},
}};

struct Chart {
    const char* id;
    const char* title;
    Quantity first;
    Quantity last;
};

constexpr Chart charts[] = {
    {"angles", "Angles", Quantity::rx, Quantity::rz},
    {"tilts", "Corrected tilts", Quantity::tiltX, Quantity::tiltY},
    {"encoders", "Corrected encoder angles", Quantity::azimuth, Quantity::elevation},
    {"residuals", "Residual: angle minus true angle", Quantity::residualX, Quantity::residualZ},
};

constexpr std::array<const char*, rowStateNames.size()> stateMeanings{
    "the angles are computed",
    "the measurement status is not 2",
    "no reference orientation yet",
    "became the reference orientation",
    "the model has no orientation for the readings",
    "the readings are no use"};

// Text from outside, safe in an element and in a quoted attribute.
void appendEscaped(std::string& html, std::string_view text) {
    for (const char c : text) {
        switch (c) {
        case '&':
            html += "&amp;";
            break;
        case '<':
            html += "&lt;";
            break;
        case '>':
            html += "&gt;";
            break;
        case '"':
            html += "&quot;";
            break;
        case '\'':
            html += "&#39;";
            break;
        default:
            if ((static_cast<unsigned char>(c) < 0x20 && c != '\n' && c != '\t') || c == 0x7F)
                html += "\xEF\xBF\xBD"; // the replacement character
            else
                html.push_back(c);
        }
    }
}

std::string code(std::string_view text) {
    std::string html = "<code>";
    appendEscaped(html, text);
    return html += "</code>";
}

std::string number(double value) {
    std::string text;
    appendNumber(text, value);
    return text;
}

// In groups of three digits from five digits on.
std::string countText(std::size_t count) {
    std::string digits = std::to_string(count);
    if (digits.size() > 4)
        for (std::size_t place = digits.size(); place > 3;)
            digits.insert(place -= 3, "\xE2\x80\xAF"); // a narrow space that does not break
    return digits;
}

std::string rowsText(std::size_t count) {
    return countText(count) + (count == 1 ? " row" : " rows");
}

void appendTableRow(std::string& html, std::string_view heading,
                    std::initializer_list<std::string> cells, const char* cellClass = "number") {
    html.append("<tr><th scope=\"row\">").append(heading).append("</th>");
    for (const std::string& cell : cells)
        html.append("<td class=\"").append(cellClass).append("\">").append(cell).append("</td>");
    html += "</tr>\n";
}

// Once per report.
class Page {
public:
    explicit Page(const ReportContent& shown) : content(shown), bins(shown.envelope.bins()) {}

    std::string text() {
        appendHead();
        appendVerdict();
        html += "<div class=\"beside\">\n";
        appendOrigin();
        appendRowCounts();
        html += "</div>\n";
        if (std::any_of(std::begin(charts), std::end(charts),
                        [&](const Chart& chart) { return hasValues(chart); })) {
            appendStatistics();
            appendCharts();
        }
        appendBadRows();
        appendFoot();
        return std::move(html);
    }

private:
    bool overTime() const { return content.whyNotOverTime.empty(); }
    const char* xName() const { return overTime() ? "time_s" : "row"; }

    bool hasValues(const Chart& chart) const {
        for (std::size_t q = at(chart.first); q <= at(chart.last); ++q)
            if (content.statistics[q].figures().count > 0)
                return true;
        return false;
    }

    bool levelLimited(float low, float high) const { return low < high; }

    void appendHead();
    void appendVerdict();
    void appendOrigin();
    void appendRowCounts();
    void appendStatistics();
    void appendCharts();
    void appendBadRows();
    void appendFoot();

    void appendData();
    void appendChartData(const Chart& chart);
    void appendMarks(const char* name, std::size_t Envelope::Bin::*count);
    template <typename ValueOf>
    void appendArray(const char* name, ValueOf&& valueOf);
    std::string limitsText(float low, float high) const;

    const ReportContent& content;
    std::span<const Envelope::Bin> bins;
    std::string html;
};

void Page::appendHead() {
    html += "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
            "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; "
            "script-src 'unsafe-inline'; style-src 'unsafe-inline'\">\n"
            "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
            "<meta name=\"color-scheme\" content=\"light dark\">\n<title>KIV sensor ";
    html += std::to_string(content.sensorId) + ": ";
    appendEscaped(html, content.readings);
    html.append("</title>\n<style>\n").append(embedded::dygraphsStyle());
    html.append(embedded::pageStyle()).append("</style>\n</head>\n<body>\n<main>\n<h1>KIV sensor ");
    html += std::to_string(content.sensorId) + ": orientations</h1>\n";
}

void Page::appendVerdict() {
    const Summary& summary = content.summary;
    const std::size_t ok = summary.count(RowState::ok);
    const bool good = summary.allGood() && ok > 0;
    html.append("<p class=\"verdict ").append(good ? "good" : "bad").append("\">");
    html += countText(ok) + " of " + rowsText(summary.rows()) + " with angles, "
            + countText(summary.count(RowState::refused)) + " refused, "
            + countText(summary.count(RowState::noOrientation)) + " without an orientation</p>\n";
    if (content.cutShort)
        html.append("<p class=\"verdict bad\">Not all readings are in this report: ")
            .append(content.cutShort)
            .append(".</p>\n");
}

std::string Page::limitsText(float low, float high) const {
    return levelLimited(low, high) ? number(low) + " to " + number(high) + " degrees" : "none";
}

void Page::appendOrigin() {
    const F_VECTOR4& limits = content.levelLimits;
    const auto line = [&](const char* heading, std::string cell) {
        appendTableRow(html, heading, {std::move(cell)}, "text");
    };
    html += "<section>\n<h2>What was run</h2>\n<table class=\"facts\">\n";
    line("Readings", code(content.readings));
    line("Parameter file", code(content.parameterFile));
    line("Sensor ID", std::to_string(content.sensorId));
    line("Mount mode",
         std::to_string(content.mountMode) + ", " + modelName(content.mountMode) + " model");
    line("Angles", reportsOwnMatrix(content.mountMode) ? "of the sensor in the instrument"
                   : content.localFrame ? "of the motion since the reference (local frame)"
                                        : "in machine coordinates");
    line("Level limits",
         "X " + limitsText(limits.x, limits.y) + ", Y " + limitsText(limits.z, limits.w));
    if (overTime() && !bins.empty())
        line("Time", number(bins.front().firstX) + " to " + number(bins.back().lastX) + " s");
    line("Software", "kiv " KIV_VERSION);
    html += "</table>\n</section>\n";
}

void Page::appendRowCounts() {
    const Summary& summary = content.summary;
    html += "<section>\n<h2>Rows</h2>\n<table>\n<thead><tr><th>State</th>"
            "<th class=\"number\">Rows</th><th>Meaning</th></tr></thead>\n<tbody>\n";
    for (std::size_t i = 0; i < rowStateNames.size(); ++i) {
        const auto state = static_cast<RowState>(i);
        const std::size_t count = summary.count(state);
        html.append("<tr><th scope=\"row\">").append(rowStateNames[i]);
        html.append("</th><td class=\"number\">").append(countText(count)).append("</td><td>");
        html += stateMeanings[i];
        if (state == RowState::reference && count > 0)
            html += " (line " + countText(summary.referenceLine()) + ")";
        if (state == RowState::refused)
            for (const Reason r : {Reason::rowShape, Reason::notANumber, Reason::zeroVector})
                if (const std::size_t n = summary.count(r); n > 0)
                    html.append("<br>").append(countText(n)).append(" ").append(wordsOf(r).text);
        html += "</td></tr>\n";
    }
    html += "</tbody>\n<tfoot>";
    appendTableRow(html, "all", {countText(summary.rows())});
    html += "</tfoot>\n</table>\n</section>\n";
}

void Page::appendStatistics() {
    html += "<section>\n<h2>Results in degrees</h2>\n<table>\n<thead><tr><th>Quantity</th>";
    for (const char* heading : {"Rows", "Mean", "Standard deviation", "Least", "Largest"})
        html.append("<th class=\"number\">").append(heading).append("</th>");
    html += "</tr></thead>\n";
    for (const Chart& chart : charts) {
        if (!hasValues(chart))
            continue;
        html += "<tbody>\n";
        for (std::size_t q = at(chart.first); q <= at(chart.last); ++q) {
            const Statistics::Figures s = content.statistics[q].figures();
            if (s.count == 0)
                continue;
            if (s.allTheWayRound)
                appendTableRow(html, quantityWords[q].table,
                               {countText(s.count), "all the way round", "", "", ""});
            else
                appendTableRow(html, quantityWords[q].table,
                               {countText(s.count), degreesText(s.mean), degreesText(s.deviation),
                                degreesText(s.least), degreesText(s.largest)});
        }
        html += "</tbody>\n";
    }
    html += "</table>\n<p class=\"note\">Angles over the rows in state ok, corrected readings over "
            "all rows that were not refused. Means and extremes of angles are those of "
            "directions.</p>\n"
            "</section>\n";
}

void Page::appendCharts() {
    const std::size_t perBin = content.envelope.rowsPerBin();
    html += "<section id=\"charts\">\n<h2>Charts</h2>\n"
            "<noscript><p class=\"verdict bad\">The charts need JavaScript, the tables do not."
            "</p></noscript>\n<p class=\"note\">";
    if (!overTime())
        html += "Over the row number, as " + content.whyNotOverTime + ". ";
    if (perBin > 1)
        html += "Each point stands for " + rowsText(perBin)
                + ": the line runs through their mean, the band from their least to their "
                  "largest value. ";
    html += "<span class=\"screen\">Drag to zoom, shift and drag to move, double-click for "
            "everything.</span></p>\n";
    for (const Chart& chart : charts) {
        if (!hasValues(chart))
            continue;
        html.append("<figure id=\"").append(chart.id).append("\">\n<figcaption>");
        html.append(chart.title).append(", degrees</figcaption>\n<div class=\"keys\"></div>\n");
        html.append("<div class=\"plot\" role=\"img\" aria-label=\"").append(chart.title);
        html.append("\"></div>\n</figure>\n");
    }
    html += "</section>\n";
}

void Page::appendBadRows() {
    const std::size_t bad =
        content.summary.count(RowState::refused) + content.summary.count(RowState::noOrientation);
    if (bad == 0)
        return;
    html += "<section>\n<h2>Rows without a result</h2>\n<p>" + rowsText(bad);
    if (bad > content.badRows.size())
        html += "; the first " + countText(content.badRows.size()) + " are listed";
    html.append(".</p>\n<table class=\"bad-rows\">\n<thead><tr><th class=\"number\">Line</th>"
                "<th class=\"number\">");
    html.append(xName()).append("</th><th>State</th><th>Reason</th></tr></thead>\n<tbody>\n");
    for (const BadRow& row : content.badRows) {
        html += "<tr><td class=\"number\">" + countText(row.line) + "</td><td class=\"number\">";
        html += overTime() ? number(row.time) : countText(row.line - 1);
        html.append("</td><td class=\"state ")
            .append(row.state == RowState::refused ? "refused" : "no-orientation");
        html.append("\">").append(rowStateNames[static_cast<std::size_t>(row.state)]);
        html += "</td><td class=\"reason\">";
        appendEscaped(html, row.reason);
        html += "</td></tr>\n";
    }
    html += "</tbody>\n</table>\n</section>\n";
}

void Page::appendFoot() {
    html += "</main>\n<footer>\n<details><summary>The charts are drawn by dygraphs; its licence"
            "</summary>\n<pre>";
    appendEscaped(html, embedded::dygraphsLicence());
    html += "</pre></details>\n</footer>\n<script type=\"application/json\" id=\"data\">";
    appendData();
    html.append("</script>\n<script>\n").append(embedded::dygraphsScript());
    html.append("\n</script>\n<script>\n").append(embedded::pageScript());
    html += "</script>\n</body>\n</html>\n";
}

// Numbers and names of our own alone: no text from outside enters a script.
void Page::appendData() {
    html += "{\"x\":\"";
    html.append(overTime() ? "time, s" : "row").append("\",\"rowsPerBin\":");
    html += std::to_string(content.envelope.rowsPerBin());
    html += ",\"rows\":" + std::to_string(content.envelope.rows());
    if (const std::size_t line = content.summary.referenceLine(); line > 0)
        html += ",\"reference\":"
                + (overTime() ? number(content.referenceTime) : std::to_string(line - 1));
    if (overTime()) {
        appendArray("first", [&](std::size_t i) { return bins[i].firstX; });
        if (content.envelope.rowsPerBin() > 1)
            appendArray("last", [&](std::size_t i) { return bins[i].lastX; });
    }
    appendMarks("refused", &Envelope::Bin::refused);
    appendMarks("noOrientation", &Envelope::Bin::noOrientation);
    html += ",\"charts\":[";
    for (const Chart& chart : charts)
        if (hasValues(chart))
            appendChartData(chart);
    if (html.back() == ',')
        html.pop_back();
    html += "]}";
}

// Pairs of a bin and how many of its rows are marked.
void Page::appendMarks(const char* name, std::size_t Envelope::Bin::*count) {
    html.append(",\"").append(name).append("\":[");
    const char* separator = "";
    for (std::size_t i = 0; i < bins.size(); ++i) {
        if (bins[i].*count == 0)
            continue;
        html += separator;
        html += '[' + std::to_string(i) + ',' + std::to_string(bins[i].*count) + ']';
        separator = ",";
    }
    html += ']';
}

void Page::appendChartData(const Chart& chart) {
    html.append("{\"id\":\"").append(chart.id).append("\",\"series\":[");
    for (std::size_t q = at(chart.first); q <= at(chart.last); ++q) {
        const auto array = [&](const char* name, auto valueOf) {
            appendArray(name, [&](std::size_t i) {
                const Envelope::Range& range = content.envelope.range(i, q);
                return range.count == 0 ? NAN : static_cast<float>(valueOf(range));
            });
        };
        html.append("{\"name\":\"").append(quantityWords[q].key).append("\"");
        array("mean", [](const Envelope::Range& range) { return range.mean(); });
        if (content.envelope.rowsPerBin() > 1) {
            array("least", [](const Envelope::Range& range) { return range.least; });
            array("largest", [](const Envelope::Range& range) { return range.largest; });
        }
        html += q == at(chart.last) ? "}]" : "},";
    }
    if (chart.first == Quantity::tiltX) {
        const F_VECTOR4& limits = content.levelLimits;
        const auto pair = [&](float low, float high) {
            html += levelLimited(low, high) ? '[' + number(low) + ',' + number(high) + ']' : "null";
        };
        html += ",\"limits\":[";
        pair(limits.x, limits.y);
        html += ',';
        pair(limits.z, limits.w);
        html += ']';
    }
    html += "},";
}

// One value a bin; what is not finite becomes null.
template <typename ValueOf>
void Page::appendArray(const char* name, ValueOf&& valueOf) {
    html.append(",\"").append(name).append("\":[");
    for (std::size_t i = 0; i < bins.size(); ++i) {
        if (i > 0)
            html.push_back(',');
        const auto value = valueOf(i);
        if (std::isfinite(value))
            appendNumber(html, value);
        else
            html += "null";
    }
    html += ']';
}

} // namespace

std::string reportPage(const ReportContent& content) {
    return Page(content).text();
}

} // namespace kiv::host
