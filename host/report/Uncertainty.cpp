#include <initializer_list>

#include "host/report/Html.h"
#include "host/report/Sections.h"
#include "host/tables/Numbers.h"
#include "host/tables/SourceNames.h"
#include "support/MountMode.h"

namespace kiv::host {

namespace {

std::string threeDigits(double value) {
    std::string text;
    appendRounded(text, value, 3);
    return text;
}

void appendShares(std::string& html, std::string_view input, const std::string& size,
                  const AngleTriple& shares) {
    appendTableRow(html, input,
                   {size, percentText(shares[0]), percentText(shares[1]), percentText(shares[2])});
}

void appendDegrees(std::string& html, std::string_view heading, const AngleTriple& degrees) {
    appendTableRow(html, heading,
                   {"", threeDigits(degrees[0]), threeDigits(degrees[1]), threeDigits(degrees[2])});
}

// Those that are uncertain and that the angles can depend on.
void appendInputs(std::string& html, const ReportContent& content) {
    const Uncertainties& given = *content.uncertainties;
    for (const SourceName& name : sourceNames) {
        const Source first = *name.sources[0];
        if (given[first] == 0 || !reads(content.mountMode, first)
            || (ofVector(first) && name.bySight != given.bySight))
            continue;
        AngleTriple shares{};
        for (const std::optional<Source>& source : name.sources)
            for (std::size_t i = 0; source && i < shares.size(); ++i)
                shares[i] += content.budget.share(*source)[i];
        appendShares(html, name.words, shown(given[first]), shares);
    }
}

} // namespace

void appendUncertainty(std::string& html, const ReportContent& content) {
    if (!content.hasUncertainty())
        return;
    const UncertaintyBudget& budget = content.budget;
    const bool local = content.localFrame && !reportsOwnMatrix(content.mountMode);
    html += "<section>\n<h2>Where the uncertainty comes from</h2>\n<table>\n<thead><tr>"
            "<th>Input</th><th class=\"number\">Its standard uncertainty</th>";
    for (const char* angle : angleNames)
        html.append("<th class=\"number\">").append(angle).append("</th>");
    html += "</tr></thead>\n<tbody>\n";
    appendInputs(html, content);
    appendShares(html, "rounding to single precision", "", budget.roundingShare());
    html += "</tbody>\n<tfoot>\n";
    appendDegrees(html, "standard uncertainty, degrees", budget.standard());
    if (local)
        appendDegrees(html, "of the reference, not in it, degrees", budget.reference());
    html.append("</tfoot>\n</table>\n<p class=\"note\">Shares of each angle's variance, their mean "
                "over ")
        .append(rowsText(budget.rows()))
        .append("; below them root mean squares. The model's own error is not in it.");
    if (local)
        html += " The reference's readings give all rows the same error, which has a line of its "
                "own.";
    html += "</p>\n</section>\n";
}

} // namespace kiv::host
