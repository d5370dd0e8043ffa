#include "host/report/Page.h"

#include <cstdint>
#include <cstdlib>
#include <ctime>

#include "host/base/Embedded.h"
#include "host/report/Html.h"
#include "host/rows/TimeStamp.h"
#include "support/Numbers.h"

namespace kiv::host {

void appendPageHead(std::string& html, std::string_view title) {
    html += "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
            "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; "
            "script-src 'unsafe-inline'; style-src 'unsafe-inline'\">\n"
            "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
            "<meta name=\"color-scheme\" content=\"light dark\">\n<title>";
    appendEscaped(html, title);
    html.append("</title>\n<style>\n").append(embedded::dygraphsStyle());
    html.append(embedded::pageStyle()).append("</style>\n</head>\n<body>\n<main>\n");
}

void appendPageFoot(std::string& html, std::string_view chartData) {
    html += "</main>\n<footer>\n<details><summary>The charts are drawn by dygraphs; its licence"
            "</summary>\n<pre>";
    appendEscaped(html, embedded::dygraphsLicence());
    html += "</pre></details>\n</footer>\n<script type=\"application/json\" id=\"data\">";
    html.append(chartData).append("</script>\n<script>\n").append(embedded::dygraphsScript());
    html.append("\n</script>\n<script>\n\"use strict\";\n").append(embedded::rowsScript());
    html.append(embedded::bandsScript())
        .append(embedded::marksScript())
        .append(embedded::pageScript());
    html += "</script>\n</body>\n</html>\n";
}

void appendFigure(std::string& html, std::string_view id, std::string_view title,
                  std::string_view unit) {
    html.append("<figure id=\"").append(id).append("\">\n<figcaption>");
    html.append(title).append(unit).append("</figcaption>\n<div class=\"keys\"></div>\n");
    html.append("<div class=\"plot\" role=\"img\" aria-label=\"").append(title);
    html.append("\"></div>\n<canvas class=\"strip\"></canvas>\n</figure>\n");
}

std::string timeOfPage() {
    const char* fixed = std::getenv("SOURCE_DATE_EPOCH");
    const auto asked = fixed ? numberIn<std::uint32_t>(fixed) : std::nullopt;
    const std::time_t now = std::time(nullptr);
    return timeStampText({asked ? *asked : static_cast<double>(now), true});
}

} // namespace kiv::host
