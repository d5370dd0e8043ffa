#pragma once

#include <string>

namespace kiv::host {

// The cause that a folder cannot be read as a table; it names the tables in it.
std::string lookOfFolder(const std::string& folder);

} // namespace kiv::host
