#include <algorithm>

#include "c/Handles.h"
#include "params/BlockNames.h"

using namespace kiv;

namespace {

int32_t kindOf(const BlockLayout& layout) {
    switch (layout.kind) {
    case BlockKind::sensorId:
    case BlockKind::integer:
        return KIV_BLOCK_INTEGER;
    case BlockKind::word:
        return KIV_BLOCK_WORD;
    case BlockKind::encoderTable:
        return KIV_BLOCK_ENCODER_TABLE;
    case BlockKind::tiltTable:
        return KIV_BLOCK_TILT_TABLE;
    case BlockKind::numbers:
        break;
    }
    return isMatrix(layout.block) ? KIV_BLOCK_MATRIX : KIV_BLOCK_NUMBERS;
}

// Takes the values of a block that is of one of the kinds to use(values).
template <typename Use>
int withBlock(const kiv_parameters* parameters, const char* name, const void* result,
              std::initializer_list<int32_t> kinds, Use use) {
    const auto block = parameters && name && result ? blockOf(name) : std::nullopt;
    if (!block || std::count(kinds.begin(), kinds.end(), kindOf(layoutOf(*block))) == 0)
        return KIV_STATUS_BAD_ARGUMENT;
    if (!parameters->file)
        return KIV_STATUS_NOT_LOADED;
    return use(*parameters->file->document.find(*block));
}

constexpr std::initializer_list<int32_t> numeric = {KIV_BLOCK_NUMBERS, KIV_BLOCK_MATRIX,
                                                    KIV_BLOCK_ENCODER_TABLE, KIV_BLOCK_TILT_TABLE};

} // namespace

const char* kiv_block_name(size_t index) {
    return index < blockTable.size() ? keyOf(blockTable[index].block) : nullptr;
}

int kiv_block_kind(const char* block, int32_t* kind) {
    const auto known = block && kind ? blockOf(block) : std::nullopt;
    if (!known)
        return KIV_STATUS_BAD_ARGUMENT;
    *kind = kindOf(layoutOf(*known));
    return KIV_STATUS_OK;
}

const char* kiv_block_value_name(const char* block, size_t index) {
    const auto known = block ? blockOf(block) : std::nullopt;
    if (!known)
        return nullptr;
    const auto names = valueNamesOf(*known);
    return index < names.size() ? names[index] : nullptr;
}

int kiv_parameters_integer(const kiv_parameters* parameters, const char* block, int32_t* value) {
    return withBlock(parameters, block, value, {KIV_BLOCK_INTEGER}, [=](const BlockValues& v) {
        *value = v.integer;
        return KIV_STATUS_OK;
    });
}

int kiv_parameters_word(const kiv_parameters* parameters, const char* block, const char** word) {
    return withBlock(parameters, block, word, {KIV_BLOCK_WORD, KIV_BLOCK_TILT_TABLE},
                     [=](const BlockValues& v) {
                         *word = v.word.c_str();
                         return KIV_STATUS_OK;
                     });
}

int kiv_parameters_number_count(const kiv_parameters* parameters, const char* block,
                                size_t* count) {
    return withBlock(parameters, block, count, numeric, [=](const BlockValues& v) {
        *count = v.numbers.size();
        return KIV_STATUS_OK;
    });
}

int kiv_parameters_numbers(const kiv_parameters* parameters, const char* block, float* values,
                           size_t capacity) {
    return withBlock(parameters, block, values, numeric, [=](const BlockValues& v) {
        if (capacity < v.numbers.size())
            return KIV_STATUS_BAD_ARGUMENT;
        std::copy(v.numbers.begin(), v.numbers.end(), values);
        return KIV_STATUS_OK;
    });
}

int kiv_parameters_limits(const kiv_parameters* parameters, const char* block, float* limits) {
    return withBlock(parameters, block, limits, {KIV_BLOCK_TILT_TABLE}, [=](const BlockValues& v) {
        std::copy(v.trailing.begin(), v.trailing.end(), limits);
        return KIV_STATUS_OK;
    });
}
