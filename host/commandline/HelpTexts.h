#pragma once

#include <string_view>

namespace kiv::host {

// What --help prints for the tool, kiv, or one of its subcommands, and what -h does, on one screen;
// made from docs/kiv.md.
std::string_view helpText(std::string_view command);
std::string_view shortHelpText(std::string_view command);

} // namespace kiv::host
