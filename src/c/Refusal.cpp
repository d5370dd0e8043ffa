#include "c/Refusal.h"

#include "support/platform/LastRefusal.h"

namespace kiv::c {

namespace {

constexpr std::size_t room = sizeof platform::LastRefusal::text - 1;
constexpr std::size_t longestPath = room / 2;

constexpr bool startsCharacter(char c) { // in UTF-8
    return (static_cast<unsigned char>(c) & 0xC0U) != 0x80U;
}

} // namespace

RefusalText::RefusalText(int systemError) noexcept {
    if (platform::LastRefusal* own = platform::lastRefusal()) {
        text = own->text;
        own->system = systemError;
    }
}

RefusalText::~RefusalText() {
    if (text)
        text[size] = '\0';
}

void RefusalText::add(std::string_view piece) noexcept {
    if (!text || full)
        return;
    std::size_t n = piece.size();
    full = n > room - size;
    if (full)
        for (n = room - size; n > 0 && !startsCharacter(piece[n]);)
            --n;
    piece.copy(text + size, n);
    size += n;
}

void RefusalText::addPath(std::string_view path) noexcept {
    if (path.size() > longestPath) {
        path.remove_prefix(path.size() - longestPath);
        while (!path.empty() && !startsCharacter(path.front()))
            path.remove_prefix(1);
        add("...");
    }
    add(path);
}

} // namespace kiv::c

const char* kiv_last_error(void) {
    const kiv::platform::LastRefusal* last = kiv::platform::lastRefusal();
    return last ? last->text : "";
}

int kiv_last_system_error(void) {
    const kiv::platform::LastRefusal* last = kiv::platform::lastRefusal();
    return last ? last->system : 0;
}
