#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace kiv {

// The ID of the sensor that a parameter file is named after, without a folder. Nothing for a name
// that is not Tg, a decimal 32-bit ID without leading zeros, .prm, as far as the system tells names
// apart.
std::optional<std::int32_t> sensorIdIn(std::string_view fileName);

} // namespace kiv
