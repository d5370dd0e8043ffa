#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "params/Parser.h"

namespace kiv {

// What a parse gathers for a report on the whole text. It then goes on behind a failure: with the
// values when a title is only misspelt, else at the next title, and the document has blocks behind
// the failing one, too.
struct Survey {
    // What the text has of one block.
    struct Extent {
        std::vector<TextPlace> numbers; // the place of every number read, in the text's order
        // What stands in place of the title is counted, up to where the parse goes on.
        std::size_t numbersBefore = 0;
        std::size_t wordsBefore = 0;
    };
    std::array<Extent, blockTable.size()> extents;
    std::vector<Finding> failures;     // the outcome's is the first
    std::optional<Finding> textBehind; // the last block
    std::optional<Finding> openEnd;    // no white space ends the last value, which may be cut
};

// They parse as parseParameterFile and parseForRewrite do.
ParsedFile surveyParameterFile(ByteSource& source, std::optional<std::int32_t> id, Survey& survey);
ParsedFile surveyForRewrite(ByteSource& source, Survey& survey);

// The failures and every value that could not be read, in the text's order, one at a place: what
// else is wrong there follows from it.
std::vector<Finding> errorsIn(const ParsedFile& parsed, const Survey& survey);

} // namespace kiv
