#include <algorithm>

#include "host/report/Html.h"
#include "host/report/Sections.h"
#include "support/Numbers.h"
#include "uncertainty/UncertaintyNames.h"

namespace kiv::host {

namespace {

std::string threeDigits(double value) {
    return roundedText(value, 3);
}

// A row of the table: what it is, the input's own uncertainty, and a cell for each angle.
void appendRow(std::string& html, std::string_view heading, const std::string& input,
               const AngleTriple& values, std::string (*textOf)(double)) {
    appendTableRow(html, heading, {input, textOf(values[0]), textOf(values[1]), textOf(values[2])});
}

// In the length unit's own name where that is known.
std::string wordsOf(const UncertaintyName& name, const ReportContent& content) {
    constexpr std::string_view unknown = "length unit";
    std::string words = name.words;
    const std::size_t unit = words.find(unknown);
    if (unit != words.npos && !content.lengthUnit.empty())
        words.replace(unit, unknown.size(), escaped(content.lengthUnit));
    return words;
}

// Those that are uncertain and that the angles can depend on.
void appendInputs(std::string& html, const ReportContent& content) {
    const Uncertainties& given = *content.uncertainties;
    for (const UncertaintyName& name : uncertaintyNames) {
        const Source first = *name.sources[0];
        if (given[first] == 0 || !reads(principleOf(content.mountMode), first)
            || (ofVector(first) && name.bySight != given.bySight))
            continue;
        AngleTriple shares{};
        for (const std::optional<Source>& source : name.sources)
            for (std::size_t i = 0; source && i < shares.size(); ++i)
                shares[i] += content.budget.share(*source)[i];
        appendRow(html, wordsOf(name, content), shown(given[first]), shares, percentText);
    }
}

std::string noneText(const Summary& summary) {
    return rowsText(summary.withoutUncertainty())
           + " with angles have no uncertainty: within their inputs' the model has no orientation, "
             "or jumps.";
}

void appendCoverage(std::string& html, const char* heading, const Summary::Coverage& coverage) {
    if (coverage.rows > 0)
        appendRow(html, heading, "", {*coverage.share(0), *coverage.share(1), *coverage.share(2)},
                  percentText);
}

} // namespace

void appendUncertainty(std::string& html, const ReportContent& content) {
    const UncertaintyBudget& budget = content.budget;
    const Summary& summary = content.summary;
    const auto calibration = summary.calibrationPart();
    if (!content.hasUncertainty() && !calibration) {
        if (summary.withoutUncertainty() > 0)
            html.append("<section>\n<h2>Uncertainty of the angles</h2>\n<p>")
                .append(noneText(summary))
                .append("</p>\n</section>\n");
        return;
    }
    html += "<section>\n<h2>Uncertainty of the angles</h2>\n";
    appendTableHead(html, "Share of the variance",
                    {"Input's standard uncertainty", "rx", "ry", "rz"});
    if (content.hasUncertainty()) {
        appendInputs(html, content);
        appendRow(html, "rounding to single precision", "", budget.roundingShare(), percentText);
        html += "</tbody>\n<tbody>\n";
        appendRow(html, "standard uncertainty, degrees", "", budget.standard(), threeDigits);
        if (content.localFrame)
            appendRow(html, "of the reference, degrees", "", budget.reference(), threeDigits);
    }
    if (calibration)
        appendRow(html, "of the calibration, degrees", "", *calibration, threeDigits);
    appendCoverage(html, "residuals within twice that, good rows", summary.coverageOfGood());
    if (!summary.allTrusted())
        appendCoverage(html, "residuals within twice that, all rows", summary.coverage());
    html.append("</tbody>\n</table>\n<p class=\"note\">From the uncertainties of the inputs alone, "
                "without the model's own error: mean shares and root mean squares over ")
        .append(rowsText(std::max(budget.rows(), summary.calibratedRows())))
        .append(".");
    if (summary.withoutUncertainty() > 0)
        html.append(" ").append(noneText(summary));
    if (content.localFrame && content.hasUncertainty())
        html += " What comes from the reference's readings is the same error in all rows, and not "
                "in the line above it.";
    if (calibration)
        html += " What comes from the calibration is common to all rows, and not in the lines "
                "above it.";
    if (summary.coverage().rows > 0)
        html += " Within twice the row's standard uncertainty should be 95.4 % of the residuals, "
                "where their errors are normal, differ from row to row and outweigh the model's "
                "own.";
    html += "</p>\n</section>\n";
}

} // namespace kiv::host
