#include "host/rows/NumberText.h"

#include <algorithm>
#include <cmath>

#include "params/Quoted.h"
#include "support/Numbers.h"

namespace kiv::host {

namespace {

constexpr std::string_view minus = "\xE2\x88\x92";
constexpr std::string_view noBreakSpaces[] = {"\xC2\xA0", "\xE2\x80\xAF"};

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

std::string_view trimmed(std::string_view text) {
    for (bool found = true; found;) {
        found = false;
        for (const std::string_view space : noBreakSpaces) {
            const bool front = text.starts_with(space);
            text.remove_prefix(front ? space.size() : 0);
            const bool back = text.ends_with(space);
            text.remove_suffix(back ? space.size() : 0);
            found = found || front || back;
        }
    }
    return text;
}

// The length of a no-break space at the front that three digits follow, no more; 0 where there is
// none.
std::size_t groupMark(std::string_view text) {
    for (const std::string_view space : noBreakSpaces) {
        const std::string_view group = text.substr(std::min(space.size(), text.size()));
        const auto digits = std::find_if_not(group.begin(), group.end(), isDigit) - group.begin();
        if (text.starts_with(space) && digits == 3)
            return space.size();
    }
    return 0;
}

} // namespace

std::string asciiNumber(std::string_view text) {
    std::string plain;
    for (std::string_view rest = trimmed(text); !rest.empty();) {
        if (rest.starts_with(minus)) {
            plain.push_back('-');
            rest.remove_prefix(minus.size());
        } else if (const std::size_t mark = groupMark(rest);
                   mark > 0 && !plain.empty() && isDigit(plain.back())) {
            rest.remove_prefix(mark);
        } else {
            plain.push_back(rest.front());
            rest.remove_prefix(1);
        }
    }
    return plain;
}

std::string_view withoutZeroDecimals(std::string_view number, char decimalMark) {
    const std::size_t mark = number.find(decimalMark);
    return number.find_first_not_of('0', mark == number.npos ? mark : mark + 1) == number.npos
               ? number.substr(0, mark)
               : number;
}

bool isNumberWithMark(std::string_view text, char mark) {
    std::string number = asciiNumber(text);
    const std::size_t place = number.find(mark);
    if (place == number.npos || (mark != '.' && number.find('.') != number.npos))
        return false;
    number[place] = '.';
    const auto value = numberIn<double>(number);
    return value && std::isfinite(*value);
}

std::string expectedNumber(std::optional<long double> found, double largest) {
    if (!found)
        return "a number";
    if (!std::isfinite(*found))
        return "a finite number";
    if (std::abs(*found) < 1)
        return "a number that is not so close to 0";
    return "a number up to " + roundedText(largest, 2) + " in size";
}

std::string markOfNumber(std::string_view text) {
    constexpr std::string_view digits = "0123456789";
    const std::size_t end = text.find_last_of(digits);
    if (end == text.npos)
        return {};
    std::string_view unit = text.substr(end + 1);
    unit.remove_prefix(std::min(unit.find_first_not_of(' '), unit.size()));
    std::string number(text.substr(0, end + 1));
    if (!unit.empty() && numberIn<double>(number))
        return ", a number with " + inQuotes(unit) + " behind it";
    for (const std::string_view mark : {"'", "\xE2\x80\x99", " "}) {
        std::string plain = number;
        for (std::size_t at; (at = plain.find(mark)) != plain.npos;)
            plain.erase(at, mark.size());
        if (unit.empty() && plain != number && numberIn<double>(plain))
            return ", a number with marks between thousands";
    }
    return {};
}

} // namespace kiv::host
