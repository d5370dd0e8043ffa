#include "host/rows/TableFolder.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <string_view>
#include <vector>

#include "host/base/Files.h"
#include "params/Quoted.h"

namespace kiv::host {

namespace {

constexpr std::string_view extensions[] = {".csv", ".tsv", ".txt"};
constexpr std::size_t mostShown = 12;

std::string textOf(const std::u8string& text) {
    return {text.begin(), text.end()};
}

bool isTable(const std::filesystem::directory_entry& entry) {
    std::error_code ignored;
    std::string extension = textOf(entry.path().extension().u8string());
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return entry.is_regular_file(ignored)
           && std::find(std::begin(extensions), std::end(extensions), extension)
                  != std::end(extensions);
}

} // namespace

std::string lookOfFolder(const std::string& folder) {
    std::vector<std::string> tables;
    std::error_code failed;
    for (std::filesystem::directory_iterator entry(pathOf(folder), failed), end;
         !failed && entry != end; entry.increment(failed))
        if (isTable(*entry))
            tables.push_back(textOf(entry->path().generic_u8string()));
    if (tables.empty())
        return "Is a folder without tables (.csv, .tsv, .txt)";
    std::sort(tables.begin(), tables.end());
    std::string look = "Is a folder; name a table in it: ";
    for (std::size_t i = 0; i < std::min(tables.size(), mostShown); ++i)
        look.append(i == 0 ? "" : ", ").append(printable(tables[i]));
    if (tables.size() > mostShown)
        look.append(" and ").append(std::to_string(tables.size() - mostShown)).append(" more");
    return look;
}

} // namespace kiv::host
