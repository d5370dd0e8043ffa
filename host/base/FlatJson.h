#pragma once

#include <cstddef>
#include <iosfwd>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <nlohmann/json.hpp>

namespace kiv::host {

// A file's JSON object of names and plain values, and where they stand in its text.
class FlatJson {
public:
    struct Entry {
        std::string name;
        nlohmann::ordered_json value;
        std::size_t place; // of the name in the text
    };

    FlatJson(const std::string& fileName, std::string content, std::ostream& messages)
        : file(fileName), text(std::move(content)), err(messages) {}

    // False, and a message, when the text is no JSON object; messages say of what it should be one.
    bool parse(std::string_view ofWhat);

    const std::string& content() const { return text; }
    const std::vector<Entry>& entries() const { return all; } // in the text's order
    bool repeats(std::size_t i) const;                        // a name in front of it
    std::size_t valuePlace(const Entry& entry) const;

    // Says what is wrong at a byte of the text; always false.
    bool report(std::size_t place, std::string_view expected, std::string_view found) const;

private:
    std::string shortest(std::size_t byte) const;

    const std::string& file;
    std::string text;
    std::ostream& err;
    std::vector<Entry> all;
};

// A value as messages show it.
std::string shownValue(const nlohmann::ordered_json& value);

} // namespace kiv::host
