#pragma once

#include <span>
#include <string>

#include <CLI/CLI.hpp>

namespace kiv::host {

// Why the words behind a subcommand, or behind the tool's own name, could not be parsed: what
// follows that name in the message.
std::string usageFault(const CLI::App& command, std::span<const char* const> words,
                       const CLI::ParseError& fault);

} // namespace kiv::host
