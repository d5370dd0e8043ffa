#include "params/BlockReader.h"

#include <utility>

#include "support/platform/ByteSource.h"

namespace kiv {

namespace {

BlockValues defaultsOf(const BlockLayout& layout) {
    BlockValues values;
    values.defaulted = true;
    if (layout.kind == BlockKind::numbers)
        values.numbers.assign(layout.defaults.begin(), layout.defaults.begin() + layout.count);
    return values;
}

} // namespace

bool BlockReader::endsBefore(const BlockLayout& layout) {
    if (layout.atEnd == AtEnd::fail || !scanner.atEnd())
        return false;
    if (!firstPassed)
        firstPassed = &layout;
    if (layout.atEnd == AtEnd::useDefaults)
        keep(layout, defaultsOf(layout));
    return true;
}

TitleReading BlockReader::readTitle(const BlockLayout& layout) {
    TitleReading reading = kiv::readTitle(scanner, layout, firstPassed);
    note(reading.mismatch, layout.messageId);
    return reading;
}

std::optional<BlockValues> BlockReader::readValues(const BlockLayout& layout,
                                                   std::vector<TextPlace>* places) {
    BlockValues read;
    values.places = places;
    const bool complete = values.read(layout, read);
    note(values.failure, values.isWrongId ? wrongIdMessage : layout.messageId);
    if (complete)
        return read;
    if (purpose == Purpose::rewrite)
        document.broken = {layout.block, std::move(read), values.groupsRead};
    return std::nullopt;
}

ParsedFile BlockReader::parsed(const ByteSource& source) {
    if (source.failed())
        return {{}, {KIV_CANNOT_OPEN, 0, {}, {}}};
    outcome.unread = std::move(values.unread);
    return {std::move(document), std::move(outcome)};
}

void BlockReader::note(std::optional<Finding> failure, unsigned messageId) {
    lastFailure = std::move(failure);
    if (lastFailure && outcome.code == KIV_OK) {
        outcome.code = KIV_BAD_FORMAT;
        outcome.messageId = messageId;
        outcome.failure = *lastFailure;
    }
}

} // namespace kiv
