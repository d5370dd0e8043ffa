#include "host/base/MessageLimit.h"

#include <algorithm>
#include <cstdint>
#include <ostream>

namespace kiv::host {

std::string linePlace(std::size_t line, std::string_view table) {
    std::string place = "line " + std::to_string(line);
    return table.empty() ? place : place.append(" of ").append(table);
}

void show(std::span<const Message> messages, std::ostream& err) {
    for (const Message& message : messages)
        err << message.text;
}

void MessageLimit::count(const Message& message) {
    const auto known = std::find_if(kinds.begin(), kinds.end(),
                                    [&](const Kind& kind) { return kind.text == message.kind; });
    if (known == kinds.end())
        kinds.push_back({message.kind, 1, message.text.substr(0, message.text.find(": "))});
    else
        ++known->rows;
}

bool MessageLimit::isTold(const Message& message) {
    if (!message.once || most == SIZE_MAX)
        return false;
    const bool before = std::find(told.begin(), told.end(), message.kind) != told.end();
    if (!before)
        told.push_back(message.kind);
    return before;
}

void MessageLimit::take(std::span<const Message> ofARow) {
    for (std::size_t i = 0; i < ofARow.size(); ++i) {
        const auto before = ofARow.first(i);
        const auto same = [&](const Message& other) { return other.kind == ofARow[i].kind; };
        if (shown < most && !isTold(ofARow[i])) {
            err << ofARow[i].text;
            ++shown;
        } else if (std::none_of(before.begin(), before.end(), same)) {
            count(ofARow[i]);
        }
    }
}

void MessageLimit::reportOthers(const std::string& name) const {
    for (const Kind& kind : kinds)
        err << name << ": " << kind.rows << (most > 0 ? " more" : "")
            << (kind.rows == 1 ? " row " : " rows ") << kind.text
            << (kind.firstPlace == name ? "" : ", the first at " + kind.firstPlace)
            << (&kind == &kinds.back() ? "; --messages all shows them\n" : "\n");
}

} // namespace kiv::host
