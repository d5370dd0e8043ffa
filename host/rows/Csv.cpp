#include "host/rows/Csv.h"

namespace kiv::host {

namespace {

constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

// Without the mark in front of a first line and a carriage return behind it.
std::string_view withoutEnds(std::string_view line, bool first) {
    if (first && line.starts_with(byteOrderMark))
        line.remove_prefix(byteOrderMark.size());
    if (line.ends_with('\r'))
        line.remove_suffix(1);
    return line;
}

bool isBlank(char c) {
    return c == ' ' || c == '\t';
}

// Behind the quotes that a cell begins with, its start where it begins with none, npos where they
// are not closed.
std::size_t quotedEnd(std::string_view line, std::size_t start, char separator) {
    std::size_t at = start;
    while (at < line.size() && isBlank(line[at]) && line[at] != separator)
        ++at;
    if (at == line.size() || line[at] != '"')
        return start;
    while ((at = line.find('"', at + 1)) != line.npos && line.substr(at + 1).starts_with('"'))
        ++at;
    return at == line.npos ? at : at + 1;
}

} // namespace

void CsvReader::start(std::string_view lines, std::size_t firstLine) {
    behind = lines;
    number = firstLine - 1;
}

bool CsvReader::nextRow() {
    if (behind.empty())
        return false;
    const std::size_t end = behind.find('\n');
    line = behind.substr(0, end);
    behind.remove_prefix(end == behind.npos ? behind.size() : end + 1);
    ++number;
    splitLine();
    return true;
}

void CsvReader::separateBy(char character) {
    between = nothing[0] = character;
    splitLine();
}

void CsvReader::splitLine() {
    const std::string_view text = withoutEnds(line, number == 1);
    row.clear();
    closed = true;
    inside = false;
    if (text.find('"') != text.npos)
        return splitAroundQuotes(text);
    std::size_t start = 0;
    for (std::size_t end; (end = text.find(between, start)) != text.npos; start = end + 1)
        row.emplace_back(text.data() + start, end - start);
    row.push_back(text.substr(start));
}

// A quote inside a cell that does not begin with one is a character.
void CsvReader::splitAroundQuotes(std::string_view text) {
    for (std::size_t start = 0, end = 0; end != text.npos; start = end + 1) {
        const std::size_t from = quotedEnd(text, start, between);
        closed = from != text.npos;
        end = closed ? text.find(between, from) : text.npos;
        row.push_back(text.substr(start, end - start));
        const std::size_t quote = row.back().find('"');
        inside = inside || (quote != text.npos && quote > 0);
    }
}

std::size_t CsvReader::openQuote() const {
    return column(row.size() - 1) + row.back().find('"');
}

std::size_t CsvReader::column(std::size_t cell) const {
    const char* place =
        cell < row.size() ? row[cell].data() : row.back().data() + row.back().size();
    return static_cast<std::size_t>(place - line.data()) + 1;
}

bool isAboveNames(std::string_view line) {
    constexpr std::string_view start = "sep=";
    const std::string_view text = cellText(withoutEnds(line, true));
    return text.find_first_not_of("\t ,;\"") == text.npos
           || (text.starts_with(start) && text.size() == start.size() + 1);
}

std::string_view cellText(std::string_view cell) {
    while (!cell.empty() && isBlank(cell.front()))
        cell.remove_prefix(1);
    while (!cell.empty() && isBlank(cell.back()))
        cell.remove_suffix(1);
    if (cell.size() >= 2 && cell.front() == '"' && cell.back() == '"')
        cell = cell.substr(1, cell.size() - 2);
    return cell;
}

} // namespace kiv::host
