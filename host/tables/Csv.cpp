#include "host/tables/Csv.h"

#include <istream>

namespace kiv::host {

namespace {

constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

// Splits at the commas outside quotes; false when a quote is not closed.
bool split(std::string_view line, std::vector<std::string_view>& cells) {
    cells.clear();
    bool quoted = false;
    std::size_t start = 0;
    const auto endCell = [&](std::size_t comma) {
        cells.push_back(line.substr(start, comma - start));
        start = comma + 1;
    };
    if (line.find('"') == line.npos) {
        for (auto comma = line.find(','); comma != line.npos; comma = line.find(',', start))
            endCell(comma);
    } else {
        for (std::size_t i = 0; i < line.size(); ++i) {
            if (line[i] == '"')
                quoted = !quoted;
            else if (line[i] == ',' && !quoted)
                endCell(i);
        }
    }
    cells.push_back(line.substr(start));
    return !quoted;
}

} // namespace

bool CsvReader::nextRow() {
    if (!std::getline(in, line))
        return false;
    ++lines;
    std::string_view text = line;
    if (lines == 1 && text.starts_with(byteOrderMark))
        text.remove_prefix(byteOrderMark.size());
    if (text.ends_with('\r'))
        text.remove_suffix(1);
    closed = split(text, row);
    return true;
}

std::size_t CsvReader::column(std::size_t cell) const {
    const char* place =
        cell < row.size() ? row[cell].data() : row.back().data() + row.back().size();
    return static_cast<std::size_t>(place - line.data()) + 1;
}

bool CsvReader::failed() const {
    return in.bad();
}

bool CsvReader::wouldWait() const {
    return in.rdbuf()->in_avail() <= 0;
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
