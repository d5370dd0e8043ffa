#include <utility>

#include "host/report/Html.h"
#include "host/report/Page.h"
#include "host/report/Sections.h"

namespace kiv::host {

std::string titleOf(const ReportContent& content) {
    return content.title.empty()
               ? "KIV sensor " + std::to_string(content.sensorId) + ": orientations"
               : content.title;
}

// The counts in front of the parentheses add up to the rows.
void appendHeading(std::string& html, const ReportContent& content) {
    const Summary& summary = content.summary;
    const std::size_t ok = summary.count(RowState::ok);
    const char* look = !summary.allGood() || ok == 0                       ? "bad"
                       : summary.allTrusted() && content.witnesses.empty() ? "good"
                                                                           : "warn";
    std::string sentence = rowsText(summary.rows()) + ": " + countText(ok) + " with angles";
    if (!summary.allTrusted())
        sentence += " (" + countText(ok - summary.count(Trust::good)) + " not good)";
    for (const auto& [state, words] : {std::pair(RowState::refused, " refused"),
                                       {RowState::noOrientation, " without an orientation"},
                                       {RowState::status, " with another status"},
                                       {RowState::noReference, " before a reference"},
                                       {RowState::reference, " the reference"}})
        if (const std::size_t count = summary.count(state);
            count > 0 || state == RowState::refused || state == RowState::noOrientation)
            sentence += ", " + countText(count) + words;
    if (const std::size_t witnesses = content.witnesses.size(); witnesses > 0)
        sentence += "; " + countText(witnesses) + (witnesses == 1 ? " witness" : " witnesses");
    appendVerdict(html, look, sentence);
    if (content.cutShort)
        appendVerdict(html, "bad",
                      std::string("Not all readings are in this report: ") + content.cutShort
                          + '.');
}

} // namespace kiv::host
