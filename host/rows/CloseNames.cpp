#include "host/rows/CloseNames.h"

#include <algorithm>
#include <cctype>
#include <optional>
#include <string>

#include "support/EditDistance.h"

namespace kiv::host {

namespace {

constexpr std::string_view units[] = {"mm",  "m",      "cm", "um",   "in",      "inch",   "ft",
                                      "deg", "degree", "c",  "degc", "celsius", "degrees"};
constexpr std::size_t mostWrong = 2; // letters

// How far two names are from each other; the first two are the same name.
enum Rank : std::size_t { sameLetters, sameWithoutUnit, wrongLetters, start = 5, far = 6 };

// What a name in another spelling has in common: letters in lower case and digits.
struct PlainName {
    std::string letters;
    std::string withoutUnit;

    explicit PlainName(std::string_view name) {
        std::string word;
        const auto endWord = [&] {
            letters += word;
            if (std::find(std::begin(units), std::end(units), word) == std::end(units))
                withoutUnit += word;
            word.clear();
        };
        for (const char c : name) {
            const auto byte = static_cast<unsigned char>(c);
            if (std::isalnum(byte))
                word.push_back(static_cast<char>(std::tolower(byte)));
            else
                endWord();
        }
        endWord();
        if (withoutUnit.empty())
            withoutUnit = letters;
    }
};

std::size_t rankOf(const PlainName& missing, const PlainName& found) {
    const std::string& a = missing.letters;
    const std::string& b = found.letters;
    if (a == b)
        return sameLetters;
    if (missing.withoutUnit == found.withoutUnit)
        return sameWithoutUnit;
    const std::size_t longer = std::max(a.size(), b.size());
    if (longer - std::min(a.size(), b.size()) <= mostWrong)
        if (const std::size_t wrong = editDistance(a, b);
            wrong <= mostWrong && 2 * wrong < a.size())
            return wrongLetters + wrong;
    return found.withoutUnit.size() > 1 && a.starts_with(found.withoutUnit) ? start : far;
}

} // namespace

std::vector<ClosePair> closePairs(std::span<const std::string_view> missing,
                                  std::span<const std::string_view> found) {
    const std::vector<PlainName> wanted(missing.begin(), missing.end());
    struct Best {
        std::size_t rank = far;
        std::size_t found = 0;
    };
    std::vector<Best> best(missing.size());
    for (std::size_t f = 0; f < found.size(); ++f) {
        const PlainName name(found[f]);
        std::size_t nearest = far;
        std::size_t of = missing.size(); // of none, or of several
        for (std::size_t m = 0; m < wanted.size() && !name.letters.empty(); ++m) {
            const std::size_t rank = rankOf(wanted[m], name);
            of = rank < nearest ? m : rank == nearest ? missing.size() : of;
            nearest = std::min(nearest, rank);
        }
        if (of < missing.size() && nearest < best[of].rank)
            best[of] = {nearest, f};
    }
    std::vector<ClosePair> pairs;
    for (std::size_t m = 0; m < best.size(); ++m)
        if (best[m].rank < far)
            pairs.push_back({m, best[m].found});
    return pairs;
}

std::string_view nearestName(std::span<const std::string_view> names, std::string_view name) {
    return *std::min_element(names.begin(), names.end(), [&](auto a, auto b) {
        return editDistance(a, name) < editDistance(b, name);
    });
}

} // namespace kiv::host
