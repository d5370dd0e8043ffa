#pragma once

#include <string_view>

namespace kiv::host {

// What --help prints for the tool, kiv, or one of its subcommands, and kiv help for tables and
// parameters, too; and what -h prints, on one screen. Empty where there is no such page. Made from
// the pages in docs.
std::string_view helpText(std::string_view page);
std::string_view shortHelpText(std::string_view page);

} // namespace kiv::host
