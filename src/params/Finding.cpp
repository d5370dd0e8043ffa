#include "params/Finding.h"

#include <utility>

#include "params/Quoted.h"

namespace kiv {

std::string shownWord(std::string_view word) {
    return word.empty() ? "end of file" : inQuotes(word);
}

Finding findingAtWord(Scanner& scanner, Block block, std::string expected) {
    const std::string_view word = scanner.peekWord();
    const auto [line, column] = scanner.place();
    return {block, line, column, std::move(expected), shownWord(word)};
}

} // namespace kiv
