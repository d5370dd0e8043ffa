#pragma once

#include <sstream>
#include <string>

#include "host/Findings.h"
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

// Every kind of fault in every block, one at a time.
inline std::string refusals() {
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
        add("a misspelt title", {.titles = {{block, title.substr(0, title.size() - 1) + "y"}}});
        const std::size_t last = values.find_last_of(" \t\n", values.find_last_not_of(" \t\n"));
        add("the last value missing",
            {.values = {{block, last == values.npos ? "" : values.substr(0, last)}}});
        if (layout.kind != BlockKind::word)
            add("a word for a number",
                {.values = {{block, values.substr(0, number) + 'x' + values.substr(number)}}});
        if (table)
            add("a row count of 0", {.values = {{block, '0' + values.substr(1)}}});
        add("the file ending before it", {.blocks = i});
    }
    return all;
}

} // namespace kiv::test
