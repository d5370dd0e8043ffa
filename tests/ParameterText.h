#pragma once

#include <map>
#include <sstream>
#include <string>

#include "params/BlockTable.h"

namespace kiv::test {

// What is to differ from the usual text.
struct TextChanges {
    std::map<Block, std::string> values{}; // all that follows the title
    std::map<Block, std::string> titles{};
    std::size_t blocks = blockTable.size();
    float shift = 0.0F; // added to every number but the integers
};

// Number i of a block in the usual text: differs between blocks, rises within one, and is exact in
// single precision and in decimals.
inline float parameterNumber(Block block, std::size_t i) {
    return static_cast<float>(block) + 0.25F * static_cast<float>(i * i);
}

inline std::string parameterValues(const BlockLayout& layout, float shift) {
    std::ostringstream text;
    const auto print = [&](int count) {
        for (std::size_t i = 0; i < static_cast<std::size_t>(count); ++i)
            text << parameterNumber(layout.block, i) + shift << '\t';
    };
    switch (layout.kind) {
    case BlockKind::sensorId:
        return "5";
    case BlockKind::integer:
        return "3";
    case BlockKind::word:
        return "owner";
    case BlockKind::numbers:
        print(layout.count);
        break;
    case BlockKind::encoderTable:
        text << "3\n";
        print(6);
        break;
    case BlockKind::tiltTable:
        text << "4\n";
        print(8);
        text << '\n' << -30 + shift << '\t' << 30 + shift << "\t0.5\nend";
        break;
    }
    return text.str();
}

// A parameter file of sensor 5 with mounting mode 3.
inline std::string parameterText(const TextChanges& changes = {}) {
    std::string text;
    const auto print = [&](const auto& changed, Block block, const std::string& usual) {
        const auto found = changed.find(block);
        text += (found != changed.end() ? found->second : usual) + '\n';
    };
    for (std::size_t i = 0; i < changes.blocks; ++i) {
        const BlockLayout& layout = blockTable[i];
        print(changes.titles, layout.block, std::string(layout.title));
        print(changes.values, layout.block, parameterValues(layout, changes.shift));
    }
    return text;
}

} // namespace kiv::test
