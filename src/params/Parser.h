#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "KIVInterface/StatusCodes.h"
#include "params/Document.h"
#include "params/Scanner.h"

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

// What a parse gathers for a report on the whole text. It then goes on behind a failure: with the
// values when a title is only misspelt, else at the next title, and the document has blocks behind
// the failing one, too.
struct Survey {
    // What the text has of one block.
    struct Extent {
        std::vector<TextPlace> numbers; // the place of every number read, in the text's order
        // Of what stands in place of the title, up to where the parse goes on.
        std::size_t numbersBefore = 0;
        std::size_t wordsBefore = 0;
    };
    std::array<Extent, blockTable.size()> extents;
    std::vector<Finding> failures;     // the outcome's is the first
    std::optional<Finding> textBehind; // the last block
};

// Reads a parameter file's text. With an id, the serial number has to equal it. Memory grows with
// the rows that are there, never with the count that the text claims.
ParsedFile parseParameterFile(ByteSource& source, std::optional<std::int32_t> id,
                              Survey* survey = nullptr);

// The same for a rewrite, which must not change a value: one that cannot be read is a failure of
// its block, a count below 1 stands for no rows, and the serial number may be any.
ParsedFile parseForRewrite(ByteSource& source, Survey* survey = nullptr);

} // namespace kiv
