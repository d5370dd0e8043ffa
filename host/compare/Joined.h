#pragma once

#include <functional>

#include "host/compare/ResultTable.h"

namespace kiv::host {

// Gives the rows of two tables that belong together, or one of which the other has none (null), to
// a function. By line and time in the order of both, in memory that does not grow; by a column in
// the order of the first, the second's own at the end. False, and messages, where the tables do not
// come to their ends.
using TakePair = std::function<void(const ResultRow* first, const ResultRow* second)>;
bool joinRows(ResultTable& first, ResultTable& second, Join::By by, const TakePair& take);

} // namespace kiv::host
