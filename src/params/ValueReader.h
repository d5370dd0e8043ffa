#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "params/Document.h"
#include "params/Finding.h"

namespace kiv {

// A load counts a value that it cannot read as 0; a rewrite must not.
enum class Purpose { load, rewrite };

// Reads the values of blocks, each by its kind.
class ValueReader {
public:
    ValueReader(Scanner& text, Purpose why, std::optional<std::int32_t> id)
        : scanner(text), purpose(why), sensorId(id) {}

    // What stands behind the block's title. False where the values break off: failure says why.
    bool read(const BlockLayout& blockLayout, BlockValues& values);

    // Why the last read failed.
    std::optional<Finding> failure;
    bool isWrongId = false;     // the failure is that complete values name another sensor
    std::size_t groupsRead = 0; // as BrokenBlock counts them

    // What counts as 0, of all reads.
    std::vector<Finding> unread;

    // Keeps the place of every number read from now on.
    std::vector<TextPlace>* places = nullptr;

private:
    bool readSensorId(BlockValues& values);
    bool readInteger(BlockValues& values);
    bool readWord(std::string& word, std::string_view which);
    bool readNumbers(std::span<float> numbers, Groups groups, std::string_view noun);
    bool readCount(BlockValues& values);
    bool readRows(BlockValues& values);
    bool readTiltTable(BlockValues& values);
    template <typename Number>
    NumberResult readNumber(Number& value);

    bool cannotRead(std::string expected, NumberResult result);
    bool fail(Finding finding);

    Scanner& scanner;
    Purpose purpose;
    std::optional<std::int32_t> sensorId;
    const BlockLayout* layout = nullptr;
    std::string title; // the layout's, quoted
};

} // namespace kiv
