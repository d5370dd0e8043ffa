#pragma once

#include <optional>
#include <string>

#include "host/base/Cli.h"
#include "host/rows/TableFormat.h"

namespace kiv::host {

// Two names that lead to one column, or one that leads to two.
struct NameFault {
    std::string name; // the later of the two that has another name
    std::string expected;
    std::string found;
};

// Of a format's other names; nothing where each column has one name. With time_s=time a column time
// has seconds alone.
std::optional<NameFault> faultOfNames(const TableFormat& format);

// Takes the names of the format's file, too, but for those that it has already. False, and messages
// with their places, where the file cannot be used.
bool readColumnNames(TableFormat& format, const Streams& streams);

// Some names one after the other, with commas.
std::string joined(const std::vector<std::string_view>& names);

} // namespace kiv::host
