#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace kiv::host {

// A date and time of day of ISO 8601: 2026-03-29T14:05:09.25+02:00; a blank for the T, a comma for
// the point and no seconds are fine.
struct TimeStamp {
    double seconds; // since 1970, in UTC where there is a zone, else as clocks show
    bool zoned;     // with Z or an offset from UTC behind it
};

// Nothing for any other text.
std::optional<TimeStamp> timeStampIn(std::string_view text);

// The text of a moment to a microsecond, with Z where it is in UTC.
std::string timeStampText(TimeStamp time);

} // namespace kiv::host
