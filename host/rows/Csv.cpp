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

// Splits at the separators outside quotes; false when a quote is not closed.
bool split(std::string_view line, char separator, std::vector<std::string_view>& cells) {
    cells.clear();
    bool quoted = false;
    std::size_t start = 0;
    const auto endCell = [&](std::size_t end) {
        cells.emplace_back(line.data() + start, end - start);
        start = end + 1;
    };
    if (line.find('"') == line.npos) {
        for (std::size_t end; (end = line.find(separator, start)) != line.npos;)
            endCell(end);
    } else {
        for (std::size_t i = 0; i < line.size(); ++i) {
            if (line[i] == '"')
                quoted = !quoted;
            else if (line[i] == separator && !quoted)
                endCell(i);
        }
    }
    cells.push_back(line.substr(start));
    return !quoted;
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
    closed = split(withoutEnds(line, number == 1), between, row);
}

std::size_t CsvReader::column(std::size_t cell) const {
    const char* place =
        cell < row.size() ? row[cell].data() : row.back().data() + row.back().size();
    return static_cast<std::size_t>(place - line.data()) + 1;
}

bool isSeparatorLine(std::string_view line) {
    constexpr std::string_view start = "sep=";
    const std::string_view text = cellText(withoutEnds(line, true));
    return text.starts_with(start) && text.size() == start.size() + 1;
}

std::string_view cellText(std::string_view cell) {
    const auto blank = [](char c) { return c == ' ' || c == '\t'; };
    while (!cell.empty() && blank(cell.front()))
        cell.remove_prefix(1);
    while (!cell.empty() && blank(cell.back()))
        cell.remove_suffix(1);
    if (cell.size() >= 2 && cell.front() == '"' && cell.back() == '"')
        cell = cell.substr(1, cell.size() - 2);
    return cell;
}

} // namespace kiv::host
