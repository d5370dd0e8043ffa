#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "KIVInterface/StatusCodes.h"
#include "params/Document.h"
#include "params/Finding.h"

namespace kiv {

class ByteSource;

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

// The same for a rewrite, which must not change a value: one that cannot be read is a failure of
// its block, a count below 1 stands for no rows, and the serial number may be any.
ParsedFile parseForRewrite(ByteSource& source);

} // namespace kiv
