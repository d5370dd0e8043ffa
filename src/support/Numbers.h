#pragma once

#include <charconv>
#include <optional>
#include <string>
#include <string_view>

// Numbers as text, in any locale: all digits go through std::from_chars and std::to_chars.
namespace kiv {

// The whole text as a decimal number; a plus sign is fine, anything left over is not. inf and nan
// are numbers here; what does not fit in the type is none.
template <typename Number>
std::optional<Number> numberIn(std::string_view text) {
    const char* first = text.data();
    const char* last = first + text.size();
    if (first != last && *first == '+' && last - first > 1 && first[1] != '-')
        ++first;
    Number value{};
    const auto [end, error] = std::from_chars(first, last, value);
    if (error != std::errc() || end != last)
        return std::nullopt;
    return value;
}

// The shortest digits that read back to the same value.
template <typename Number>
void appendNumber(std::string& text, Number value) {
    char digits[32];
    const auto [end, error] = std::to_chars(digits, digits + sizeof digits, value);
    text.append(digits, end);
}

template <typename Number>
std::string shown(Number value) {
    std::string text;
    appendNumber(text, value);
    return text;
}

// Of so many significant digits at most.
inline std::string roundedText(double value, int significant) {
    char digits[64];
    const auto [end, error] = std::to_chars(digits, digits + sizeof digits, value,
                                            std::chars_format::general, significant);
    return {digits, end};
}

// The text has six decimals; no zero has a sign.
inline std::string degreesText(double value) {
    char digits[320]; // of the largest double
    const auto [end, error] =
        std::to_chars(digits, digits + sizeof digits, value, std::chars_format::fixed, 6);
    const std::string_view text(digits, end);
    return std::string(text == "-0.000000" ? text.substr(1) : text);
}

} // namespace kiv
