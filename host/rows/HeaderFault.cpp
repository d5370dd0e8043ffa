#include "host/rows/HeaderFault.h"

#include <algorithm>
#include <cctype>

#include "params/Quoted.h"
#include "support/Numbers.h"

namespace kiv::host {

namespace {

bool contains(std::span<const std::string_view> names, std::string_view name) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

// Letters in lower case, and no blanks or signs: what a name in another spelling has in common.
std::string plain(std::string_view name) {
    std::string letters;
    for (const char c : name)
        if (const auto byte = static_cast<unsigned char>(c); std::isalnum(byte))
            letters.push_back(static_cast<char>(std::tolower(byte)));
    return letters;
}

// A name that is there in another spelling, as "X" for "x".
std::string otherSpelling(std::span<const std::string_view> names,
                          std::span<const std::string_view> missing) {
    for (const std::string_view name : missing)
        for (const std::string_view found : names)
            if (plain(found) == plain(name))
                return quoted(found) + " for " + quoted(name);
    return {};
}

} // namespace

std::string lookOfHeader(std::string_view row, std::span<const std::string_view> names,
                         std::string_view nextRow, std::span<const std::string_view> missing) {
    const auto startsWith = [&](std::string_view bytes) { return row.starts_with(bytes); };
    const auto numbers = [](std::string_view name) { return numberIn<double>(name).has_value(); };
    const auto named = std::count_if(missing.begin(), missing.end(), [&](std::string_view name) {
        return nextRow.find(name) != nextRow.npos;
    });

    if (startsWith("\x1F\x8B"))
        return "a file compressed by gzip";
    if (startsWith("PK\x03\x04"))
        return "a zip archive or a spreadsheet's own file: a table is saved as CSV";
    if (startsWith("\xFF\xFE") || startsWith("\xFE\xFF") || row.find('\0') != row.npos)
        return "text in UTF-16, or no text: a table is saved as UTF-8";
    if (startsWith("Serial Number"))
        return "a parameter file";
    if (contains(names, "state") && contains(names, "rx_deg"))
        return "a table of results";
    if (2 * named > static_cast<std::ptrdiff_t>(missing.size()))
        return "a title or comment above the row of names";
    if (const std::string spelling = otherSpelling(names, missing); !spelling.empty())
        return "names in another spelling, " + spelling;
    if (std::all_of(names.begin(), names.end(), numbers))
        return "numbers: the row of names is missing";
    if (row.find('|') != row.npos)
        return "columns between bars: commas, semicolons and tabs are read";
    return {};
}

} // namespace kiv::host
