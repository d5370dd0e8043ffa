#pragma once

#include <iosfwd>

#include <nlohmann/json.hpp>

namespace kiv::host {

struct TableCheck;

// What is known of a table, for people.
void print(const TableCheck& check, std::ostream& out);

// The same for programs.
nlohmann::ordered_json jsonOf(const TableCheck& check);

} // namespace kiv::host
