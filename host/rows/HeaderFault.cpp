#include "host/rows/HeaderFault.h"

#include <algorithm>

#include "support/Numbers.h"

namespace kiv::host {

namespace {

bool contains(std::span<const std::string_view> names, std::string_view name) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

bool hasLetter(std::string_view line) {
    return std::any_of(line.begin(), line.end(),
                       [](char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); });
}

// Most of the missing names, or in their number others than a title without columns has.
bool isRowOfNames(std::string_view line, std::span<const std::string_view> missing,
                  bool titleHasColumns) {
    const auto most = [&](std::ptrdiff_t n) {
        return 2 * n > static_cast<std::ptrdiff_t>(missing.size());
    };
    const auto separators = [&](char c) { return std::count(line.begin(), line.end(), c); };
    return most(std::count_if(missing.begin(), missing.end(),
                              [&](std::string_view name) { return line.find(name) != line.npos; }))
           || (!titleHasColumns && hasLetter(line) && line.find('|') == line.npos
               && most(std::max({separators(','), separators(';'), separators('\t')})));
}

// Few lines are above it.
bool hasRowOfNames(std::string_view lines, std::span<const std::string_view> missing,
                   bool titleHasColumns) {
    constexpr int mostAbove = 20;
    for (int i = 0; i < mostAbove && !lines.empty(); ++i) {
        const std::size_t end = std::min(lines.find('\n'), lines.size() - 1);
        if (isRowOfNames(lines.substr(0, end), missing, titleHasColumns))
            return true;
        lines.remove_prefix(end + 1);
    }
    return false;
}

} // namespace

std::string lookOfHeader(std::string_view row, std::span<const std::string_view> names,
                         std::string_view rest, std::span<const std::string_view> missing) {
    const auto numbers = [](std::string_view name) { return numberIn<double>(name).has_value(); };

    if (row.find('\0') != row.npos)
        return "no text: save the table as CSV in UTF-8";
    if (row.starts_with("Serial Number"))
        return "a parameter file";
    if (contains(names, "state") && contains(names, "rx_deg"))
        return "a table of results";
    if (hasRowOfNames(rest, missing, names.size() > 1))
        return "a title or comment above the row of names: delete the lines above that row";
    if (row.find('\r') < row.size() - 1)
        return "lines that end in a carriage return alone: save it with other line ends";
    if (row.find('|') != row.npos)
        return "columns between bars: commas, semicolons and tabs are read";
    if (std::all_of(names.begin(), names.end(), numbers))
        return "numbers: the row of names is missing";
    return {};
}

} // namespace kiv::host
