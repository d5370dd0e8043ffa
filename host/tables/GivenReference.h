#pragma once

#include <optional>

#include "host/tables/ReadingsOptions.h"
#include "host/tables/RowResult.h"

namespace kiv::host {

struct Streams;

// Takes the row that the options name as the reference through a runner, so that it is; without
// one does nothing. False, and messages, where it is not there or cannot become the reference. A
// row of the recording itself leaves its result.
bool takeReference(const ReadingsOptions& options, RowRunner& runner, const Streams& streams,
                   std::optional<RowResult>& ownRow);

} // namespace kiv::host
