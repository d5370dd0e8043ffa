#include "host/report/Html.h"
#include "host/report/Page.h"
#include "host/report/Sections.h"
#include "support/Numbers.h"

namespace kiv::host {

namespace {

constexpr std::array<const char*, rowStateNames.size()> stateMeanings{
    "the angles are computed",
    "the measurement status is not 2",
    "no reference orientation yet",
    "became the reference orientation",
    "the model has no orientation for the readings",
    "the readings are no use"};

// How many of the rows with angles are good, and how many are not for which reason.
void appendTrust(std::string& html, const Summary& summary) {
    if (summary.allTrusted()) {
        html += summary.count(RowState::ok) > 0 ? ", all are good" : "";
        return;
    }
    for (std::size_t i = 0; i < trustWords.size(); ++i) {
        const std::size_t n = summary.count(static_cast<Trust>(i));
        if (n == 0)
            continue;
        html.append("<br>").append(countText(n)).append(" ").append(code(trustWords[i].word));
        if (static_cast<Trust>(i) != Trust::good)
            html.append(": ").append(trustWords[i].meaning);
        if (static_cast<Trust>(i) == Trust::reference)
            html.append(", ").append(code(wordOf(summary.referenceTrust())));
    }
}

std::string axisText(const ReportContent& content, const RowPlace& place) {
    return !content.axis.overTime() ? countText(place.row)
           : place.time             ? content.axis.text(*place.time)
                                    : "\xE2\x80\x93";
}

std::string spanText(const std::string& from, const std::string& to) {
    return from == to ? from : from + " to " + to;
}

// Lines of a table, which lead to their rows where there are charts.
std::string linesText(const ReportContent& content, const RowPlace& first, const RowPlace& last) {
    const std::string lines = spanText(countText(first.line), countText(last.line));
    return content.charted() ? rowsLink(lines, first.row, last.row) : lines;
}

// A section with a table of runs of rows, how many there are in all, the headings of its further
// columns, and what makes their cells.
template <typename Said, typename AppendCells>
void appendList(std::string& html, const ReportContent& content, const char* title,
                std::size_t rows, const RowRuns<Said>& runs, const char* columns,
                AppendCells appendCells) {
    std::size_t listed = 0;
    for (const auto& run : runs.listed())
        listed += run.rows();
    const bool single = listed == runs.listed().size();
    html.append("<section>\n<h2>").append(title).append("</h2>\n<p>").append(rowsText(rows));
    if (rows > listed)
        html += "; the first " + countText(listed) + " are listed";
    html.append(".</p>\n<table class=\"bad-rows\">\n<thead><tr>")
        .append(content.hasSeveralTables() ? "<th>Table</th>" : "")
        .append(single ? "<th class=\"number\">Line</th>" : "<th class=\"number\">Lines</th>")
        .append("<th class=\"number\">")
        .append(content.axis.name())
        .append(single ? "</th>" : "</th><th class=\"number\">Count</th>")
        .append(columns)
        .append("</tr></thead>\n<tbody>\n");
    const auto number = [&](const std::string& text) {
        html.append("<td class=\"number\">").append(text).append("</td>");
    };
    for (const auto& run : runs.listed()) {
        html += "<tr>";
        if (content.hasSeveralTables())
            html.append("<td class=\"table\">")
                .append(escaped(content.facts.readings[run.first.table].name))
                .append("</td>");
        number(linesText(content, run.first, run.last));
        number(spanText(axisText(content, run.first), axisText(content, run.last)));
        if (!single)
            number(countText(run.rows()));
        appendCells(run.said);
        html += "</tr>\n";
    }
    html += "</tbody>\n</table>\n";
}

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
        if (state == RowState::ok)
            appendTrust(html, summary);
        if (state == RowState::reference && summary.referenceLine() > 0)
            html += (count > 0 ? " (" : "; it is ") + escaped(summary.referencePlace())
                    + (count > 0 ? ")" : "");
        if (state == RowState::refused)
            for (const Reason r :
                 {Reason::rowShape, Reason::notANumber, Reason::zeroVector, Reason::otherSensor})
                if (const std::size_t n = summary.count(r); n > 0)
                    html.append("<br>").append(countText(n)).append(" ").append(wordsOf(r).text);
        html += "</td></tr>\n";
    }
    html += "</tbody>\n<tfoot>";
    appendTableRow(html, "all, the sum of the states", {countText(summary.rows())});
    html += "</tfoot>\n</table>\n";
    if (summary.blankRows() > 0)
        html += "<p>Blank rows, which are left out: " + countText(summary.blankRows()) + ".</p>\n";
    if (summary.cutRows() > 0)
        html += "<p>Last rows that may be cut, as they have no line end: "
                + countText(summary.cutRows()) + ".</p>\n";
    html += "</section>\n";
}

void appendSpareReading(std::string& html, const ReportContent& content) {
    const SpareReadings& spare = content.summary.spareReadings();
    if (spare.rows() == 0)
        return;
    const std::string objection = spare.objection();
    html += "<section>\n<h2>Spare reading</h2>\n<p>";
    html += principleOf(content.mountMode) == Principle::twoLevels
                ? "Half the difference of the two levels' turns about the line of sight"
                : "The elevation turn that levels and vector ask for, less the encoder's";
    html += ", over " + rowsText(spare.rows()) + ": mean " + degreesText(spare.mean())
            + ", root mean square " + degreesText(spare.rootMeanSquare());
    if (const auto expected = spare.expected())
        html += " (by the uncertainties " + degreesText(*expected) + ")";
    html += ", largest " + degreesText(spare.largest()) + " degrees in line "
            + countText(spare.largestLine()) + ".</p>\n";
    if (!objection.empty())
        appendVerdict(html, "warn", "Spare reading: " + escaped(objection) + '.');
    html += "</section>\n";
}

void appendWitnesses(std::string& html, const ReportContent& content) {
    if (content.witnesses.empty())
        return;
    html += "<section id=\"witnesses\">\n<h2>Witnesses</h2>\n";
    appendVerdict(html, "warn", "The readings look as if something is wrong with them.");
    html.append("<table>\n<thead><tr><th>Kind</th>")
        .append(content.hasSeveralTables() ? "<th>Table</th>" : "")
        .append("<th class=\"number\">Line</th><th>What it looks like, and what to do</th></tr>"
                "</thead>\n<tbody>\n");
    for (const Witness& witness : content.witnesses) {
        const RowPlace place{witness.table, witness.line, witness.row, std::nullopt};
        html.append("<tr><th scope=\"row\">").append(witness.name()).append("</th>");
        if (content.hasSeveralTables())
            html.append("<td class=\"table\">")
                .append(escaped(content.facts.readings[witness.table].name))
                .append("</td>");
        html.append("<td class=\"number\">")
            .append(linesText(content, place, place))
            .append("</td><td>");
        html.append(escaped(witness.text())).append("</td></tr>\n");
    }
    html += "</tbody>\n</table>\n</section>\n";
}

void appendClock(std::string& html, const ReportContent& content) {
    const std::vector<XAxis::Break>& breaks = content.axis.breaks;
    if (breaks.empty())
        return;
    html += "<section id=\"clock\">\n<h2>Where the clock jumps</h2>\n<p class=\"note\">It goes "
            "back, or pauses for longer than ten of its usual steps. The charts have a gap there; "
            "times behind a grey one are not to scale with those before it.</p>\n"
            "<table>\n<thead><tr>";
    html.append(content.hasSeveralTables() ? "<th>Table</th>" : "")
        .append("<th class=\"number\">Line</th><th>What it does</th><th class=\"number\">From</th>"
                "<th class=\"number\">To</th></tr></thead>\n<tbody>\n");
    for (const XAxis::Break& each : breaks) {
        html += "<tr>";
        if (content.hasSeveralTables())
            html.append("<td class=\"table\">")
                .append(escaped(content.facts.readings[each.place.table].name))
                .append("</td>");
        html.append("<td class=\"number\">")
            .append(linesText(content, each.place, each.place))
            .append("</td><td>")
            .append(each.goesBack() ? "goes back" : "pauses")
            .append("</td>");
        for (const double time : {each.before, each.after})
            html.append("<td class=\"number\">").append(content.axis.text(time)).append("</td>");
        html += "</tr>\n";
    }
    html += "</tbody>\n</table>\n</section>\n";
}

void appendBadRows(std::string& html, const ReportContent& content) {
    const std::size_t bad =
        content.summary.count(RowState::refused) + content.summary.count(RowState::noOrientation);
    if (bad == 0)
        return;
    appendList(html, content, "Rows without a result", bad, content.badRows,
               "<th>State</th><th>Reason</th>", [&](const NoResult& rows) {
                   html.append("<td class=\"state ")
                       .append(rows.state == RowState::refused ? "refused" : "no-orientation");
                   html.append("\">").append(rowStateNames[static_cast<std::size_t>(rows.state)]);
                   html += "</td><td class=\"reason\">";
                   appendEscaped(html, rows.placed);
                   html += "</td>";
               });
    html += "</section>\n";
}

void appendDoubtfulRows(std::string& html, const ReportContent& content) {
    const Summary& summary = content.summary;
    if (summary.allTrusted())
        return;
    appendList(html, content, "Rows that are not good",
               summary.count(RowState::ok) - summary.count(Trust::good), content.doubtfulRows,
               "<th>Trust</th><th class=\"number\">Model error, degrees</th>",
               [&](const Doubt& doubt) {
                   html.append("<td class=\"state not-good\">").append(wordOf(doubt.trust));
                   html.append("</td><td class=\"number\">")
                       .append(degreesText(doubt.modelError))
                       .append("</td>");
               });
    html += "<p class=\"note\">The model error is the bound of what the model itself adds to the "
            "largest error of the three angles, of several rows the largest.</p>\n</section>\n";
}

} // namespace kiv::host
