#include "tests/proofs/PageTables.h"

#include <algorithm>
#include <cmath>
#include <exception>
#include <fstream>
#include <iostream>
#include <string_view>

#include "host/rows/Csv.h"
#include "support/Numbers.h"

namespace kiv::docs {

namespace {

const std::string trustSection = "## Trust and uncertainty";

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

std::vector<std::string> linesOf(const std::string& page, bool ofTrust) {
    std::vector<std::string> lines;
    std::ifstream file(page);
    bool within = false;
    for (std::string line; std::getline(file, line);) {
        if (line.starts_with("## "))
            within = line == trustSection;
        if (line.starts_with('|') && within == ofTrust)
            lines.push_back(line);
    }
    return lines;
}

// An empty line in front of each table.
void print(const std::vector<std::string>& lines) {
    for (std::size_t i = 0; i < lines.size(); ++i)
        std::cout << (i + 1 < lines.size() && lines[i + 1].starts_with("|---") ? "\n" : "")
                  << lines[i] << '\n';
}

bool same(const std::vector<std::string>& page, const std::vector<std::string>& computed) {
    bool all = true;
    for (std::size_t i = 0; i < std::max(page.size(), computed.size()); ++i) {
        const std::string expected = i < computed.size() ? computed[i] : "no further line";
        const std::string found = i < page.size() ? page[i] : "no further line";
        if (sameLine(found, expected) && i < page.size() && i < computed.size())
            continue;
        std::cerr << "expected " << expected << "\nfound    " << found << '\n';
        all = false;
    }
    return all;
}

} // namespace

std::vector<std::string> Row::cells() const {
    constexpr const char* models[] = {"Dual level", "Pendulum", "Polarizer", "Three vectors",
                                      "Two levels"};
    std::string modes;
    for (const int mode : which.modes)
        modes += (modes.empty() ? "" : ", ") + std::to_string(mode);
    return {models[(which.modes[0] - 1) / 2], modes, text};
}

void Tables::head(const std::vector<std::string>& names) {
    row(names);
    lines.emplace_back("|");
    for (std::size_t i = 0; i < names.size(); ++i)
        lines.back() += "---|";
}

void Tables::row(const std::vector<std::string>& cells) {
    lines.emplace_back("|");
    for (const std::string& cell : cells)
        lines.back() += ' ' + cell + " |";
}

void Tables::expect(bool holds, const std::string& otherwise) {
    if (!holds)
        std::cerr << lines.back() << ": " << otherwise << '\n';
    hold = hold && holds;
}

int runProgram(int argc, char** argv, bool ofTrust,
               const std::function<void(Tables&, const Counts&)>& fill) {
    try {
        Counts counts;
        std::string page;
        for (int i = 1; i < argc; i += 2) {
            const std::string_view name = argv[i];
            const std::string_view value = i + 1 < argc ? argv[i + 1] : "";
            const auto number = numberIn<std::size_t>(value);
            if (name == "--check" && !value.empty())
                page = value;
            else if (name == "--poses" && number && *number >= 1000)
                counts.poses = *number;
            else if (name == "--draws" && number && *number >= 100)
                counts.draws = *number;
            else
                throw std::runtime_error("usage: [--poses N] [--draws N] [--check PAGE]");
        }
        Tables tables;
        fill(tables, counts);
        if (page.empty())
            print(tables.lines);
        return tables.hold && (page.empty() || same(linesOf(page, ofTrust), tables.lines)) ? 0 : 1;
    } catch (const std::exception& e) {
        std::cerr << argv[0] << ": " << e.what() << '\n';
        return 2;
    }
}

} // namespace kiv::docs
