#include "host/report/Html.h"
#include "host/report/Sections.h"

namespace kiv::host {

namespace {

constexpr std::array<const char*, rowStateNames.size()> stateMeanings{
    "the angles are computed",
    "the measurement status is not 2",
    "no reference orientation yet",
    "became the reference orientation",
    "the model has no orientation for the readings",
    "the readings are no use"};

} // namespace

void appendRowCounts(std::string& html, const ReportContent& content) {
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

void appendBadRows(std::string& html, const ReportContent& content) {
    const std::size_t bad =
        content.summary.count(RowState::refused) + content.summary.count(RowState::noOrientation);
    if (bad == 0)
        return;
    html += "<section>\n<h2>Rows without a result</h2>\n<p>" + rowsText(bad);
    if (bad > content.badRows.size())
        html += "; the first " + countText(content.badRows.size()) + " are listed";
    html.append(".</p>\n<table class=\"bad-rows\">\n<thead><tr><th class=\"number\">Line</th>"
                "<th class=\"number\">");
    html.append(content.axis.name())
        .append("</th><th>State</th><th>Reason</th></tr></thead>\n<tbody>\n");
    for (const BadRow& row : content.badRows) {
        html += "<tr><td class=\"number\">" + countText(row.line) + "</td><td class=\"number\">";
        html += content.axis.overTime() ? content.axis.text(row.time) : countText(row.line - 1);
        html.append("</td><td class=\"state ")
            .append(row.state == RowState::refused ? "refused" : "no-orientation");
        html.append("\">").append(rowStateNames[static_cast<std::size_t>(row.state)]);
        html += "</td><td class=\"reason\">";
        appendEscaped(html, row.reason);
        html += "</td></tr>\n";
    }
    html += "</tbody>\n</table>\n</section>\n";
}

} // namespace kiv::host
