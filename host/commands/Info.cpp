#include "host/commands/Info.h"

#include <algorithm>
#include <sstream>
#include <string_view>

#include <nlohmann/json.hpp>

#include "host/base/Files.h"
#include "host/parameters/Findings.h"
#include "params/BlockNames.h"
#include "params/Quoted.h"
#include "support/Numbers.h"
#include "support/Principles.h"

namespace kiv::host {

namespace {

// Keeps the order of the file; numbers in print read back to the same float.
using Json = nlohmann::basic_json<nlohmann::ordered_map, std::vector, std::string, bool,
                                  std::int64_t, std::uint64_t, float>;

// A number with the digits that it has in JSON.
std::string digitsOf(float value) {
    std::string digits = Json(value).dump();
    if (digits.ends_with(".0"))
        digits.resize(digits.size() - 2);
    return digits;
}

Json rowsOf(const BlockValues& values, std::size_t columns) {
    Json rows = Json::array();
    for (auto row = values.numbers.begin(); row != values.numbers.end();
         row += static_cast<std::ptrdiff_t>(columns))
        rows.push_back(std::vector<float>(row, row + static_cast<std::ptrdiff_t>(columns)));
    return rows;
}

Json numbersOf(const BlockLayout& layout, const BlockValues& values) {
    const auto names = valueNamesOf(layout.block);
    if (isMatrix(layout.block))
        return rowsOf(values, 3);
    if (values.numbers.size() == 1)
        return values.numbers.front();
    if (names.empty())
        return values.numbers;
    Json named;
    for (std::size_t i = 0; i < names.size(); ++i)
        named[names[i]] = values.numbers[i];
    return named;
}

Json jsonOf(const BlockLayout& layout, const BlockValues& values) {
    switch (layout.kind) {
    case BlockKind::sensorId:
    case BlockKind::integer:
        return values.integer;
    case BlockKind::word:
        return values.word;
    case BlockKind::numbers:
        return numbersOf(layout, values);
    case BlockKind::encoderTable:
        return {{"rows_deg", rowsOf(values, 2)}};
    case BlockKind::tiltTable: {
        Json table{{"rows_deg", rowsOf(values, 2)}};
        for (std::size_t i = 0; i < values.trailing.size(); ++i)
            table[valueNamesOf(layout.block)[i]] = values.trailing[i];
        table["closing_word"] = values.word;
        return table;
    }
    }
    return nullptr;
}

// Least and largest number of a table's column.
std::string rangeOf(const BlockValues& values, std::size_t column) {
    float least = values.numbers[column];
    float most = least;
    for (std::size_t i = column; i < values.numbers.size(); i += 2) {
        least = std::min(least, values.numbers[i]);
        most = std::max(most, values.numbers[i]);
    }
    return digitsOf(least) + " to " + digitsOf(most);
}

// One line each.
std::vector<std::string> linesOf(const BlockLayout& layout, const BlockValues& values) {
    constexpr std::size_t width = 60;
    const auto names = valueNamesOf(layout.block);
    std::vector<std::string> lines(1);
    switch (layout.kind) {
    case BlockKind::sensorId:
        return {std::to_string(values.integer)};
    case BlockKind::integer:
        return {std::to_string(values.integer) + ", " + modelName(values.integer) + " model"};
    case BlockKind::word:
        return {printable(values.word)};
    case BlockKind::numbers:
        for (std::size_t i = 0; i < values.numbers.size(); ++i) {
            const std::string name = names.empty() ? "" : std::string(names[i]) + ' ';
            const std::string text = name + digitsOf(values.numbers[i]);
            const bool newRow = isMatrix(layout.block) && i % 3 == 0;
            if (!lines.back().empty() && (newRow || lines.back().size() + text.size() > width))
                lines.emplace_back();
            lines.back() += (lines.back().empty() ? "" : "  ") + text;
        }
        return lines;
    case BlockKind::encoderTable:
    case BlockKind::tiltTable:
        lines[0] = std::to_string(values.rows()) + (values.rows() == 1 ? " row" : " rows");
        if (values.rows() > 0)
            lines[0] += ", " + rangeOf(values, 0) + " deg, values " + rangeOf(values, 1);
        if (layout.kind == BlockKind::tiltTable)
            lines.push_back("limits " + digitsOf(values.trailing[0]) + " to "
                            + digitsOf(values.trailing[1]) + " deg, further value "
                            + digitsOf(values.trailing[2]) + ", closing word "
                            + printable(values.word));
        return lines;
    }
    return {};
}

void print(const Document& document, std::ostream& out) {
    constexpr std::size_t titleWidth = 36;
    for (const BlockLayout& layout : blockTable) {
        const BlockValues* values = document.find(layout.block);
        std::string title(layout.title);
        for (const std::string& line :
             values ? linesOf(layout, *values) : std::vector<std::string>{"not read"}) {
            title.resize(titleWidth, ' ');
            out << title << line << '\n';
            title.clear();
        }
    }
}

void printJson(const Document& document, std::ostream& out) {
    Json all;
    for (const BlockLayout& layout : blockTable) {
        const BlockValues* values = document.find(layout.block);
        all[keyOf(layout.block)] = values ? jsonOf(layout, *values) : Json();
    }
    // Words may hold bytes that are no UTF-8.
    out << all.dump(-1, ' ', false, Json::error_handler_t::replace) << '\n';
}

} // namespace

int showFile(const InfoOptions& options, const Streams& streams) {
    const auto examined = examineFile(options.file, streams.err);
    if (!examined)
        return unusable;
    reportForUse(streams.err, options.file, *examined);
    std::ostringstream text;
    if (options.json)
        printJson(examined->parsed.document, text);
    else
        print(examined->parsed.document, text);
    if (!writeToStandardOutput(text.str(), streams))
        return unusable;
    return examined->errors() > 0 ? fileFaulty : allGood;
}

} // namespace kiv::host
