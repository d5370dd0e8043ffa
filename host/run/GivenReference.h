#pragma once

#include <cstddef>
#include <string>

#include "host/rows/RowResult.h"
#include "host/run/ReadingsOptions.h"

namespace kiv::host {

class Sha256;
struct Streams;

// The row that the options name as the reference.
struct GivenReference {
    std::string table;
    std::size_t line = 0; // 0: none
    bool mayBeCut = false;
    RowResult result;
};

// Takes that row through a runner, so that it is the reference; without one does nothing. False,
// and messages, where it is not there or cannot become the reference. The hash takes in the file
// that has it, where that is none of the readings'.
bool takeReference(const ReadingsOptions& options, RowRunner& runner, const Streams& streams,
                   GivenReference& given, Sha256* hash);

} // namespace kiv::host
