#include "host/rows/RowTime.h"

#include "host/rows/Readings.h"
#include "host/rows/Table.h"

namespace kiv::host {

RowTime::RowTime(const Table& table) : place(table.find(timeColumn)) {
    if (place)
        return;
    place = table.find(timeStampColumn);
    ofDay = true;
}

std::string_view RowTime::column() const {
    return ofDay ? timeStampColumn : timeColumn;
}

std::string_view RowTime::text(const Table& row) const {
    return place ? row.cell(*place) : std::string_view();
}

std::optional<TimeStamp> RowTime::in(const Table& row, std::string_view text) const {
    if (!place)
        return std::nullopt;
    if (ofDay)
        return timeStampIn(text);
    TimeStamp time{};
    return row.numberOf(text, time.seconds) ? std::optional(time) : std::nullopt;
}

// Numbers of as many digits in front of the point stand in the order of their texts, as do stamps;
// those with the day first, whose sixth character is a point, on the same day.
bool risesAsText(std::string_view first, std::string_view second) {
    const auto wholeDigits = [](std::string_view text) {
        std::size_t i = 0;
        while (i < text.size() && text[i] >= '0' && text[i] <= '9')
            ++i;
        return i == text.size() || text[i] == '.' || text[i] == '-' || text[i] == 'T' ? i : 0;
    };
    constexpr std::size_t date = 10;
    const bool dayFirst = second.size() > date && second[2] == '.' && second[5] == '.';
    if (dayFirst && first.substr(0, date) != second.substr(0, date))
        return false;
    const std::size_t digits = wholeDigits(first);
    return digits > 0 && digits == wholeDigits(second) && first <= second;
}

} // namespace kiv::host
