#pragma once

#include <iosfwd>
#include <string>

namespace kiv::host {

// The copy that a rewrite makes, in the current folder.
inline constexpr const char* copyName = "$tmp.prm";

// Says why the system has not opened a parameter file, by its error; also where its values are,
// when a rewrite that did not end has left them in its copy.
void reportUnopenedParameters(std::ostream& err, const std::string& path, int error);

} // namespace kiv::host
