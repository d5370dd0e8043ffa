#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "host/base/MessageLimit.h"
#include "host/rows/LineBlocks.h"
#include "host/rows/RowResult.h"
#include "host/rows/TimeStamp.h"

namespace kiv::host {

// A row of readings and all that came of it.
struct ComputedRow {
    RowResult result;
    std::size_t table = 0; // of several, from 0
    std::size_t line = 0;
    std::vector<Message> messages;
    std::optional<std::array<double, 3>> truth; // true angles rx, ry, rz, degrees
    std::optional<TimeStamp> time;
    std::array<std::string, 2> cells; // what a subcommand asks of its columns
    bool namesAgain = false;          // a row of names, refused
    std::size_t textEnd = 0;          // in the text made of a batch's rows
    std::size_t blankRows = 0;        // of the batch, in front of it
};

// The rows of a block of lines.
struct RowBatch {
    LineBlock block;
    std::vector<ComputedRow> rows; // the first count of them
    std::size_t count = 0;
    std::size_t blankRows = 0; // all of them
    std::string text;          // what the output has of them
};

} // namespace kiv::host
