#include "host/rows/TimeStamp.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdint>

#include "support/Numbers.h"

namespace kiv::host {

namespace {

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

// Takes what it asks for off the front of a text.
class Front {
public:
    explicit Front(std::string_view text) : rest(text) {}

    bool take(std::string_view anyOf) {
        if (rest.empty() || anyOf.find(rest[0]) == anyOf.npos)
            return false;
        taken = rest[0];
        rest.remove_prefix(1);
        return true;
    }

    // A number of so many digits, at most largest.
    bool take(std::size_t digits, int largest, int& value) {
        if (rest.size() < digits || !std::all_of(rest.begin(), rest.begin() + digits, isDigit))
            return false;
        value = numberIn<int>(rest.substr(0, digits)).value_or(0);
        rest.remove_prefix(digits);
        return value <= largest;
    }

    // Decimals, as seconds.
    bool takeFraction(double& value) {
        const auto end = std::find_if_not(rest.begin(), rest.end(), isDigit);
        const auto count = static_cast<std::size_t>(end - rest.begin());
        value = numberIn<double>("0." + std::string(rest.substr(0, count))).value_or(0);
        rest.remove_prefix(count);
        return count > 0;
    }

    bool startsWithDigit() const { return !rest.empty() && isDigit(rest[0]); }
    char last() const { return taken; }
    bool done() const { return rest.empty(); }

private:
    std::string_view rest;
    char taken = 0;
};

void appendPadded(std::string& text, long long value, std::size_t width) {
    const std::string digits = std::to_string(value);
    text.append(width - std::min(width, digits.size()), '0').append(digits);
}

// Of nine digits in front of the point from 1973 on, so that seconds of a recording, and a date
// alone, are no such time.
std::optional<TimeStamp> epochSecondsIn(std::string_view text) {
    const auto end = std::find_if_not(text.begin(), text.end(), isDigit);
    const auto digits = static_cast<std::size_t>(end - text.begin());
    if (digits != 9 && digits != 10)
        return std::nullopt;
    const double seconds = numberIn<double>(text.substr(0, digits)).value_or(0);
    Front front(text.substr(digits));
    double fraction = 0;
    if ((front.take(".,") && !front.takeFraction(fraction)) || !front.done())
        return std::nullopt;
    return TimeStamp{seconds + fraction, true};
}

} // namespace

std::optional<TimeStamp> timeStampIn(std::string_view text) {
    using namespace std::chrono;
    if (const auto stamp = epochSecondsIn(text))
        return stamp;
    Front front(text);
    int year = 0, month = 0, day = 0, hour = 0, minute = 0, second = 0;
    double fraction = 0;
    const bool dayFirst = text.size() > 2 && text[2] == '.';
    const bool basic = !dayFirst && text.size() > 4 && isDigit(text[4]);
    const auto mark = [&](std::string_view anyOf) { return basic || front.take(anyOf); };
    const bool dated = dayFirst
                           ? front.take(2, 31, day) && front.take(".") && front.take(2, 12, month)
                                 && front.take(".") && front.take(4, 9999, year)
                           : front.take(4, 9999, year) && mark("-") && front.take(2, 12, month)
                                 && mark("-") && front.take(2, 31, day);
    if (!dated || !front.take("Tt ") || !front.take(2, 23, hour) || !mark(":")
        || !front.take(2, 59, minute))
        return std::nullopt;
    const bool hasSeconds = basic ? front.startsWithDigit() : front.take(":");
    if (hasSeconds
        && (!front.take(2, 60, second) || (front.take(".,") && !front.takeFraction(fraction))))
        return std::nullopt;

    const bool zoned = front.take("Zz+-");
    int offset = 0; // minutes
    if (zoned && front.last() != 'Z' && front.last() != 'z') {
        const int sign = front.last() == '-' ? -1 : 1;
        int hours = 0, minutes = 0;
        if (!front.take(2, 23, hours))
            return std::nullopt;
        if ((front.take(":") || !front.done()) && !front.take(2, 59, minutes))
            return std::nullopt;
        offset = sign * (60 * hours + minutes);
    }
    const year_month_day date{std::chrono::year(year),
                              std::chrono::month(static_cast<unsigned>(month)),
                              std::chrono::day(static_cast<unsigned>(day))};
    if (!front.done() || !date.ok())
        return std::nullopt;
    const auto days = static_cast<double>(sys_days(date).time_since_epoch().count());
    return TimeStamp{days * 86400 + hour * 3600 + (minute - offset) * 60 + second + fraction,
                     zoned};
}

std::string timeStampText(TimeStamp time) {
    using namespace std::chrono;
    const sys_time<microseconds> moment(microseconds(std::llround(time.seconds * 1e6)));
    const auto start = floor<days>(moment);
    const year_month_day date(start);
    const hh_mm_ss ofDay(moment - start);
    std::string text;
    appendPadded(text, int(date.year()), 4);
    appendPadded(text += '-', unsigned(date.month()), 2);
    appendPadded(text += '-', unsigned(date.day()), 2);
    appendPadded(text += 'T', ofDay.hours().count(), 2);
    appendPadded(text += ':', ofDay.minutes().count(), 2);
    appendPadded(text += ':', ofDay.seconds().count(), 2);
    if (ofDay.subseconds().count() > 0) {
        appendPadded(text += '.', ofDay.subseconds().count(), 6);
        text.erase(text.find_last_not_of('0') + 1);
    }
    return text += time.zoned ? "Z" : "";
}

} // namespace kiv::host
