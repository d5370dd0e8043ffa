#include "host/rows/ColumnNames.h"

#include <algorithm>
#include <utility>

#include "host/base/Files.h"
#include "host/base/FlatJson.h"
#include "host/rows/CloseNames.h"
#include "host/rows/Readings.h"
#include "params/Quoted.h"

namespace kiv::host {

namespace {

// An entry's names, where they are such.
bool takeNames(const FlatJson& json, std::size_t i, TableFormat& format) {
    const FlatJson::Entry& entry = json.entries()[i];
    const std::string name = inQuotes(entry.name);
    if (std::count(format.columns.begin(), format.columns.end(), entry.name) == 0)
        return json.report(entry.place, "one of " + joined(format.columns),
                           name + "; the nearest is "
                               + std::string(nearestName(format.columns, entry.name)));
    if (json.repeats(i))
        return json.report(entry.place, "each name once", name + " again");
    if (!entry.value.is_string() || entry.value.get<std::string>().empty())
        return json.report(json.valuePlace(entry), "the name that the table has for " + name,
                           shownValue(entry.value));
    const auto& names = format.otherNames;
    if (std::none_of(names.begin(), names.end(),
                     [&](const TableFormat::Name& other) { return other.ours == entry.name; }))
        format.otherNames.push_back({entry.name, entry.value.get<std::string>()});
    return true;
}

} // namespace

std::string joined(const std::vector<std::string_view>& names) {
    std::string text;
    for (const std::string_view name : names)
        text.append(text.empty() ? "" : ", ").append(name);
    return text;
}

std::optional<NameFault> faultOfNames(const TableFormat& format) {
    const auto& names = format.otherNames;
    for (auto name = names.rbegin(); name != names.rend(); ++name) {
        const auto same = [&](const TableFormat::Name& other) { return other.ours == name->ours; };
        if (std::count_if(names.begin(), names.end(), same) > 1)
            return NameFault{name->ours, "each name once", name->ours + " again"};
        for (const std::string_view column : format.columns) {
            const bool seconds =
                name->ours == timeColumn && column == timeStampColumn && name->theirs == column;
            if (column != name->ours && format.nameOf(column) == name->theirs && !seconds)
                return NameFault{name->ours, "one name for the column " + name->theirs,
                                 name->ours + " and " + std::string(column)};
        }
    }
    return std::nullopt;
}

bool readColumnNames(TableFormat& format, const Streams& streams) {
    if (format.columnsFile.empty())
        return true;
    Input input;
    if (!input.open(format.columnsFile, streams))
        return false;
    std::string text;
    if (!input.readAll(text, streams.err))
        return false;
    FlatJson json(input.name(), std::move(text), streams.err);
    if (!json.parse("column names"))
        return false;
    bool good = true;
    for (std::size_t i = 0; i < json.entries().size(); ++i)
        good = takeNames(json, i, format) && good;
    const auto fault = good ? faultOfNames(format) : std::nullopt;
    if (!fault)
        return good;
    const auto entry =
        std::find_if(json.entries().begin(), json.entries().end(),
                     [&](const FlatJson::Entry& each) { return each.name == fault->name; });
    return json.report(entry == json.entries().end() ? 0 : entry->place, fault->expected,
                       fault->found);
}

} // namespace kiv::host
