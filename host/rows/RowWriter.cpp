#include "host/rows/RowWriter.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <utility>

#include <nlohmann/json.hpp>

#include "host/rows/Csv.h"

namespace kiv::host {

namespace {

template <typename... Actions>
struct Overloaded : Actions... {
    using Actions::operator()...;
};
template <typename... Actions>
Overloaded(Actions...) -> Overloaded<Actions...>;

std::size_t digitsAt(std::string_view text, std::size_t from) {
    const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
    const auto end =
        std::find_if_not(text.begin() + static_cast<std::ptrdiff_t>(from), text.end(), isDigit);
    return static_cast<std::size_t>(end - text.begin()) - from;
}

// The grammar of RFC 8259.
bool isJsonNumber(std::string_view text) {
    std::size_t at = text.starts_with('-') ? 1 : 0;
    const std::size_t whole = digitsAt(text, at);
    if (whole == 0 || (whole > 1 && text[at] == '0'))
        return false;
    at += whole;
    if (text.substr(at).starts_with('.')) {
        const std::size_t decimals = digitsAt(text, at + 1);
        if (decimals == 0)
            return false;
        at += 1 + decimals;
    }
    if (at < text.size() && (text[at] == 'e' || text[at] == 'E')) {
        ++at;
        if (at < text.size() && (text[at] == '+' || text[at] == '-'))
            ++at;
        const std::size_t power = digitsAt(text, at);
        if (power == 0)
            return false;
        at += power;
    }
    return at == text.size();
}

// Bytes that are no UTF-8 become U+FFFD.
void appendJsonText(std::string& out, std::string_view text) {
    const bool plain = std::all_of(text.begin(), text.end(), [](char c) {
        return c >= 0x20 && c < 0x7F && c != '"' && c != '\\';
    });
    if (plain)
        out.append(1, '"').append(text).push_back('"');
    else
        out += nlohmann::json(text).dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

void appendJsonCarried(std::string& out, std::string_view cell, bool decimalComma) {
    const std::string_view text = cellText(cell);
    if (text.empty()) {
        out += "null";
    } else if (isJsonNumber(text)) {
        out += text;
    } else {
        std::string number(text);
        if (const std::size_t mark = number.find(','); decimalComma && mark != number.npos)
            number[mark] = '.';
        if (isJsonNumber(number))
            out += number;
        else
            appendJsonText(out, unquoted(cell));
    }
}

void appendDigits(std::string& out, std::string_view digits, char mark) {
    const std::size_t start = out.size();
    out += digits;
    if (mark != '.')
        std::replace(out.begin() + static_cast<std::ptrdiff_t>(start), out.end(), '.', mark);
}

} // namespace

std::string unquoted(std::string_view cell) {
    const std::string_view inside = cellText(cell);
    std::string text(inside);
    const bool quotes = inside.data() != cell.data() && inside.data()[-1] == '"';
    for (std::size_t at = 0; quotes && (at = text.find("\"\"", at)) != text.npos; ++at)
        text.erase(at, 1);
    return text;
}

void appendInQuotes(std::string& out, std::string_view text) {
    out.push_back('"');
    for (const char c : text)
        out.append(c == '"' ? 2 : 1, c);
    out.push_back('"');
}

// A reader may take a quote inside for one that opens, and a quote that is never closed would take
// the rows behind it into its cell.
void appendAsItStands(std::string& out, std::string_view cell) {
    const std::size_t quote = cell.find('"');
    if (quote == cell.npos)
        out.append(cell);
    else if (quote == cell.find_first_not_of(" \t")) // not every reader passes over these blanks
        out.append(cell.substr(quote));
    else
        appendInQuotes(out, cell);
}

std::string csvCell(std::string_view word, char separator) {
    const char ending[] = {separator, '"', '\n', '\r', '\0'};
    if (word.find_first_of(ending) == word.npos)
        return std::string(word);
    std::string cell;
    appendInQuotes(cell, word);
    return cell;
}

RowWriter::RowWriter(const Marks& asked, std::span<const std::string_view> names) : marks(asked) {
    for (const std::string_view name : names) {
        std::string start;
        if (marks.format == RowFormat::csv) {
            start = csvCell(name, marks.separator);
        } else {
            start.push_back(starts.empty() ? '{' : ',');
            appendJsonText(start, name);
            start.push_back(':');
        }
        starts.push_back(std::move(start));
    }
}

void RowWriter::appendNames(std::string& out) const {
    if (marks.format != RowFormat::csv)
        return;
    for (const std::string& name : starts)
        out.append(name).push_back(marks.separator);
    out.back() = '\n';
}

void RowWriter::append(std::string& out, std::span<const Cell> cells) const {
    for (std::size_t i = 0; i < cells.size(); ++i)
        appendCell(out, i, cells[i]);
    endRow(out);
}

void RowWriter::appendCell(std::string& out, std::size_t column, const Cell& cell) const {
    const bool csv = marks.format == RowFormat::csv;
    if (!csv)
        out += starts[column];
    const char* const nothing = csv ? "" : "null";
    const char mark = csv && marks.decimalComma ? ',' : '.';
    std::visit(
        Overloaded{[&](std::monostate) { out += nothing; },
                   [&](std::string_view word) {
                       if (csv)
                           out += csvCell(word, marks.separator);
                       else
                           appendJsonText(out, word);
                   },
                   [&](CarriedText carried) {
                       if (csv)
                           appendAsItStands(out, carried.text);
                       else
                           appendJsonCarried(out, carried.text, marks.decimalComma);
                   },
                   [&](WrittenNumber number) {
                       appendDigits(out, number.digits.empty() ? nothing : number.digits, mark);
                   },
                   [&](auto number) {
                       char digits[32];
                       if (std::isfinite(static_cast<double>(number)))
                           appendDigits(
                               out, {digits, std::to_chars(digits, std::end(digits), number).ptr},
                               mark);
                       else
                           out += nothing;
                   }},
        cell);
    if (csv)
        out.push_back(marks.separator);
}

// A separator stands behind the last cell, too.
void RowWriter::endRow(std::string& out) const {
    if (marks.format == RowFormat::csv)
        out.back() = '\n';
    else
        out += "}\n";
}

} // namespace kiv::host
