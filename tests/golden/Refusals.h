#pragma once

#include <algorithm>
#include <iterator>
#include <sstream>
#include <string>

#include "host/parameters/Findings.h"
#include "params/Messages.h"
#include "support/platform/ByteSource.h"
#include "tests/ParameterText.h"

namespace kiv::test {

// What becomes of a text: the message that the library passes, then every error that the tool
// shows.
inline std::string refusalOf(const TextChanges& changes) {
    const std::string text = parameterText(changes);
    TextSource source(text);
    const host::ExaminedFile examined = host::examine(source, 5);
    const ParseOutcome& outcome = examined.parsed.outcome;
    std::ostringstream shown;
    if (outcome.code != KIV_OK)
        shown << "    refused: " << messageText(outcome.messageId) << '\n';
    else
        shown << "    loaded\n";
    for (const host::FileFinding& f : examined.findings) {
        if (f.error)
            host::report(shown, "    Tg5.prm", f);
    }
    return shown.str();
}

// Every kind of fault, one at a time, in a block of each kind and in those that differ otherwise;
// another title in every block.
inline std::string refusals() {
    using enum Block;
    const std::string longWord(256, 'o');
    const struct {
        const char* name;
        Block block;
        TextChanges changes;
    } faultsOfOneBlock[] = {
        {"the ID of another sensor", serialNumber, {.values = {{serialNumber, "6"}}}},
        {"an ID out of range", serialNumber, {.values = {{serialNumber, "2147483648"}}}},
        {"a word over 255 characters", deviceOwner, {.values = {{deviceOwner, longWord}}}},
        {"a number out of range", admOffset, {.values = {{admOffset, "1e39"}}}},
        {"a number over 255 characters",
         admOffset,
         {.values = {{admOffset, "0." + std::string(254, '1')}}}},
        {"a title's word over 255 characters",
         admOffset,
         {.titles = {{admOffset, "ADM " + longWord}}}},
        {"odd bytes for a title", admOffset, {.titles = {{admOffset, "\xC4\" \\"}}}},
        {"a title over 255 characters in all",
         admOffset,
         {.titles = {{admOffset, longWord.substr(10) + "ADM Offset"}}}},
        {"a row count out of range",
         azCalibration,
         {.values = {{azCalibration, "3000000000 1 2"}}}},
        {"a closing word over 255 characters",
         tiltXCalibration,
         {.values = {{tiltXCalibration, "1 1 1 -30 30 0 " + longWord}}}},
    };
    std::string all;
    const auto add = [&all](const std::string& fault, const TextChanges& changes) {
        all += "\n  " + fault + '\n' + refusalOf(changes);
    };
    for (std::size_t i = 0; i < blockTable.size(); ++i) {
        const BlockLayout& layout = blockTable[i];
        const Block block = layout.block;
        const std::string title(layout.title);
        const std::string values = parameterValues(layout, 0);
        const std::size_t titleEnd = title.find_last_of(' ') + 1;
        const bool table =
            layout.kind == BlockKind::encoderTable || layout.kind == BlockKind::tiltTable;
        const std::size_t number = table ? values.find('\n') + 1 : 0;

        all += (i > 0 ? "\n" : "") + title + '\n';
        add("another title", {.titles = {{block, title.substr(0, titleEnd) + "Unknown"}}});
        constexpr Block shown[] = {serialNumber, deviceOwner,   azPositionGain,
                                   admOffset,    azCalibration, tiltXCalibration,
                                   scaleFactor,  mountingMode,  halfAngle};
        if (std::find(std::begin(shown), std::end(shown), block) == std::end(shown))
            continue;
        add("a misspelt title", {.titles = {{block, title.substr(0, title.size() - 1) + "y"}}});
        const std::size_t last = values.find_last_of(" \t\n", values.find_last_not_of(" \t\n"));
        add("the last value missing",
            {.values = {{block, last == values.npos ? "" : values.substr(0, last)}}});
        if (layout.kind != BlockKind::word)
            add("a word for a number",
                {.values = {{block, values.substr(0, number) + 'x' + values.substr(number)}}});
        if (table)
            for (const auto& [fault, count] : {std::pair{"a word for the row count", "x3"},
                                               {"a row count of 0", "0"},
                                               {"a negative row count", "-3"}})
                add(fault, {.values = {{block, count + values.substr(1)}}});
        for (const auto& fault : faultsOfOneBlock)
            if (fault.block == block)
                add(fault.name, fault.changes);
        add("the file ending before it", {.blocks = i});
    }
    return all;
}

} // namespace kiv::test
