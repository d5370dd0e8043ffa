#include "host/base/MessageLimit.h"

#include <algorithm>
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

bool MessageLimit::admits(std::string_view kind) {
    auto known = std::find_if(kinds.begin(), kinds.end(),
                              [&](const Kind& other) { return other.text == kind; });
    if (known == kinds.end())
        known = kinds.insert(known, Kind{std::string(kind)});
    return ++known->count <= most;
}

void MessageLimit::take(std::span<const Message> messages) {
    for (const Message& message : messages)
        if (admits(message.kind))
            err << message.text;
}

void MessageLimit::reportOthers(const std::string& name) const {
    for (const Kind& kind : kinds)
        if (kind.count > most)
            err << name << ": " << kind.count - most << (most > 0 ? " more" : "")
                << " where it was expected: " << kind.text << '\n';
}

} // namespace kiv::host
