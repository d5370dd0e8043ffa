#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "params/Document.h"
#include "support/StatusCodes.h"

namespace kiv {

class ByteSource;

// Something in the text that is not what the format asks for; line and column count from 1, the
// column in bytes.
struct Finding {
    Block block{};
    std::size_t line = 0;
    std::size_t column = 0;
    std::string expected; // "expected " is not part of it
    std::string found;

    bool operator==(const Finding&) const = default;
};

struct ParseOutcome {
    int code = KIV_OK;      // KIV_OK, KIV_BAD_FORMAT, or KIV_CANNOT_OPEN when the source failed
    unsigned messageId = 0; // with KIV_BAD_FORMAT
    Finding failure;        // with KIV_BAD_FORMAT
    // Every value that could not be read and counts as 0, also those that failed only because an
    // earlier one of the block did; for a table one entry, where its rows break off.
    std::vector<Finding> unread;

    bool operator==(const ParseOutcome&) const = default;
};

struct ParsedFile {
    Document document;
    ParseOutcome outcome;

    bool operator==(const ParsedFile&) const = default;
};

// Reads a parameter file's text. With an id, the serial number has to equal it. Memory grows with
// the rows that are there, never with the count that the text claims.
ParsedFile parseParameterFile(ByteSource& source, std::optional<std::int32_t> id);

} // namespace kiv
