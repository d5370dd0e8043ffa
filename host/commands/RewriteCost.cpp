#include "host/commands/RewriteCost.h"

#include <cmath>
#include <ostream>
#include <vector>

#include "host/parameters/Findings.h"
#include "params/Parser.h"
#include "params/Quoted.h"
#include "params/Survey.h"
#include "support/Numbers.h"
#include "support/platform/ByteSource.h"

namespace kiv::host {

namespace {

// In the order of the text.
std::vector<float> floatsOf(const BlockLayout& layout, const BlockValues& values) {
    std::vector<float> all = values.numbers;
    if (layout.kind == BlockKind::tiltTable)
        all.insert(all.end(), values.trailing.begin(), values.trailing.end());
    return all;
}

struct Change {
    double relative = 0;
    float before = 0;
    float after = 0;
    TextPlace place;
    std::string_view title;
};

} // namespace

void reportCost(const Document& before, const std::string& rewritten, const std::string& path,
                std::ostream& out, std::ostream& err) {
    TextSource source(rewritten);
    Survey survey;
    const Document after = surveyForRewrite(source, survey).document;
    Change largest;
    bool lost = false;
    for (const BlockLayout& layout : blockTable) {
        const BlockValues* old = before.find(layout.block);
        const BlockValues* now = after.find(layout.block);
        if (!old || !now)
            continue;
        const std::vector<float> was = floatsOf(layout, *old);
        const std::vector<float> is = floatsOf(layout, *now);
        const auto& places = survey.extents[static_cast<std::size_t>(layout.block)].numbers;
        const std::size_t first = places.size() - is.size(); // behind a table's count
        for (std::size_t i = 0; i < was.size(); ++i) {
            const TextPlace place = places[first + i];
            const double change = std::abs(double{is[i]} - double{was[i]});
            if (was[i] != 0 && is[i] == 0) {
                lost = true;
                report(err, path,
                       {{layout.block, place.line, place.column,
                         "the value " + shown(was[i]) + " in " + inQuotes(layout.title),
                         "0, all that six decimals keep of it"},
                        false});
            } else if (change > largest.relative * std::abs(double{was[i]})) {
                largest = {change / std::abs(double{was[i]}), was[i], is[i], place, layout.title};
            }
        }
    }
    std::string text;
    if (largest.relative > 0) {
        text = "largest relative change of a value: " + roundedText(largest.relative, 2);
        text += ", from " + shown(largest.before) + " to " + shown(largest.after) + " in ";
        text += inQuotes(largest.title) + ", line ";
        text +=
            std::to_string(largest.place.line) + ", column " + std::to_string(largest.place.column);
    } else {
        text = lost ? "no other value has changed" : "no value has changed";
    }
    out << text << '\n';
}

} // namespace kiv::host
