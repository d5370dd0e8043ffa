#pragma once

#include <cstddef>
#include <iosfwd>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace kiv::host {

struct Message {
    std::string kind; // what was expected
    std::string text; // the whole line
};

// A line in words, of a table that is named where there are several.
std::string linePlace(std::size_t line, std::string_view table);

void show(std::span<const Message> messages, std::ostream& err);

// Shows the first messages of each kind and counts the others.
class MessageLimit {
public:
    MessageLimit(std::size_t mostOfAKind, std::ostream& messages)
        : most(mostOfAKind), err(messages) {}

    void take(std::span<const Message> messages);

    // A line for each kind that had more.
    void reportOthers(const std::string& name) const;

private:
    // False: the message is one too many.
    bool admits(std::string_view kind);

    struct Kind {
        std::string text;
        std::size_t count = 0;
    };

    std::size_t most;
    std::ostream& err;
    std::vector<Kind> kinds; // few: in the order of their first message
};

} // namespace kiv::host
