#include "params/Quoted.h"

#include <algorithm>
#include <utility>

namespace kiv {

namespace {

struct Character {
    std::size_t size; // bytes
    char32_t code;    // a control character where the byte begins no UTF-8
};

Character firstOf(std::string_view text) {
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const std::size_t size = byte(0) < 0x80                      ? 1
                             : byte(0) >= 0xC2 && byte(0) < 0xE0 ? 2
                             : byte(0) >= 0xE0 && byte(0) < 0xF0 ? 3
                             : byte(0) >= 0xF0 && byte(0) < 0xF5 ? 4
                                                                 : 0;
    constexpr Character none{1, 0};
    if (size == 0 || size > text.size())
        return none;
    char32_t code = size == 1 ? byte(0) : byte(0) & (0x7FU >> size);
    for (std::size_t i = 1; i < size; ++i) {
        if ((byte(i) & 0xC0U) != 0x80)
            return none;
        code = code << 6 | (byte(i) & 0x3FU);
    }
    constexpr char32_t least[] = {0, 0, 0x80, 0x800, 0x10000}; // of so many bytes
    const bool surrogate = code >= 0xD800 && code < 0xE000;
    return code < least[size] || code > 0x10FFFF || surrogate ? none : Character{size, code};
}

// Nobody sees it, or it changes how its neighbours look.
bool isHidden(char32_t code) {
    constexpr std::pair<char32_t, char32_t> hidden[] = {
        {0, 0x1F},        {0x7F, 0xA0},     {0xAD, 0xAD},     {0x61C, 0x61C},    {0x115F, 0x1160},
        {0x1680, 0x1680}, {0x17B4, 0x17B5}, {0x180B, 0x180E}, {0x2000, 0x200F},  {0x2028, 0x202F},
        {0x205F, 0x206F}, {0x3000, 0x3000}, {0x3164, 0x3164}, {0xFE00, 0xFE0F},  {0xFEFF, 0xFEFF},
        {0xFFA0, 0xFFA0}, {0xFFF0, 0xFFFB}, {0xFFFE, 0xFFFF}, {0xE0000, 0xE0FFF}};
    return std::any_of(std::begin(hidden), std::end(hidden), [&](const auto& range) {
        return code >= range.first && code <= range.second;
    });
}

// With a backslash in front of each of the marks.
std::string shown(std::string_view text, std::string_view marked) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string shown;
    while (!text.empty()) {
        const auto [size, code] = firstOf(text);
        if (isHidden(code)) {
            for (const char c : text.substr(0, size)) {
                const auto byte = static_cast<unsigned char>(c);
                shown.append({'\\', 'x', digits[byte >> 4], digits[byte & 0xF]});
            }
        } else {
            shown.append(marked.find(text[0]) == marked.npos ? "" : "\\");
            shown.append(text.substr(0, size));
        }
        text.remove_prefix(size);
    }
    return shown;
}

} // namespace

std::string printable(std::string_view text) {
    return shown(text, "");
}

bool isUtf8(std::string_view text) {
    while (!text.empty()) {
        const auto [size, code] = firstOf(text);
        if (code == 0 && text[0] != 0)
            return false;
        text.remove_prefix(size);
    }
    return true;
}

std::string inQuotes(std::string_view text) {
    constexpr std::size_t mostShown = 40;
    std::size_t end = 0; // behind whole characters
    while (end < text.size() && end + firstOf(text.substr(end)).size <= mostShown)
        end += firstOf(text.substr(end)).size;
    return '"' + shown(text.substr(0, end), "\"\\") + (end < text.size() ? "...\"" : "\"");
}

} // namespace kiv
