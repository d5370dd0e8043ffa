#pragma once

#include <functional>
#include <string>
#include <vector>

#include "tests/proofs/PoseErrors.h"

// Markdown tables on a page of the documentation.
namespace kiv::docs {

// How much a program tries.
struct Counts {
    std::size_t poses = 1000000;
    std::size_t draws = 100000;
};

// In front of a number of which only the size is known.
inline const std::string about = "about ";

// What is measured with one or two mount modes, as a row; its first cells are model, modes, text.
struct Row {
    std::string text;
    Case which;
    Range range = {5, 45};
    bool flag = false;

    std::vector<std::string> cells() const;
};

class Tables {
public:
    // Begins a table.
    void head(const std::vector<std::string>& names);
    void row(const std::vector<std::string>& cells);
    // What has to be so of the last row, too; says on standard error where it is not.
    void expect(bool holds, const std::string& otherwise);

    std::vector<std::string> lines;
    bool hold = true;
};

// The program PROGRAM [--poses N] [--draws N] [--check PAGE]: prints its tables, or compares them
// with those of the section of docs/accuracy-tables.md on trust, or of the rest: words equal,
// numbers within a tenth or within 1e-10, below which rounding and the platform's mathematical
// functions decide, numbers with about in front within a factor of 3. Exit code 1 where they differ
// or where something does not hold.
int runProgram(int argc, char** argv, bool ofTrust,
               const std::function<void(Tables&, const Counts&)>& fill);

} // namespace kiv::docs
