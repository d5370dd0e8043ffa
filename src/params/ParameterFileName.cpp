#include "params/ParameterFileName.h"

#include <charconv>
#include <string>

#include "support/platform/File.h"

namespace kiv {

namespace {

// The name as a folder keeps it, where the system finds a file by others, too.
std::string spelledPlainly(std::string_view fileName) {
    std::string name(fileName.substr(0, fileName.find_last_not_of(". ") + 1));
    for (char& letter : name)
        if (letter >= 'A' && letter <= 'Z')
            letter = static_cast<char>(letter - 'A' + 'a');
    if (name.starts_with('t'))
        name[0] = 'T';
    return name;
}

} // namespace

std::optional<std::int32_t> sensorIdIn(std::string_view fileName) {
    const std::string name =
        platform::namesAreLoose ? spelledPlainly(fileName) : std::string(fileName);
    if (!name.starts_with("Tg") || !name.ends_with(".prm") || name.size() < 7)
        return std::nullopt;
    const std::string_view digits = std::string_view(name).substr(2, name.size() - 6);
    std::int32_t id = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), id);
    if (error != std::errc() || std::to_string(id) != digits)
        return std::nullopt;
    return id;
}

} // namespace kiv
