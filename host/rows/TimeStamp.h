#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace kiv::host {

// A date and time of day: of ISO 8601 in its extended form, as 2026-03-29T14:05:09.25+02:00, or its
// basic one, as 20260329T140509; with the day first, as 29.03.2026 14:05:09; or seconds since 1970
// in UTC, of nine or ten digits. A blank for the T, a comma for the point and no seconds are fine.
struct TimeStamp {
    double seconds; // since 1970, in UTC where there is a zone, else as clocks show
    bool zoned;     // with Z or an offset from UTC behind it
};

// Nothing for any other text.
std::optional<TimeStamp> timeStampIn(std::string_view text);

// The text of a moment to a microsecond, with Z where it is in UTC.
std::string timeStampText(TimeStamp time);

} // namespace kiv::host
