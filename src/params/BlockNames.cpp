#include "params/BlockNames.h"

#include <algorithm>

namespace kiv {

namespace {

using Key = std::array<char, 48>;

constexpr std::array<Key, blockTable.size()> keys = [] {
    std::array<Key, blockTable.size()> made{};
    for (const BlockLayout& layout : blockTable)
        std::transform(layout.title.begin(), layout.title.end(),
                       made[static_cast<std::size_t>(layout.block)].begin(), [](char c) {
                           const bool capital = c >= 'A' && c <= 'Z';
                           return c == ' ' ? '_' : capital ? static_cast<char>(c - 'A' + 'a') : c;
                       });
    return made;
}();

constexpr const char* pairNames[] = {"azimuth_deg", "elevation_deg"};
constexpr const char* vectorNames[] = {"x", "y", "z"};
constexpr const char* thermalNames[] = {"x_slope", "x_intercept", "y_slope", "y_intercept"};
constexpr const char* tiltNames[] = {"x_deg", "y_deg"};
constexpr const char* tableNames[] = {"limit_low_deg", "limit_high_deg", "further_value"};
constexpr const char* qvcNames[] = {"x", "z", "y", "axis_x_deg", "axis_z_deg", "start_deg"};
constexpr const char* levelNames[] = {"value_1",    "value_2",         "value_3", "axis_y_deg",
                                      "axis_z_deg", "zero_offset_deg", "gain"};

} // namespace

const char* keyOf(Block block) {
    return keys[static_cast<std::size_t>(block)].data();
}

std::optional<Block> blockOf(std::string_view key) {
    for (const BlockLayout& layout : blockTable)
        if (key == keyOf(layout.block))
            return layout.block;
    return std::nullopt;
}

std::span<const char* const> valueNamesOf(Block block) {
    switch (block) {
    case Block::angleOffset:
    case Block::halfAngle:
        return pairNames;
    case Block::transformVector:
        return vectorNames;
    case Block::thermalFactor:
        return thermalNames;
    case Block::tiltOffset:
        return tiltNames;
    case Block::tiltXCalibration:
    case Block::tiltYCalibration:
        return tableNames;
    case Block::qvc:
        return qvcNames;
    case Block::levelX:
    case Block::levelY:
        return levelNames;
    default:
        return {};
    }
}

} // namespace kiv
