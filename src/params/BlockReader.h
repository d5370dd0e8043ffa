#pragma once

#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

#include "params/Parser.h"
#include "params/TitleReader.h"
#include "params/ValueReader.h"

namespace kiv {

// Reads a text's blocks, to be asked for in file order.
class BlockReader {
public:
    BlockReader(Scanner& text, Purpose why, std::optional<std::int32_t> id)
        : scanner(text), purpose(why), values(text, why, id) {}

    // True when the block need not be there and the text has ended before it.
    bool endsBefore(const BlockLayout& layout);

    TitleReading readTitle(const BlockLayout& layout);

    // The values behind the title; nothing where they break off. It notes the places, where wanted,
    // of the numbers.
    std::optional<BlockValues> readValues(const BlockLayout& layout,
                                          std::vector<TextPlace>* places = nullptr);

    void keep(const BlockLayout& layout, BlockValues read) {
        document.blocks[static_cast<std::size_t>(layout.block)] = std::move(read);
    }

    // The outcome of the last title or values read.
    const std::optional<Finding>& failure() const { return lastFailure; }

    ParsedFile parsed(const ByteSource& source);

private:
    void note(std::optional<Finding> failure, unsigned messageId);

    Scanner& scanner;
    Purpose purpose;
    ValueReader values;
    const BlockLayout* firstPassed = nullptr; // the text has ended before it
    std::optional<Finding> lastFailure;
    Document document;
    ParseOutcome outcome;
};

} // namespace kiv
