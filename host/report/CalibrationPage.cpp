#include "host/report/CalibrationPage.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <numeric>

#include "host/report/ChartSeries.h"
#include "host/report/Html.h"
#include "host/report/Page.h"
#include "support/Numbers.h"
#include "support/VersionText.h"

namespace kiv::host {

namespace {

using Json = nlohmann::ordered_json;
using Samples = std::vector<ResidualSample>;
using Number = std::function<double(const ResidualSample&)>;

constexpr const char* readingNames[] = {"azimuth", "elevation", "level Y", "level X"};

// Of a drawing.
std::string coordinate(double value) {
    return roundedText(std::round(value * 10) / 10, 6);
}

struct Range {
    double low, high;
    double at(double value, double from, double to) const {
        return high > low ? from + (to - from) * (value - low) / (high - low) : (from + to) / 2;
    }
};

std::string textAt(double x, double y, const std::string& text) {
    return "<text x=\"" + coordinate(x) + "\" y=\"" + coordinate(y) + "\">" + escaped(text)
           + "</text>";
}

std::vector<double> numbersOf(const Samples& samples, const Number& number) {
    std::vector<double> numbers;
    std::transform(samples.begin(), samples.end(), std::back_inserter(numbers), number);
    return numbers;
}

// The charts of a page, over axes of their own: where they stand, and their data.
class OwnCharts {
public:
    // From the least to the largest value; charts over it take theirs in the same order. Its place
    // among the axes.
    std::size_t addAxis(const char* name, const std::vector<double>& rising, bool dates = false) {
        data["axes"].push_back({{"name", name},
                                {"dates", dates},
                                {"own", true},
                                {"rows", rising.size()},
                                {"first", numbers(rising)}});
        return data["axes"].size() - 1;
    }

    struct Series {
        const char* name;
        std::vector<double> values;
    };
    void add(std::string& html, std::size_t axis, const char* kind, const std::string& title,
             const char* unit, const std::vector<Series>& series) {
        const std::string id = "chart-" + std::to_string(data["charts"].size());
        Json chart{{"id", id}, {"axis", axis}, {"kind", kind}, {"series", Json::array()}};
        for (const Series& each : series)
            chart["series"].push_back({{"name", each.name}, {"mean", numbers(each.values)}});
        data["charts"].push_back(std::move(chart));
        appendFigure(html, id, title, unit);
    }

    std::string text() const { return data.dump(); }

private:
    static Json numbers(const std::vector<double>& values) {
        return chartArray(values.size(), [&](std::size_t i) { return values[i]; });
    }

    Json data{{"axes", Json::array()}, {"charts", Json::array()}};
};

// How many of the numbers lie in each of so many parts; a curve may say how many should.
void appendHistogram(std::string& html, OwnCharts& charts, const std::string& title,
                     const char* below, const std::vector<double>& numbers, const Range& range,
                     const std::function<double(double)>& expected = {}) {
    constexpr std::size_t parts = 36;
    const double width = (range.high - range.low) / static_cast<double>(parts);
    std::vector<double> edges, counts(parts + 1), curve; // the last bar ends at the last edge
    for (std::size_t i = 0; i <= parts; ++i) {
        edges.push_back(range.low + width * static_cast<double>(i));
        if (expected)
            curve.push_back(expected(edges[i]) * static_cast<double>(numbers.size()) * width);
    }
    for (const double number : numbers) {
        const double part = range.at(number, 0, static_cast<double>(parts));
        ++counts[static_cast<std::size_t>(std::clamp(part, 0.0, parts - 1.0))];
    }
    std::vector<OwnCharts::Series> series{{"rows", counts}};
    if (expected)
        series.push_back({"expected", curve});
    charts.add(html, charts.addAxis(below, edges), "bars", title, "", series);
}

// The new value with twice its uncertainty, and the old one.
std::string interval(const CalibrationOutcome::Found& found) {
    const double most = 1.15 * std::max(std::abs(found.old - found.value), 2 * found.u);
    const Range range{found.value - most, found.value + most};
    const auto x = [&](double value) { return coordinate(range.at(value, 0, 160)); };
    const auto line = [&](const char* which, double value) {
        return std::string("<line class=\"") + which + "\" x1=\"" + x(value) + "\" x2=\"" + x(value)
               + "\" y1=\"2\" y2=\"18\"/>";
    };
    const double from = range.at(found.value - 2 * found.u, 0, 160);
    const double to = range.at(found.value + 2 * found.u, 0, 160);
    return "<svg class=\"interval\" viewBox=\"0 0 160 20\" role=\"img\" aria-label=\"new value "
           "with "
           "twice its uncertainty, and old value\"><rect class=\"band\" x=\""
           + coordinate(from) + "\" y=\"5\" width=\"" + coordinate(std::max(1.0, to - from))
           + "\" height=\"10\"/>" + line("new", found.value) + line("old", found.old) + "</svg>";
}

// On a narrow screen a name is broken behind its words alone.
std::string breakableCode(const std::string& name) {
    std::string html;
    for (const char c : code(name)) {
        html += c;
        if (c == '.' || c == '_')
            html += "<wbr>";
    }
    return html;
}

void appendParameters(std::string& html, const CalibrationOutcome& outcome) {
    html += "<section>\n<h2>Parameters</h2>\n";
    appendTableHead(
        html, "Parameter",
        {"Old", "New", "Standard uncertainty", "Change / u", "Old and new \xC2\xB1 2 u"});
    for (const auto& found : outcome.found) {
        html += "<tr><th>" + breakableCode(nameOf(found.parameter)) + "</th>";
        for (const std::string& cell :
             {roundedText(found.old, 9), roundedText(found.value, 9), roundedText(found.u, 2),
              roundedText((found.value - found.old) / found.u, 3)})
            html += "<td class=\"number\">" + cell + "</td>";
        html += "<td>" + interval(found) + "</td></tr>\n";
    }
    html += "</tbody>\n</table>\n";
    for (const auto& [parameter, reason] : outcome.held)
        html += "<p class=\"note\">" + code(nameOf(parameter)) + " is held: " + escaped(reason)
                + "</p>\n";
    html += "</section>\n";
}

// Squares, the darker the stronger; the sign is the colour.
void appendCorrelations(std::string& html, const CalibrationOutcome& outcome) {
    const auto n = static_cast<std::size_t>(outcome.correlation.rows());
    const double cell = 22, label = 12;
    const double size = label + cell * static_cast<double>(n);
    html += "<section>\n<h2>Correlations</h2>\n<svg class=\"map\" viewBox=\"0 0 "
            + coordinate(size + 230) + ' ' + coordinate(size)
            + "\" role=\"img\" aria-label=\"correlations of the parameters\">";
    for (std::size_t i = 0; i < n; ++i) {
        const double y = cell * static_cast<double>(i);
        for (std::size_t k = 0; k < n; ++k) {
            const double r =
                outcome.correlation(static_cast<Eigen::Index>(i), static_cast<Eigen::Index>(k));
            html += "<rect x=\"" + coordinate(cell * static_cast<double>(k)) + "\" y=\""
                    + coordinate(y) + "\" width=\"" + coordinate(cell - 1) + "\" height=\""
                    + coordinate(cell - 1) + "\" style=\"fill: var(--series-" + (r < 0 ? '1' : '0')
                    + "); fill-opacity: " + roundedText(std::abs(r), 3)
                    + "; stroke: var(--rule)\"><title>"
                    + escaped(nameOf(outcome.found[i].parameter) + ", "
                              + nameOf(outcome.found[k].parameter) + ": " + roundedText(r, 3))
                    + "</title></rect>";
        }
        html +=
            textAt(cell * static_cast<double>(n) + 6, y + 15, nameOf(outcome.found[i].parameter));
    }
    html += "</svg>\n<p class=\"note\">Blue: both err to the same side; orange: to opposite ones. "
            "Columns are in the order of the rows.</p>\n</section>\n";
}

// Of each reading against what the samples were measured at.
void appendResiduals(std::string& html, OwnCharts& charts, Samples samples, std::size_t equations,
                     bool timeIsDate) {
    struct Place {
        const char* name;
        Number of;
        bool dates = false;
    };
    const bool timed = !samples.empty()
                       && std::all_of(samples.begin(), samples.end(),
                                      [](const ResidualSample& s) { return s.time.has_value(); });
    const bool dates = timed && timeIsDate;
    const std::vector<Place> places{
        timed ? Place{!dates                   ? "time, s"
                      : samples[0].time->zoned ? "time, UTC"
                                               : "time",
                      [](const auto& s) { return s.time->seconds; }, dates}
              : Place{"line", [](const auto& s) { return s.line; }},
        {"azimuth, degrees", [](const auto& s) { return s.azimuth; }},
        {"elevation, degrees", [](const auto& s) { return s.elevation; }},
        {"level Y, degrees", [](const auto& s) { return s.levelY; }},
        {"temperature", [](const auto& s) { return s.temperature; }}};
    html += "<div class=\"small\">\n";
    for (const Place& place : places) {
        std::stable_sort(samples.begin(), samples.end(),
                         [&](const auto& a, const auto& b) { return place.of(a) < place.of(b); });
        const std::size_t axis =
            charts.addAxis(place.name, numbersOf(samples, place.of), place.dates);
        for (std::size_t reading = 0; reading < equations; ++reading) {
            const auto of = [&](bool heldOut) {
                return numbersOf(samples, [=](const ResidualSample& s) {
                    return s.heldOut == heldOut ? s.residual[reading] : NAN;
                });
            };
            charts.add(html, axis, "dots", std::string("Residual of the ") + readingNames[reading],
                       ", degrees", {{"used", of(false)}, {"held out", of(true)}});
        }
    }
    html += "</div>\n";
}

void appendDistributions(std::string& html, OwnCharts& charts, const Samples& samples,
                         std::size_t equations) {
    std::vector<double> whitened;
    for (const ResidualSample& sample : samples)
        whitened.insert(whitened.end(), sample.whitened.begin(),
                        sample.whitened.begin() + static_cast<std::ptrdiff_t>(equations));
    html += "<div class=\"small\">\n";
    appendHistogram(
        html, charts, "Residuals over their noise", "standard deviations", whitened, {-4.5, 4.5},
        [](double x) { return std::exp(-x * x / 2) / std::sqrt(2 * 3.141592653589793); });
    appendHistogram(html, charts, "Headings", "azimuth, degrees",
                    numbersOf(samples, [](const auto& s) { return s.azimuth; }), {-180, 180});
    appendHistogram(html, charts, "Elevations", "elevation, degrees",
                    numbersOf(samples, [](const auto& s) { return s.elevation; }), {-90, 90});
    const auto tilts = numbersOf(samples, [](const auto& s) { return s.tilt; });
    appendHistogram(html, charts, "Tilts", "degrees", tilts,
                    {0, std::accumulate(tilts.begin(), tilts.end(), 1.0,
                                        [](double a, double b) { return std::max(a, b); })});
    html += "</div>\n";
}

void appendInputs(std::string& html, const CalibrateOptions& options, const CalibrationRows& rows,
                  const InputFacts& inputs) {
    FactTable facts(html, "What was calibrated");
    facts.line("Calibrated at", escaped(timeOfPage()));
    facts.line("Old parameter file", code(options.parameterFile));
    facts.digest(inputs.parameterFile.hex(), "");
    for (const TableFacts& table : rows.facts().tables) {
        facts.line("Readings", code(table.name));
        facts.digest(table.digest.hex(), "");
    }
    facts.line("New parameter file", code(options.output));
    facts.line("Software", std::string("kiv ") + versionText);
    facts.end();
}

} // namespace

std::string calibrationPage(const CalibrationOutcome& outcome, const CalibrateOptions& options,
                            const CalibrationRows& rows, const InputFacts& inputs) {
    const std::string title = "Calibration: " + options.parameterFile;
    std::string html;
    appendPageHead(html, title, title);
    appendVerdict(html, "good",
                  "rms over noise " + roundedText(outcome.rmsOverNoise, 3) + " (99.9 % from "
                      + roundedText(outcome.interval[0], 3) + " to "
                      + roundedText(outcome.interval[1], 3) + "), " + rowsText(outcome.used)
                      + " used");
    if (outcome.overInSample)
        html += "<p>" + rowsText(outcome.heldOut) + " held out: rms "
                + roundedText(*outcome.overInSample, 3) + " times that of the rows used</p>\n";
    if (outcome.oldRms && outcome.newRms)
        html += "<p>The angles' root mean square there: " + roundedText(*outcome.oldRms, 3)
                + " degrees with the old file, " + roundedText(*outcome.newRms, 3)
                + " with the new one</p>\n";
    for (const TableLine& place : rows.rejectedPlaces())
        html += "<p class=\"refused\">left out: " + escaped(rows.placeOf(place)) + "</p>\n";
    appendInputs(html, options, rows, inputs);
    appendParameters(html, outcome);
    appendCorrelations(html, outcome);
    OwnCharts charts;
    appendChartsHead(html,
                     "Residuals are corrected readings less those that the geometry predicts. "
                     "Of many rows some hundred are drawn. ");
    appendResiduals(html, charts, outcome.samples, outcome.equationsOfRow, rows.timeIsDate());
    appendDistributions(html, charts, outcome.samples, outcome.equationsOfRow);
    html += "</section>\n";
    appendPageFoot(html, charts.text());
    return html;
}

} // namespace kiv::host
