#pragma once

#include <span>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "host/witnesses/Witness.h"

namespace kiv::host {

// An array, with the tables by their names.
nlohmann::ordered_json jsonOf(std::span<const Witness> found,
                              const std::vector<std::string>& tables);

} // namespace kiv::host
