#include "host/report/PosesPage.h"

#include <array>
#include <cmath>
#include <sstream>

#include "host/report/ChartSeries.h"
#include "host/report/Html.h"
#include "host/report/Page.h"
#include "host/summary/Summary.h"
#include "support/Numbers.h"
#include "support/VersionText.h"

namespace kiv::host {

namespace {

using Json = nlohmann::ordered_json;

struct PoseChart {
    const char* id;
    const char* title;
    std::size_t first;
    const char* bands; // empty: none
};
constexpr std::array<PoseChart, 4> poseCharts{{
    {"angles", "Angles of the mean rotation", 0, "value"},
    {"uncertainties", "Standard uncertainty of the mean, from the scatter of its rows", 3, ""},
    {"deviations", "Standard deviation of a single row", 6, ""},
    {"residuals", "Mean rotation less the true one", 9, "zero"},
}};

std::string sentenceOf(const PoseSummary& summary) {
    std::ostringstream text;
    summary.print(text, false);
    const std::string said = text.str();
    return said.substr(0, said.find('\n'));
}

void appendFacts(std::string& html, const PosesPage& content) {
    FactTable facts(html, "What was run");
    facts.line("Run at", escaped(timeOfPage()));
    facts.line("Command", code(content.commandLine));
    for (const PosesPage::Input& input : content.inputs) {
        facts.line(input.role, code(input.name));
        facts.digest(input.digest.hex(), "");
    }
    facts.convention(content.localFrame);
    facts.line("Software", std::string("kiv ") + versionText);
    facts.end();
}

void appendRepeatability(std::string& html, const Repeatability& again) {
    const auto pooled = again.pooled();
    if (!pooled)
        return;
    html += "<section>\n<h2>Repeatability, degrees</h2>\n";
    appendTableHead(html, "Angle", {"Standard deviation", "95 % from", "to"});
    for (std::size_t i = 0; i < angleNames.size(); ++i)
        appendTableRow(html, angleNames[i],
                       {degreesText(pooled->deviation[i]), degreesText(pooled->low[i]),
                        degreesText(pooled->high[i])});
    html +=
        "</tbody>\n</table>\n<p class=\"note\">Of a pose about the mean of those that are the "
        "same: "
        + countText(pooled->poses) + " poses at " + countText(pooled->places) + " places, "
        + countText(pooled->degreesOfFreedom)
        + " degrees of freedom; ISO 5725-2, the interval by the chi-squared distribution.</p>\n";
    appendTableHead(html, "Place",
                    {"Poses", "rx", "ry", "rz", "Deviation of rx", "of ry", "of rz"});
    for (const Repeatability::Place& place : again.placesThatComeAgain())
        appendTableRow(html, escaped(place.id),
                       {countText(place.poses), degreesText(place.angles[0]),
                        degreesText(place.angles[1]), degreesText(place.angles[2]),
                        degreesText(place.deviation[0]), degreesText(place.deviation[1]),
                        degreesText(place.deviation[2])});
    html += "</tbody>\n</table>\n</section>\n";
}

void appendSystematic(std::string& html, const Repeatability& again) {
    const auto systematic = again.systematic();
    if (!systematic)
        return;
    html += "<section>\n<h2>Poses less the true ones, degrees</h2>\n";
    appendTableHead(html, "Angle",
                    {"Mean: systematic", "Its standard uncertainty", "Standard deviation: scatter",
                     "Probability that the mean is 0"});
    for (std::size_t i = 0; i < angleNames.size(); ++i)
        appendTableRow(html, angleNames[i],
                       {degreesText(systematic->mean[i]), degreesText(systematic->uncertainty[i]),
                        degreesText(systematic->deviation[i]),
                        percentText(systematic->probability[i])
                            + (systematic->differs[i] ? ": it differs" : "")});
    html += "</tbody>\n</table>\n<p class=\"note\">Over " + countText(systematic->poses)
            + " poses; Student's test, it differs below 5 %.</p>\n</section>\n";
}

} // namespace

void PosesPage::add(const Pose& pose) {
    std::array<double, 12> values;
    values.fill(NAN);
    for (std::size_t i = 0; pose.figures.hasMean && i < 3; ++i) {
        const AxisFigures& axis = pose.figures.axes[i];
        values[i] = axis.angle;
        values[3 + i] = axis.uncertainty;
        values[6 + i] = axis.deviation;
        if (pose.residual)
            values[9 + i] = (*pose.residual)[i];
    }
    truth = truth || pose.residual.has_value();
    envelope.addRow(static_cast<double>(envelope.rows() + 1), values);
}

std::string posesPage(const PosesPage& content, const PoseSummary& summary) {
    const std::string title = "Poses: " + content.inputs.back().name;
    std::string html;
    appendPageHead(html, title, title);
    appendVerdict(html, content.envelope.rows() > 0 ? "good" : "bad", sentenceOf(summary));
    appendFacts(html, content);
    appendRepeatability(html, summary.ofPlaces());
    appendSystematic(html, summary.ofPlaces());
    Json data{{"axes", Json::array({chartAxis(content.envelope, "pose")})},
              {"charts", Json::array()}};
    if (content.envelope.rows() > 0) {
        appendChartsHead(html, "Over the poses, in their order; bands of twice the standard "
                               "uncertainty. "
                                   + pointsNote(content.envelope.rowsPerBin()));
        for (const PoseChart& chart : poseCharts) {
            if (chart.first == 9 && !content.truth)
                continue;
            Json one{{"id", chart.id}, {"kind", "dots"}, {"series", Json::array()}};
            for (std::size_t i = 0; i < angleNames.size(); ++i)
                one["series"].push_back(
                    chartSeries(content.envelope, chart.first + i, angleNames[i], false));
            if (*chart.bands != 0)
                one["bands"] = chart.bands;
            data["charts"].push_back(std::move(one));
            appendFigure(html, chart.id, chart.title, ", degrees");
        }
        html += "</section>\n";
    }
    appendPageFoot(html, content.envelope.rows() > 0 ? data.dump() : "");
    return html;
}

} // namespace kiv::host
