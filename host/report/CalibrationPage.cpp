#include "host/report/CalibrationPage.h"

#include <algorithm>
#include <cmath>
#include <functional>

#include "host/base/Embedded.h"
#include "host/report/Html.h"
#include "support/Numbers.h"
#include "support/VersionText.h"

namespace kiv::host {

namespace {

// A drawing's own units; the page scales it.
constexpr double width = 320, height = 180, left = 52, right = 312, top = 8, bottom = 150;

constexpr const char* placeNames[] = {"line", "azimuth, degrees", "elevation, degrees",
                                      "level Y, degrees", "temperature"};
constexpr const char* readingNames[] = {"azimuth", "elevation", "level Y", "level X"};

// Of the charts alone; colours are the page's.
constexpr const char* style = R"(
.charts { display: grid; gap: 0.5rem 1rem; grid-template-columns: repeat(auto-fill, minmax(min(100%, 12.5rem), 1fr)); }
.charts figure { margin: 0; }
svg { display: block; height: auto; max-width: 100%; width: 100%; }
svg text { fill: var(--faint); font-size: 11px; }
svg .frame { fill: none; stroke: var(--rule); }
svg .dots { fill: none; stroke: var(--series-0); stroke-linecap: round; stroke-width: 3; }
svg .dots.other { stroke: var(--series-1); }
svg .bar { fill: var(--series-0); }
svg .curve { fill: none; stroke: var(--series-1); stroke-width: 1.5; }
.interval { height: 1.1rem; min-width: 8rem; width: 10rem; }
.interval .band { fill: var(--series-2); opacity: 0.5; }
.interval .new { stroke: var(--series-0); stroke-width: 2; }
.interval .old { stroke: var(--series-1); stroke-width: 2; }
.map { max-width: 34rem; }
)";

std::string digits(double value, int significant = 4) {
    std::string text;
    appendRounded(text, value, significant);
    return text;
}

std::string coordinate(double value) {
    return digits(std::round(value * 10) / 10, 6);
}

struct Range {
    double low, high;
    double at(double value, double from, double to) const {
        return high > low ? from + (to - from) * (value - low) / (high - low) : (from + to) / 2;
    }
};

std::string textAt(double x, double y, const char* anchor, const std::string& text) {
    return "<text x=\"" + coordinate(x) + "\" y=\"" + coordinate(y) + "\" text-anchor=\"" + anchor
           + "\">" + escaped(text) + "</text>";
}

// A frame with the ends of both axes, and what is drawn in it.
std::string chart(const std::string& caption, const std::string& below, const Range& x,
                  const Range& y, const std::string& drawing) {
    return "<figure><figcaption>" + escaped(caption) + "</figcaption><svg viewBox=\"0 0 "
           + coordinate(width) + ' ' + coordinate(height) + "\" role=\"img\" aria-label=\""
           + escaped(caption + " against " + below) + "\"><rect class=\"frame\" x=\""
           + coordinate(left) + "\" y=\"" + coordinate(top) + "\" width=\""
           + coordinate(right - left) + "\" height=\"" + coordinate(bottom - top) + "\"/>" + drawing
           + textAt(left - 4, top + 10, "end", digits(y.high, 3))
           + textAt(left - 4, bottom, "end", digits(y.low, 3))
           + textAt(left, bottom + 14, "start", digits(x.low, 5))
           + textAt(right, bottom + 14, "end", digits(x.high, 5))
           + textAt((left + right) / 2, bottom + 14, "middle", below) + "</svg></figure>\n";
}

using Samples = std::vector<ResidualSample>;
using Number = std::function<double(const ResidualSample&)>;

Range rangeOf(const Samples& samples, const Number& number) {
    Range range{0, 0};
    for (std::size_t i = 0; i < samples.size(); ++i) {
        const double value = number(samples[i]);
        range = i == 0 ? Range{value, value}
                       : Range{std::min(range.low, value), std::max(range.high, value)};
    }
    return range;
}

std::string scatter(const std::string& caption, const std::string& below, const Samples& samples,
                    const Number& x, const Number& y) {
    const Range across = rangeOf(samples, x);
    const Range found = rangeOf(samples, y);
    const double most = std::max(std::abs(found.low), std::abs(found.high));
    const Range up{-most, most};
    std::string drawing;
    for (const bool heldOut : {false, true}) {
        drawing += heldOut ? "<path class=\"dots other\" d=\"" : "<path class=\"dots\" d=\"";
        for (const ResidualSample& sample : samples)
            if (sample.heldOut == heldOut)
                drawing += 'M' + coordinate(across.at(x(sample), left + 3, right - 3)) + ' '
                           + coordinate(up.at(y(sample), bottom - 3, top + 3)) + "h0";
        drawing += "\"/>";
    }
    return chart(caption, below, across, up, drawing);
}

// How many of the numbers lie in each of so many parts; a curve may say how many should.
std::string histogram(const std::string& caption, const std::string& below,
                      const std::vector<double>& numbers, const Range& range,
                      const std::function<double(double)>& expected = {}) {
    constexpr std::size_t parts = 36;
    std::vector<double> counts(parts);
    for (const double number : numbers) {
        const double part = range.at(number, 0, static_cast<double>(parts));
        ++counts[static_cast<std::size_t>(std::clamp(part, 0.0, parts - 1.0))];
    }
    Range up{0, *std::max_element(counts.begin(), counts.end()) * 1.1 + 1};
    std::string drawing;
    const double step = (right - left) / static_cast<double>(parts);
    for (std::size_t i = 0; i < parts; ++i) {
        const double y = up.at(counts[i], bottom, top);
        drawing += "<rect class=\"bar\" x=\"" + coordinate(left + step * static_cast<double>(i))
                   + "\" y=\"" + coordinate(y) + "\" width=\"" + coordinate(step - 0.5)
                   + "\" height=\"" + coordinate(bottom - y) + "\"/>";
    }
    if (expected) {
        drawing += "<path class=\"curve\" d=\"";
        for (std::size_t i = 0; i <= parts; ++i) {
            const double at = static_cast<double>(i) / static_cast<double>(parts);
            const double value = range.low + at * (range.high - range.low);
            const double count = expected(value) * static_cast<double>(numbers.size())
                                 * (range.high - range.low) / static_cast<double>(parts);
            drawing += (i == 0 ? 'M' : 'L') + coordinate(left + at * (right - left)) + ' '
                       + coordinate(up.at(count, bottom, top));
        }
        drawing += "\"/>";
    }
    return chart(caption, below, range, up, drawing);
}

std::vector<double> numbersOf(const Samples& samples, const Number& number) {
    std::vector<double> numbers;
    std::transform(samples.begin(), samples.end(), std::back_inserter(numbers), number);
    return numbers;
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

void appendParameters(std::string& html, const CalibrationOutcome& outcome) {
    html += "<section>\n<h2>Parameters</h2>\n<table>\n<thead><tr><th>parameter</th><th "
            "class=\"number\">old</th><th class=\"number\">new</th><th class=\"number\">standard "
            "uncertainty</th><th class=\"number\">change / u</th><th>old and new ± 2 u</th></tr>"
            "</thead>\n<tbody>\n";
    for (const auto& found : outcome.found) {
        html += "<tr><th>" + code(nameOf(found.parameter)) + "</th>";
        for (const std::string& cell :
             {digits(found.old, 9), digits(found.value, 9), digits(found.u, 2),
              digits((found.value - found.old) / found.u, 3)})
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
                    + "); fill-opacity: " + digits(std::abs(r), 3)
                    + "; stroke: var(--rule)\"><title>"
                    + escaped(nameOf(outcome.found[i].parameter) + ", "
                              + nameOf(outcome.found[k].parameter) + ": " + digits(r, 3))
                    + "</title></rect>";
        }
        html += textAt(cell * static_cast<double>(n) + 6, y + 15, "start",
                       nameOf(outcome.found[i].parameter));
    }
    html += "</svg>\n<p class=\"note\">Blue: both err to the same side; orange: to opposite ones. "
            "Columns are in the order of the rows.</p>\n</section>\n";
}

void appendResiduals(std::string& html, const Samples& samples, std::size_t equations) {
    html += "<section>\n<h2>Residuals</h2>\n<p class=\"note\">Corrected readings less those that "
            "the geometry predicts, degrees; rows held out are orange. Of many rows some hundred "
            "are drawn.</p>\n";
    for (std::size_t reading = 0; reading < equations; ++reading) {
        html += "<div class=\"charts\">\n";
        for (std::size_t i = 0; i < std::size(placeNames); ++i)
            html += scatter(
                readingNames[reading], placeNames[i], samples,
                [i](const ResidualSample& s) { return s.place[i]; },
                [reading](const ResidualSample& s) { return s.residual[reading]; });
        html += "</div>\n";
    }
    html += "</section>\n<section>\n<h2>Distribution and coverage</h2>\n<div class=\"charts\">\n";
    std::vector<double> whitened;
    for (const ResidualSample& sample : samples)
        whitened.insert(whitened.end(), sample.whitened.begin(),
                        sample.whitened.begin() + static_cast<std::ptrdiff_t>(equations));
    html +=
        histogram("residuals over their noise", "standard deviations", whitened, {-4.5, 4.5},
                  [](double x) { return std::exp(-x * x / 2) / std::sqrt(2 * 3.141592653589793); });
    html += histogram("headings", placeNames[1],
                      numbersOf(samples, [](const auto& s) { return s.place[1]; }), {-180, 180});
    html += histogram("elevations", placeNames[2],
                      numbersOf(samples, [](const auto& s) { return s.place[2]; }), {-90, 90});
    const Number tilt = [](const ResidualSample& s) { return s.tilt; };
    html += histogram("tilts", "degrees", numbersOf(samples, tilt),
                      {0, std::max(1.0, rangeOf(samples, tilt).high)});
    html += "</div>\n</section>\n";
}

void appendInputs(std::string& html, const CalibrateOptions& options, const CalibrationRows& rows,
                  const InputFacts& inputs) {
    html += "<section>\n<h2>Made from</h2>\n<table class=\"facts\"><tbody>\n";
    const auto row = [&](const std::string& name, const std::string& value) {
        html += "<tr><th>" + escaped(name) + "</th><td>" + code(value) + "</td></tr>\n";
    };
    row("old parameter file", options.parameterFile);
    row("its SHA-256", inputs.parameterFile.hex());
    for (const TableFacts& table : rows.facts().tables) {
        row("readings", table.name);
        row("their SHA-256", table.digest.hex());
    }
    row("new parameter file", options.output);
    row("version", versionText);
    html += "</tbody></table>\n</section>\n";
}

} // namespace

std::string calibrationPage(const CalibrationOutcome& outcome, const CalibrateOptions& options,
                            const CalibrationRows& rows, const InputFacts& inputs) {
    std::string html =
        "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n<meta "
        "http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; style-src "
        "'unsafe-inline'\">\n<meta name=\"viewport\" content=\"width=device-width, "
        "initial-scale=1\">\n<meta name=\"color-scheme\" content=\"light dark\">\n<title>";
    const std::string title = "Calibration: " + options.parameterFile;
    html += escaped(title) + "</title>\n<style>\n";
    html.append(embedded::pageStyle()).append(style);
    html += "</style>\n</head>\n<body>\n<main>\n<h1>" + escaped(title)
            + "</h1>\n<p class=\"verdict good\">rms over noise " + digits(outcome.rmsOverNoise, 3)
            + " (99.9 % from " + digits(outcome.interval[0], 3) + " to "
            + digits(outcome.interval[1], 3) + "), " + rowsText(outcome.used) + " used</p>\n";
    if (outcome.overInSample)
        html += "<p>" + rowsText(outcome.heldOut) + " held out: rms "
                + digits(*outcome.overInSample, 3) + " times that of the rows used</p>\n";
    if (outcome.oldRms && outcome.newRms)
        html += "<p>The angles' root mean square there: " + digits(*outcome.oldRms, 3)
                + " degrees with the old file, " + digits(*outcome.newRms, 3)
                + " with the new one</p>\n";
    for (const RowPlace& place : rows.rejectedPlaces())
        html += "<p class=\"refused\">left out: " + escaped(rows.placeOf(place)) + "</p>\n";
    appendParameters(html, outcome);
    appendCorrelations(html, outcome);
    appendResiduals(html, outcome.samples, outcome.equationsOfRow);
    appendInputs(html, options, rows, inputs);
    return html + "</main>\n</body>\n</html>\n";
}

} // namespace kiv::host
