#include "host/rows/Csv.h"

#include <bit>
#include <cstdint>
#include <cstring>

namespace kiv::host {

namespace {

constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

// Of eight bytes, the highest bit of each that is the one looked for.
std::uint64_t bytesEqualTo(const char* bytes, std::uint64_t eightTimes) {
    constexpr std::uint64_t low7 = 0x7F7F7F7F7F7F7F7F;
    std::uint64_t word;
    std::memcpy(&word, bytes, sizeof word);
    word ^= eightTimes;
    return ~(((word & low7) + low7) | word | low7);
}

// Calls found with the place of every separator, from the left.
template <typename Found>
void forEachSeparator(std::string_view line, char separator, Found found) {
    const std::uint64_t eightTimes = 0x0101010101010101 * static_cast<unsigned char>(separator);
    std::size_t i = 0;
    for (; i + 8 <= line.size(); i += 8) {
        const std::uint64_t hits = bytesEqualTo(line.data() + i, eightTimes);
        if constexpr (std::endian::native == std::endian::little)
            for (auto left = hits; left != 0; left &= left - 1)
                found(i + static_cast<std::size_t>(std::countr_zero(left)) / 8);
        else
            for (std::size_t byte = 0; hits != 0 && byte < 8; ++byte)
                if (line[i + byte] == separator)
                    found(i + byte);
    }
    for (; i < line.size(); ++i)
        if (line[i] == separator)
            found(i);
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
        forEachSeparator(line, separator, endCell);
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
    between = character;
    splitLine();
}

void CsvReader::splitLine() {
    std::string_view text = line;
    if (number == 1 && text.starts_with(byteOrderMark))
        text.remove_prefix(byteOrderMark.size());
    if (text.ends_with('\r'))
        text.remove_suffix(1);
    closed = split(text, between, row);
}

std::size_t CsvReader::column(std::size_t cell) const {
    const char* place =
        cell < row.size() ? row[cell].data() : row.back().data() + row.back().size();
    return static_cast<std::size_t>(place - line.data()) + 1;
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
