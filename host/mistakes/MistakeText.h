#pragma once

#include <iosfwd>

#include <nlohmann/json.hpp>

namespace kiv::host {

struct MistakeSearch;

// What a search has found, for people: a line for each mistake that fits, or one that says how the
// table fits, or does not.
void print(const MistakeSearch& search, std::ostream& out);

// All that was judged, for programs: degrees.
nlohmann::ordered_json jsonOfMistakes(const MistakeSearch& search);
// What it was judged by, and how the table fits as it stands.
nlohmann::ordered_json jsonOfSetup(const MistakeSearch& search);

} // namespace kiv::host
