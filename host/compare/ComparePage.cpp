#include "host/compare/ComparePage.h"

#include <array>
#include <cmath>
#include <iterator>

#include "host/report/ChartSeries.h"
#include "host/report/Html.h"
#include "host/report/Page.h"
#include "host/summary/Summary.h"
#include "support/Numbers.h"
#include "support/VersionText.h"

namespace kiv::host {

namespace {

using Json = nlohmann::ordered_json;

void appendOutcome(std::string& html, const ComparePage& content, const Comparison& figures) {
    const double largest = figures.angle().largest;
    const bool close = figures.rows() > 0 && (!content.tolerance || largest <= *content.tolerance);
    std::string sentence = rowsText(figures.rows()) + " compared";
    if (figures.rows() > 0)
        sentence += "; the largest turn is " + degreesText(largest) + " degrees, in "
                    + escaped(figures.angle().place);
    if (content.tolerance)
        sentence += "; allowed are " + shown(*content.tolerance);
    appendVerdict(html, close ? "good" : "bad", sentence);
}

void appendFacts(std::string& html, const ComparePage& content, const Comparison& figures,
                 const ComparisonNames& names) {
    FactTable facts(html, "What was compared");
    facts.line("Compared at", escaped(timeOfPage()));
    facts.line("Command", code(content.commandLine));
    for (const ComparePage::Input& input : content.inputs) {
        facts.line(input.role, code(input.name));
        facts.digest(input.digest, "none, as it was not read to its end");
    }
    facts.line("Rows joined by", escaped(names.join));
    facts.convention(names.localFrame);
    facts.line("Only in the first", rowsText(figures.onlyInFirst()));
    facts.line("Only in the second", rowsText(figures.onlyInSecond()));
    const auto& misses = figures.againstTruth();
    if (misses[0].rows > 0)
        facts.line("Turns from the true angles, rms",
                   degreesText(misses[0].rootMeanSquare()) + " and "
                       + degreesText(misses[1].rootMeanSquare()) + " degrees");
    facts.line("Software", std::string("kiv ") + versionText);
    facts.end();
}

void appendFigures(std::string& html, const Comparison& figures) {
    const std::size_t uncertain = figures.withUncertainty();
    html += "<section>\n<h2>Differences, the second less the first, degrees</h2>\n";
    if (uncertain > 0)
        appendTableHead(html, "Quantity",
                        {"Mean", "Root mean square", "Largest", "In line", "Beyond 2u"});
    else
        appendTableHead(html, "Quantity", {"Mean", "Root mean square", "Largest", "In line"});
    for (std::size_t i = 0; i < 4; ++i) {
        const Comparison::Figures& each = figures.of(i);
        const char* name = i < 3 ? angleNames[i] : "angle of the rotation";
        const std::string mean = degreesText(each.moments.mean),
                          square = degreesText(each.rootMeanSquare()),
                          largest = degreesText(each.largest), line = countText(each.line);
        if (uncertain > 0)
            appendTableRow(
                html, name,
                {mean, square, largest, line,
                 percentText(static_cast<double>(each.beyond) / static_cast<double>(uncertain))});
        else
            appendTableRow(html, name, {mean, square, largest, line});
    }
    html += "</tbody>\n</table>\n";
    if (uncertain > 0)
        html += "<p class=\"note\">Beyond twice the combined standard uncertainty should be 4.6 % "
                "of the rows where errors are normal and independent.</p>\n";
    html += "</section>\n";
}

std::string chartData(const ComparePage& content, bool uncertain) {
    const auto chart = [&](const char* id, std::size_t first, std::vector<const char*> names) {
        Json data{{"id", id}, {"series", Json::array()}};
        for (std::size_t i = 0; i < names.size(); ++i)
            data["series"].push_back(chartSeries(content.envelope, first + i, names[i], false));
        return data;
    };
    const std::vector<const char*> three(std::begin(angleNames), std::end(angleNames));
    Json data{{"axes", Json::array({chartAxis(content.envelope, "pair of rows")})},
              {"charts", Json::array()}};
    data["charts"].push_back(chart("differences", 0, three));
    data["charts"].push_back(chart("turns", 3, {"angle"}));
    if (uncertain) {
        data["charts"][0]["bands"] = "zero";
        data["charts"].push_back(chart("uncertainties", 4, three));
    }
    return data.dump();
}

} // namespace

void ComparePage::add(const OrientationDifference& difference) {
    std::array<double, 7> values;
    values.fill(NAN);
    for (std::size_t i = 0; i < 3; ++i) {
        values[i] = difference.angles[i];
        if (difference.uncertainty)
            values[4 + i] = (*difference.uncertainty)[i];
    }
    values[3] = difference.angle;
    envelope.addRow(static_cast<double>(envelope.rows() + 1), values);
}

std::string comparePage(const ComparePage& content, const Comparison& figures,
                        const ComparisonNames& names) {
    const std::string title = names.second + " against " + names.first;
    const bool uncertain = figures.withUncertainty() > 0;
    std::string html;
    appendPageHead(html, title, title);
    appendOutcome(html, content, figures);
    appendFacts(html, content, figures, names);
    if (figures.rows() > 0) {
        appendFigures(html, figures);
        appendChartsHead(html, "Over the pairs of rows, in their order. "
                                   + pointsNote(content.envelope.rowsPerBin()));
        appendFigure(html, "differences", "Differences of the angles", ", degrees");
        appendFigure(html, "turns", "Angle of the rotation", ", degrees");
        if (uncertain)
            appendFigure(html, "uncertainties", "Combined standard uncertainty", ", degrees");
        html += "</section>\n";
    }
    appendPageFoot(html, figures.rows() > 0 ? chartData(content, uncertain) : "");
    return html;
}

} // namespace kiv::host
