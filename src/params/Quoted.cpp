#include "params/Quoted.h"

namespace kiv {

std::string quoted(std::string_view text) {
    constexpr std::size_t maxShown = 40;
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string shown = "\"";
    for (const char c : text.substr(0, maxShown)) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 0x20 || byte > 0x7E)
            shown.append({'\\', 'x', digits[byte >> 4], digits[byte & 0xF]});
        else if (c == '"' || c == '\\')
            shown.append({'\\', c});
        else
            shown += c;
    }
    return shown + (text.size() > maxShown ? "...\"" : "\"");
}

} // namespace kiv
