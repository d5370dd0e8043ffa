#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "fuzz/Require.h"
#include "params/Parser.h"
#include "params/Printer.h"
#include "support/platform/ByteSink.h"
#include "support/platform/ByteSource.h"

// Any text that a rewrite accepts: the new text has the old values rounded to six decimals, and a
// second rewrite changes no byte of it.

namespace {

using namespace kiv;
using kiv::fuzz::require;

ParsedFile parse(std::string_view text) {
    TextSource source(text);
    return parseForRewrite(source);
}

std::string printed(const Document& document) {
    TextSink sink;
    print(document, sink);
    return sink.text;
}

// By the C library, bit by bit.
bool isRounded(float after, float before) {
    char text[64];
    std::snprintf(text, sizeof text, "%f", double{before});
    const float expected = std::strtof(text, nullptr);
    return std::memcmp(&after, &expected, sizeof after) == 0;
}

void requireRounded(const BlockValues& after, const BlockValues& before) {
    require(after.integer == before.integer && after.word == before.word);
    require(std::equal(after.numbers.begin(), after.numbers.end(), before.numbers.begin(),
                       before.numbers.end(), isRounded));
    require(std::equal(after.trailing.begin(), after.trailing.end(), before.trailing.begin(),
                       isRounded));
}

// A load sees in the text what the rewrite has seen, but for counts below 1.
void requireLoadable(std::string_view text, const Document& document) {
    for (const BlockLayout& layout : blockTable)
        if (layout.count == 0 && document.find(layout.block)->integer < 1)
            return;
    TextSource source(text);
    const auto [loaded, outcome] = parseParameterFile(source, std::nullopt);
    require(outcome.code == KIV_OK && outcome.unread.empty());
    require(printed(loaded) == printed(document));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view original(reinterpret_cast<const char*>(data), size);
    const ParsedFile before = parse(original);
    const std::string text = printed(before.document);
    if (before.outcome.code != KIV_OK)
        return 0;
    requireLoadable(original, before.document);
    const ParsedFile after = parse(text);
    require(after.outcome.code == KIV_OK);
    for (const BlockLayout& layout : blockTable)
        requireRounded(*after.document.find(layout.block), *before.document.find(layout.block));
    require(printed(after.document) == text);
    return 0;
}
