#include "params/ParameterFileName.h"

#include <charconv>
#include <string>

namespace kiv {

std::optional<std::int32_t> sensorIdIn(std::string_view fileName) {
    if (!fileName.starts_with("Tg") || !fileName.ends_with(".prm") || fileName.size() < 7)
        return std::nullopt;
    const std::string_view digits = fileName.substr(2, fileName.size() - 6);
    std::int32_t id = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), id);
    if (error != std::errc() || std::to_string(id) != digits)
        return std::nullopt;
    return id;
}

} // namespace kiv
