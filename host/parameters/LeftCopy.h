#pragma once

#include <iosfwd>
#include <string>

namespace kiv::host {

// The copy that a rewrite makes, in the current folder.
inline constexpr const char* copyName = "$tmp.prm";

// Says that a parameter file cannot be opened, and why; also where its values are, when a rewrite
// that did not end has left them in its copy.
void reportUnopenedParameters(std::ostream& err, const std::string& path);

} // namespace kiv::host
