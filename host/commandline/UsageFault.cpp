#include "host/commandline/UsageFault.h"

#include <algorithm>
#include <string_view>

#include "params/Quoted.h"
#include "support/EditDistance.h"

namespace kiv::host {

namespace {

// As the parser takes a word: an option, but no negative number.
bool looksLikeOption(std::string_view word) {
    return word.size() > 1 && word[0] == '-' && (word[1] < '0' || word[1] > '9') && word[1] != '.';
}

std::string optionName(std::string_view word) {
    return std::string(word.starts_with("--") ? word.substr(0, word.find('=')) : word.substr(0, 2));
}

// Of one subcommand, where it is not too far.
std::string nearestOption(const CLI::App& command, std::string_view word) {
    const std::string_view typed = word.substr(std::min(word.find_first_not_of('-'), word.size()));
    std::string nearest;
    std::size_t least = std::max<std::size_t>(typed.size() / 2, 1) + 1;
    for (const CLI::Option* option : command.get_options())
        for (const std::string& name : option->get_lnames())
            if (const std::size_t distance = editDistance(name, typed); distance < least) {
                least = distance;
                nearest = "--" + name;
            }
    return nearest;
}

// Of the parser's own messages those that name options alone or count values.
std::string inOurWords(const std::string& text) {
    const std::string option = text.substr(0, text.find(':'));
    constexpr std::string_view excludes = " excludes ", received = " required but received ";
    if (text.find("not expected: ") != text.npos)
        return "expected nothing more, found " + text.substr(text.find(':') + 2);
    if (text.ends_with(" missing"))
        return option + ": expected a value, found none";
    if (const std::size_t at = text.find(received); at != text.npos) {
        const std::string wanted = text.substr(text.rfind(' ', at - 1) + 1);
        const std::string most = wanted.substr(0, wanted.find(' '));
        return option + ": expected " + (most == "1" ? "one value" : most + " values") + ", found "
               + text.substr(at + received.size());
    }
    if (const std::size_t at = text.find(excludes); at != text.npos)
        return "expected " + text.substr(0, at) + " or " + text.substr(at + excludes.size())
               + ", found both";
    return text;
}

// What has no letter or dash in front is an argument by its place.
std::string argumentName(const CLI::Option& option) {
    std::string name = option.get_name();
    if (option.get_positional())
        std::transform(name.begin(), name.end(), name.begin(),
                       [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c; });
    return name;
}

} // namespace

// A word that is taken for something else, as the value of a mistyped option, leaves the parser
// with another fault than its own.
std::string usageFault(const CLI::App& command, std::span<const char* const> words,
                       const CLI::ParseError& fault) {
    for (const std::string_view word : words) {
        if (word == "--")
            break;
        if (!looksLikeOption(word) || command.get_option_no_throw(optionName(word)))
            continue;
        const std::string nearest = nearestOption(command, optionName(word));
        return ": expected one of its options, found " + inQuotes(word.substr(0, word.find('=')))
               + (nearest.empty() ? "" : "; the nearest is " + nearest);
    }
    const std::string text = fault.what();
    for (const CLI::Option* option : command.get_options()) {
        if (option->get_required() && option->empty())
            return ": expected " + argumentName(*option) + ", found none";
        if (option->get_positional() && text.starts_with(option->get_name() + ": "))
            return ' ' + argumentName(*option) + printable(text.substr(option->get_name().size()));
    }
    return (text.starts_with("--") && text.find(" excludes ") == text.npos ? " " : ": ")
           + printable(inOurWords(text));
}

} // namespace kiv::host
