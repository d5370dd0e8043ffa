#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <string_view>

namespace kiv::host {

// What readings show that nothing is wrong with one by one.
enum class WitnessKind : unsigned char {
    stuck,
    spike,
    otherTarget,
    radians,
    beyondRange,
    clock,
    joined,
    filler,
};

inline constexpr std::array<const char*, 8> witnessNames{
    "stuck", "spike", "other_target", "radians", "beyond_range", "clock", "joined", "filler"};

// One kind's rows of one column of one table.
struct Witness {
    WitnessKind kind;
    std::string_view column; // as the tool calls it, vector for x, y and z; empty: the whole row
    std::size_t table = 0;   // of several, from 0
    std::size_t line = 0;    // of the first
    std::size_t rows = 0;
    std::size_t row = 0;       // the first one's, of the whole recording, from 1
    bool overMidnight = false; // of a clock: seconds of the day

    const char* name() const { return witnessNames[static_cast<std::size_t>(kind)]; }
    // What it looks like, and what to do: a sentence without its end.
    std::string text() const;
};

} // namespace kiv::host
