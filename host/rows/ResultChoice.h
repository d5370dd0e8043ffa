#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace kiv::host {

// A column of results that is asked for.
struct ChosenResult {
    std::size_t column; // of resultColumns
    bool byName;        // else as one of a group
};

// Names of columns and of groups of them, with commas between; each column where it is first named.
std::vector<ChosenResult> chosenResults(std::string_view names);

// What is wrong with such a text; empty for nothing.
std::string faultOfResults(std::string_view names);

} // namespace kiv::host
