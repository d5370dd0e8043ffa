#include "host/report/Page.h"

#include <cstdint>
#include <cstdlib>
#include <ctime>

#include "host/base/Embedded.h"
#include "host/base/Sha256.h"
#include "host/report/Html.h"
#include "host/rows/TimeStamp.h"
#include "support/Numbers.h"

namespace kiv::host {

namespace {

// As a browser takes it, in base 64: which scripts may run, and no others.
std::string digestOf(std::string_view script) {
    constexpr const char* digits =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    Sha256 sha;
    sha.add(script);
    const std::string hex = sha.hex();
    std::string text = "'sha256-";
    for (std::size_t i = 0; i < hex.size(); i += 3) { // two digits for 12 bits, one for the last 4
        const std::string part = hex.substr(i, 3);
        const auto bits = std::stoul(part, nullptr, 16) << (12 - 4 * part.size());
        text += digits[bits >> 6];
        if (part.size() == 3)
            text += digits[bits & 63];
    }
    return text + "='";
}

std::string chartsScript() {
    return "\n\"use strict\";\n" + std::string(embedded::pageScript());
}

std::string dygraphsScript() {
    return '\n' + std::string(embedded::dygraphsScript());
}

} // namespace

void appendPageHead(std::string& html, std::string_view title, std::string_view heading) {
    static const std::string scripts = digestOf(dygraphsScript()) + ' ' + digestOf(chartsScript());
    html += "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
            "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; "
            "script-src ";
    html += scripts;
    html += "; style-src 'unsafe-inline'\">\n"
            "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
            "<meta name=\"color-scheme\" content=\"light dark\">\n<title>";
    appendEscaped(html, title);
    html.append("</title>\n<style>\n").append(embedded::dygraphsStyle());
    html.append(embedded::pageStyle()).append("</style>\n</head>\n<body>\n<main>\n<h1>");
    appendEscaped(html, heading);
    html += "</h1>\n";
}

void appendPageFoot(std::string& html, std::string_view chartData) {
    html += "</main>\n";
    if (!chartData.empty()) {
        html += "<footer>\n<details><summary>The charts are drawn by dygraphs; its licence"
                "</summary>\n<pre>";
        appendEscaped(html, embedded::dygraphsLicence());
        html += "</pre></details>\n</footer>\n<script type=\"application/json\" id=\"data\">";
        html.append(chartData).append("</script>\n<script>").append(dygraphsScript());
        html.append("</script>\n<script>").append(chartsScript()).append("</script>\n");
    }
    html += "</body>\n</html>\n";
}

void appendVerdict(std::string& html, const char* look, std::string_view sentence) {
    html.append("<p class=\"verdict ").append(look).append("\">").append(sentence);
    html += "</p>\n";
}

FactTable::FactTable(std::string& page, std::string_view title) : html(page) {
    html.append("<section>\n<h2>").append(title).append("</h2>\n<table class=\"facts\">\n");
}

void FactTable::line(std::string_view name, std::string_view value) {
    appendTableRow(html, name, {std::string(value)}, "text");
}

void FactTable::digest(const std::string& hex, const char* otherwise) {
    line("SHA-256", hex.empty() ? otherwise : code(hex));
}

void FactTable::convention(bool localFrame) {
    line("Convention", localFrame ? "Rz(rz) \xC2\xB7 Ry(ry) \xC2\xB7 Rx(rx), local frame"
                                  : "Rx(rx) \xC2\xB7 Ry(ry) \xC2\xB7 Rz(rz)");
}

void FactTable::end() {
    html += "</table>\n</section>\n";
}

void appendChartsHead(std::string& html, std::string_view note) {
    html += "<section id=\"charts\">\n<h2>Charts</h2>\n"
            "<noscript><p class=\"verdict bad\">The charts need JavaScript, the tables do not."
            "</p></noscript>\n<p class=\"note\">";
    html.append(note);
    html += "<span class=\"screen\">Drag to zoom, shift and drag to move, double-click for "
            "everything. With the keyboard, on a chart: arrows move the cursor, with shift the "
            "view; + and \xE2\x88\x92 zoom; Escape shows everything.</span></p>\n";
}

std::string pointsNote(std::size_t rowsPerBin) {
    if (rowsPerBin == 1)
        return "";
    return "Each point stands for " + rowsText(rowsPerBin)
           + ": the line runs through their mean, the band from their least to their largest "
             "value. ";
}

void appendFigure(std::string& html, std::string_view id, std::string_view title,
                  std::string_view unit) {
    html.append("<figure id=\"").append(id).append("\">\n<figcaption>");
    html.append(title).append(unit).append("</figcaption>\n<div class=\"keys\"></div>\n");
    html.append("<div class=\"plot\" role=\"application\" aria-roledescription=\"chart\" "
                "aria-label=\"")
        .append(title)
        .append(unit);
    html.append("\"></div>\n<canvas class=\"strip\" aria-hidden=\"true\"></canvas>\n</figure>\n");
}

std::string rowsLink(std::string_view text, std::size_t first, std::size_t last) {
    return "<a href=\"#rows=" + std::to_string(first) + '-' + std::to_string(last) + "\">"
           + std::string(text) + "</a>";
}

std::string timeOfPage() {
    const char* fixed = std::getenv("SOURCE_DATE_EPOCH");
    const auto asked = fixed ? numberIn<std::uint32_t>(fixed) : std::nullopt;
    const std::time_t now = std::time(nullptr);
    return timeStampText({asked ? *asked : static_cast<double>(now), true});
}

} // namespace kiv::host
