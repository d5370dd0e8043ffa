#include "tests/proofs/PageTables.h"

#include <algorithm>
#include <cmath>
#include <istream>
#include <ostream>

#include "host/rows/Csv.h"
#include "support/Numbers.h"

namespace kiv::docs {

namespace {

std::vector<std::string> cellsOf(const std::string& line) {
    std::vector<std::string> cells;
    std::size_t from = line.find('|');
    for (std::size_t to; (to = line.find('|', from + 1)) != std::string::npos; from = to)
        cells.emplace_back(host::cellText(std::string_view(line).substr(from + 1, to - from - 1)));
    return cells;
}

bool sameCell(const std::string& page, const std::string& computed) {
    const bool sizeOnly = page.starts_with(about) && computed.starts_with(about);
    const std::size_t from = sizeOnly ? about.size() : 0;
    const auto x = numberIn<double>(std::string_view(page).substr(from));
    const auto y = numberIn<double>(std::string_view(computed).substr(from));
    if (!x || !y)
        return page == computed;
    return sizeOnly ? *x <= 3 * *y && *y <= 3 * *x : std::abs(*x - *y) <= 0.1 * *y + 1e-10;
}

bool sameLine(const std::string& page, const std::string& computed) {
    const std::vector<std::string> a = cellsOf(page);
    const std::vector<std::string> b = cellsOf(computed);
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), sameCell);
}

} // namespace

std::vector<std::string> tableLines(std::istream& page, const std::string& section, bool inside) {
    std::vector<std::string> lines;
    bool within = false;
    for (std::string line; std::getline(page, line);) {
        if (line.starts_with("## "))
            within = line == section;
        if (line.starts_with('|') && within == inside)
            lines.push_back(line);
    }
    return lines;
}

std::string tableLine(const std::vector<std::string>& cells) {
    std::string line = "|";
    for (const std::string& cell : cells)
        line += ' ' + cell + " |";
    return line;
}

void printTables(const std::vector<std::string>& lines, std::ostream& out) {
    for (std::size_t i = 0; i < lines.size(); ++i)
        out << (i + 1 < lines.size() && lines[i + 1].starts_with("|---") ? "\n" : "") << lines[i]
            << '\n';
}

bool sameTables(const std::vector<std::string>& page, const std::vector<std::string>& computed,
                std::ostream& err) {
    bool same = true;
    for (std::size_t i = 0; i < std::max(page.size(), computed.size()); ++i) {
        const std::string expected = i < computed.size() ? computed[i] : "no further line";
        const std::string found = i < page.size() ? page[i] : "no further line";
        if (sameLine(found, expected) && i < page.size() && i < computed.size())
            continue;
        err << "expected " << expected << "\nfound    " << found << '\n';
        same = false;
    }
    return same;
}

} // namespace kiv::docs
