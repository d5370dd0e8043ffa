#pragma once

#include <cstddef>
#include <iosfwd>
#include <string>
#include <string_view>
#include <vector>

namespace kiv::host {

// Shows the first messages of each kind and counts the others.
class MessageLimit {
public:
    explicit MessageLimit(std::size_t mostOfAKind) : most(mostOfAKind) {}

    // False: the message is one too many.
    bool admits(std::string_view kind);

    // A line for each kind that had more.
    void reportOthers(const std::string& name, std::ostream& err) const;

private:
    struct Kind {
        std::string text;
        std::size_t count = 0;
    };

    std::size_t most;
    std::vector<Kind> kinds; // few: in the order of their first message
};

} // namespace kiv::host
