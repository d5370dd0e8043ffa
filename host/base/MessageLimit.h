#pragma once

#include <cstddef>
#include <iosfwd>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace kiv::host {

struct Message {
    std::string_view kind; // of rows, as "with a cell that is no number"
    std::string text;      // the whole line
    bool once = false;     // the first of its kind says what the others would
};

// A line in words, of a table that is named where there are several.
std::string linePlace(std::size_t line, std::string_view table);

void show(std::span<const Message> messages, std::ostream& err);

// Shows the first messages about rows and counts the rows of the others by their kinds.
class MessageLimit {
public:
    MessageLimit(std::size_t mostShown, std::ostream& messages) : most(mostShown), err(messages) {}

    void take(std::span<const Message> ofARow);

    // A line for each kind of those that are not shown.
    void reportOthers(const std::string& name) const;

private:
    void count(const Message& message);
    bool isTold(const Message& message); // by another before it, which is enough

    struct Kind {
        std::string_view text;
        std::size_t rows;
        std::string firstPlace;
    };

    std::size_t most;
    std::size_t shown = 0;
    std::ostream& err;
    std::vector<std::string_view> told;
    std::vector<Kind> kinds; // few: in the order of their first message
};

} // namespace kiv::host
