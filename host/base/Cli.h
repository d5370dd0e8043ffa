#pragma once

#include <iosfwd>
#include <string_view>

namespace kiv::host {

// Exit codes of the tool.
enum ExitCode : int {
    allGood = 0,
    someRowsBad = 1,   // some rows refused or without an orientation
    fileFaulty = 1,    // a parameter file with findings that count
    resultsDiffer = 1, // reference cases that are not computed as they should be
    unusable = 2,      // wrong usage, or a file that cannot be read, used or written
    interrupted = 130
};

struct Streams {
    std::istream& in;
    std::ostream& out;
    std::ostream& err;
    bool errIsTerminal = false;
    bool outIsTerminal = false;
    std::string_view inName = "standard input"; // as messages show it
};

// The whole tool: arguments as main gets them, data to out, messages to err.
int runTool(int argc, const char* const* argv, const Streams& streams);

} // namespace kiv::host
