#include "params/Parser.h"

#include <utility>

#include "params/BlockReader.h"

namespace kiv {

namespace {

ParsedFile parse(ByteSource& source, Purpose purpose, std::optional<std::int32_t> id) {
    Scanner scanner(source);
    BlockReader reader(scanner, purpose, id);
    for (const BlockLayout& layout : blockTable) {
        if (reader.endsBefore(layout))
            continue;
        if (reader.readTitle(layout).mismatch)
            break;
        std::optional<BlockValues> values = reader.readValues(layout);
        if (reader.failure())
            break;
        reader.keep(layout, *std::move(values));
    }
    return reader.parsed(source);
}

} // namespace

ParsedFile parseParameterFile(ByteSource& source, std::optional<std::int32_t> id) {
    return parse(source, Purpose::load, id);
}

ParsedFile parseForRewrite(ByteSource& source) {
    return parse(source, Purpose::rewrite, std::nullopt);
}

} // namespace kiv
