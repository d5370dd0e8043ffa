#include "host/rows/ResultChoice.h"

#include <algorithm>
#include <iterator>

#include "host/rows/CloseNames.h"
#include "host/rows/ResultColumns.h"
#include "params/Quoted.h"

namespace kiv::host {

namespace {

// Columns that stand side by side.
struct ResultGroup {
    std::string_view name;
    std::string_view first;
    std::string_view last;
};

constexpr ResultGroup resultGroups[] = {
    {"all", resultColumns.front().name, resultColumns.back().name},
    {"angles", "rx_deg", "rz_deg"},
    {"matrix", "m00", "code"},
    {"readings", "azimuth_corrected_deg", "level_y_corrected_deg"},
    {"uncertainty", "model_error_deg", resultColumns.back().name},
};

const ResultGroup* groupOf(std::string_view name) {
    const auto* group = std::find_if(std::begin(resultGroups), std::end(resultGroups),
                                     [&](const ResultGroup& each) { return each.name == name; });
    return group == std::end(resultGroups) ? nullptr : group;
}

template <typename Take>
void forEachName(std::string_view names, Take take) {
    for (std::size_t end = 0; end != names.npos; names.remove_prefix(end + 1)) {
        end = names.find(',');
        take(names.substr(0, end));
        if (end == names.npos)
            return;
    }
}

// Another spelling of a column's name is nearer than the fewest letters.
std::string_view nearestResult(std::string_view name) {
    std::vector<std::string_view> all;
    all.reserve(resultColumns.size() + std::size(resultGroups));
    for (const ResultColumn& column : resultColumns)
        all.push_back(column.name);
    for (const ResultGroup& group : resultGroups)
        all.push_back(group.name);
    const auto pairs = closePairs(all, {&name, 1});
    return pairs.empty() ? nearestName(all, name) : all[pairs[0].missing];
}

} // namespace

std::vector<ChosenResult> chosenResults(std::string_view names) {
    std::vector<ChosenResult> chosen;
    const auto choose = [&](std::size_t column, bool byName) {
        const auto same = [&](const ChosenResult& each) { return each.column == column; };
        if (std::none_of(chosen.begin(), chosen.end(), same))
            chosen.push_back({column, byName});
    };
    forEachName(names, [&](std::string_view name) {
        const ResultGroup* group = groupOf(name);
        if (!group)
            return choose(resultColumnAt(name), true);
        for (std::size_t i = resultColumnAt(group->first); i <= resultColumnAt(group->last); ++i)
            choose(i, false);
    });
    return chosen;
}

std::string faultOfResults(std::string_view names) {
    std::string fault;
    forEachName(names, [&](std::string_view name) {
        if (fault.empty() && !groupOf(name) && resultColumnAt(name) == resultColumns.size())
            fault = "expected columns of results or angles, matrix, readings, uncertainty, all, "
                    "with commas between, found "
                    + (name.empty() ? "an empty name; write the list without blanks"
                                    : inQuotes(name) + "; the nearest is "
                                          + std::string(nearestResult(name)));
    });
    return fault;
}

} // namespace kiv::host
