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

// Without anything to warn of.
inline TextChanges sound(TextChanges changes = {}) {
    changes.values.insert({{Block::localMatrix, "1 0 0\n0 1 0\n0 0 1"},
                           {Block::machineMatrix, "0 -1 0\n1 0 0\n0 0 1"},
                           {Block::azCalibration, "3\n0 0.1\n180 0.2\n360 0.1"},
                           {Block::tiltXCalibration, "3\n-2 -2\n0 0\n2 2\n-1 1 0\nend"},
                           {Block::tiltYCalibration, "2\n5 5\n-5 -5\n-5 5 0\n7"}});
    return changes;
}

inline TextChanges valued(Block block, const std::string& text) {
    return sound({.values = {{block, text}}});
}

inline TextChanges titled(Block block, const std::string& text) {
    return sound({.titles = {{block, text}}});
}

inline std::string without(std::string text, const std::string& part) {
    for (auto at = text.find(part); at != text.npos; at = text.find(part, at))
        text.erase(at, part.size());
    return text;
}

// All that kiv check shows of texts with several faults, and with what it warns of.
inline std::string findingsOfWholeFiles() {
    using enum Block;
    std::string longJunk;
    for (int i = 0; i < 20; ++i)
        longJunk += "Junk ";
    const struct {
        const char* name;
        std::string text;
    } rows[] = {
        {"sound", parameterText(sound())},
        {"two misspelt titles",
         parameterText(sound({.titles = {{localMatrix, "Local Coordinate Transform Matrix"},
                                         {machineMatrix, "machine coordinate Tranform Matrix"}}}))},
        {"values behind a misspelt title",
         parameterText(sound({.values = {{tiltOffset, "1 x"}, {elCalibration, "2\n500 1\n9 2"}},
                              .titles = {{tiltOffset, "Tilt Sensor Ofset"}}}))},
        {"a block left out, and one further on",
         without(without(parameterText(sound()), "Device Owner\nowner\n"), "Mounting Mode\n3\n")},
        {"junk",
         parameterText(titled(azPositionGain, "some 7 words " + longJunk + "AZ Position Gain"))},
        {"nothing of it", "junk " + std::string(300, 'x')},
        {"bad counts",
         parameterText(sound({.values = {{azCalibration, "0\n1 2"}, {tiltXCalibration, "many"}}}))},
        {"more rows than the count",
         parameterText(sound({.values = {{azCalibration, "2\n1 1\n2 2\n3 3\n4 4"},
                                         {tiltXCalibration, "1\n-2 0\n0 0\n2 0\n-1 1 0\nend"},
                                         {tiltYCalibration, "1\n5 5\n-5 -5\n-5 5 0\n7"}}}))},
        {"fewer rows than the count",
         parameterText(sound({.values = {{azCalibration, "4\n1 1\n2 2\n3 3"},
                                         {tiltXCalibration, "4\n-2 -2\n0 0\n2 2\n-1 1 0\nend"}}}))},
        {"half a row", parameterText(valued(azCalibration, "3\n1 1\n2 2\n3"))},
        {"a table cut off",
         parameterText(sound({.values = {{azCalibration, "3\n1 1\n2"}}, .blocks = 15}))},
        {"cut off where defaults are", parameterText(sound({.blocks = 17}))},
        {"angles twice and far",
         parameterText(sound({.values = {{azCalibration, "5\n1 1\n-359 2\n1 1\n-361 0\n720.5 0"},
                                         {elCalibration, "3\n-5 1\n355 1\n7 7"}}}))},
        {"knots that turn and repeat",
         parameterText(sound({.values = {{tiltXCalibration, "4\n-2 0\n0 0\n-1 0\n2 0\n-1 1 0\nend"},
                                         {tiltYCalibration, "3\n5 5\n5 0\n-5 0\n-5 5 0\nend"}}}))},
        {"an offset, corrections and a tilt that stand out",
         parameterText(
             sound({.values = {{angleOffset, "1250 -360"},
                               {azCalibration, "6\n0 1\n60 31\n120 1\n180 0.01\n240 0\n300 1"},
                               {elCalibration, "5\n0 0\n9 -.05\n18 0\n27 0\n36 0"},
                               {tiltYCalibration,
                                "7\n-6 -6\n-4 4\n-2 -2\n0 0\n2 2\n4 4\n6 6.1\n-4 4 0\nend"}}}))},
        {"a tilt off the curve at its end, and a level that is not read",
         parameterText(sound(
             {.values = {{tiltXCalibration, "6\n-6 6\n-4 -4\n-2 -2\n2 2\n4 4\n6 6\n-4 4 0\nend"},
                         {tiltYCalibration,
                          "7\n9 9.2\n6 6.1\n3 3\n0 0\n-3 -3\n-6 -6\n-9 9\n-9 9 0\nend"}}}))},
        {"level limits",
         parameterText(sound({.values = {{tiltXCalibration, "2\n-2 -2\n2 2\n1.5 -2.5 0\nend"},
                                         {tiltYCalibration, "2\n5 5\n-5 -5\n-5 5.1 0\nend"}}}))},
        {"limits of tilt X in mode 7",
         parameterText(sound({.values = {{tiltXCalibration, "2\n-2 -2\n2 2\n-35 35 0\nend"},
                                         {mountingMode, "7"}}}))},
        {"matrices", parameterText(sound({.values = {{localMatrix, "1 0 0\n0 1 0\n1 1 0"},
                                                     {machineMatrix, "0 -1 0\n1 0 0\n0 0 1.00001"},
                                                     {levelX, "0 0 0 0 0 0 0"}}}))},
        {"what leaves a level out",
         parameterText(sound({.values = {{mountingMode, "9"},
                                         {thermalFactor, "0 1 0 0"},
                                         {tiltYCalibration, "2\n5 0.5\n-5 -0.4\n-5 5 0\n7"},
                                         {levelX, "0 0 0 -30 0 0 0"},
                                         {levelY, "0 0 0 146 0 0 1"}}}))},
        {"another mount mode, and gains of 0",
         parameterText(
             sound({.values = {{mountingMode, "11"}, {scaleFactor, "0 0 0 0 0 1 0 0"}}}))},
        {"rotations in print, and a reflection",
         parameterText(
             sound({.values = {{localMatrix, "0.939373 -.342898 0 0.342898 .939373 0 0 0 1"},
                               {machineMatrix, "0 1 0\n1 0 0\n0 0 1"}}}))},
        {"text behind", parameterText(sound()) + "more"},
        {"no line end", parameterText(sound()).erase(parameterText(sound()).size() - 2)},
        {"no warning of what was not read",
         parameterText(valued(machineMatrix, "1 0 0 0 1 0 0 0"))},
    };
    std::ostringstream all;
    for (const auto& row : rows) {
        all << "\n  " << row.name << '\n';
        TextSource source(row.text);
        for (const host::FileFinding& f : host::examine(source, std::nullopt).findings)
            host::report(all, "    Tg5.prm", f);
    }
    return all.str();
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
        {"a title with two wrong letters", admOffset, {.titles = {{admOffset, "ADM Offxxt"}}}},
        {"a title with three wrong letters", admOffset, {.titles = {{admOffset, "ADM Ofxxxt"}}}},
        {"a title of 255 characters in all",
         admOffset,
         {.titles = {{admOffset, longWord.substr(11) + "ADM Offset"}}}},
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
    return all + "\nWhole files\n" + findingsOfWholeFiles();
}

} // namespace kiv::test
