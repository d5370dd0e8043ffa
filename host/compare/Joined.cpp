#include "host/compare/Joined.h"

#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "params/Quoted.h"

namespace kiv::host {

namespace {

void mergeInOrder(ResultTable& first, ResultTable& second, const TakePair& take) {
    ResultRow a, b;
    bool hasA = first.next(a), hasB = second.next(b);
    while (hasA || hasB) {
        const bool takesA = hasA && (!hasB || a.order <= b.order);
        const bool takesB = hasB && (!hasA || b.order <= a.order);
        take(takesA ? &a : nullptr, takesB ? &b : nullptr);
        hasA = takesA ? first.next(a) : hasA;
        hasB = takesB ? second.next(b) : hasB;
    }
}

void refuseAgain(ResultTable& table, const std::string& key) {
    table.refuseKey("each value once in the column of --join", inQuotes(key) + " again");
}

void matchKeys(ResultTable& first, ResultTable& second, const TakePair& take) {
    std::vector<ResultRow> rows;
    std::unordered_map<std::string, std::size_t> places;
    for (ResultRow row; second.next(row);)
        if (places.emplace(row.key, rows.size()).second)
            rows.push_back(row);
        else
            refuseAgain(second, row.key);
    std::vector<bool> taken(rows.size());
    std::unordered_set<std::string> seen;
    for (ResultRow row; first.next(row);) {
        if (!seen.insert(row.key).second) {
            refuseAgain(first, row.key);
            continue;
        }
        const auto other = places.find(row.key);
        const bool found = other != places.end();
        take(&row, found ? &rows[other->second] : nullptr);
        if (found)
            taken[other->second] = true;
    }
    for (std::size_t i = 0; i < rows.size(); ++i)
        if (!taken[i])
            take(nullptr, &rows[i]);
}

} // namespace

bool joinRows(ResultTable& first, ResultTable& second, Join::By by, const TakePair& take) {
    if (by == Join::By::column)
        matchKeys(first, second, take);
    else
        mergeInOrder(first, second, take);
    const bool firstRead = first.finish();
    return second.finish() && firstRead;
}

} // namespace kiv::host
