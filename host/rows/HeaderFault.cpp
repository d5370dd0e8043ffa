#include "host/rows/HeaderFault.h"

#include <algorithm>

#include "support/Numbers.h"

namespace kiv::host {

namespace {

bool contains(std::span<const std::string_view> names, std::string_view name) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

} // namespace

std::string lookOfHeader(std::string_view row, std::span<const std::string_view> names,
                         std::string_view nextRow, std::span<const std::string_view> missing) {
    const auto numbers = [](std::string_view name) { return numberIn<double>(name).has_value(); };
    const auto named = std::count_if(missing.begin(), missing.end(), [&](std::string_view name) {
        return nextRow.find(name) != nextRow.npos;
    });

    if (row.find('\0') != row.npos)
        return "no text: save the table as CSV in UTF-8";
    if (row.starts_with("Serial Number"))
        return "a parameter file";
    if (contains(names, "state") && contains(names, "rx_deg"))
        return "a table of results";
    if (2 * named > static_cast<std::ptrdiff_t>(missing.size()))
        return "a title or comment above the row of names";
    if (row.find('\r') < row.size() - 1)
        return "lines that end in a carriage return alone: save it with other line ends";
    if (std::all_of(names.begin(), names.end(), numbers))
        return "numbers: the row of names is missing";
    if (row.find('|') != row.npos)
        return "columns between bars: commas, semicolons and tabs are read";
    return {};
}

} // namespace kiv::host
